#ifndef TOLVAR_VARUNDO_TEST_SETTABLECLOCK_H
#define TOLVAR_VARUNDO_TEST_SETTABLECLOCK_H

#include <QDateTime>

namespace Tolvar::Varundo::Test {

/// The time of day that this whole program sees, Qt included. A program that contains SettableClock.cpp has
/// its own gettimeofday(), which is where Qt's current date and time come from.
class SettableClock
{
public:
    explicit SettableClock(const QDateTime& now); ///< stands still
    ~SettableClock();                             ///< the machine's clock again
    SettableClock(const SettableClock&) = delete;
    SettableClock& operator=(const SettableClock&) = delete;
};

} // namespace Tolvar::Varundo::Test

#endif
