// How often an idle unit wakes up. On the unit's processor every wake-up is taken from the video.

#include "ChildProcess.h"
#include "Isolation.h"
#include "ProcessFigures.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using namespace Tolvar::Varundo::Test;

namespace {

constexpr int WakeUpsPerSecond = 5 + 1; // the removal of empty texts and the watcher's look
constexpr int MeasuredSeconds = 6;
// Both timers may fire once more at the ends of the measured time, and a coarse timer is five per cent
// inexact.
constexpr int Tolerance = 2 + WakeUpsPerSecond * MeasuredSeconds / 20;

int wakeUps(pid_t process)
{
    const QByteArray label = "\nvoluntary_ctxt_switches:";
    int sum = 0;
    for (const QByteArray& status : ofEachThread(QStringLiteral("status"), QString::number(process))) {
        const int at = status.indexOf(label) + label.size();
        sum += status.mid(at, status.indexOf('\n', at) - at).trimmed().toInt();
    }
    return sum;
}

} // namespace

class TestIdleCost : public QObject
{
    Q_OBJECT

private slots:
    void idleUnitWakesUpForItsTwoTimersOnly();
};

void TestIdleCost::idleUnitWakesUpForItsTwoTimersOnly()
{
    if (!hasOwn("net") || !hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
#ifdef __SANITIZE_THREAD__
    QSKIP("the thread sanitizer's own thread wakes up, too");
#endif
    const QTemporaryDir directory;
    const ChildProcess unit(
        {ENDING_UNIT, "idle", QFile::encodeName(directory.filePath(QStringLiteral("settings")))});
    QVERIFY(unit.isStarted());
    QTest::qSleep(2500); // its start is over
    const int threads = ofEachThread(QStringLiteral("comm"), QString::number(unit.id())).size();
    QVERIFY(threads >= 2);
    const int before = wakeUps(unit.id());
    QTest::qSleep(MeasuredSeconds * 1000);
    const int count = wakeUps(unit.id()) - before;
    qInfo("%d wake-ups in %d s", count, MeasuredSeconds);
    QVERIFY(count >= WakeUpsPerSecond * MeasuredSeconds / 2); // it is alive
    QVERIFY(count <= WakeUpsPerSecond * MeasuredSeconds + Tolerance);
    QCOMPARE(ofEachThread(QStringLiteral("comm"), QString::number(unit.id())).size(), threads);
}

QTEST_GUILESS_MAIN(TestIdleCost)
#include "tst_idle_cost.moc"
