#ifndef TOLVAR_VARUNDO_TEST_RESIDENTMEMORY_H
#define TOLVAR_VARUNDO_TEST_RESIDENTMEMORY_H

#include <QFile>
#include <QList>

#include <malloc.h>
#include <unistd.h>

namespace Tolvar::Varundo::Test {

/// What this process holds in memory, in bytes, after freed memory has gone back to the system. What the
/// kernel keeps for its sockets is not in it.
inline qint64 residentMemory()
{
    malloc_trim(0);
    QFile statm(QStringLiteral("/proc/self/statm"));
    const QList<QByteArray> pages =
        statm.open(QIODevice::ReadOnly) ? statm.readAll().split(' ') : QList<QByteArray>();
    return pages.size() > 1 ? pages.at(1).toLongLong() * sysconf(_SC_PAGESIZE) : 0;
}

/// How much it may grow while a peer does its worst. The address sanitizer keeps freed memory for a while.
constexpr qint64 MaxGrowth = qint64(1024) * 1024 *
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
                             400;
#else
                             8;
#endif

} // namespace Tolvar::Varundo::Test

#endif
