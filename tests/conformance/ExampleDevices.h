#ifndef TOLVAR_VARUNDO_TESTS_EXAMPLEDEVICES_H
#define TOLVAR_VARUNDO_TESTS_EXAMPLEDEVICES_H

#include <ITolvarCamera.h>
#include <ITolvarCameraPositionSensor.h>
#include <ITolvarCrawler.h>
#include <ITolvarReel.h>
#include <ITolvarRts.h>

#include <QStringList>

namespace Tolvar::Varundo::Tests {

/// The devices of the unit that docs/protocol.md shows: installed in the device library while this object
/// lives, each with a fixed reading that it reports when it is asked to, and movable.
class ExampleDevices
{
public:
    static constexpr float Section = 12.5F;
    static constexpr float Sat = 3.25F;
    static constexpr float Total = 150.75F;
    static constexpr float Speed = 0.25F;
    static constexpr float ExternalTemperature = 21.5F;
    static constexpr int CrawlerTemperature = 25;
    static constexpr int CrawlerPressure = 975;
    static constexpr float Roll = -2.5F;
    static constexpr float Pitch = 2.0F;
    static constexpr short Pan = 90;
    static constexpr short Tilt = -45;
    static constexpr int CameraTemperature = 30;
    static constexpr int CameraPressure = 1200;

    ExampleDevices();
    ~ExampleDevices();
    ExampleDevices(const ExampleDevices&) = delete;
    ExampleDevices& operator=(const ExampleDevices&) = delete;

    /// Every device tells its reading, as a real one does soon after it is switched on.
    void report();
    /// Moves a device: "reel section 7.5", "camera pan -10"; false if there is no such reading.
    bool move(const QStringList& words);
    void removePositionSensor();

private:
    struct Reel final : ITolvarReel
    {
        float sectionDistance() const override { return section; }
        float satDistance() const override { return sat; }
        float totalDistance() const override { return total; }
        float section = Section;
        float sat = Sat;
        float total = Total;
    };
    struct Crawler final : ITolvarCrawler
    {
        float crawlerPitch() const override { return pitch; }
        float pitch = Pitch;
    };
    struct Camera final : ITolvarCamera
    {
        void laserCalibration(double& first, double& second) const override
        {
            first = 50.0;
            second = 25000.0;
        }
    };
    struct PositionSensor final : ITolvarCameraPositionSensor
    {
        Position3D position() const override { return {1.5, -2.0, 0.25}; }
        float angle() const override { return 12.5F; }
    };

    Reel m_reel;
    ITolvarRts m_rts;
    Crawler m_crawler;
    Camera m_camera;
    PositionSensor m_positionSensor;
};

} // namespace Tolvar::Varundo::Tests

#endif
