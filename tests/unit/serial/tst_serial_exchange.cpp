// An adapter takes another's place between two looks. The watcher reports nothing, deliberately, so the unit
// stays silent until no adapter has been there at a look; what happened is in the log.

#include "CaughtLog.h"
#include "Isolation.h"
#include "ObservedSerialAdaptor.h"
#include "PseudoAdapter.h"

#include <QtTest>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

constexpr const char* Usb0 = "/dev/ttyUSB0";
constexpr const char* Usb1 = "/dev/ttyUSB1";
const QByteArray Ack(1, '\x06');
const QByteArray EmptyRead = QByteArray::fromHex("020501000003");
constexpr int LongerThanALookMs = 1300;

QString hungUp(const char* node)
{
    return QStringLiteral("%1 no longer answers; closed until the adapter has been away and come back")
        .arg(QLatin1String(node + 5));
}

QString exchanged(const char* node, const char* by)
{
    return QStringLiteral(
               "the adapter at %1 has gone and %2 is in its place; it is not taken up until no adapter "
               "has been there for 1000 ms")
        .arg(QLatin1String(node), QLatin1String(by + 5));
}

} // namespace

class TestSerialExchange : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void exchangedAdapterIsLoggedAndNotTakenUp_data();
    void exchangedAdapterIsLoggedAndNotTakenUp();
    void exchangedNodeLeavesALineThatStaysInUse();
};

void TestSerialExchange::initTestCase()
{
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
}

void TestSerialExchange::exchangedAdapterIsLoggedAndNotTakenUp_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::newRow("another at the same node") << QByteArray(Usb1) << QByteArray(Usb1);
    QTest::newRow("ttyUSB1 for ttyUSB0") << QByteArray(Usb1) << QByteArray(Usb0);
    QTest::newRow("ttyUSB0 for ttyUSB1") << QByteArray(Usb0) << QByteArray(Usb1);
}

void TestSerialExchange::exchangedAdapterIsLoggedAndNotTakenUp()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    const CaughtLog log;
    PseudoAdapter old(before.constData());
    ObservedSerialAdaptor unit;
    QTRY_VERIFY(old.isOpenedByUnit()); // a look has just been; the next is a second away

    old.removeNodeOnly();
    PseudoAdapter other(after.constData()); // before the old line goes, so that it is a device of its own
    QVERIFY(other.isPlugged());
    old.hangUpOnly();
    QTRY_COMPARE_WITH_TIMEOUT(log.lines(), QStringList{hungUp(before.constData())}, 300);
    QVERIFY(!unit.errors().isEmpty());
    const int told = unit.errors().size();

    const QStringList both{hungUp(before.constData()), exchanged(before.constData(), after.constData())};
    QTRY_COMPARE_WITH_TIMEOUT(log.lines(), both, LongerThanALookMs);
    QTest::qWait(LongerThanALookMs);
    QCOMPARE(log.lines(), both); // once, not at every look
    QVERIFY(!other.isOpenedByUnit());
    QCOMPARE(unit.errors().size(), told);

    other.unplug();
    QTest::qWait(LongerThanALookMs);
    QVERIFY(other.plug());
    QTRY_VERIFY(other.isOpenedByUnit());
    QCOMPARE(other.exchange(EmptyRead), Ack);
    QCOMPARE(log.lines(), both);
}

void TestSerialExchange::exchangedNodeLeavesALineThatStaysInUse()
{
    const CaughtLog log;
    PseudoAdapter old(Usb1);
    ObservedSerialAdaptor unit;
    QTRY_VERIFY(old.isOpenedByUnit());
    old.removeNodeOnly();
    const PseudoAdapter other(Usb0);
    QTRY_COMPARE_WITH_TIMEOUT(log.lines(), QStringList{exchanged(Usb1, Usb0)}, LongerThanALookMs);
    QCOMPARE(old.exchange(EmptyRead), Ack);
    QVERIFY(!other.isOpenedByUnit());
    QCOMPARE(unit.errors(), QStringList());
}

QTEST_GUILESS_MAIN(TestSerialExchange)
#include "tst_serial_exchange.moc"
