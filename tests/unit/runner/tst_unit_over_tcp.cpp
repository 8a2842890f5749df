// The whole unit, seen from the controller's end of a TCP connection: bytes in; bytes out and the overlay.

#include "ReferenceUnit.h"
#include "ZelPeer.h"

#include <QtTest>

#include <functional>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;
using Mavril::VideoOverlay::ElementParam;

using Check = std::function<bool(ReferenceUnit&)>;
Q_DECLARE_METATYPE(Check)

namespace {

using U = ReferenceUnit;
using E = ElementParam;

bool isAt(U& unit, const QString& key, int column, int row)
{
    return unit.text(key)->column() == column && unit.text(key)->row() == row;
}

bool hasColours(U& unit, const QString& key, const QColor& text, const QColor& background)
{
    return unit.text(key)->textColor() == text && unit.text(key)->backgroundColor() == background;
}

QByteArray hex(const char* digits)
{
    return QByteArray::fromHex(digits);
}

} // namespace

class TestUnitOverTcp : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void writeReachesTheOverlay_data();
    void writeReachesTheOverlay();
    void executeReachesTheOverlay_data();
    void executeReachesTheOverlay();
    void readIsAnsweredBehindItsAcknowledgement_data();
    void readIsAnsweredBehindItsAcknowledgement();
    void dateAndTimeAreReadFromTheMachinesClock();
    void positionSensorThatIsMissingGivesNoAnswer();
    void missingReelAndCameraReadAsZero();
    void unknownCommandsAreAcknowledgedOnly_data();
    void unknownCommandsAreAcknowledgedOnly();
};

void TestUnitOverTcp::initTestCase()
{
    if (!hasOwn("net")) {
        QSKIP(NeedsOwnNetwork);
    }
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
}

void TestUnitOverTcp::writeReachesTheOverlay_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<Check>("shown");
    const auto row = [](const char* name, int id, const QByteArray& payload, Check shown) {
        QTest::newRow(name) << id << payload << shown;
    };
    const auto move = [&](const char* name, int id, const QString& key) {
        row(name, id, hex("0C0D"), [key](U& u) { return isAt(u, key, 12, 13); });
    };
    move("move section distance", 0x32, E::NAME_SECTION_DISTANCE_COUNTER);
    move("move SAT distance", 0x38, E::NAME_SAT_DISTANCE_COUNTER);
    move("move total distance", 0x3E, E::NAME_TOTAL_DISTANCE_COUNTER);
    move("move date", 0x42, E::NAME_DATE);
    move("move time", 0x52, E::NAME_TIME);
    move("move video counter", 0x72, E::NAME_VIDEO_TIME_COUNTER);
    move("move crawler temperature", 0xC0, E::NAME_CRAWLER_TEMPERATURE);
    move("move crawler pressure", 0xC2, E::NAME_CRAWLER_PRESSURE);
    move("move crawler roll", 0xC4, E::NAME_CRAWLER_ROLL);
    move("move cable speed", 0xC6, E::NAME_SPEED);
    move("move pan", 0xF0, E::NAME_CAMERA_PAN);
    move("move tilt", 0xF3, E::NAME_CAMERA_TILT);
    move("move camera temperature", 0xF6, E::NAME_CAMERA_TEMPERATURE);
    move("move camera pressure", 0xF9, E::NAME_CAMERA_PRESSURE);
    move("move external temperature", 0xFB, E::NAME_OBJECT_TEMPERATURE);
    move("move inclination", 0xFC, E::NAME_CRAWLER_PITCH);
    const auto colour = [&](const char* name, char element, const QString& key) {
        row(name, 0xE5, QByteArray(1, element) + hex("AF"),
            [key](U& u) { return hasColours(u, key, Qt::red, Qt::black); });
    };
    colour("colours of section distance", 0, E::NAME_SECTION_DISTANCE_COUNTER);
    colour("colours of SAT distance", 1, E::NAME_SAT_DISTANCE_COUNTER);
    colour("colours of time", 2, E::NAME_TIME);
    colour("colours of date", 3, E::NAME_DATE);
    colour("colours of pan", 10, E::NAME_CAMERA_PAN);
    colour("colours of tilt", 11, E::NAME_CAMERA_TILT);
    colour("colours of video counter", 12, E::NAME_VIDEO_TIME_COUNTER);
    colour("colours of camera temperature", 13, E::NAME_CAMERA_TEMPERATURE);
    colour("colours of inclination", 14, E::NAME_CRAWLER_PITCH);
    colour("colours of camera pressure", 15, E::NAME_CAMERA_PRESSURE);
    colour("colours of external temperature", 16, E::NAME_OBJECT_TEMPERATURE);
    colour("colours of crawler temperature", 17, E::NAME_CRAWLER_TEMPERATURE);
    colour("colours of crawler pressure", 18, E::NAME_CRAWLER_PRESSURE);
    colour("colours of crawler roll", 19, E::NAME_CRAWLER_ROLL);
    colour("colours of cable speed", 20, E::NAME_SPEED);
    colour("colours of total distance", 21, E::NAME_TOTAL_DISTANCE_COUNTER);
    row("status line text", 0x90, "\x02 new ",
        [](U& u) { return u.text(QStringLiteral("2"))->text() == QLatin1String(" new "); });
    row("status line colours", 0x99, hex("03AF"),
        [](U& u) { return hasColours(u, QStringLiteral("3"), Qt::red, Qt::black); });
    row("Fahrenheit", 0xF5, hex("01"),
        [](U& u) { return u.text(E::NAME_OBJECT_TEMPERATURE)->unit() == QStringLiteral("°F"); });
    row("free text", 0xD7, hex("001E00") + QByteArray("a\0b", 3), [](U& u) {
        const auto* const box = u.text(E::NAME_OSD_FREE_TEXT_BOX);
        return box->text() == QLatin1String("a\nb") && box->timeout() == 30 && box->enabled() &&
               box->visible();
    });
    row("line", 0x98, "\x05 line ", [](U& u) {
        return u.customTexts().size() == 1 && u.customTexts().first()->text() == QLatin1String("line") &&
               u.customTexts().first()->row() == 5 && u.customTexts().first()->enabled();
    });
    row("text at the cursor", 0x95, " text ", [](U& u) {
        return u.customTexts().size() == 1 && u.customTexts().first()->text() == QLatin1String(" text ");
    });
    row("clock's date", 0x40, hex("0F03141A"), [](U& u) {
        return u.clock.dateTimes.size() == 1 && u.clock.dateTimes.first().date() == QDate(2026, 3, 15);
    });
    row("clock's time", 0x50, hex("090500"), [](U& u) { return u.clock.times.value(0) == QTime(9, 5); });
}

