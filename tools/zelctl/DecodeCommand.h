#ifndef TOLVAR_VARUNDO_ZELCTL_DECODECOMMAND_H
#define TOLVAR_VARUNDO_ZELCTL_DECODECOMMAND_H

#include "CommandTable.h"

/// Bytes in words, without a unit.
namespace Tolvar::Varundo::Zelctl {

void declareDecode(QCommandLineParser& parser);
[[nodiscard]] ExitStatus decodeBytes(Zelctl& zelctl, const CommandCall& call);

} // namespace Tolvar::Varundo::Zelctl

#endif
