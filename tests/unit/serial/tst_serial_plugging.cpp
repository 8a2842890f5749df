// The adaptor follows its watcher: adapters come and go at the real nodes, looks come once a second.

#include "Isolation.h"
#include "ObservedSerialAdaptor.h"
#include "ProcessFigures.h"
#include "PseudoAdapter.h"

#include <Tolvar/Varundo/FrameCodec.h>

#include <QElapsedTimer>
#include <QThread>
#include <QtTest>

#include <array>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

constexpr const char* Usb0 = "/dev/ttyUSB0";
constexpr const char* Usb1 = "/dev/ttyUSB1";
const QByteArray Ack(1, '\x06');
const QByteArray EmptyRead = QByteArray::fromHex("020501000003");

// Longer than the time between two looks: what has not happened by then was not reported.
constexpr int LongerThanALookMs = 1300;

} // namespace

class TestSerialPlugging : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void adapterPresentAtStartIsOpenedAfterOneInterval();
    void usb0AloneIsOpened();
    void usb1IsOpenedWhenBothAreThere();
    void usb1AddedToUsb0LeavesUsb0InUse();
    void usb2AloneIsNeverOpened();
    void reportsWaitForTheHostsEventLoop();
    void everythingIsToldInTheHostsThread();
    void adapterThatComesAndGoesIsFollowed();
};

void TestSerialPlugging::initTestCase()
{
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
}

void TestSerialPlugging::adapterPresentAtStartIsOpenedAfterOneInterval()
{
    PseudoAdapter adapter(Usb1);
    QVERIFY(adapter.isPlugged());
    QElapsedTimer sinceStart;
    sinceStart.start();
    ObservedSerialAdaptor unit;
    QTRY_VERIFY(adapter.isOpenedByUnit());
    QVERIFY2(sinceStart.elapsed() >= 900, qPrintable(QString::number(sinceStart.elapsed())));
    QCOMPARE(adapter.exchange(EmptyRead), Ack);
    QCOMPARE(unit.records().size(), size_t(1));
    QCOMPARE(unit.errors(), QStringList());
}

void TestSerialPlugging::usb0AloneIsOpened()
{
    PseudoAdapter adapter(Usb0);
    ObservedSerialAdaptor unit;
    QTRY_VERIFY(adapter.isOpenedByUnit());
    QCOMPARE(unit.port().portName(), QStringLiteral("ttyUSB0"));
    QCOMPARE(adapter.exchange(EmptyRead), Ack);
}

void TestSerialPlugging::usb1IsOpenedWhenBothAreThere()
{
    PseudoAdapter first(Usb0);
    PseudoAdapter second(Usb1);
    ObservedSerialAdaptor unit;
    QTRY_VERIFY(second.isOpenedByUnit());
    QVERIFY(!first.isOpenedByUnit());
    QCOMPARE(second.exchange(EmptyRead), Ack);
}

void TestSerialPlugging::usb1AddedToUsb0LeavesUsb0InUse()
{
    PseudoAdapter first(Usb0);
    ObservedSerialAdaptor unit;
    QTRY_VERIFY(first.isOpenedByUnit());
    PseudoAdapter second(Usb1);
    QTest::qWait(LongerThanALookMs);
    QVERIFY(!second.isOpenedByUnit());
    QCOMPARE(first.exchange(EmptyRead), Ack);

    // Both go: one disconnection, and the next that comes is opened.
    first.unplug();
    second.unplug();
    QTest::qWait(LongerThanALookMs);
    QVERIFY(second.plug());
    QTRY_VERIFY(second.isOpenedByUnit());
    QCOMPARE(second.exchange(EmptyRead), Ack);
}

void TestSerialPlugging::usb2AloneIsNeverOpened()
{
    const PseudoAdapter stranger("/dev/ttyUSB2");
    QVERIFY(stranger.isPlugged());
    ObservedSerialAdaptor unit;
    QTest::qWait(2 * LongerThanALookMs);
    QVERIFY(!stranger.isOpenedByUnit());
    QCOMPARE(unit.errors(), QStringList());
}

void TestSerialPlugging::reportsWaitForTheHostsEventLoop()
{
    QTRY_COMPARE(watcherThreadCount(), 0); // the kernel lists a thread for a moment after its end
    PseudoAdapter adapter(Usb1);
    ObservedSerialAdaptor unit;
    QTest::qSleep(LongerThanALookMs); // the watcher looks and reports meanwhile, in its own thread
    QCOMPARE(watcherThreadCount(), 1);
    QVERIFY(!adapter.isOpenedByUnit());
    QCoreApplication::processEvents();
    QVERIFY(adapter.isOpenedByUnit());

    adapter.removeNodeOnly();
    QTest::qSleep(LongerThanALookMs);
    QVERIFY(adapter.isOpenedByUnit());
    QCoreApplication::processEvents();
    QVERIFY(!adapter.isOpenedByUnit());
}

void TestSerialPlugging::everythingIsToldInTheHostsThread()
{
    PseudoAdapter adapter(Usb1);
    SerialAdaptor adaptor(QStringLiteral("/dev/ttyUSB1"));
    int told = 0;
    bool elsewhere = false;
    const auto note = [&] {
        ++told;
        elsewhere = elsewhere || QThread::currentThread() != QCoreApplication::instance()->thread();
    };
    connect(&adaptor, &SerialAdaptor::receivedValidMessage, &adaptor, note, Qt::DirectConnection);
    connect(&adaptor, &SerialAdaptor::printableCharReceived, &adaptor, note, Qt::DirectConnection);
    connect(&adaptor, &SerialAdaptor::serialPortError, &adaptor, note, Qt::DirectConnection);
    QTRY_VERIFY(adapter.isOpenedByUnit());
    QCOMPARE(adapter.exchange("x" + EmptyRead), Ack);
    QCOMPARE(told, 2);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("no longer answers")));
    adapter.unplug();
    QTRY_VERIFY(told > 2);
    QTRY_VERIFY(!adapter.isOpenedByUnit());
    QVERIFY(!elsewhere);
}

void TestSerialPlugging::adapterThatComesAndGoesIsFollowed()
{
    ObservedSerialAdaptor unit;
    const std::array<const char*, 3> nodes{Usb1, Usb0, Usb1};
    size_t frames = 0;
    for (const char* const node : nodes) {
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("no longer answers")));
        PseudoAdapter adapter(node);
        QTRY_VERIFY(adapter.isOpenedByUnit());
        QCOMPARE(adapter.exchange(EmptyRead.repeated(10), 10), Ack.repeated(10));
        frames += 10;
        QCOMPARE(unit.records().size(), frames);
        adapter.unplug();
        QTRY_VERIFY(!adapter.isOpenedByUnit());
        QTest::qWait(LongerThanALookMs); // until the watcher has missed it
    }
}

QTEST_GUILESS_MAIN(TestSerialPlugging)
#include "tst_serial_plugging.moc"
