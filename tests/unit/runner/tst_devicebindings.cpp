// The devices' readings, on their way into the data model.

#include "FakeDevices.h"
#include "HostedUnit.h"

#include <QThread>
#include <QtTest>

#include <functional>
#include <limits>
#include <memory>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

using Report = std::function<void(FakeDevices&)>;
using Reading = std::function<float(const DataManager&)>;
Q_DECLARE_METATYPE(Report)
Q_DECLARE_METATYPE(Reading)

namespace {

using D = FakeDevices;
using M = const DataManager&;

/// Its devices are the test's affair.
class Unit : public HostedUnit
{
public:
    Unit()
        : HostedUnit(QStringLiteral("Tcp"), Devices::OfTheTest)
    {}
};

QStringList runnerWarnings;

void keepRunnerWarnings(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    // Qt's own too: it complains of connections that cannot be made.
    if (type == QtWarningMsg &&
        (qstrcmp(context.category, "varundo.runner") == 0 || qstrcmp(context.category, "default") == 0)) {
        runnerWarnings.append(message);
    }
}

} // namespace

class TestDeviceBindings : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void readingReachesItsItemUnchanged_data();
    void readingReachesItsItemUnchanged();
    void readingReachesNoOtherItem_data();
    void readingReachesNoOtherItem();
    void pitchIsAskedForWhenItChanges();
    void panArrivesTwice();
    void repeatedPressuresAreAnnouncedAgain();
    void cameraReportingFromAnotherThreadIsHeardInTheModelsThread();

    void otherDevicesReportingFromAnotherThreadAreHeardInTheirs();

    void missingDevicesAreLeftOutWithOneWarningEach_data();
    void missingDevicesAreLeftOutWithOneWarningEach();
    void completeUnitGivesNoWarning();
    void deviceThatComesLaterIsNotConnected();
    void deviceMayGoBeforeTheRunner();
    void deviceMayReportAfterTheRunner();
    void everyRunnerHasItsOwnReadings();

private:
    static QList<Reading> allReadings();
};

void TestDeviceBindings::initTestCase()
{
    if (!hasOwn("net")) {
        QSKIP(NeedsOwnNetwork);
    }
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
}

QList<Reading> TestDeviceBindings::allReadings()
{
    return {[](M m) { return m.cableSpeedValue(); },
            [](M m) { return m.extTemperatureValue(); },
            [](M m) { return m.crawlerTemperature(); },
            [](M m) { return m.crawlerPressure(); },
            [](M m) { return m.crawlerRollValue(); },
            [](M m) { return m.inclinationValue(); },
            [](M m) { return m.panPositionValue(); },
            [](M m) { return m.tiltPositionValue(); },
            [](M m) { return m.cameraTemperatureValue(); },
            [](M m) {
                return m.pressureValue();
            }};
}

void TestDeviceBindings::readingReachesItsItemUnchanged_data()
{
    QTest::addColumn<Report>("report");
    QTest::addColumn<int>("item"); // of allReadings()
    QTest::addColumn<float>("value");
    const auto row = [](const char* name, Report report, int item, float value) {
        QTest::newRow(name) << report << item << value;
    };
    constexpr int lowest = std::numeric_limits<int>::min();
    row(
        "reel speed", [](D& d) { emit d.reel.calculatedReelSpeedChanged(-1.25F); }, 0, -1.25F);
    row(
        "RTS temperature", [](D& d) { emit d.rts.rtsTemperatureChanged(-40.5F); }, 1, -40.5F);
    row(
        "crawler temperature", [](D& d) { emit d.crawler.crawlerTemperatureChanged(25); }, 2, 25.0F);
    row(
        "crawler temperature below zero", [](D& d) { emit d.crawler.crawlerTemperatureChanged(-7); }, 2,
        -7.0F);
    row(
        "lowest crawler temperature", [](D& d) { emit d.crawler.crawlerTemperatureChanged(lowest); }, 2,
        -2147483648.0F);
    row(
        "crawler pressure", [](D& d) { emit d.crawler.crawlerPressureChanged(1013); }, 3, 1013.0F);
    row(
        "crawler roll", [](D& d) { emit d.crawler.crawlerRollChanged(-179.5F); }, 4, -179.5F);
    row(
        "crawler pitch",
        [](D& d) {
            d.crawler.pitch = 1.5F;
            emit d.crawler.crawlerPitchChanged();
        },
        5, 1.5F);
    row(
        "pan", [](D& d) { emit d.camera.panPositionChanged(32767); }, 6, 32767.0F);
    row(
        "lowest pan", [](D& d) { emit d.camera.panPositionChanged(-32768); }, 6, -32768.0F);
    row(
        "tilt", [](D& d) { emit d.camera.tiltPositionChanged(-90); }, 7, -90.0F);
    row(
        "camera temperature", [](D& d) { emit d.camera.cameraTemperatureChanged(-3); }, 8, -3.0F);
    row(
        "camera pressure", [](D& d) { emit d.camera.cameraPressureChanged(900); }, 9, 900.0F);
}

