#ifndef TOLVAR_VARUNDO_ZELCTL_LISTCOMMAND_H
#define TOLVAR_VARUNDO_ZELCTL_LISTCOMMAND_H

#include "CommandTable.h"

/// The catalogue, printed.
namespace Tolvar::Varundo::Zelctl {

[[nodiscard]] ExitStatus listAll(Zelctl& zelctl, const CommandCall& call);

} // namespace Tolvar::Varundo::Zelctl

#endif
