#include "FakeDevices.h"
#include "ReadBench.h"
#include "SettableClock.h"

#include <QtTest>

#include <cstring>
#include <ctime>
#include <limits>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

/// A camera that does not know its calibration, or only the first value of it.
class UncalibratedCamera : public ITolvarCamera
{
public:
    explicit UncalibratedCamera(bool knowsFirst)
        : m_knowsFirst(knowsFirst)
    {}
    void laserCalibration(double& first, double& /*second*/) const override
    {
        if (m_knowsFirst) {
            first = 250.0;
        }
    }

private:
    bool m_knowsFirst;
};

int warnings = 0;

void countWarnings(QtMsgType type, const QMessageLogContext&, const QString&)
{
    if (type == QtWarningMsg || type == QtCriticalMsg) {
        ++warnings;
    }
}

/// Counts what is warned of while it lives.
class WarningCount
{
public:
    WarningCount()
        : m_previous(qInstallMessageHandler(countWarnings))
    {
        warnings = 0;
    }
    ~WarningCount() { qInstallMessageHandler(m_previous); }
    WarningCount(const WarningCount&) = delete;
    WarningCount& operator=(const WarningCount&) = delete;

    [[nodiscard]] int value() const { return warnings; }

private:
    QtMessageHandler m_previous;
};

} // namespace

/// Answers from the unit's devices and from its clock.
class ReadCommandResponderDevicesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void missingDeviceIsWarnedOfOnce(); // before any other test misses one: once means once in a program
    void meterCountersAreTheReelsDistances();
    void meterCounterIsSentBitForBit();
    void meterCountersDoNotReadTheModel();
    void missingReelReadsAsZero_data();
    void missingReelReadsAsZero();
    void laserCalibrationIsScaledByIndex();
    void anyOtherLaserIndexIsAnsweredAlone();
    void uncalibratedLaserReadsAsZero();
    void missingCameraReadsAsZero();
    void position3DIsThreeDoublesAndASingle();
    void position3DIsSentBitForBit();
    void missingPositionSensorIsNotAnswered();
    void dateIsDayMonthCenturyYear_data();
    void dateIsDayMonthCenturyYear();
    void dateIsTheUnitsOwn();
    void timeIsHourMinuteSecondZero_data();
    void timeIsHourMinuteSecondZero();
    void timeIsTheUnitsOwn();
};

void ReadCommandResponderDevicesTest::initTestCase()
{
    qputenv("TZ", "UTC");
    tzset();
}

void ReadCommandResponderDevicesTest::missingDeviceIsWarnedOfOnce()
{
    const WarningCount count;
    ReadBench bench;
    for (int i = 0; i < 3; ++i) {
        for (const int cmdId : {0x30, 0x36, 0x3B}) {
            QCOMPARE(bench.answersTo(cmdId).size(), 1);
        }
    }
    QCOMPARE(count.value(), 1);
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(bench.answersTo(0xFD, QByteArray("\x01")).size(), 1);
    }
    QCOMPARE(count.value(), 2);
}

void ReadCommandResponderDevicesTest::meterCountersAreTheReelsDistances()
{
    FakeDevices devices;
    devices.reel.section = 1.0F;
    devices.reel.sat = -2.5F;
    devices.reel.total = 1234.5F;
    ReadBench bench;
    QCOMPARE(bench.answersOf(&Responder::onReadMeterCounter1Value), answerHex(0x30, "3f800000"));
    QCOMPARE(bench.answersOf(&Responder::onReadMeterCounter2Value), answerHex(0x36, "c0200000"));
    QCOMPARE(bench.answersOf(&Responder::onReadMeterCounter3Value), answerHex(0x3B, "449a5000"));
    devices.reel.section = 2.0F; // asked again each time
    QCOMPARE(bench.answersOf(&Responder::onReadMeterCounter1Value), answerHex(0x30, "40000000"));
}

void ReadCommandResponderDevicesTest::meterCounterIsSentBitForBit()
{
    FakeDevices devices;
    ReadBench bench;
    devices.reel.section = std::numeric_limits<float>::infinity();
    devices.reel.sat = -0.0F;
    devices.reel.total = std::numeric_limits<float>::denorm_min();
    QCOMPARE(bench.answersOf(&Responder::onReadMeterCounter1Value), answerHex(0x30, "7f800000"));
    QCOMPARE(bench.answersOf(&Responder::onReadMeterCounter2Value), answerHex(0x36, "80000000"));
    QCOMPARE(bench.answersOf(&Responder::onReadMeterCounter3Value), answerHex(0x3B, "00000001"));
    const quint32 bits = 0x7FDEADBF; // a NaN with a payload
    std::memcpy(&devices.reel.section, &bits, sizeof bits);
    QCOMPARE(bench.answersOf(&Responder::onReadMeterCounter1Value), answerHex(0x30, "7fdeadbf"));
}

