#ifndef TOLVAR_VARUNDO_TEST_FOOTPRINTREPORT_H
#define TOLVAR_VARUNDO_TEST_FOOTPRINTREPORT_H

#include "OpenDescriptors.h"
#include "ProcessFigures.h"

#include <QCoreApplication>
#include <QFile>
#include <QTimer>

#include <cstdio>

namespace Tolvar::Varundo::Test {

/// The sum over all threads: how often the process gave the processor back, and so had been woken.
inline int wakeUpsSoFar()
{
    const QByteArray label = "\nvoluntary_ctxt_switches:";
    int sum = 0;
    for (const QByteArray& status : ofEachThread(QStringLiteral("status"))) {
        const int at = status.indexOf(label) + label.size();
        sum += status.mid(at, status.indexOf('\n', at) - at).trimmed().toInt();
    }
    return sum;
}

/// What nobody else shares and no file could give back. Of a thread's stack that is what it has touched.
inline int privateKiB()
{
    QFile rollup(QStringLiteral("/proc/self/smaps_rollup"));
    if (rollup.open(QIODevice::ReadOnly)) {
        for (const QByteArray& line : rollup.readAll().split('\n')) {
            if (line.startsWith("Private_Dirty:")) {
                return line.mid(int(qstrlen("Private_Dirty:"))).trimmed().split(' ').constFirst().toInt();
            }
        }
    }
    return -1;
}

/// Lets the application run idle, prints its figures, and ends it. With no time to run it ends at once.
inline int runIdleAndReport(int seconds)
{
    constexpr int settlingMs = 2500; // the start is over, and the watcher has looked twice
    if (seconds == 0) {
        return 0;
    }
    int before = 0;
    QTimer::singleShot(settlingMs, QCoreApplication::instance(), [&before] {
        std::printf("private %d\n", privateKiB());
        std::printf("threads %d\n", int(ofEachThread(QStringLiteral("comm")).size()));
        std::printf("descriptors %d\n", int(openDescriptors().size()));
        before = wakeUpsSoFar();
    });
    QTimer::singleShot(settlingMs + seconds * 1000, QCoreApplication::instance(), [&before] {
        std::printf("wakeups %d\n", wakeUpsSoFar() - before);
        QCoreApplication::quit();
    });
    return QCoreApplication::exec();
}

} // namespace Tolvar::Varundo::Test

#endif
