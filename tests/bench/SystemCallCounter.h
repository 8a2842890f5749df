#ifndef TOLVAR_VARUNDO_BENCH_SYSTEMCALLCOUNTER_H
#define TOLVAR_VARUNDO_BENCH_SYSTEMCALLCOUNTER_H

#include <QVector>

namespace Tolvar::Varundo::Bench {

/// How many system calls of those that a server lives by (poll, read and write of all kinds, ioctl) this
/// thread has made so far, in this program and all its libraries. Counted where they are called, which needs
/// no privilege as tracing does; a call that the C library makes within itself is not seen.
quint64 systemCallCount();

/// The size of each send and write of this thread, in order.
QVector<int> sentSizes();

} // namespace Tolvar::Varundo::Bench

#endif
