// ending_unit MODE SETTINGS-FILE: a host in little, which makes a Runner and ends in one of several ways.

#include "ProcessFigures.h"

#include <CApplicationSettings.h>
#include <Mavril/VideoOverlay/CVideoOverlayManager.h>
#include <Tolvar/Varundo/Runner.h>
#include <Tolvar/Varundo/ZelVideoOverlayElementAccessor.h>
#include <Tolvar/VideoOverlay/CVideoOverlayControlBackend.h>

#include <QGuiApplication>
#include <QTimer>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <unistd.h>

namespace {

class NoControlBackend : public Tolvar::VideoOverlay::CVideoOverlayControlBackend
{
public:
    void setOverlayVisible(bool) override {}
};

/// Turns the event loop for a while; less than a look's interval unless it is told otherwise.
int runFor(int milliseconds)
{
    QTimer::singleShot(milliseconds, QCoreApplication::instance(), &QCoreApplication::quit);
    return QCoreApplication::exec();
}

/// A whole host: makes its parts, runs, and takes them down.
int runAndEnd(int argc, char** argv)
{
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3) {
        std::fprintf(stderr,
                     "usage: ending_unit kept|deleted|no-loop|exit|exit-at-a-look|idle SETTINGS-FILE\n");
        return 2;
    }
    CApplicationSettings::instance()->setFileName(arguments.at(2));
    NoControlBackend backend;
    Mavril::VideoOverlay::CVideoOverlayManager manager;
    Tolvar::Varundo::ZelVideoOverlayElementAccessor accessor;
    auto runner = std::make_unique<Tolvar::Varundo::Runner>(&backend, &manager, &accessor);

    const QString& mode = arguments.at(1);
    if (mode == QLatin1String("kept")) {
        static_cast<void>(runner.release());
        return runFor(0);
    }
    if (mode == QLatin1String("deleted")) {
        const int status = runFor(0);
        runner.reset();
        return status;
    }
    if (mode == QLatin1String("no-loop")) {
        return 0;
    }
    if (mode == QLatin1String("exit") || mode == QLatin1String("exit-at-a-look")) {
        const int delay = mode == QLatin1String("exit") ? 0 : Tolvar::Varundo::Runner::CleanUpIntervalMs * 5;
        QTimer::singleShot(delay, Qt::PreciseTimer, QCoreApplication::instance(), [] { std::exit(0); });
        QCoreApplication::exec();
        return 3; // not reached
    }
    if (mode == QLatin1String("idle")) {
        std::printf("ready\n");
        std::fflush(stdout);
        return QCoreApplication::exec();
    }
    return 2;
}

} // namespace

int main(int argc, char** argv)
{
    const int status = runAndEnd(argc, argv);
    // The application object has gone, and with it, at the latest, the thread of a Runner that was left
    // behind. The kernel takes it off its list a moment later.
    for (int tries = 0; Tolvar::Varundo::Test::watcherThreadCount() > 0; ++tries) {
        if (tries == 200) {
            std::fprintf(stderr, "ending_unit: the watcher's thread is still there\n");
            return 4;
        }
        usleep(1000);
    }
    return status;
}
