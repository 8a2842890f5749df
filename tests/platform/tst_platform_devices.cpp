#include <CTolvarLibrary.h>
#include <ITolvarCamera.h>
#include <ITolvarCameraPositionSensor.h>
#include <ITolvarCrawler.h>
#include <ITolvarReel.h>
#include <ITolvarRts.h>

#include <QSignalSpy>
#include <QtTest>

#include <memory>

namespace {

class Reel : public ITolvarReel
{
public:
    float sectionDistance() const override { return 1.0F; }
    float satDistance() const override { return 2.0F; }
    float totalDistance() const override { return 3.0F; }
};

class Crawler : public ITolvarCrawler
{
public:
    float crawlerPitch() const override { return 4.0F; }
};

class Camera : public ITolvarCamera
{
public:
    void laserCalibration(double& first, double&) const override { first = 5.0; }
};

class PositionSensor : public ITolvarCameraPositionSensor
{
public:
    Position3D position() const override { return {6.0, 7.0, 8.0}; }
    float angle() const override { return 9.0F; }
};

/// What holds for every kind of device.
template <class Interface, class Device>
void checkDevice(Interface* (*get)(), void (*set)(Interface*))
{
    QVERIFY(!get());
    auto device = std::make_unique<Device>();
    set(device.get());
    QCOMPARE(get(), static_cast<Interface*>(device.get()));
    set(nullptr);
    QVERIFY(!get());
    set(device.get());
    device.reset();
    QVERIFY2(!get(), "a destroyed device is still there");
}

} // namespace

class TestPlatformDevices : public QObject
{
    Q_OBJECT

private slots:
    void aDeviceIsAbsentUntilSetAndAfterItIsDestroyed();
    void eachDeviceHasAPlaceOfItsOwn();
    void aDeviceIsReachedThroughItsInterface();
    void theInterfacesHaveTheirSignals();
};

void TestPlatformDevices::aDeviceIsAbsentUntilSetAndAfterItIsDestroyed()
{
    checkDevice<ITolvarReel, Reel>(CTolvarLibrary::getReel, CTolvarLibrary::setReel);
    checkDevice<ITolvarRts, ITolvarRts>(CTolvarLibrary::getRts, CTolvarLibrary::setRts);
    checkDevice<ITolvarCrawler, Crawler>(CTolvarLibrary::getCrawler, CTolvarLibrary::setCrawler);
    checkDevice<ITolvarCamera, Camera>(CTolvarLibrary::getCamera, CTolvarLibrary::setCamera);
    checkDevice<ITolvarCameraPositionSensor, PositionSensor>(CTolvarLibrary::getCameraPositionSensor,
                                                             CTolvarLibrary::setCameraPositionSensor);
}

void TestPlatformDevices::eachDeviceHasAPlaceOfItsOwn()
{
    Crawler crawler;
    CTolvarLibrary::setCrawler(&crawler);
    QVERIFY(!CTolvarLibrary::getReel());
    QVERIFY(!CTolvarLibrary::getRts());
    QVERIFY(!CTolvarLibrary::getCamera());
    QVERIFY(!CTolvarLibrary::getCameraPositionSensor());
}

void TestPlatformDevices::aDeviceIsReachedThroughItsInterface()
{
    Reel reel;
    Camera camera;
    PositionSensor sensor;
    CTolvarLibrary::setReel(&reel);
    CTolvarLibrary::setCamera(&camera);
    CTolvarLibrary::setCameraPositionSensor(&sensor);
    QCOMPARE(CTolvarLibrary::getReel()->satDistance(), 2.0F);
    double first = 0.0;
    double second = -1.0;
    CTolvarLibrary::getCamera()->laserCalibration(first, second);
    QCOMPARE(first, 5.0);
    QCOMPARE(second, -1.0);
    QCOMPARE(CTolvarLibrary::getCameraPositionSensor()->position().z, 8.0);
}

void TestPlatformDevices::theInterfacesHaveTheirSignals()
{
    Reel reel;
    ITolvarRts rts;
    Crawler crawler;
    Camera camera;
    QSignalSpy speed(&reel, &ITolvarReel::calculatedReelSpeedChanged);
    QSignalSpy outside(&rts, &ITolvarRts::rtsTemperatureChanged);
    QSignalSpy roll(&crawler, &ITolvarCrawler::crawlerRollChanged);
    QSignalSpy pitch(&crawler, &ITolvarCrawler::crawlerPitchChanged);
    QSignalSpy pan(&camera, &ITolvarCamera::panPositionChanged);
    emit reel.calculatedReelSpeedChanged(1.5F);
    emit rts.rtsTemperatureChanged(-2.5F);
    emit crawler.crawlerRollChanged(3.5F);
    emit crawler.crawlerPitchChanged();
    emit camera.panPositionChanged(static_cast<short>(-180));
    QCOMPARE(speed.at(0).at(0).toFloat(), 1.5F);
    QCOMPARE(outside.at(0).at(0).toFloat(), -2.5F);
    QCOMPARE(roll.at(0).at(0).toFloat(), 3.5F);
    QVERIFY(pitch.at(0).isEmpty());
    QCOMPARE(pan.at(0).at(0).value<short>(), static_cast<short>(-180));
}

QTEST_GUILESS_MAIN(TestPlatformDevices)
#include "tst_platform_devices.moc"