void TestDeviceBindings::readingReachesItsItemUnchanged()
{
    QFETCH(Report, report);
    QFETCH(int, item);
    FakeDevices devices;
    const Unit unit;
    report(devices);
    QTEST(allReadings().at(item)(unit.model()), "value");
}

void TestDeviceBindings::readingReachesNoOtherItem_data()
{
    readingReachesItsItemUnchanged_data();
}

void TestDeviceBindings::readingReachesNoOtherItem()
{
    QFETCH(Report, report);
    QFETCH(int, item);
    FakeDevices devices;
    const Unit unit;
    report(devices);
    for (int other = 0; other < allReadings().size(); ++other) {
        QCOMPARE(allReadings().at(other)(unit.model()) != 0.0F, other == item);
    }
}

void TestDeviceBindings::pitchIsAskedForWhenItChanges()
{
    FakeDevices devices;
    devices.crawler.pitch = 9.0F;
    const Unit unit;
    QCOMPARE(unit.model().inclinationValue(), 0.0F); // not before it was reported
    devices.crawler.pitch = 2.5F;
    QCOMPARE(unit.model().inclinationValue(), 0.0F);
    emit devices.crawler.crawlerPitchChanged();
    QCOMPARE(unit.model().inclinationValue(), 2.5F);
}

// The pan position alone is deliberately connected twice. It shows when somebody changes the value between
// the two arrivals.
void TestDeviceBindings::panArrivesTwice()
{
    FakeDevices devices;
    const Unit unit;
    const auto arrivals = [&](auto changed, auto set, const std::function<void()>& report) {
        int count = 0;
        const auto connection = connect(&unit.model(), changed, this, [&](float value) {
            if (value != -1.0F) {
                ++count;
                (unit.model().*set)(-1.0F);
            }
        });
        report();
        disconnect(connection);
        return count;
    };
    QCOMPARE(arrivals(&DataManager::panPositionVvalueChanged, &DataManager::setPanPositionValue,
                      [&] { emit devices.camera.panPositionChanged(45); }),
             2);
    QCOMPARE(arrivals(&DataManager::tiltValueChanged, &DataManager::setTiltValue,
                      [&] { emit devices.camera.tiltPositionChanged(45); }),
             1);
    QCOMPARE(arrivals(&DataManager::cameraTemperatureValueChanged, &DataManager::setCameraTemperatureValue,
                      [&] { emit devices.camera.cameraTemperatureChanged(45); }),
             1);
    QCOMPARE(arrivals(&DataManager::cableSpeedValueChanged, &DataManager::setCableSpeedValue,
                      [&] { emit devices.reel.calculatedReelSpeedChanged(45.0F); }),
             1);
}

void TestDeviceBindings::repeatedPressuresAreAnnouncedAgain()
{
    FakeDevices devices;
    const Unit unit;
    QList<float> heard;
    connect(&unit.model(), &DataManager::pressureValueChanged, this,
            [&](float value) { heard.append(value); });
    connect(&unit.model(), &DataManager::crawlerPressureChanged, this,
            [&](float value) { heard.append(value); });
    emit devices.camera.cameraPressureChanged(900);
    emit devices.camera.cameraPressureChanged(900);
    emit devices.crawler.crawlerPressureChanged(800);
    emit devices.crawler.crawlerPressureChanged(800);
    QCOMPARE(heard, QList<float>({900.0F, 900.0F, 800.0F, 800.0F}));
}

