// The adapter goes, at every awkward moment. Its coming and the watcher's report are told to the adaptor
// directly, at a node that the watcher does not look at.

#include "CaughtLog.h"
#include "Isolation.h"
#include "ObservedSerialAdaptor.h"
#include "PseudoAdapter.h"

#include <Tolvar/Varundo/FrameCodec.h>

#include <QElapsedTimer>
#include <QtTest>

#include <atomic>
#include <thread>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

constexpr const char* Node = "/dev/ttyUSB5";
const QString Name = QStringLiteral("ttyUSB5");
const QByteArray Ack(1, '\x06');
const QByteArray EmptyRead = QByteArray::fromHex("020501000003");

// A line that hangs up reports errors until the event loop turns once more. Without a limit it would be about
// a million a second.
constexpr int MostErrors = 20;

/// In nanoseconds.
qint64 timeOfAnOpen(ObservedSerialAdaptor& unit)
{
    const PseudoAdapter adapter(Node);
    QElapsedTimer timer;
    timer.start();
    unit->openSerialPort(Name);
    const qint64 taken = timer.nsecsElapsed();
    unit->closeSerialPort();
    return taken;
}

} // namespace

class TestSerialUnplug : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void goneAdapterIsToldAndReleasedAtOnce_data();
    void goneAdapterIsToldAndReleasedAtOnce();
    void goneAdapterCountsAsOpenUntilItIsReported();
    void reportOfAGoneAdapterAddsNoError();
    void nodeThatGoesAloneLeavesTheLineInUse();
    void frameBegunBeforeIsCompletedAfter();
    void whatArrivedBeforeTheHangUpIsActedUponOrNotAcknowledged();
    void unplugInsideAnActionIsSurvived();
    void lineThatIsDeadAlreadyCannotBeOpened();
    void unplugWhileThePortIsBeingOpenedIsSurvived();
    void heldBackCommandsAreCarriedOutWhenTheLineGoes();
};

void TestSerialUnplug::initTestCase()
{
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
}

void TestSerialUnplug::goneAdapterIsToldAndReleasedAtOnce_data()
{
    QTest::addColumn<bool>("nodeStays");
    QTest::addColumn<QByteArray>("sentBefore");
    QTest::addColumn<int>("unsentAnswer"); // payload size; 0: none
    for (const bool stays : {false, true}) {
        const char* const how = stays ? "hang-up" : "unplug";
        QTest::addRow("%s, idle", how) << stays << QByteArray() << 0;
        QTest::addRow("%s, after a frame", how) << stays << EmptyRead << 0;
        QTest::addRow("%s, in a header", how) << stays << EmptyRead.left(3) << 0;
        QTest::addRow("%s, in a payload", how) << stays << QByteArray::fromHex("0205020A004142") << 0;
        QTest::addRow("%s, during a write", how) << stays << QByteArray() << 60000;
        QTest::addRow("%s, in a frame during a write", how) << stays << EmptyRead.left(4) << 60000;
    }
}

void TestSerialUnplug::goneAdapterIsToldAndReleasedAtOnce()
{
    QFETCH(bool, nodeStays);
    QFETCH(QByteArray, sentBefore);
    QFETCH(int, unsentAnswer);
    const CaughtLog log;
    PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    unit->openSerialPort(Name);
    adapter.send(sentBefore);
    QTest::qWait(20);
    if (unsentAnswer > 0) {
        unit->writeMessage({1, 1, static_cast<quint16>(unsentAnswer), QByteArray(unsentAnswer, 'a')});
        QTest::qWait(20);
        QVERIFY(unit.port().bytesToWrite() > 0);
    }
    QCOMPARE(unit.errors(), QStringList());

    nodeStays ? adapter.hangUpOnly() : adapter.unplug();
    QTRY_VERIFY_WITH_TIMEOUT(!adapter.isOpenedByUnit(), 200);
    const int told = unit.errors().size();
    QVERIFY2(told >= 1 && told <= MostErrors, qPrintable(QString::number(told)));
    QVERIFY(!unit.errors().contains(QString()));
    QTest::qWait(100);
    QCOMPARE(unit.errors().size(), told); // and then there is silence
    QCOMPARE(log.lines().size(), 1);
    QVERIFY2(log.lines().first().contains(QStringLiteral("ttyUSB5 no longer answers")),
             qPrintable(log.lines().first()));
    adapter.unplug();
}

void TestSerialUnplug::goneAdapterCountsAsOpenUntilItIsReported()
{
    const CaughtLog log;
    PseudoAdapter adapter(Node);
    const PseudoAdapter other("/dev/ttyUSB6");
    ObservedSerialAdaptor unit;
    unit->openSerialPort(Name);
    adapter.unplug();
    QTRY_VERIFY(!adapter.isOpenedByUnit());
    unit->openSerialPort(QStringLiteral("ttyUSB6"));
    QVERIFY(!other.isOpenedByUnit());
    unit->closeSerialPort();
    unit->openSerialPort(QStringLiteral("ttyUSB6"));
    QVERIFY(other.isOpenedByUnit());
}

void TestSerialUnplug::reportOfAGoneAdapterAddsNoError()
{
    const CaughtLog log;
    PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    unit->openSerialPort(Name);
    adapter.unplug();
    QTRY_VERIFY(!adapter.isOpenedByUnit());
    const int told = unit.errors().size();
    unit->closeSerialPort();
    QTest::qWait(20);
    QCOMPARE(unit.errors().size(), told);
}