void ReadCommandResponderDevicesTest::meterCountersDoNotReadTheModel()
{
    FakeDevices devices;
    ReadBench bench;
    fillModel(bench.model, true);
    QCOMPARE(bench.answersOf(&Responder::onReadMeterCounter1Value), answerHex(0x30, "00000000"));
    QCOMPARE(bench.answersOf(&Responder::onReadMeterCounter2Value), answerHex(0x36, "00000000"));
    QCOMPARE(bench.answersOf(&Responder::onReadMeterCounter3Value), answerHex(0x3B, "00000000"));
}

void ReadCommandResponderDevicesTest::missingReelReadsAsZero_data()
{
    QTest::addColumn<int>("cmdId");
    QTest::newRow("section") << 0x30;
    QTest::newRow("SAT") << 0x36;
    QTest::newRow("total") << 0x3B;
}

void ReadCommandResponderDevicesTest::missingReelReadsAsZero()
{
    QFETCH(int, cmdId);
    WarningCount quiet;
    ReadBench bench;
    QCOMPARE(bench.answersTo(cmdId), answerHex(cmdId, "00000000"));
}

void ReadCommandResponderDevicesTest::laserCalibrationIsScaledByIndex()
{
    FakeDevices devices;
    devices.camera.laserFirst = 250.0;
    devices.camera.laserSecond = -50000.0;
    ReadBench bench;
    QCOMPARE(bench.answersOf(&Responder::onReadLaserCalibrationValue, 1),
             answerHex(0xFD, "01 4004000000000000"));
    QCOMPARE(bench.answersOf(&Responder::onReadLaserCalibrationValue, 2),
             answerHex(0xFD, "02 bfe0000000000000"));
    // A quotient, not a product with a hundredth: for many values that is not the same number.
    for (int value = 1; value < 1000; ++value) {
        devices.camera.laserFirst = value;
        devices.camera.laserSecond = value;
        const auto expected = [](int index, double quotient) {
            return answer(0xFD, QByteArray(1, char(index)) +
                                    QByteArray::fromHex(asText(quotient).mid(7).toLatin1()));
        };
        QCOMPARE(bench.answersOf(&Responder::onReadLaserCalibrationValue, 1), expected(1, value / 100.0));
        QCOMPARE(bench.answersOf(&Responder::onReadLaserCalibrationValue, 2), expected(2, value / 100000.0));
    }
}

void ReadCommandResponderDevicesTest::anyOtherLaserIndexIsAnsweredAlone()
{
    FakeDevices devices;
    devices.camera.laserFirst = 250.0;
    devices.camera.laserSecond = 50000.0;
    ReadBench bench;
    for (int index = 0; index <= 255; ++index) {
        if (index != 1 && index != 2) {
            QCOMPARE(bench.answersOf(&Responder::onReadLaserCalibrationValue, static_cast<uchar>(index)),
                     answer(0xFD, QByteArray(1, char(index))));
        }
    }
}

void ReadCommandResponderDevicesTest::uncalibratedLaserReadsAsZero()
{
    ReadBench bench;
    for (const bool knowsFirst : {false, true}) {
        UncalibratedCamera camera(knowsFirst);
        CTolvarLibrary::setCamera(&camera);
        QCOMPARE(bench.answersOf(&Responder::onReadLaserCalibrationValue, 1),
                 answerHex(0xFD, knowsFirst ? "01 4004000000000000" : "01 0000000000000000"));
        QCOMPARE(bench.answersOf(&Responder::onReadLaserCalibrationValue, 2),
                 answerHex(0xFD, "02 0000000000000000"));
        CTolvarLibrary::setCamera(nullptr);
    }
}

void ReadCommandResponderDevicesTest::missingCameraReadsAsZero()
{
    WarningCount quiet;
    ReadBench bench;
    QCOMPARE(bench.answersOf(&Responder::onReadLaserCalibrationValue, 1),
             answerHex(0xFD, "01 0000000000000000"));
    QCOMPARE(bench.answersOf(&Responder::onReadLaserCalibrationValue, 2),
             answerHex(0xFD, "02 0000000000000000"));
    QCOMPARE(bench.answersOf(&Responder::onReadLaserCalibrationValue, 3), answerHex(0xFD, "03"));
}

void ReadCommandResponderDevicesTest::position3DIsThreeDoublesAndASingle()
{
    FakeDevices devices;
    devices.positionSensor.x = 1.0;
    devices.positionSensor.y = -2.0;
    devices.positionSensor.z = 0.1;
    devices.positionSensor.turn = 45.5F;
    ReadBench bench;
    QCOMPARE(bench.answersOf(&Responder::onRead3DMeasurementValues),
             answerHex(0xD4, "3ff0000000000000 c000000000000000 3fb999999999999a 42360000"));
}

