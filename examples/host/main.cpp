// A recording application, reduced to what the library wants of it: an overlay, a device, a clock, and a
// Runner.
//
//   example-host PROFILE.json [SETTINGS.json]

#include <CApplicationSettings.h>
#include <CTolvarLibrary.h>
#include <ITolvarReel.h>
#include <Mavril/SystemClock.h>
#include <Mavril/SystemDateTime.h>
#include <Mavril/VideoOverlay/CVideoOverlayManager.h>
#include <Tolvar/Varundo/Runner.h>
#include <Tolvar/Varundo/ZelVideoOverlayElementAccessor.h>
#include <Tolvar/VideoOverlay/CVideoOverlayControlBackend.h>

#include <QDateTime>
#include <QDebug>
#include <QGuiApplication>

namespace {

/// Shows or hides what the application draws over the video.
class OverlaySwitch : public Tolvar::VideoOverlay::CVideoOverlayControlBackend
{
public:
    void setOverlayVisible(bool show) override { qInfo() << "overlay" << (show ? "on" : "off"); }
};

/// The unit's cable reel. A real one would emit calculatedReelSpeedChanged() as the cable runs out.
class CableReel : public ITolvarReel
{
public:
    float sectionDistance() const override { return m_section; }
    float satDistance() const override { return 0.0F; }
    float totalDistance() const override { return 17.35F; }

    void setSectionDistance(float metres) { m_section = metres; }

private:
    float m_section = 0.0F;
};

/// The unit's clock: this one only tells what a controller wanted.
class Clock : public Mavril::SystemClock
{
public:
    void setDateTime(const QDateTime& dateTime) override { qInfo() << "clock" << dateTime; }
    void setTime(const QTime& time) override { qInfo() << "clock" << time; }
};

} // namespace

int main(int argc, char** argv)
{
    QGuiApplication app(argc, argv);
    app.setApplicationName(QStringLiteral("example-host"));
    app.setApplicationVersion(QStringLiteral("3.1.4")); // controllers read it as part of the identification
    if (app.arguments().size() < 2) {
        qCritical("usage: example-host PROFILE.json [SETTINGS.json]");
        return 2;
    }
    CApplicationSettings::instance()->setFileName(app.arguments().value(2));

    CableReel reel; // devices and clock are there before the Runner looks for them
    CTolvarLibrary::setReel(&reel);
    Clock clock;
    Mavril::SystemDateTime::install(&clock);

    OverlaySwitch overlay;
    Mavril::VideoOverlay::CVideoOverlayManager manager;
    Tolvar::Varundo::ZelVideoOverlayElementAccessor accessor;
    manager.setElementAccessor(&accessor);
    Tolvar::Varundo::Runner runner(&overlay, &manager, &accessor);
    QObject::connect(&runner, &Tolvar::Varundo::Runner::setDistanceCounterSection, &reel,
                     [&reel](float metres) { reel.setSectionDistance(metres); });
    runner.setInterface(Tolvar::Varundo::Runner::Tcp); // port 9998

    QString error;
    if (!manager.loadProfile(app.arguments().at(1), &error)) {
        qCritical().noquote() << error;
        return 1;
    }
    return app.exec();
}
