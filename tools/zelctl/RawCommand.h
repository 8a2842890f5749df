#ifndef TOLVAR_VARUNDO_ZELCTL_RAWCOMMAND_H
#define TOLVAR_VARUNDO_ZELCTL_RAWCOMMAND_H

#include "CommandTable.h"

/// Bytes as they are.
namespace Tolvar::Varundo::Zelctl {

[[nodiscard]] ExitStatus sendRaw(Zelctl& zelctl, const CommandCall& call);

} // namespace Tolvar::Varundo::Zelctl

#endif
