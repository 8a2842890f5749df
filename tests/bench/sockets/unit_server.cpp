// The library in a bare host: an event loop, the reference overlay with the elements that the load touches,
// no devices and no picture. Nothing that the load asks for measures text, so no QGuiApplication is needed.

#include "ServerArguments.h"

#include <CApplicationSettings.h>
#include <Mavril/VideoOverlay/CVideoOverlayManager.h>
#include <Tolvar/Varundo/Runner.h>
#include <Tolvar/Varundo/ZelVideoOverlayElementAccessor.h>

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QTemporaryDir>

using namespace Tolvar::Varundo;

namespace {

constexpr const char* profile = R"({"name": "bench", "elements": [
    {"kind": "bound", "binding": "SectionDistanceCounter", "column": 1, "row": 1},
    {"kind": "bound", "binding": "CameraPan", "column": 1, "row": 2},
    {"kind": "static", "id": 1, "text": "line"}]})";

} // namespace

int main(int argc, char** argv)
{
    const Bench::ServerArguments arguments = Bench::serverArguments(argc, argv, Bench::Wire::Zel);
    const QCoreApplication application(argc, argv);
    // No devices here, and the default port may be in use: neither is worth a word.
    QLoggingCategory::setFilterRules(QStringLiteral("varundo.runner=false\nvarundo.transport=false"));

    const QTemporaryDir directory;
    CApplicationSettings* const settings = CApplicationSettings::instance();
    settings->setFileName(directory.filePath(QStringLiteral("settings")));
    settings->setCustomSetting(QStringLiteral("ZEL_INTERFACE"), QStringLiteral("Tcp"));

    Mavril::VideoOverlay::CVideoOverlayManager manager;
    ZelVideoOverlayElementAccessor accessor;
    manager.setElementAccessor(&accessor);
    Runner runner(nullptr, &manager, &accessor);
    runner.setZelTcpPort(arguments.port);
    QString error;
    if (!manager.loadProfileData(profile, QStringLiteral("bench"), &error)) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return 1;
    }
    Bench::tellReady();
    return QCoreApplication::exec();
}