void TestDeviceBindings::cameraReportingFromAnotherThreadIsHeardInTheModelsThread()
{
    FakeDevices devices;
    const Unit unit;
    QList<bool> inItsThread;
    const auto listen = [&](auto changed) {
        connect(
            &unit.model(), changed, &unit.model(),
            [&] { inItsThread.append(QThread::currentThread() == unit.model().thread()); },
            Qt::DirectConnection);
    };
    listen(&DataManager::panPositionVvalueChanged);
    listen(&DataManager::tiltValueChanged);
    listen(&DataManager::cameraTemperatureValueChanged);
    listen(&DataManager::pressureValueChanged);
    const std::unique_ptr<QThread> reporter(QThread::create([&] {
        emit devices.camera.panPositionChanged(10);
        emit devices.camera.tiltPositionChanged(20);
        emit devices.camera.cameraTemperatureChanged(30);
        emit devices.camera.cameraPressureChanged(40);
    }));
    reporter->start();
    QVERIFY(reporter->wait(5000));
    QCOMPARE(inItsThread, QList<bool>());
    QCOMPARE(unit.model().tiltPositionValue(), 0.0F);
    QTRY_COMPARE(inItsThread, QList<bool>({true, true, true, true}));
    QCOMPARE(unit.model().panPositionValue(), 10.0F);
    QCOMPARE(unit.model().tiltPositionValue(), 20.0F);
    QCOMPARE(unit.model().cameraTemperatureValue(), 30.0F);
    QCOMPARE(unit.model().pressureValue(), 40.0F);
}

void TestDeviceBindings::otherDevicesReportingFromAnotherThreadAreHeardInTheirs()
{
    FakeDevices devices;
    const Unit unit;
    QList<QThread*> threads;
    const auto listen = [&](auto changed) {
        connect(
            &unit.model(), changed, &unit.model(), [&] { threads.append(QThread::currentThread()); },
            Qt::DirectConnection);
    };
    listen(&DataManager::cableSpeedValueChanged);
    listen(&DataManager::extTemperatureValueChanged);
    listen(&DataManager::crawlerTemperatureChanged);
    listen(&DataManager::crawlerPressureChanged);
    listen(&DataManager::crawlerRollValueChanged);
    listen(&DataManager::inclinationValueChanged);
    const std::unique_ptr<QThread> reporter(QThread::create([&] {
        emit devices.reel.calculatedReelSpeedChanged(1.5F);
        emit devices.rts.rtsTemperatureChanged(1.5F);
        emit devices.crawler.crawlerTemperatureChanged(1);
        emit devices.crawler.crawlerPressureChanged(1);
        emit devices.crawler.crawlerRollChanged(1.5F);
        devices.crawler.pitch = 1.5F;
        emit devices.crawler.crawlerPitchChanged();
    }));
    reporter->start();
    QVERIFY(reporter->wait(5000));
    QCOMPARE(threads, QVector<QThread*>(6, reporter.get()).toList()); // at once, not through the event loop
}

void TestDeviceBindings::missingDevicesAreLeftOutWithOneWarningEach_data()
{
    QTest::addColumn<Report>("remove"); // takes devices out
    QTest::addColumn<QStringList>("missing");
    const auto row = [](const char* name, Report remove, const QStringList& missing) {
        QTest::newRow(name) << remove << missing;
    };
    row(
        "reel", [](D&) { CTolvarLibrary::setReel(nullptr); }, inOrder("reel"));
    row(
        "RTS", [](D&) { CTolvarLibrary::setRts(nullptr); }, inOrder("RTS"));
    row(
        "crawler", [](D&) { CTolvarLibrary::setCrawler(nullptr); }, inOrder("crawler"));
    row(
        "camera", [](D&) { CTolvarLibrary::setCamera(nullptr); }, inOrder("camera"));
    row(
        "all",
        [](D&) {
            CTolvarLibrary::setReel(nullptr);
            CTolvarLibrary::setRts(nullptr);
            CTolvarLibrary::setCrawler(nullptr);
            CTolvarLibrary::setCamera(nullptr);
        },
        inOrder("reel", "RTS", "crawler", "camera"));
}

