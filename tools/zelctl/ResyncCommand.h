#ifndef TOLVAR_VARUNDO_ZELCTL_RESYNCCOMMAND_H
#define TOLVAR_VARUNDO_ZELCTL_RESYNCCOMMAND_H

#include "CommandTable.h"

/// A way back for a unit that waits for the rest of a frame.
namespace Tolvar::Varundo::Zelctl {

[[nodiscard]] ExitStatus resynchronise(Zelctl& zelctl, const CommandCall& call);

} // namespace Tolvar::Varundo::Zelctl

#endif