void ReadCommandResponderDevicesTest::position3DIsSentBitForBit()
{
    FakeDevices devices;
    const quint64 nan = 0x7FF8DEADBEEFCAFE;
    std::memcpy(&devices.positionSensor.x, &nan, sizeof nan);
    devices.positionSensor.y = -std::numeric_limits<double>::infinity();
    devices.positionSensor.z = -0.0;
    devices.positionSensor.turn = std::numeric_limits<float>::denorm_min();
    ReadBench bench;
    QCOMPARE(bench.answersOf(&Responder::onRead3DMeasurementValues),
             answerHex(0xD4, "7ff8deadbeefcafe fff0000000000000 8000000000000000 00000001"));
}

void ReadCommandResponderDevicesTest::missingPositionSensorIsNotAnswered()
{
    FakeDevices devices;
    CTolvarLibrary::setCameraPositionSensor(nullptr);
    WarningCount count;
    ReadBench bench;
    QCOMPARE(bench.answersOf(&Responder::onRead3DMeasurementValues), QStringList());
    QCOMPARE(count.value(), 0); // most units have none: nothing to warn of
    CTolvarLibrary::setCameraPositionSensor(&devices.positionSensor);
    QCOMPARE(bench.answersOf(&Responder::onRead3DMeasurementValues).size(), 1);
}

void ReadCommandResponderDevicesTest::dateIsDayMonthCenturyYear_data()
{
    QTest::addColumn<QDate>("date");
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("last day of a year") << QDate(2026, 12, 31) << QByteArray("1f 0c 14 1a");
    QTest::newRow("first day of a year") << QDate(2027, 1, 1) << QByteArray("01 01 14 1b");
    QTest::newRow("first year of the century") << QDate(2000, 2, 29) << QByteArray("1d 02 14 00");
    QTest::newRow("clock never set") << QDate(1970, 1, 1) << QByteArray("01 01 14 e2");
    if (sizeof(time_t) > 4) {
        QTest::newRow("next century") << QDate(2100, 3, 1) << QByteArray("01 03 14 64");
        QTest::newRow("year 2207") << QDate(2207, 3, 1) << QByteArray("01 03 14 cf");
        QTest::newRow("year 2256 begins again") << QDate(2256, 3, 1) << QByteArray("01 03 14 00");
    }
}

void ReadCommandResponderDevicesTest::dateIsDayMonthCenturyYear()
{
    QFETCH(QDate, date);
    QFETCH(QByteArray, payload);
    ReadBench bench;
    for (const QTime& time : {QTime(0, 0), QTime(23, 59, 59, 999)}) {
        const SettableClock clock(QDateTime(date, time, Qt::UTC));
        QCOMPARE(QDate::currentDate(), date);
        QCOMPARE(bench.answersOf(&Responder::onReadDateValue), answerHex(0x40, payload));
    }
}

void ReadCommandResponderDevicesTest::dateIsTheUnitsOwn()
{
    const auto expected = [](const QDate& date) {
        QByteArray payload;
        payload.append(char(date.day()))
            .append(char(date.month()))
            .append('\x14')
            .append(char(date.year() - 2000));
        return answer(0x40, payload);
    };
    ReadBench bench;
    fillModel(bench.model, true);
    const QDate before = QDate::currentDate();
    const QStringList sent = bench.answersOf(&Responder::onReadDateValue);
    const QDate after = QDate::currentDate();
    QVERIFY(sent == expected(before) || sent == expected(after));
}

void ReadCommandResponderDevicesTest::timeIsHourMinuteSecondZero_data()
{
    QTest::addColumn<QTime>("time");
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("midnight") << QTime(0, 0) << QByteArray("00 00 00 00");
    QTest::newRow("morning") << QTime(9, 5, 7) << QByteArray("09 05 07 00");
    QTest::newRow("end of the day") << QTime(23, 59, 59, 999) << QByteArray("17 3b 3b 00");
}

void ReadCommandResponderDevicesTest::timeIsHourMinuteSecondZero()
{
    QFETCH(QTime, time);
    QFETCH(QByteArray, payload);
    const SettableClock clock(QDateTime(QDate(2026, 6, 1), time, Qt::UTC));
    QCOMPARE(QTime::currentTime(), time);
    ReadBench bench;
    QCOMPARE(bench.answersOf(&Responder::onReadTimeValue), answerHex(0x50, payload));
}

void ReadCommandResponderDevicesTest::timeIsTheUnitsOwn()
{
    ReadBench bench;
    const QDateTime before = QDateTime::currentDateTime();
    const QStringList sent = bench.answersOf(&Responder::onReadTimeValue);
    const QDateTime after = QDateTime::currentDateTime();
    QStringList possible; // every second that passed meanwhile
    for (QDateTime moment = before; moment <= after.addSecs(1); moment = moment.addSecs(1)) {
        QByteArray payload;
        payload.append(char(moment.time().hour())).append(char(moment.time().minute()));
        payload.append(char(moment.time().second())).append('\0');
        possible += answer(0x50, payload);
    }
    QVERIFY2(possible.contains(sent.value(0)), qPrintable(sent.value(0)));
}

QTEST_GUILESS_MAIN(ReadCommandResponderDevicesTest)

#include "tst_readcommandresponder_devices.moc"