void TestDeviceBindings::missingDevicesAreLeftOutWithOneWarningEach()
{
    QFETCH(Report, remove);
    QFETCH(QStringList, missing);
    FakeDevices devices;
    remove(devices);
    runnerWarnings.clear();
    const auto previous = qInstallMessageHandler(keepRunnerWarnings);
    const Unit unit;
    qInstallMessageHandler(previous);
    QCOMPARE(runnerWarnings.size(), missing.size());
    for (int i = 0; i < missing.size(); ++i) {
        QVERIFY2(runnerWarnings.at(i).contains(missing.at(i), Qt::CaseInsensitive),
                 qPrintable(runnerWarnings.at(i)));
    }

    // The others are connected all the same.
    emit devices.reel.calculatedReelSpeedChanged(1.5F);
    emit devices.rts.rtsTemperatureChanged(1.5F);
    emit devices.crawler.crawlerRollChanged(1.5F);
    emit devices.camera.tiltPositionChanged(1);
    QCOMPARE(unit.model().cableSpeedValue() == 0.0F, missing.contains(QStringLiteral("reel")));
    QCOMPARE(unit.model().extTemperatureValue() == 0.0F, missing.contains(QStringLiteral("RTS")));
    QCOMPARE(unit.model().crawlerRollValue() == 0.0F, missing.contains(QStringLiteral("crawler")));
    QCOMPARE(unit.model().tiltPositionValue() == 0.0F, missing.contains(QStringLiteral("camera")));
}

void TestDeviceBindings::completeUnitGivesNoWarning()
{
    FakeDevices devices;
    runnerWarnings.clear();
    const auto previous = qInstallMessageHandler(keepRunnerWarnings);
    const Unit unit;
    qInstallMessageHandler(previous);
    QCOMPARE(runnerWarnings, QStringList());
}

void TestDeviceBindings::deviceThatComesLaterIsNotConnected()
{
    const Unit unit;
    FakeDevices devices;
    emit devices.reel.calculatedReelSpeedChanged(1.5F);
    emit devices.camera.tiltPositionChanged(1);
    QCOMPARE(unit.model().cableSpeedValue(), 0.0F);
    QCOMPARE(unit.model().tiltPositionValue(), 0.0F);
}

void TestDeviceBindings::deviceMayGoBeforeTheRunner()
{
    auto devices = std::make_unique<FakeDevices>();
    Unit unit;
    emit devices->reel.calculatedReelSpeedChanged(1.5F);
    devices.reset();
    QCOMPARE(unit.model().cableSpeedValue(), 1.5F); // the last reading stays
    unit.runner.reset();
    QVERIFY(!unit.runner);
}

// The address sanitizer sees a call that goes to what is gone.
void TestDeviceBindings::deviceMayReportAfterTheRunner()
{
    FakeDevices devices;
    Unit unit;
    int changes = 0;
    connect(&unit.model(), &DataManager::tiltValueChanged, this, [&] { ++changes; });
    emit devices.camera.tiltPositionChanged(1);
    QCOMPARE(changes, 1);
    unit.runner.reset();
    emit devices.reel.calculatedReelSpeedChanged(1.5F);
    emit devices.rts.rtsTemperatureChanged(1.5F);
    emit devices.crawler.crawlerTemperatureChanged(1);
    emit devices.crawler.crawlerPressureChanged(1);
    emit devices.crawler.crawlerRollChanged(1.5F);
    emit devices.crawler.crawlerPitchChanged();
    emit devices.camera.panPositionChanged(2);
    emit devices.camera.tiltPositionChanged(2);
    emit devices.camera.cameraTemperatureChanged(2);
    emit devices.camera.cameraPressureChanged(2);
    QCOMPARE(changes, 1);
}

void TestDeviceBindings::everyRunnerHasItsOwnReadings()
{
    FakeDevices devices;
    Unit first;
    {
        const Unit second;
        emit devices.rts.rtsTemperatureChanged(1.5F);
        QCOMPARE(first.model().extTemperatureValue(), 1.5F);
        QCOMPARE(second.model().extTemperatureValue(), 1.5F);
    }
    emit devices.rts.rtsTemperatureChanged(2.5F);
    QCOMPARE(first.model().extTemperatureValue(), 2.5F);
}

QTEST_MAIN(TestDeviceBindings)
#include "tst_devicebindings.moc"