void TestUnitOverTcp::writeReachesTheOverlay()
{
    QFETCH(int, id);
    QFETCH(QByteArray, payload);
    QFETCH(Check, shown);
    ReferenceUnit unit;
    QVERIFY2(unit.profileLoaded, qPrintable(unit.error));
    ZelPeer peer(unit.port);
    QVERIFY(peer.isConnected());
    QVERIFY(!shown(unit));
    QCOMPARE(peer.exchange(frame(Protocol::Write, id, payload)), Ack);
    QVERIFY(shown(unit));
}

void TestUnitOverTcp::executeReachesTheOverlay_data()
{
    QTest::addColumn<int>("on");
    QTest::addColumn<QString>("key");
    QTest::newRow("section distance") << 0x30 << E::NAME_SECTION_DISTANCE_COUNTER;
    QTest::newRow("SAT distance") << 0x36 << E::NAME_SAT_DISTANCE_COUNTER;
    QTest::newRow("total distance") << 0x39 << E::NAME_TOTAL_DISTANCE_COUNTER;
    QTest::newRow("date") << 0x40 << E::NAME_DATE;
    QTest::newRow("time") << 0x50 << E::NAME_TIME;
    QTest::newRow("video counter") << 0x70 << E::NAME_VIDEO_TIME_COUNTER;
    QTest::newRow("status line 1") << 0x90 << "1";
    QTest::newRow("status line 2") << 0x93 << "2";
    QTest::newRow("status line 3") << 0x96 << "3";
    QTest::newRow("status line 4") << 0x99 << "4";
    QTest::newRow("crawler temperature") << 0xB8 << E::NAME_CRAWLER_TEMPERATURE;
    QTest::newRow("crawler pressure") << 0xBB << E::NAME_CRAWLER_PRESSURE;
    QTest::newRow("cable speed") << 0xCC << E::NAME_SPEED;
    QTest::newRow("external temperature") << 0xDA << E::NAME_OBJECT_TEMPERATURE;
    QTest::newRow("crawler roll") << 0xDD << E::NAME_CRAWLER_ROLL;
    QTest::newRow("pan") << 0xF0 << E::NAME_CAMERA_PAN;
    QTest::newRow("tilt") << 0xF3 << E::NAME_CAMERA_TILT;
    QTest::newRow("camera temperature") << 0xF6 << E::NAME_CAMERA_TEMPERATURE;
    QTest::newRow("camera pressure") << 0xF9 << E::NAME_CAMERA_PRESSURE;
    QTest::newRow("inclination") << 0xFC << E::NAME_CRAWLER_PITCH;
}

