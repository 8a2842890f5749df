// A thousand times plugged in and pulled: nothing is left behind, and no acknowledged frame is lost.

#include "CaughtLog.h"
#include "Isolation.h"
#include "ObservedSerialAdaptor.h"
#include "OpenDescriptors.h"
#include "ProcessFigures.h"
#include "PseudoAdapter.h"
#include "ResidentMemory.h"

#include <Tolvar/Varundo/FrameCodec.h>
#include <Tolvar/Varundo/SerialPortWatcher.h>

#include <QSignalSpy>
#include <QtTest>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

constexpr int Cycles = 1000;
// What the allocator may keep more at the end than after the tenth cycle: a leak of 300 bytes a cycle shows.
constexpr qint64 MostGrowth = MaxGrowth > 8 * 1024 * 1024 ? MaxGrowth : 256 * 1024;

struct Figures
{
    int descriptors = openDescriptors().size();
    int threads = threadCount();
    qint64 memory = residentMemory();
};

/// In three ways, one after the other.
void pull(PseudoAdapter& adapter, int cycle)
{
    if (cycle % 3 == 0) {
        adapter.unplug();
    } else if (cycle % 3 == 1) {
        adapter.hangUpOnly();
        adapter.removeNodeOnly();
    } else {
        adapter.removeNodeOnly(); // the line stays until the unit has been told
    }
}

} // namespace

class TestSerialCycles : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void adaptorIsTheSameAfterAThousandCycles();
    void watcherReportsEachOfAThousandCycles();
};

void TestSerialCycles::initTestCase()
{
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
}

void TestSerialCycles::adaptorIsTheSameAfterAThousandCycles()
{
    const QString name = QStringLiteral("ttyUSB5"); // the adaptor's own watcher does not look at it
    ObservedSerialAdaptor unit;
    Figures early;
    quint64 acknowledged = 0;
    for (int cycle = 1; cycle <= Cycles; ++cycle) {
        const CaughtLog log;
        PseudoAdapter adapter("/dev/ttyUSB5");
        QVERIFY(adapter.isPlugged());
        unit->openSerialPort(name);
        QByteArray frames;
        for (quint8 number = 1; number <= 5; ++number) {
            frames += encodeFrame({number, 2, 2, QByteArray::number(cycle % 90 + 10)});
        }
        QCOMPARE(adapter.exchange(frames, 5), QByteArray(5, '\x06'));
        acknowledged += 5;
        QCOMPARE(unit.records().size(), size_t(5));
        for (quint8 number = 1; number <= 5; ++number) {
            QCOMPARE(unit.records()[number - 1u].cmdId, number);
            QCOMPARE(unit.records()[number - 1u].data, QByteArray::number(cycle % 90 + 10));
        }
        adapter.send(QByteArray::fromHex("1516")); // dropped outside a frame, or with the line
        pull(adapter, cycle);
        if (cycle % 2 == 0) {
            QTRY_VERIFY(cycle % 3 == 2 || !adapter.isOpenedByUnit());
        }
        unit->closeSerialPort();
        QVERIFY(!adapter.isOpenedByUnit());
        unit.forget();
        if (cycle == 10) {
            early = Figures();
        }
    }
    QCOMPARE(unit->frameCounters().accepted, acknowledged);
    const Figures late;
    QCOMPARE(late.descriptors, early.descriptors);
    QCOMPARE(late.threads, early.threads);
    QVERIFY2(late.memory - early.memory < MostGrowth,
             qPrintable(QString::number(late.memory - early.memory)));
}

void TestSerialCycles::watcherReportsEachOfAThousandCycles()
{
    SerialPortWatcher watcher(QStringLiteral("ttyUSB1"));
    QStringList reports;
    connect(&watcher, &SerialPortWatcher::serialPortConnected, this,
            [&](const QString& name) { reports.append(name); });
    connect(&watcher, &SerialPortWatcher::serialPortDisconnected, this,
            [&] { reports.append(QStringLiteral("-")); });
    Figures early;
    for (int cycle = 1; cycle <= Cycles; ++cycle) {
        const char* const node = cycle % 2 ? "/dev/ttyUSB1" : "/dev/ttyUSB0";
        PseudoAdapter adapter(node);
        watcher.checkPorts();
        watcher.checkPorts();
        adapter.unplug();
        watcher.checkPorts();
        watcher.checkPorts();
        QCOMPARE(reports, QStringList({QString::fromLatin1(node + 5), QStringLiteral("-")}));
        reports.clear();
        if (cycle == 10) {
            early = Figures();
        }
    }
    const Figures late;
    QCOMPARE(late.descriptors, early.descriptors);
    QVERIFY2(late.memory - early.memory < MostGrowth,
             qPrintable(QString::number(late.memory - early.memory)));
}

QTEST_GUILESS_MAIN(TestSerialCycles)
#include "tst_serial_cycles.moc"
