// Whole exchanges of a controller with the unit over TCP: several frames, typed characters, codecs, profiles.

#include "ReferenceUnit.h"
#include "ZelPeer.h"

#include <QtEndian>
#include <QtTest>

#include <cstring>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;
using E = Mavril::VideoOverlay::ElementParam;

namespace {

bool isAt(ReferenceUnit& unit, const QString& key, int column, int row)
{
    return unit.text(key)->column() == column && unit.text(key)->row() == row;
}

QByteArray hex(const char* digits)
{
    return QByteArray::fromHex(digits);
}

} // namespace

class TestUnitSessions : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void framesOfOneReadAreDoneInOrder();
    void frameInSingleBytesIsDoneOnce();
    void brokenFrameIsRejectedAndChangesNothing();
    void charactersBetweenFramesAreTyped();
    void codecHoldsForTextsBothWays();
    void largestTextIsWrittenAndReadBack();
    void deviceReadingIsReadBack();
    void blankLineGoesByItself();
    void newProfileTakesOverAndIsDriven();
};

void TestUnitSessions::initTestCase()
{
    if (!hasOwn("net")) {
        QSKIP(NeedsOwnNetwork);
    }
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
}

void TestUnitSessions::framesOfOneReadAreDoneInOrder()
{
    ReferenceUnit unit;
    ZelPeer peer(unit.port);
    QVERIFY(peer.isConnected());
    const QByteArray state = frame(Protocol::Read, 0x31);
    QCOMPARE(peer.exchange(state + frame(Protocol::Write, 0x32, hex("0C0D")) + state +
                               frame(Protocol::Execute, 0x31) + state,
                           5 + 30),
             Ack + frame(Protocol::Read, 0x31, hex("00010101")) + Ack + Ack +
                 frame(Protocol::Read, 0x31, hex("00010C0D")) + Ack + Ack +
                 frame(Protocol::Read, 0x31, hex("00000C0D")));
}

void TestUnitSessions::frameInSingleBytesIsDoneOnce()
{
    ReferenceUnit unit;
    ZelPeer peer(unit.port);
    QVERIFY(peer.isConnected());
    peer.socket().setSocketOption(QAbstractSocket::LowDelayOption, 1);
    const QByteArray bytes = frame(Protocol::Write, 0x98, "\x05line");
    for (int i = 0; i < bytes.size() - 1; ++i) {
        peer.send(bytes.mid(i, 1));
        QTest::qWait(1);
        QCOMPARE(peer.socket().readAll(), QByteArray());
    }
    QCOMPARE(peer.exchange(bytes.right(1)), Ack);
    QCOMPARE(unit.customTexts().size(), 1);
}

void TestUnitSessions::brokenFrameIsRejectedAndChangesNothing()
{
    ReferenceUnit unit;
    ZelPeer peer(unit.port);
    QVERIFY(peer.isConnected());
    QCOMPARE(peer.exchange(hex("02320202000C0D04")), Nack);
    QVERIFY(isAt(unit, E::NAME_SECTION_DISTANCE_COUNTER, 1, 1));
    QCOMPARE(peer.exchange(hex("03")), Ack); // the end byte that was missing
    QVERIFY(isAt(unit, E::NAME_SECTION_DISTANCE_COUNTER, 12, 13));
}

void TestUnitSessions::charactersBetweenFramesAreTyped()
{
    ReferenceUnit unit;
    ZelPeer peer(unit.port);
    QVERIFY(peer.isConnected());
    const auto cursor = [](const char* position) {
        return frame(Protocol::Write, 0x62, hex(position));
    };
    QCOMPARE(peer.exchange(cursor("0304") + "xy\r\nz" + cursor("0101") + "\xE9" + cursor("0304") + "q", 3),
             Ack + Ack + Ack);
    QCOMPARE(unit.customTexts().size(), 2);
    QCOMPARE(unit.customTexts().at(0)->text(), QStringLiteral("q"));
    QCOMPARE(unit.customTexts().at(0)->column(), 3);
    QCOMPARE(unit.customTexts().at(0)->row(), 4);
    QCOMPARE(unit.customTexts().at(1)->text(), QString(QChar(0xE9)));
    QCOMPARE(peer.exchange(frame(Protocol::Execute, 0x88)), Ack);
    QCOMPARE(unit.customTexts().size(), 0);
}

