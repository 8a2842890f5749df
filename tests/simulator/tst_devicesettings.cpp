#include "DeviceSettings.h"
#include "SimulatedDevices.h"

#include <QJsonDocument>
#include <QSignalSpy>
#include <QTest>

#include <functional>

using namespace Tolvar::Varundo::Simulator;

namespace {

QJsonObject object(const char* json)
{
    return QJsonDocument::fromJson(json).object();
}

} // namespace

/// What a script, and whoever else moves devices, may say about them.
class tst_DeviceSettings : public QObject
{
    Q_OBJECT

private slots:
    void eachFieldSetsItsReading_data();
    void eachFieldSetsItsReading();
    void deviceReportsWhatWasGiven();
    void readingThatIsSetToItsOldValueIsReportedToo();
    void whatIsNotNamedStaysAsItIs();
    void positionSensorIsTakenOutAndPutIn();
    void wrongFieldIsNamedAndNothingIsSet_data();
    void wrongFieldIsNamedAndNothingIsSet();
};

using Reading = std::function<double(SimulatedDevices&)>;
Q_DECLARE_METATYPE(Reading)

void tst_DeviceSettings::eachFieldSetsItsReading_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<Reading>("reading");
    QTest::addColumn<double>("expected");
    const auto row = [](const char* json, double expected, const Reading& reading) {
        QTest::newRow(json) << QByteArray(json) << reading << expected;
    };
    row(R"({"reel": {"speed": -0.25}})", -0.25, [](auto& d) { return double(d.reel().speed()); });
    row(R"({"reel": {"section": 17.5}})", 17.5, [](auto& d) { return double(d.reel().sectionDistance()); });
    row(R"({"reel": {"sat": 2.5}})", 2.5, [](auto& d) { return double(d.reel().satDistance()); });
    row(R"({"reel": {"total": 1e6}})", 1e6, [](auto& d) { return double(d.reel().totalDistance()); });
    row(R"({"rts": {"temperature": -3.5}})", -3.5, [](auto& d) { return double(d.rts().temperature()); });
    row(R"({"crawler": {"temperature": 41}})", 41, [](auto& d) { return d.crawler().temperature(); });
    row(R"({"crawler": {"pressure": 2147483647}})", 2147483647.0,
        [](auto& d) { return d.crawler().pressure(); });
    row(R"({"crawler": {"roll": 1.5}})", 1.5, [](auto& d) { return double(d.crawler().roll()); });
    row(R"({"crawler": {"pitch": -4.5}})", -4.5, [](auto& d) { return double(d.crawler().crawlerPitch()); });
    row(R"({"camera": {"pan": -32768}})", -32768, [](auto& d) { return d.camera().pan(); });
    row(R"({"camera": {"tilt": 32767}})", 32767, [](auto& d) { return d.camera().tilt(); });
    row(R"({"camera": {"temperature": 12}})", 12, [](auto& d) { return d.camera().temperature(); });
    row(R"({"camera": {"pressure": 900}})", 900, [](auto& d) { return d.camera().pressure(); });
    const auto laser = [](SimulatedDevices& d) {
        double first = 0;
        double second = 0;
        d.camera().laserCalibration(first, second);
        return first * 10 + second;
    };
    row(R"({"camera": {"laser": [3, 4.5]}})", 34.5, laser);
    const auto position = [](SimulatedDevices& d) {
        const Position3D p = d.positionSensor()->position();
        return p.x * 100 + p.y * 10 + p.z;
    };
    row(R"({"positionSensor": {"position": [1, 2, 3]}})", 123, position);
    row(R"({"positionSensor": {"angle": 7.5}})", 7.5,
        [](auto& d) { return double(d.positionSensor()->angle()); });
}

void tst_DeviceSettings::eachFieldSetsItsReading()
{
    QFETCH(QByteArray, json);
    QFETCH(Reading, reading);
    QFETCH(double, expected);
    SimulatedDevices devices;
    QString error;
    const auto settings = DeviceSettings::read(object(json.constData()), &error);
    QVERIFY2(settings, qPrintable(error));
    if (devices.positionSensor()) {
        QVERIFY(reading(devices) != expected);
    }
    settings->applyTo(devices);
    QCOMPARE(reading(devices), expected);
}

void tst_DeviceSettings::deviceReportsWhatWasGiven()
{
    SimulatedDevices devices;
    const QSignalSpy speed(&devices.reel(), &ITolvarReel::calculatedReelSpeedChanged);
    const QSignalSpy pitch(&devices.crawler(), &ITolvarCrawler::crawlerPitchChanged);
    const QSignalSpy pan(&devices.camera(), &ITolvarCamera::panPositionChanged);
    const QSignalSpy tilt(&devices.camera(), &ITolvarCamera::tiltPositionChanged);
    QString error;
    const auto settings = DeviceSettings::read(
        object(R"({"reel": {"speed": 0.5}, "crawler": {"pitch": 1}, "camera": {"pan": 90}})"), &error);
    QVERIFY2(settings, qPrintable(error));
    settings->applyTo(devices);
    QCOMPARE(speed.value(0), QVariantList{0.5F});
    QCOMPARE(pitch.size(), 1);
    QCOMPARE(pan.value(0), QVariantList{QVariant::fromValue(short(90))});
    QCOMPARE(tilt.size(), 0);
}

