// What it costs between the moment the adapter goes and the look that reports it: the host's event loop must
// not notice. Measured, so this program is not run beside others.

#include "CaughtLog.h"
#include "Isolation.h"
#include "ObservedSerialAdaptor.h"
#include "PseudoAdapter.h"

#include <QElapsedTimer>
#include <QTimer>
#include <QtTest>

#include <algorithm>

#include <sys/resource.h>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

constexpr int TickMs = 10;
constexpr int IntervalMs = 1200; // longer than the time between two looks
constexpr double MostCpuShare = 0.02;
constexpr double MostLatenessMs = 5;
// A loaded machine delays a timer by itself; a spin delays it in every attempt.
constexpr int Attempts = 3;

double cpuSeconds()
{
    rusage used{};
    getrusage(RUSAGE_SELF, &used);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(used.ru_utime) + seconds(used.ru_stime);
}

struct Cost
{
    double cpuShare = 0;
    double latenessMs = 0;
};

/// Runs the event loop with a timer in it, and measures.
Cost costOfRunning()
{
    Cost cost;
    QElapsedTimer sinceTick;
    QTimer ticker;
    ticker.setTimerType(Qt::PreciseTimer);
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        const double passedMs = static_cast<double>(sinceTick.nsecsElapsed()) / 1e6;
        cost.latenessMs = std::max(cost.latenessMs, passedMs - TickMs);
        sinceTick.start();
    });
    QEventLoop loop;
    QTimer::singleShot(IntervalMs, &loop, &QEventLoop::quit);
    sinceTick.start();
    ticker.start(TickMs);
    const double before = cpuSeconds();
    loop.exec();
    cost.cpuShare = (cpuSeconds() - before) * 1000 / IntervalMs;
    return cost;
}

} // namespace

class TestSerialUnplugCost : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void hostDoesNotNoticeAGoneAdapter_data();
    void hostDoesNotNoticeAGoneAdapter();
};

void TestSerialUnplugCost::initTestCase()
{
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
}

void TestSerialUnplugCost::hostDoesNotNoticeAGoneAdapter_data()
{
    QTest::addColumn<bool>("nodeGoes");
    QTest::addColumn<bool>("lineGoes");
    QTest::addColumn<bool>("writing");
    QTest::newRow("unplug") << true << true << false;
    QTest::newRow("unplug during a write") << true << true << true;
    QTest::newRow("hang-up") << false << true << false;
    QTest::newRow("node only") << true << false << false;
}

void TestSerialUnplugCost::hostDoesNotNoticeAGoneAdapter()
{
    QFETCH(bool, nodeGoes);
    QFETCH(bool, lineGoes);
    QFETCH(bool, writing);
    const CaughtLog log;
    Cost cost;
    for (int attempt = 0; attempt < Attempts; ++attempt) {
        PseudoAdapter adapter;
        ObservedSerialAdaptor unit;
        QTRY_VERIFY(adapter.isOpenedByUnit()); // by way of the watcher
        if (writing) {
            unit->writeMessage({1, 1, 60000, QByteArray(60000, 'a')});
            QTest::qWait(20);
        }
        if (nodeGoes) {
            adapter.removeNodeOnly();
        }
        if (lineGoes) {
            adapter.hangUpOnly();
        }
        cost = costOfRunning();
        QVERIFY(!adapter.isOpenedByUnit());
        QCOMPARE(unit.errors().isEmpty(), !lineGoes);
        if (cost.cpuShare < MostCpuShare && cost.latenessMs <= MostLatenessMs) {
            break;
        }
    }
    qInfo("%.2f %% CPU, the timer at most %.2f ms late", cost.cpuShare * 100, cost.latenessMs);
    QVERIFY(cost.cpuShare < MostCpuShare);
    QVERIFY(cost.latenessMs <= MostLatenessMs);
}

QTEST_GUILESS_MAIN(TestSerialUnplugCost)
#include "tst_serial_unplug_cost.moc"