void TestUnitSessions::codecHoldsForTextsBothWays()
{
    ReferenceUnit unit;
    ZelPeer peer(unit.port);
    QVERIFY(peer.isConnected());
    const QString euro = QString(QChar(0x20AC));
    const auto speak = [&](const char* codec, const QByteArray& text) {
        const QByteArray answer = frame(Protocol::Read, 0x90, hex("01") + text);
        return peer.exchange(frame(Protocol::Write, 0x01, hex(codec)) +
                                 frame(Protocol::Write, 0x90, hex("01") + text) +
                                 frame(Protocol::Read, 0x90, hex("01")),
                             3 + answer.size()) == Ack + Ack + Ack + answer &&
               unit.text(QStringLiteral("1"))->text() == euro;
    };
    QVERIFY(speak("00", hex("A4")));
    QVERIFY(speak("01", hex("E282AC")));
    const QByteArray utf16 =
        QSysInfo::ByteOrder == QSysInfo::LittleEndian ? hex("FFFEAC20") : hex("FEFF20AC");
    QVERIFY(speak("02", utf16));
    QVERIFY(speak("07", hex("A4"))); // unknown: like 0
}

void TestUnitSessions::largestTextIsWrittenAndReadBack()
{
    ReferenceUnit unit;
    ZelPeer peer(unit.port);
    QVERIFY(peer.isConnected());
    const QByteArray text = QByteArray(65534, 'm');
    QCOMPARE(peer.exchange(frame(Protocol::Write, 0x90, hex("04") + text)), Ack);
    QCOMPARE(unit.text(QStringLiteral("4"))->text().size(), 65534);
    QVERIFY(peer.exchange(frame(Protocol::Read, 0x90, hex("04")), 1 + 6 + 65535) ==
            Ack + frame(Protocol::Read, 0x90, hex("04") + text));
}

void TestUnitSessions::deviceReadingIsReadBack()
{
    ReferenceUnit unit;
    ZelPeer peer(unit.port);
    QVERIFY(peer.isConnected());
    emit unit.devices.camera.tiltPositionChanged(-90);
    emit unit.devices.reel.calculatedReelSpeedChanged(1.5F);
    unit.devices.crawler.pitch = 45.0F;
    emit unit.devices.crawler.crawlerPitchChanged();
    QCOMPARE(peer.exchange(frame(Protocol::Read, 0xF3), 11),
             Ack + frame(Protocol::Read, 0xF3, hex("C2B40000")));
    QCOMPARE(peer.exchange(frame(Protocol::Read, 0xC6), 11),
             Ack + frame(Protocol::Read, 0xC6, hex("3FC00000")));
    // The inclination is answered as a gradient in percent until its format is set.
    const QByteArray gradient = peer.exchange(frame(Protocol::Read, 0xFB), 11);
    QCOMPARE(gradient.size(), 11);
    const auto bits = qFromBigEndian<quint32>(gradient.constData() + 6);
    float percent = 0.0F;
    memcpy(&percent, &bits, sizeof percent);
    QVERIFY2(qAbs(percent - 100.0F) < 0.001F, qPrintable(QString::number(double(percent))));
    QCOMPARE(peer.exchange(frame(Protocol::Write, 0xFD, hex("01")) + frame(Protocol::Read, 0xFB), 12),
             Ack + Ack + frame(Protocol::Read, 0xFB, hex("42340000")));
}

void TestUnitSessions::blankLineGoesByItself()
{
    ReferenceUnit unit;
    ZelPeer peer(unit.port);
    QVERIFY(peer.isConnected());
    QCOMPARE(
        peer.exchange(frame(Protocol::Write, 0x98, "\x05   ") + frame(Protocol::Write, 0x98, "\x06line"), 2),
        Ack + Ack);
    QTRY_COMPARE(unit.customTexts().size(), 1);
    QCOMPARE(unit.customTexts().first()->text(), QStringLiteral("line"));
}

void TestUnitSessions::newProfileTakesOverAndIsDriven()
{
    ReferenceUnit unit;
    ZelPeer peer(unit.port);
    QVERIFY(peer.isConnected());
    QCOMPARE(peer.exchange(frame(Protocol::Write, 0x32, hex("0C0D")) + frame(Protocol::Write, 0x95, "text") +
                               frame(Protocol::Write, 0x01, hex("01")),
                           3),
             Ack + Ack + Ack);
    QVERIFY2(unit.loadProfile(), qPrintable(unit.error));
    QCOMPARE(unit.customTexts().size(), 0); // the profile's removal took the controller's texts along
    QCOMPARE(peer.exchange(frame(Protocol::Read, 0x31), 11),
             Ack + frame(Protocol::Read, 0x31, hex("00010101"))); // as the new element stands
    QCOMPARE(unit.model().textCodec(), DataManager::Latin9);
    QCOMPARE(peer.exchange(frame(Protocol::Write, 0x32, hex("0E0F"))), Ack);
    QVERIFY(isAt(unit, E::NAME_SECTION_DISTANCE_COUNTER, 14, 15));
    QCOMPARE(peer.exchange("z" + frame(Protocol::Execute, 0x33)), Ack);
    QCOMPARE(unit.customTexts().size(), 1);
    QCOMPARE(unit.customTexts().first()->text(), QStringLiteral("z"));
}

QTEST_MAIN(TestUnitSessions)
#include "tst_unit_sessions.moc"