void TestUnitOverTcp::executeReachesTheOverlay()
{
    QFETCH(int, on);
    QFETCH(QString, key);
    ReferenceUnit unit;
    QVERIFY2(unit.profileLoaded, qPrintable(unit.error));
    ZelPeer peer(unit.port);
    QVERIFY(peer.isConnected());
    const auto* const text = unit.text(key);
    QVERIFY(text->enabled());
    const auto others = [&] {
        int enabled = 0;
        for (const auto* const element : unit.manager.getElementList()) {
            enabled += element != text && element->enabled() ? 1 : 0;
        }
        return enabled;
    };
    QCOMPARE(others(), 19); // all but the free text box
    const auto execute = [&](int id) {
        return peer.exchange(frame(Protocol::Execute, id, "ignored"));
    };
    QCOMPARE(execute(on + 1), Ack);
    QVERIFY(!text->enabled());
    QVERIFY(text->visible()); // the host's own flag
    QCOMPARE(execute(on), Ack);
    QVERIFY(text->enabled());
    QCOMPARE(execute(on + 2), Ack);
    QVERIFY(!text->enabled());
    QCOMPARE(execute(on + 2), Ack);
    QVERIFY(text->enabled());
    QCOMPARE(others(), 19);
}

void TestUnitOverTcp::readIsAnsweredBehindItsAcknowledgement_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QByteArray>("answer");
    const QByteArray none;
    QTest::newRow("codec") << 0x01 << none << hex("00");
    QTest::newRow("section distance") << 0x30 << none << hex("3FC00000");
    QTest::newRow("SAT distance") << 0x36 << none << hex("C0000000");
    QTest::newRow("total distance") << 0x3B << none << hex("42C80000");
    QTest::newRow("total distance state") << 0x3C << none << hex("00010100");
    QTest::newRow("section distance state") << 0x31 << none << hex("00010101");
    QTest::newRow("cable speed state") << 0xC7 << none << hex("01010103");
    QTest::newRow("tilt state") << 0xF4 << none << hex("01010107");
    QTest::newRow("video counter") << 0x70 << none << hex("0A141E28");
    QTest::newRow("status line") << 0x90 << hex("03") << QByteArray("\x03line 3");
    QTest::newRow("status line that is none") << 0x90 << hex("05") << hex("05");
    QTest::newRow("status line that is no number") << 0x90 << hex("0A") << hex("00");
    QTest::newRow("status line state") << 0x92 << hex("02") << hex("0211010000");
    QTest::newRow("free line that is none") << 0x98 << hex("00") << hex("00");
    QTest::newRow("first laser") << 0xFD << hex("01") << hex("013FF0000000000000");
    QTest::newRow("second laser") << 0xFD << hex("02") << hex("024000000000000000");
    QTest::newRow("third laser") << 0xFD << hex("03") << hex("03");
    QTest::newRow("3D") << 0xD4 << none << hex("3FF80000000000004004000000000000C00C00000000000040900000");
    QTest::newRow("software") << 0xFF << none
                              << QByteArray("Tolvar QR740 ZEL-interface: V4.2 - 20180828 - 12:00");
}

void TestUnitOverTcp::readIsAnsweredBehindItsAcknowledgement()
{
    QFETCH(int, id);
    QFETCH(QByteArray, payload);
    QFETCH(QByteArray, answer);
    QCoreApplication::setApplicationVersion(QStringLiteral("4.2"));
    ReferenceUnit unit;
    QVERIFY2(unit.profileLoaded, qPrintable(unit.error));
    // Status lines with no colours of their own read as white on white, so the profile must not set any.
    unit.model().setStatusLine2ColorPair({QColor(), QColor()});
    unit.devices.reel.section = 1.5F;
    unit.devices.reel.sat = -2.0F;
    unit.devices.reel.total = 100.0F;
    unit.devices.camera.laserFirst = 100.0;
    unit.devices.camera.laserSecond = 200000.0;
    unit.devices.positionSensor.x = 1.5;
    unit.devices.positionSensor.y = 2.5;
    unit.devices.positionSensor.z = -3.5;
    unit.devices.positionSensor.turn = 4.5F;
    ZelPeer peer(unit.port);
    QVERIFY(peer.isConnected());
    QCOMPARE(peer.exchange(frame(Protocol::Read, id, payload), 7 + answer.size()).toHex(),
             (Ack + frame(Protocol::Read, id, answer)).toHex());
}

void TestUnitOverTcp::dateAndTimeAreReadFromTheMachinesClock()
{
    ReferenceUnit unit;
    ZelPeer peer(unit.port);
    QVERIFY(peer.isConnected());
    const auto dateNow = [] {
        const QDate date = QDate::currentDate();
        return QByteArray(1, char(date.day())) + char(date.month()) + char(0x14) + char(date.year() - 2000);
    };
    const QByteArray before = dateNow();
    const QByteArray answer = peer.exchange(frame(Protocol::Read, 0x40), 11);
    QVERIFY(answer == Ack + frame(Protocol::Read, 0x40, before) ||
            answer == Ack + frame(Protocol::Read, 0x40, dateNow())); // over midnight
    const QTime earliest = QTime::currentTime();
    const QByteArray time = peer.exchange(frame(Protocol::Read, 0x50), 11);
    const QTime latest = QTime::currentTime();
    QCOMPARE(time.left(6), Ack + hex("0250010400"));
    QCOMPARE(time.mid(9), hex("0003"));
    const QTime told(time.at(6), time.at(7), time.at(8));
    if (earliest <= latest) { // not over midnight
        QVERIFY(earliest.addMSecs(-earliest.msec()) <= told && told <= latest);
    }
}

