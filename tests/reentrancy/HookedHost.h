#ifndef TOLVAR_VARUNDO_TEST_HOOKEDHOST_H
#define TOLVAR_VARUNDO_TEST_HOOKEDHOST_H

#include "HookPoints.h"
#include "HookedOverlay.h"

#include <CTolvarLibrary.h>
#include <ITolvarCamera.h>
#include <ITolvarCameraPositionSensor.h>
#include <ITolvarCrawler.h>
#include <ITolvarReel.h>
#include <Mavril/SystemClock.h>
#include <Mavril/SystemDateTime.h>
#include <Tolvar/Varundo/Runner.h>
#include <Tolvar/VideoOverlay/CVideoOverlayControlBackend.h>

#include <memory>
#include <vector>

namespace Tolvar::Varundo::Test {

class HookedBackend : public Tolvar::VideoOverlay::CVideoOverlayControlBackend
{
public:
    explicit HookedBackend(HookPoints& points)
        : m_points(points)
    {}
    void setOverlayVisible(bool) override { m_points.reached("backend.setOverlayVisible"); }

private:
    HookPoints& m_points;
};

class HookedClock : public Mavril::SystemClock
{
public:
    explicit HookedClock(HookPoints& points)
        : m_points(points)
    {
        Mavril::SystemDateTime::install(this);
    }
    ~HookedClock() override { Mavril::SystemDateTime::install(nullptr); }
    HookedClock(const HookedClock&) = delete;
    HookedClock& operator=(const HookedClock&) = delete;
    void setDateTime(const QDateTime&) override { m_points.reached("clock.setDateTime"); }
    void setTime(const QTime&) override { m_points.reached("clock.setTime"); }

private:
    HookPoints& m_points;
};

class HookedReel : public ITolvarReel
{
public:
    explicit HookedReel(HookPoints& points)
        : m_points(points)
    {}
    float sectionDistance() const override
    {
        m_points.reached("reel.sectionDistance");
        return 0.0F;
    }
    float satDistance() const override { return 0.0F; }
    float totalDistance() const override { return 0.0F; }

private:
    HookPoints& m_points;
};

class HookedCrawler : public ITolvarCrawler
{
public:
    explicit HookedCrawler(HookPoints& points)
        : m_points(points)
    {}
    float crawlerPitch() const override
    {
        m_points.reached("crawler.crawlerPitch");
        return 1.5F;
    }

private:
    HookPoints& m_points;
};

class HookedCamera : public ITolvarCamera
{
public:
    explicit HookedCamera(HookPoints& points)
        : m_points(points)
    {}
    void laserCalibration(double&, double&) const override { m_points.reached("camera.laserCalibration"); }

private:
    HookPoints& m_points;
};

class HookedSensor : public ITolvarCameraPositionSensor
{
public:
    explicit HookedSensor(HookPoints& points)
        : m_points(points)
    {}
    Position3D position() const override
    {
        m_points.reached("sensor.position");
        return {0.0, 0.0, 0.0};
    }
    float angle() const override
    {
        m_points.reached("sensor.angle");
        return 0.0F;
    }

private:
    HookPoints& m_points;
};

/// A host, all of whose parts are hook points, with a Runner. Its devices, its overlay and its Runner can
/// each go before the others.
class HookedHost
{
public:
    HookedHost()
    {
        CTolvarLibrary::setReel(reel.get());
        CTolvarLibrary::setCrawler(crawler.get());
        CTolvarLibrary::setCamera(camera.get());
        CTolvarLibrary::setCameraPositionSensor(sensor.get());
        runner = std::make_unique<Runner>(&backend, manager.get(), accessor.get());
    }
    ~HookedHost() { takeDevicesAway(); }
    HookedHost(const HookedHost&) = delete;
    HookedHost& operator=(const HookedHost&) = delete;

    void takeDevicesAway()
    {
        CTolvarLibrary::setReel(nullptr);
        CTolvarLibrary::setCrawler(nullptr);
        CTolvarLibrary::setCamera(nullptr);
        CTolvarLibrary::setCameraPositionSensor(nullptr);
        reel.reset();
        crawler.reset();
        camera.reset();
        sensor.reset();
    }

    HookPoints points;
    std::unique_ptr<HookedReel> reel = std::make_unique<HookedReel>(points);
    std::unique_ptr<HookedCrawler> crawler = std::make_unique<HookedCrawler>(points);
    std::unique_ptr<HookedCamera> camera = std::make_unique<HookedCamera>(points);
    std::unique_ptr<HookedSensor> sensor = std::make_unique<HookedSensor>(points);
    HookedBackend backend{points};
    HookedClock clock{points};
    std::unique_ptr<ZelVideoOverlayElementAccessor> accessor =
        std::make_unique<ZelVideoOverlayElementAccessor>();
    std::unique_ptr<HookedManager> manager = std::make_unique<HookedManager>(points, accessor.get());
    std::unique_ptr<Runner> runner; // goes first
};

} // namespace Tolvar::Varundo::Test

#endif
