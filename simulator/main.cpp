#include "FrameRenderer.h"
#include "Options.h"
#include "SimulatedUnit.h"
#include "SnapshotWriter.h"
#include "StateReport.h"
#include "TcpDoor.h"
#include "TextGrid.h"
#include "UnixSignals.h"

#include <CApplicationSettings.h>

#include <QFontDatabase>
#include <QGuiApplication>

#include <cstdio>

using namespace Tolvar::Varundo::Simulator;

namespace {

constexpr int usageStatus = 2;

int failed(const QString& what, int status = EXIT_FAILURE)
{
    std::fprintf(stderr, "varundo-simulator: %s\n", qPrintable(what));
    return status;
}

void say(const QString& line)
{
    std::fputs(qPrintable(line), stdout);
    std::fflush(stdout); // whoever started us waits for it
}

int run(const QGuiApplication& application, const Options& options)
{
    if (!options.settingsFile.isEmpty()) {
        CApplicationSettings::instance()->setFileName(options.settingsFile);
    }
    const int port = options.tcpPort == 0 ? TcpDoor::freePort() : options.tcpPort;
    SimulatedUnit unit({options.interface, port, options.clock, options.profileFile});
    if (!TcpDoor::isOpen(port)) {
        return failed(
            QStringLiteral("cannot listen on TCP port %1: %2").arg(port).arg(TcpDoor::whyClosed(port)));
    }
    QString error;
    if (!unit.start(&error)) {
        return failed(error);
    }
    const FrameRenderer renderer(unit, options.pictureSize);
    const StateReport state(unit);
    const SnapshotWriter snapshot(renderer, state, options.pictureFile, options.stateFile);

    const UnixSignals unixSignals;
    QObject::connect(&unixSignals, &UnixSignals::endRequested, &application, &QGuiApplication::quit);
    QObject::connect(&unixSignals, &UnixSignals::snapshotRequested, &unit, [&snapshot] {
        QString reason;
        if (!snapshot.write(&reason)) {
            failed(reason);
        }
    });

    say(QStringLiteral("ready: tcp %1\n").arg(port));
    const int status = QGuiApplication::exec();
    return snapshot.write(&error) ? status : failed(error);
}

} // namespace

int main(int argc, char** argv)
{
    UnixSignals::block();
    // The picture is drawn into memory; no display is needed, and none is looked for.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QGuiApplication application(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("varundo-simulator"));
    QGuiApplication::setApplicationVersion(QStringLiteral(VARUNDO_VERSION));

    QString error;
    const auto options = Options::read(QGuiApplication::arguments(), &error);
    if (!options) {
        return failed(error + QStringLiteral("\nTry --help."), usageStatus);
    }
    if (!options->answer.isEmpty()) {
        say(options->answer);
        return EXIT_SUCCESS;
    }
    if (QFontDatabase().families().isEmpty()) {
        failed(QStringLiteral("there is no font; the picture will have no texts. Debian: apt-get install "
                              "fonts-dejavu-core"));
    }
    // What the library measures texts in is what they are drawn in.
    QGuiApplication::setFont(TextGrid(options->pictureSize).font());
    return run(application, *options);
}