void TestUnitOverTcp::positionSensorThatIsMissingGivesNoAnswer()
{
    ReferenceUnit unit;
    CTolvarLibrary::setCameraPositionSensor(nullptr);
    ZelPeer peer(unit.port);
    QVERIFY(peer.isConnected());
    QCOMPARE(peer.exchange(frame(Protocol::Read, 0xD4)), Ack);
}

void TestUnitOverTcp::missingReelAndCameraReadAsZero()
{
    ReferenceUnit unit;
    CTolvarLibrary::setReel(nullptr);
    CTolvarLibrary::setCamera(nullptr);
    ZelPeer peer(unit.port);
    QVERIFY(peer.isConnected());
    QCOMPARE(peer.exchange(frame(Protocol::Read, 0x30), 11),
             Ack + frame(Protocol::Read, 0x30, hex("00000000")));
    QCOMPARE(peer.exchange(frame(Protocol::Read, 0xFD, hex("01")), 16),
             Ack + frame(Protocol::Read, 0xFD, hex("010000000000000000")));
}

void TestUnitOverTcp::unknownCommandsAreAcknowledgedOnly_data()
{
    QTest::addColumn<int>("group");
    QTest::addColumn<QList<int>>("known");
    QTest::newRow("write") << 2 << QList<int>{0x01, 0x30, 0x32, 0x36, 0x38, 0x3C, 0x3E, 0x40, 0x42,
                                              0x50, 0x52, 0x62, 0x70, 0x72, 0x90, 0x92, 0x95, 0x98,
                                              0x99, 0xC0, 0xC2, 0xC4, 0xC6, 0xD4, 0xD5, 0xD7, 0xE5,
                                              0xF0, 0xF3, 0xF5, 0xF6, 0xF9, 0xFB, 0xFC, 0xFD};
    QTest::newRow("read") << 1 << QList<int>{0x01, 0x30, 0x31, 0x36, 0x37, 0x3B, 0x3C, 0x40, 0x41, 0x50,
                                             0x51, 0x70, 0x71, 0x90, 0x92, 0x98, 0xC0, 0xC1, 0xC2, 0xC3,
                                             0xC4, 0xC5, 0xC6, 0xC7, 0xD4, 0xF0, 0xF1, 0xF3, 0xF4, 0xF5,
                                             0xF6, 0xF7, 0xF8, 0xF9, 0xFA, 0xFB, 0xFC, 0xFD, 0xFF};
    QList<int> executed{0x80, 0x81, 0x88, 0xD4, 0xD5, 0xD6};
    for (const int on : {0x30, 0x36, 0x39, 0x40, 0x50, 0x70, 0x90, 0x93, 0x96, 0x99,
                         0xB8, 0xBB, 0xCC, 0xDA, 0xDD, 0xF0, 0xF3, 0xF6, 0xF9, 0xFC}) {
        executed << on << on + 1 << on + 2;
    }
    QTest::newRow("execute") << 0 << executed;
}

void TestUnitOverTcp::unknownCommandsAreAcknowledgedOnly()
{
    QFETCH(int, group);
    QFETCH(QList<int>, known);
    ReferenceUnit unit;
    QVERIFY2(unit.profileLoaded, qPrintable(unit.error));
    ZelPeer peer(unit.port);
    QVERIFY(peer.isConnected());
    QByteArray frames;
    QByteArray acks;
    for (int id = 1; id <= 0xFF; ++id) { // command 0 is not even acknowledged
        if (!known.contains(id)) {
            frames += frame(static_cast<Protocol::Group>(group), id, hex("0102030405060708"));
            acks += Ack;
        }
    }
    QCOMPARE(peer.exchange(frames, acks.size()), acks);
    QCOMPARE(peer.exchange(frame(static_cast<Protocol::Group>(group), 0) + frame(Protocol::Execute, 0x33)),
             Ack);
    for (int row = 0; row < 16; ++row) {
        QCOMPARE(unit.manager.getElementList().at(row)->row(), row);
        QVERIFY(unit.manager.getElementList().at(row)->enabled());
    }
    QCOMPARE(unit.customTexts().size(), 0);
}

QTEST_MAIN(TestUnitOverTcp)
#include "tst_unit_over_tcp.moc"
