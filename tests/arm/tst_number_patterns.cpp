// Singles and doubles go through the whole unit bit for bit, in both directions. A conversion on the way, or
// a processor that flushes small numbers to zero or quietens a NaN, would show here.

#include "Isolation.h"
#include "ReferenceUnit.h"
#include "ZelPeer.h"

#include <QtEndian>
#include <QtTest>

#include <cstring>
#include <limits>
#include <memory>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

static_assert(std::numeric_limits<float>::is_iec559 && sizeof(float) == 4,
              "singles go over the wire as they are");
static_assert(std::numeric_limits<double>::is_iec559 && sizeof(double) == 8, "and so do doubles");

namespace {

template <class Number, class Bits>
Number numberOf(Bits bits)
{
    static_assert(sizeof(Number) == sizeof(Bits));
    Number number;
    std::memcpy(&number, &bits, sizeof number);
    return number;
}

/// As on the wire: the most significant byte first, whatever the machine's order.
template <class Bits>
QByteArray wire(Bits bits)
{
    const Bits bigEndian = qToBigEndian(bits);
    return QByteArray(reinterpret_cast<const char*>(&bigEndian), sizeof bigEndian);
}

template <class Bits, class Number>
QByteArray wireOf(Number number)
{
    Bits bits;
    std::memcpy(&bits, &number, sizeof bits);
    return wire(bits);
}

QByteArray answer(int id, const QByteArray& payload)
{
    return Ack + frame(Protocol::Read, id, payload);
}

} // namespace

class TestNumberPatterns : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void singleReachesTheHost_data() { singles(); }
    void singleReachesTheHost();
    void orientationReachesTheHost_data() { singles(); }
    void orientationReachesTheHost();
    void singleOfADeviceIsAnswered_data() { singles(); }
    void singleOfADeviceIsAnswered();
    void singleThatADeviceReportedIsAnswered_data() { singles(); }
    void singleThatADeviceReportedIsAnswered();
    void doublesReachTheHost_data() { doubles(); }
    void doublesReachTheHost();
    void doublesOfADeviceAreAnswered_data() { doubles(); }
    void doublesOfADeviceAreAnswered();
    void placeInTheReadDoesNotMatter_data();
    void placeInTheReadDoesNotMatter();

private:
    static void singles();
    static void doubles();

    std::unique_ptr<ReferenceUnit> m_unit;
    std::unique_ptr<ZelPeer> m_peer;
};

