// A unit whose overlay, devices and settings are its own: the library is built against them.
//
//   example-unit LAYOUT SETTINGS

#include <CApplicationSettings.h>
#include <CTolvarLibrary.h>
#include <ITolvarReel.h>
#include <Mavril/VideoOverlay/CVideoOverlayManager.h>
#include <Mavril/VideoOverlay/CVideoOverlayText.h>
#include <Tolvar/Varundo/Runner.h>
#include <Tolvar/Varundo/ZelVideoOverlayElementAccessor.h>
#include <Tolvar/VideoOverlay/CVideoOverlayControlBackend.h>

#include <QDebug>
#include <QGuiApplication>

namespace {

using Mavril::VideoOverlay::CVideoOverlayElement;
using Mavril::VideoOverlay::CVideoOverlayManager;
using Mavril::VideoOverlay::CVideoOverlayText;

/// Prints what a real one would draw over the video.
class OverlaySwitch : public Tolvar::VideoOverlay::CVideoOverlayControlBackend
{
public:
    explicit OverlaySwitch(const CVideoOverlayManager& manager)
        : m_manager(manager)
    {}

    void setOverlayVisible(bool show) override
    {
        qInfo() << "overlay" << (show ? "on" : "off");
        const auto elements = m_manager.getElementList();
        for (const CVideoOverlayElement* const element : elements) {
            const auto* const text = qobject_cast<const CVideoOverlayText*>(element);
            if (show && text && text->enabled() && text->visible() && !text->text().isEmpty()) {
                qInfo().noquote() << text->row() << text->column() << text->text();
            }
        }
    }

private:
    const CVideoOverlayManager& m_manager;
};

class CableReel : public ITolvarReel
{
public:
    float sectionDistance() const override { return m_section; }
    float satDistance() const override { return 0.0F; }
    float totalDistance() const override { return 42.5F; }

    void setSectionDistance(float metres) { m_section = metres; }

private:
    float m_section = 0.0F;
};

} // namespace

int main(int argc, char** argv)
{
    QGuiApplication app(argc, argv);
    app.setApplicationVersion(QStringLiteral("2.7.1"));
    const QStringList arguments = app.arguments();
    if (arguments.size() != 3) {
        qCritical("usage: example-unit LAYOUT SETTINGS");
        return 2;
    }
    CApplicationSettings::instance()->setFileName(arguments.at(2));

    CableReel reel;
    CTolvarLibrary::setReel(&reel);
    Tolvar::Varundo::ZelVideoOverlayElementAccessor accessor; // this manager wants it to the end
    CVideoOverlayManager manager;
    manager.setElementAccessor(&accessor);
    OverlaySwitch overlaySwitch(manager);
    Tolvar::Varundo::Runner runner(&overlaySwitch, &manager, &accessor);
    QObject::connect(&runner, &Tolvar::Varundo::Runner::setDistanceCounterSection, &reel,
                     [&reel](float metres) { reel.setSectionDistance(metres); });
    runner.setInterface(Tolvar::Varundo::Runner::Tcp); // port 9998, and kept in the settings

    QString error;
    if (!manager.loadProfile(arguments.at(1), &error)) {
        qCritical().noquote() << error;
        return 1;
    }
    return app.exec();
}
