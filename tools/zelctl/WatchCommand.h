#ifndef TOLVAR_VARUNDO_ZELCTL_WATCHCOMMAND_H
#define TOLVAR_VARUNDO_ZELCTL_WATCHCOMMAND_H

#include "CommandTable.h"

/// Readings over time.
namespace Tolvar::Varundo::Zelctl {

void declareWatch(QCommandLineParser& parser);
[[nodiscard]] ExitStatus watchElements(Zelctl& zelctl, const CommandCall& call);

} // namespace Tolvar::Varundo::Zelctl

#endif
