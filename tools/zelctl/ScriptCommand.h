#ifndef TOLVAR_VARUNDO_ZELCTL_SCRIPTCOMMAND_H
#define TOLVAR_VARUNDO_ZELCTL_SCRIPTCOMMAND_H

#include "CommandTable.h"

/// Files of commands.
namespace Tolvar::Varundo::Zelctl {

void declareScript(QCommandLineParser& parser);
[[nodiscard]] ExitStatus runScript(Zelctl& zelctl, const CommandCall& call);

} // namespace Tolvar::Varundo::Zelctl

#endif
