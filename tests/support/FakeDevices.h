#ifndef TOLVAR_VARUNDO_TEST_FAKEDEVICES_H
#define TOLVAR_VARUNDO_TEST_FAKEDEVICES_H

#include <CTolvarLibrary.h>
#include <ITolvarCamera.h>
#include <ITolvarCameraPositionSensor.h>
#include <ITolvarCrawler.h>
#include <ITolvarReel.h>
#include <ITolvarRts.h>

namespace Tolvar::Varundo::Test {

class FakeReel : public ITolvarReel
{
public:
    float sectionDistance() const override { return section; }
    float satDistance() const override { return sat; }
    float totalDistance() const override { return total; }

    float section = 0.0F;
    float sat = 0.0F;
    float total = 0.0F;
};

class FakeCrawler : public ITolvarCrawler
{
public:
    float crawlerPitch() const override { return pitch; }

    float pitch = 0.0F;
};

class FakeCamera : public ITolvarCamera
{
public:
    void laserCalibration(double& first, double& second) const override
    {
        first = laserFirst;
        second = laserSecond;
    }

    double laserFirst = 0.0;
    double laserSecond = 0.0;
};

class FakePositionSensor : public ITolvarCameraPositionSensor
{
public:
    Position3D position() const override { return {x, y, z}; }
    float angle() const override { return turn; }

    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    float turn = 0.0F;
};

/// A unit with every device, for as long as it lives.
struct FakeDevices
{
    FakeDevices()
    {
        CTolvarLibrary::setReel(&reel);
        CTolvarLibrary::setRts(&rts);
        CTolvarLibrary::setCrawler(&crawler);
        CTolvarLibrary::setCamera(&camera);
        CTolvarLibrary::setCameraPositionSensor(&positionSensor);
    }
    ~FakeDevices()
    {
        CTolvarLibrary::setReel(nullptr);
        CTolvarLibrary::setRts(nullptr);
        CTolvarLibrary::setCrawler(nullptr);
        CTolvarLibrary::setCamera(nullptr);
        CTolvarLibrary::setCameraPositionSensor(nullptr);
    }
    FakeDevices(const FakeDevices&) = delete;
    FakeDevices& operator=(const FakeDevices&) = delete;

    FakeReel reel;
    ITolvarRts rts;
    FakeCrawler crawler;
    FakeCamera camera;
    FakePositionSensor positionSensor;
};

} // namespace Tolvar::Varundo::Test

#endif