void TestSerialUnplug::nodeThatGoesAloneLeavesTheLineInUse()
{
    const CaughtLog log;
    PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    unit->openSerialPort(Name);
    adapter.removeNodeOnly();
    QCOMPARE(adapter.exchange(EmptyRead), Ack);
    QVERIFY(adapter.isOpenedByUnit());
    unit->closeSerialPort(); // the watcher has noticed
    QVERIFY(!adapter.isOpenedByUnit());
    QCOMPARE(unit.errors(), QStringList());
    QCOMPARE(log.lines(), QStringList());
}

void TestSerialUnplug::frameBegunBeforeIsCompletedAfter()
{
    const CaughtLog log;
    PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    unit->openSerialPort(Name);
    adapter.send(QByteArray::fromHex("020702030041"));
    QTRY_COMPARE(unit.port().bytesAvailable(), 0);
    QTest::qWait(20);
    adapter.unplug();
    QTRY_VERIFY(!adapter.isOpenedByUnit());
    unit->closeSerialPort();
    QVERIFY(adapter.plug());
    unit->openSerialPort(Name);
    QCOMPARE(adapter.exchange(QByteArray::fromHex("424303") + EmptyRead, 2), Ack + Ack);
    QCOMPARE(unit.records().size(), size_t(2));
    QCOMPARE(unit.records().front().data, QByteArray("ABC"));
}

void TestSerialUnplug::whatArrivedBeforeTheHangUpIsActedUponOrNotAcknowledged()
{
    const CaughtLog log;
    for (int round = 0; round < 50; ++round) {
        PseudoAdapter adapter(Node);
        ObservedSerialAdaptor unit;
        unit->openSerialPort(Name);
        adapter.send(EmptyRead.repeated(100));
        if (round % 2 == 1) {
            QCoreApplication::processEvents();
        }
        adapter.unplug();
        QTRY_VERIFY(!adapter.isOpenedByUnit());
        QCOMPARE(quint64(unit.records().size()), unit->frameCounters().accepted);
        QVERIFY(round % 2 == 0 || !unit.records().empty());
    }
}

void TestSerialUnplug::unplugInsideAnActionIsSurvived()
{
    const CaughtLog log;
    PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    unit->openSerialPort(Name);
    unit.onRecord([&](const CommandMessage& record) {
        adapter.unplug();
        unit->writeMessage({record.cmdId, 1, 60000, QByteArray(60000, 'a')});
    });
    adapter.send(EmptyRead.repeated(3));
    QTRY_VERIFY(!unit.records().empty());
    QTRY_VERIFY(!adapter.isOpenedByUnit());
    QCOMPARE(quint64(unit.records().size()), unit->frameCounters().accepted);
    QVERIFY(!unit.errors().isEmpty());

    unit.onRecord(nullptr);
    unit.forget();
    unit->closeSerialPort();
    QVERIFY(adapter.plug());
    unit->openSerialPort(Name);
    QCOMPARE(adapter.exchange(EmptyRead), Ack); // nothing of the unsent answer comes before it
    QCOMPARE(unit.errors(), QStringList());
}

void TestSerialUnplug::lineThatIsDeadAlreadyCannotBeOpened()
{
    const CaughtLog log;
    PseudoAdapter adapter(Node);
    adapter.hangUpOnly();
    ObservedSerialAdaptor unit;
    unit->openSerialPort(Name);
    QVERIFY(!unit.port().isOpen());
    QVERIFY(!unit.errors().isEmpty());
}

void TestSerialUnplug::unplugWhileThePortIsBeingOpenedIsSurvived()
{
    const CaughtLog log;
    ObservedSerialAdaptor unit;
    const qint64 openTime = timeOfAnOpen(unit);
    const int rounds = 300;
    for (int round = 0; round < rounds; ++round) {
        PseudoAdapter adapter(Node);
        QVERIFY(adapter.isPlugged());
        // The line hangs up a little later in each round: before, within and after the open, as far as the
        // machine schedules the two threads side by side.
        std::atomic_bool opening = false;
        std::thread puller([&] {
            while (!opening) {
                std::this_thread::yield();
            }
            QElapsedTimer timer;
            timer.start();
            while (timer.nsecsElapsed() < openTime * round * 3 / 2 / rounds) {
                std::this_thread::yield();
            }
            adapter.hangUpOnly();
        });
        opening = true;
        unit->openSerialPort(Name);
        puller.join();
        QTRY_VERIFY(!adapter.isOpenedByUnit());
        QVERIFY(!unit.errors().isEmpty());
        unit->closeSerialPort();
        unit.forget();
    }
    PseudoAdapter adapter(Node);
    unit->openSerialPort(Name);
    QCOMPARE(adapter.exchange(EmptyRead), Ack);
}

void TestSerialUnplug::heldBackCommandsAreCarriedOutWhenTheLineGoes()
{
    const CaughtLog log;
    PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    unit->openSerialPort(Name);
    unit.onRecord([&](const CommandMessage& record) {
        unit->writeMessage({record.cmdId, 1, 60000, QByteArray(60000, 'a')});
    });
    const int asked = 20;
    QCOMPARE(adapter.send(EmptyRead.repeated(asked)), EmptyRead.size() * asked);
    QTRY_VERIFY(unit.port().bytesToWrite() >= SerialAdaptor::MaxUnsentBytes);
    QTest::qWait(50);
    QVERIFY(unit.records().size() < size_t(asked));
    adapter.unplug();
    QTRY_COMPARE(unit.records().size(), size_t(asked));
    QVERIFY(!adapter.isOpenedByUnit());
}

QTEST_GUILESS_MAIN(TestSerialUnplug)
#include "tst_serial_unplug.moc"