void tst_DeviceSettings::readingThatIsSetToItsOldValueIsReportedToo()
{
    SimulatedDevices devices;
    QString error;
    const auto settings = DeviceSettings::read(object(R"({"rts": {"temperature": 4}})"), &error);
    QVERIFY2(settings, qPrintable(error));
    const QSignalSpy reported(&devices.rts(), &ITolvarRts::rtsTemperatureChanged);
    settings->applyTo(devices);
    settings->applyTo(devices);
    QCOMPARE(reported.size(), 2);
}

void tst_DeviceSettings::whatIsNotNamedStaysAsItIs()
{
    SimulatedDevices devices;
    const float total = devices.reel().totalDistance();
    QString error;
    DeviceSettings::read(object(R"({"reel": {"section": 99}})"), &error)->applyTo(devices);
    QCOMPARE(devices.reel().totalDistance(), total);
    QVERIFY(total != 99.0F);
}

void tst_DeviceSettings::positionSensorIsTakenOutAndPutIn()
{
    SimulatedDevices devices;
    QString error;
    const auto out = DeviceSettings::read(object(R"({"positionSensor": null})"), &error);
    QVERIFY2(out, qPrintable(error));
    out->applyTo(devices);
    QVERIFY(!devices.positionSensor());
    const auto in = DeviceSettings::read(object(R"({"positionSensor": {"angle": 3}})"), &error);
    QVERIFY2(in, qPrintable(error));
    in->applyTo(devices);
    QVERIFY(devices.positionSensor());
    QCOMPARE(devices.positionSensor()->angle(), 3.0F);
}

void tst_DeviceSettings::wrongFieldIsNamedAndNothingIsSet_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* json, const char* expected) {
        QTest::newRow(json) << QByteArray(json) << QString::fromUtf8(expected);
    };
    row(R"({"real": {}})",
        R"(unknown field "real"; known here are reel, rts, crawler, camera, positionSensor)");
    row(R"({"rts": {"pressure": 1}})", R"(rts: unknown field "pressure"; known here are temperature)");
    row(R"({"rts": {"a\nb \"c\"": 1}})", R"(rts: unknown field "a\nb \"c\""; known here are temperature)");
    row(R"({"reel": 3})", "reel: expected an object, got 3");
    row(R"({"reel": null})", "reel: expected an object, got null");
    row(R"({"positionSensor": []})", "positionSensor: expected an object or null, got an array");
    row(R"({"camera": {"pan": 32768}})", "camera.pan: expected an integer from -32768 to 32767, got 32768");
    row(R"({"camera": {"tilt": 1.5}})", "camera.tilt: expected an integer from -32768 to 32767, got 1.5");
    row(R"({"crawler": {"pressure": 2147483648}})",
        "crawler.pressure: expected an integer from -2147483648 to 2147483647, got 2147483648");
    row(R"({"reel": {"speed": 1e39}})",
        "reel.speed: expected a number from -3.402823466e+38 to 3.402823466e+38, got 1e+39");
    row(R"({"reel": {"speed": "fast"}})",
        "reel.speed: expected a number from -3.402823466e+38 to 3.402823466e+38, got \"fast\"");
    row(R"({"camera": {"laser": 4}})", "camera.laser: expected an array of 2 numbers, got 4");
    row(R"({"camera": {"laser": [1, 2, 3]}})",
        "camera.laser: expected an array of 2 numbers, got an array of 3");
    row(R"({"positionSensor": {"position": [1, true, 3]}})",
        "positionSensor.position: expected a number from -1.797693135e+308 to 1.797693135e+308, got true");
}

void tst_DeviceSettings::wrongFieldIsNamedAndNothingIsSet()
{
    QFETCH(QByteArray, json);
    QFETCH(QString, expected);
    QJsonObject mixed = object(json.constData());
    mixed.insert(QStringLiteral("rts"), mixed.contains(QStringLiteral("rts"))
                                            ? mixed.value(QStringLiteral("rts"))
                                            : object(R"({"temperature": 77})"));
    QString error;
    QVERIFY(!DeviceSettings::read(mixed, &error));
    QCOMPARE(error, expected);
}

QTEST_GUILESS_MAIN(tst_DeviceSettings)
#include "tst_devicesettings.moc"
