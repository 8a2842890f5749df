// A PC and the unit differ in what the language leaves open: whether char has a sign, how wide size_t and
// time_t are, and in the order of bytes they might. None of it may be seen from outside.

#include "Isolation.h"
#include "ReferenceUnit.h"
#include "ZelPeer.h"

#include <QtTest>

#include <climits>
#include <ctime>
#include <memory>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;
using Mavril::VideoOverlay::ElementParam;

namespace {

char byteOf(int number)
{
    return static_cast<char>(static_cast<quint8>(number));
}

} // namespace

class TestMachineDifferences : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void positionsAboveSignedBytesStayPositive_data() { highBytes(); }
    void positionsAboveSignedBytesStayPositive();
    void countersAboveSignedBytesStayPositive_data() { highBytes(); }
    void countersAboveSignedBytesStayPositive();
    void textAboveSignedBytesIsTheSameOnTheOverlay();
    void payloadLengthHasNoSign_data();
    void payloadLengthHasNoSign();
    void lengthOfAnAnswerIsLittleEndian();
    void dateBeyondFourByteTimeReachesTheClock_data();
    void dateBeyondFourByteTimeReachesTheClock();

private:
    static void highBytes();

    std::unique_ptr<ReferenceUnit> m_unit;
    std::unique_ptr<ZelPeer> m_peer;
};

void TestMachineDifferences::initTestCase()
{
    if (!hasOwn("net") || !hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
    qInfo("char is %s; size_t has %d bytes, time_t %d", CHAR_MIN < 0 ? "signed" : "unsigned",
          int(sizeof(size_t)), int(sizeof(time_t)));
    QCoreApplication::setApplicationVersion(QString(500, QLatin1Char('7')));
    m_unit = std::make_unique<ReferenceUnit>();
    QVERIFY2(m_unit->profileLoaded, qPrintable(m_unit->error));
    m_peer = std::make_unique<ZelPeer>(m_unit->port);
    QVERIFY(m_peer->isConnected());
}

void TestMachineDifferences::highBytes()
{
    QTest::addColumn<int>("number");
    for (const int number : {0, 1, 0x7F, 0x80, 0x81, 0xC3, 0xFE, 0xFF}) {
        QTest::addRow("%02X", uint(number)) << number;
    }
}

void TestMachineDifferences::positionsAboveSignedBytesStayPositive()
{
    QFETCH(int, number);
    const int row = 0xFF - number;
    QByteArray position;
    position.append(byteOf(number)).append(byteOf(row));
    QCOMPARE(m_peer->exchange(frame(Protocol::Write, 0x32, position)), Ack);
    const auto* const element = m_unit->text(ElementParam::NAME_SECTION_DISTANCE_COUNTER);
    QVERIFY(element);
    QCOMPARE(element->column(), number);
    QCOMPARE(element->row(), row);
    const QByteArray state = m_peer->exchange(frame(Protocol::Read, 0x31), 1 + 6 + 4);
    QCOMPARE(state.mid(1 + 5 + 2, 2).toHex(), position.toHex());
}

void TestMachineDifferences::countersAboveSignedBytesStayPositive()
{
    QFETCH(int, number);
    QList<int> counter;
    const auto connection = connect(m_unit->runner.get(), &Runner::writeVideoCounter, this,
                                    [&](int hours, int minutes, int seconds) {
                                        counter = {hours, minutes, seconds};
                                    });
    QByteArray payload;
    payload.append(byteOf(number)).append(byteOf(0xFF - number)).append(byteOf(number));
    QCOMPARE(m_peer->exchange(frame(Protocol::Write, 0x70, payload)), Ack);
    disconnect(connection);
    QCOMPARE(counter, (QList<int>{number, 0xFF - number, number}));
}

void TestMachineDifferences::textAboveSignedBytesIsTheSameOnTheOverlay()
{
    QByteArray bytes;
    for (int byte = 0xA0; byte <= 0xFF; ++byte) {
        bytes.append(byteOf(byte));
    }
    QCOMPARE(m_peer->exchange(frame(Protocol::Write, 0x90, QByteArray(1, '\x01') + bytes)), Ack);
    const auto* const line = m_unit->text(QStringLiteral("1"));
    QVERIFY(line);
    QCOMPARE(line->text().size(), bytes.size());
    QCOMPARE(line->text().at(0xA4 - 0xA0), QChar(0x20AC)); // the euro sign of ISO-8859-15
    QCOMPARE(line->text().at(0xFF - 0xA0), QChar(0x00FF));
}

void TestMachineDifferences::payloadLengthHasNoSign_data()
{
    QTest::addColumn<int>("length");
    for (const int length : {0x7F, 0x80, 0xFF, 0x100, 0x7FFF, 0x8000, 0x80FF, 0xFF80, 0xFFFF}) {
        QTest::addRow("%04X", uint(length)) << length;
    }
}

void TestMachineDifferences::payloadLengthHasNoSign()
{
    QFETCH(int, length);
    // Only if exactly so many bytes were taken is the frame behind it one.
    const QByteArray received = m_peer->exchange(
        frame(Protocol::Write, 0x30, QByteArray(length, '\x41')) + frame(Protocol::Read, 0x01), 1 + 1 + 7);
    QCOMPARE(received.toHex(), (Ack + Ack + frame(Protocol::Read, 0x01, QByteArray(1, '\0'))).toHex());
}

void TestMachineDifferences::lengthOfAnAnswerIsLittleEndian()
{
    const QByteArray banner = "Tolvar QR740 ZEL-interface: V" + QByteArray(500, '7') + " - 20180828 - 12:00";
    QCOMPARE(banner.size(), 0x0224);
    const QByteArray expected =
        Ack + QByteArray::fromHex("02ff012402") + banner + QByteArray(1, byteOf(Protocol::Etx));
    QCOMPARE(m_peer->exchange(frame(Protocol::Read, 0xFF), expected.size()).toHex(), expected.toHex());
}

void TestMachineDifferences::dateBeyondFourByteTimeReachesTheClock_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QDate>("date");
    QTest::newRow("the last day of four bytes") << QByteArray::fromHex("13011426") << QDate(2038, 1, 19);
    QTest::newRow("the day after it") << QByteArray::fromHex("14011426") << QDate(2038, 1, 20);
    QTest::newRow("end of the century") << QByteArray::fromHex("1f0c1463") << QDate(2099, 12, 31);
    QTest::newRow("before the epoch") << QByteArray::fromHex("01011300") << QDate(1900, 1, 1);
}

void TestMachineDifferences::dateBeyondFourByteTimeReachesTheClock()
{
    QFETCH(QByteArray, payload);
    QFETCH(QDate, date);
    m_unit->clock.dateTimes.clear();
    QCOMPARE(m_peer->exchange(frame(Protocol::Write, 0x40, payload)), Ack);
    QCOMPARE(m_unit->clock.dateTimes.size(), 1);
    QCOMPARE(m_unit->clock.dateTimes.constFirst().date(), date);
    QVERIFY(m_unit->clock.dateTimes.constFirst().time().isValid());
}

QTEST_MAIN(TestMachineDifferences)
#include "tst_machine_differences.moc"
