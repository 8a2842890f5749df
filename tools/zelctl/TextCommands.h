#ifndef TOLVAR_VARUNDO_ZELCTL_TEXTCOMMANDS_H
#define TOLVAR_VARUNDO_ZELCTL_TEXTCOMMANDS_H

#include "CommandTable.h"

/// Short ways to put text onto the picture.
namespace Tolvar::Varundo::Zelctl {

[[nodiscard]] ExitStatus writeTextAtCursor(Zelctl& zelctl, const CommandCall& call);
[[nodiscard]] ExitStatus writeLine(Zelctl& zelctl, const CommandCall& call);
[[nodiscard]] ExitStatus typeCharacters(Zelctl& zelctl, const CommandCall& call);

void declareFreeText(QCommandLineParser& parser);
[[nodiscard]] ExitStatus writeFreeText(Zelctl& zelctl, const CommandCall& call);

} // namespace Tolvar::Varundo::Zelctl

#endif
