#include "CommandDoor.h"
#include "DeviceMover.h"
#include "DeviceScript.h"
#include "FrameRenderer.h"
#include "Options.h"
#include "SimulatedUnit.h"
#include "SnapshotWriter.h"
#include "StateReport.h"
#include "TcpDoor.h"
#include "TextGrid.h"
#include "UnitControl.h"
#include "UnixSignals.h"
#include "VirtualSerialLine.h"

#include <CApplicationSettings.h>

#include <QFontDatabase>
#include <QGuiApplication>

#include <cstdio>
#include <memory>
#include <optional>

#include <unistd.h>

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

/// What may fail before there is a unit.
struct Extras
{
    std::optional<DeviceScript> script;
    std::unique_ptr<VirtualSerialLine> serialLine;

    bool prepare(const Options& options, QString* error)
    {
        if (!options.devicesFile.isEmpty()) {
            script = DeviceScript::readFile(options.devicesFile, error);
            if (!script) {
                return false;
            }
        }
        if (options.virtualSerial) {
            serialLine = std::make_unique<VirtualSerialLine>();
            return serialLine->plug(error);
        }
        return true;
    }
};

QString readyLine(int port, const VirtualSerialLine* line)
{
    QString doors = QStringLiteral("tcp %1").arg(port);
    if (line) {
        doors += QStringLiteral(", serial %1 <- %2").arg(VirtualSerialLine::device(), line->controller());
    }
    return QStringLiteral("ready: %1\n").arg(doors);
}

int serve(SimulatedUnit& unit, Extras& extras, const Options& options)
{
    const FrameRenderer renderer(unit, options.pictureSize);
    const StateReport state(unit, extras.serialLine.get());
    const SnapshotWriter snapshot(renderer, state, options.pictureFile, options.stateFile);

    const UnixSignals unixSignals;
    QObject::connect(&unixSignals, &UnixSignals::endRequested, qApp, &QGuiApplication::quit);
    UnitControl control(unit, extras.serialLine.get());
    QObject::connect(&unixSignals, &UnixSignals::plugRequested, &unit, [&control] {
        QString reason;
        if (!control.togglePlug(&reason)) {
            failed(QStringLiteral("SIGUSR2: ") + reason);
        }
    });
    QObject::connect(&unixSignals, &UnixSignals::snapshotRequested, &unit, [&snapshot] {
        QString reason;
        if (!snapshot.write(&reason)) {
            failed(reason);
        }
    });
    std::optional<CommandDoor> commandDoor;
    if (options.takesCommands) {
        commandDoor.emplace(
            STDIN_FILENO, control, [&snapshot](QString* reason) { return snapshot.write(reason); }, say);
    }

    say(readyLine(unit.runner().zelTcpPort(), extras.serialLine.get()));
    std::optional<DeviceMover> mover;
    if (extras.script) {
        mover.emplace(*extras.script, unit.devices());
        mover->start();
    }
    const int status = QGuiApplication::exec();
    QString error;
    return snapshot.write(&error) ? status : failed(error);
}

int run(const Options& options)
{
    if (!options.settingsFile.isEmpty()) {
        CApplicationSettings::instance()->setFileName(options.settingsFile);
    }
    QString error;
    Extras extras;
    if (!extras.prepare(options, &error)) {
        return failed(error);
    }
    const int port = options.tcpPort == 0 ? TcpDoor::freePort() : options.tcpPort;
    SimulatedUnit unit({options.interface, port, options.clock, options.profileFile});
    if (!TcpDoor::isOpen(port)) {
        return failed(
            QStringLiteral("cannot listen on TCP port %1: %2").arg(port).arg(TcpDoor::whyClosed(port)));
    }
    return unit.start(&error) ? serve(unit, extras, options) : failed(error);
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
    return run(*options);
}
