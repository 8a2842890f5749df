#ifndef TOLVAR_VARUNDO_ZELCTL_EXITSTATUS_H
#define TOLVAR_VARUNDO_ZELCTL_EXITSTATUS_H

namespace Tolvar::Varundo::Zelctl {

/// What the program ends with. Scripts rely on the numbers.
enum ExitStatus : int {
    Done = 0,
    Refused = 1, ///< rejected, or not answered
    Usage = 2,
    NoConnection = 3,
};

} // namespace Tolvar::Varundo::Zelctl

#endif
