// unit_application SECONDS: bare_application with a Runner, and with what a Runner needs of its host.

#include "FootprintReport.h"

#include <CApplicationSettings.h>
#include <Mavril/VideoOverlay/CVideoOverlayManager.h>
#include <Tolvar/Varundo/Runner.h>
#include <Tolvar/Varundo/ZelVideoOverlayElementAccessor.h>
#include <Tolvar/VideoOverlay/CVideoOverlayControlBackend.h>

#include <QGuiApplication>
#include <QTemporaryDir>

namespace {

class NoControlBackend : public Tolvar::VideoOverlay::CVideoOverlayControlBackend
{
public:
    void setOverlayVisible(bool) override {}
};

} // namespace

int main(int argc, char** argv)
{
    const QGuiApplication application(argc, argv);
    const QTemporaryDir directory;
    CApplicationSettings::instance()->setFileName(directory.filePath(QStringLiteral("settings")));
    NoControlBackend backend;
    Mavril::VideoOverlay::CVideoOverlayManager manager;
    Tolvar::Varundo::ZelVideoOverlayElementAccessor accessor;
    manager.setElementAccessor(&accessor);
    const Tolvar::Varundo::Runner runner(&backend, &manager, &accessor);
    return Tolvar::Varundo::Test::runIdleAndReport(QCoreApplication::arguments().value(1).toInt());
}