void TestNumberPatterns::initTestCase()
{
    if (!hasOwn("net") || !hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
    m_unit = std::make_unique<ReferenceUnit>();
    QVERIFY2(m_unit->profileLoaded, qPrintable(m_unit->error));
    m_peer = std::make_unique<ZelPeer>(m_unit->port);
    QVERIFY(m_peer->isConnected());
}

void TestNumberPatterns::singles()
{
    QTest::addColumn<quint32>("bits");
    QTest::newRow("zero") << quint32{0x00000000};
    QTest::newRow("negative zero") << quint32{0x80000000};
    QTest::newRow("each byte differs") << quint32{0x41A2B3C4};
    QTest::newRow("smallest denormal") << quint32{0x00000001};
    QTest::newRow("largest denormal, negative") << quint32{0x807FFFFF};
    QTest::newRow("smallest normal") << quint32{0x00800000};
    QTest::newRow("largest") << quint32{0x7F7FFFFF};
    QTest::newRow("infinity") << quint32{0x7F800000};
    QTest::newRow("negative infinity") << quint32{0xFF800000};
    QTest::newRow("quiet NaN") << quint32{0x7FC00000};
    QTest::newRow("quiet NaN with a payload") << quint32{0xFFC12345};
    QTest::newRow("signalling NaN") << quint32{0x7F800001};
    QTest::newRow("signalling NaN with a payload") << quint32{0xFFA54321};
}

void TestNumberPatterns::doubles()
{
    QTest::addColumn<quint64>("bits");
    QTest::newRow("zero") << quint64{0x0000000000000000};
    QTest::newRow("negative zero") << quint64{0x8000000000000000};
    QTest::newRow("each byte differs") << quint64{0x4011223344556677};
    QTest::newRow("smallest denormal") << quint64{0x0000000000000001};
    QTest::newRow("largest denormal, negative") << quint64{0x800FFFFFFFFFFFFF};
    QTest::newRow("smallest normal") << quint64{0x0010000000000000};
    QTest::newRow("largest") << quint64{0x7FEFFFFFFFFFFFFF};
    QTest::newRow("infinity") << quint64{0x7FF0000000000000};
    QTest::newRow("negative infinity") << quint64{0xFFF0000000000000};
    QTest::newRow("quiet NaN") << quint64{0x7FF8000000000000};
    QTest::newRow("quiet NaN with a payload") << quint64{0xFFF8123456789ABC};
    QTest::newRow("signalling NaN") << quint64{0x7FF0000000000001};
    QTest::newRow("signalling NaN with a payload") << quint64{0xFFF4CBA987654321};
}

void TestNumberPatterns::singleReachesTheHost()
{
    QFETCH(quint32, bits);
    QByteArray received;
    const auto connection = connect(m_unit->runner.get(), &Runner::setDistanceCounterSection, this,
                                    [&](float value) { received = wireOf<quint32>(value); });
    QCOMPARE(m_peer->exchange(frame(Protocol::Write, 0x30, wire(bits))), Ack);
    disconnect(connection);
    QCOMPARE(received.toHex(), wire(bits).toHex());
}

void TestNumberPatterns::orientationReachesTheHost()
{
    QFETCH(quint32, bits);
    const quint32 other = bits ^ 0x00010203;
    QByteArray received;
    const auto connection =
        connect(m_unit->runner.get(), &Runner::writeMeasurement3DOrientation, this,
                [&](float xy, float z) { received = wireOf<quint32>(xy) + wireOf<quint32>(z); });
    QCOMPARE(m_peer->exchange(frame(Protocol::Write, 0xD5, wire(bits) + wire(other))), Ack);
    disconnect(connection);
    QCOMPARE(received.toHex(), (wire(bits) + wire(other)).toHex());
}

void TestNumberPatterns::singleOfADeviceIsAnswered()
{
    QFETCH(quint32, bits);
    m_unit->devices.reel.section = numberOf<float>(bits);
    const QByteArray expected = answer(0x30, wire(bits));
    QCOMPARE(m_peer->exchange(frame(Protocol::Read, 0x30), expected.size()).toHex(), expected.toHex());
}

void TestNumberPatterns::singleThatADeviceReportedIsAnswered()
{
    QFETCH(quint32, bits);
    // Zero of either sign is no news after zero; so something else comes first.
    emit m_unit->devices.crawler.crawlerRollChanged(1.0F);
    emit m_unit->devices.crawler.crawlerRollChanged(numberOf<float>(bits));
    const QByteArray expected = answer(0xC4, wire(bits));
    QCOMPARE(m_peer->exchange(frame(Protocol::Read, 0xC4), expected.size()).toHex(), expected.toHex());
}

void TestNumberPatterns::doublesReachTheHost()
{
    QFETCH(quint64, bits);
    const QByteArray payload = wire(bits) + wire(bits ^ 0x0001) + wire(bits ^ 0x00010203);
    QByteArray received;
    const auto connection = connect(
        m_unit->runner.get(), &Runner::writeMeasurement3DPosition, this, [&](double x, double y, double z) {
            received = wireOf<quint64>(x) + wireOf<quint64>(y) + wireOf<quint64>(z);
        });
    QCOMPARE(m_peer->exchange(frame(Protocol::Write, 0xD4, payload)), Ack);
    disconnect(connection);
    QCOMPARE(received.toHex(), payload.toHex());
}

void TestNumberPatterns::doublesOfADeviceAreAnswered()
{
    QFETCH(quint64, bits);
    m_unit->devices.positionSensor.x = numberOf<double>(bits);
    m_unit->devices.positionSensor.y = numberOf<double>(bits ^ 0x0001);
    m_unit->devices.positionSensor.z = numberOf<double>(bits ^ 0x00010203);
    m_unit->devices.positionSensor.turn = numberOf<float>(quint32{0x3F9DF3B6});
    const QByteArray expected =
        answer(0xD4, wire(bits) + wire(bits ^ 0x0001) + wire(bits ^ 0x00010203) + wire(quint32{0x3F9DF3B6}));
    QCOMPARE(m_peer->exchange(frame(Protocol::Read, 0xD4), expected.size()).toHex(), expected.toHex());
}

void TestNumberPatterns::placeInTheReadDoesNotMatter_data()
{
    QTest::addColumn<int>("bytesBefore");
    for (int count = 0; count < 8; ++count) {
        QTest::addRow("%d bytes before the frame", count) << count;
    }
}

/// The processor traps when it loads a double from an odd place; the decoder may leave a payload at any.
void TestNumberPatterns::placeInTheReadDoesNotMatter()
{
    QFETCH(int, bytesBefore);
    const QByteArray payload = wire(quint64{0x4011223344556677}) + wire(quint64{0xC0AABBCCDDEEFF00}) +
                               wire(quint64{0x3FF0000000000001});
    QByteArray received;
    const auto connection = connect(
        m_unit->runner.get(), &Runner::writeMeasurement3DPosition, this, [&](double x, double y, double z) {
            received = wireOf<quint64>(x) + wireOf<quint64>(y) + wireOf<quint64>(z);
        });
    QCOMPARE(m_peer->exchange(QByteArray(bytesBefore, '\0') + frame(Protocol::Write, 0xD4, payload)), Ack);
    disconnect(connection);
    QCOMPARE(received.toHex(), payload.toHex());
}

QTEST_MAIN(TestNumberPatterns)
#include "tst_number_patterns.moc"
