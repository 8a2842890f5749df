// The simulator's unit, whose overlay with all its elements is redrawn 25 times a second in the thread that
// serves the controller, as a recorder does it.

#include "ServerArguments.h"

#include <CApplicationSettings.h>
#include <OverlayPainter.h>
#include <SimulatedUnit.h>

#include <QGuiApplication>
#include <QImage>
#include <QLoggingCategory>
#include <QPainter>
#include <QTemporaryDir>
#include <QTimer>

using namespace Tolvar::Varundo;

namespace {

constexpr int framesPerSecond = 25;
const QSize pictureSize(720, 576);

} // namespace

int main(int argc, char** argv)
{
    const Bench::ServerArguments arguments = Bench::serverArguments(argc, argv, Bench::Wire::Zel);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("varundo.*=false"));

    const QTemporaryDir directory;
    CApplicationSettings::instance()->setFileName(directory.filePath(QStringLiteral("settings")));
    Simulator::SimulatedUnit unit({Runner::Tcp, arguments.port, {}, {}});
    QString error;
    if (!unit.start(&error)) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return 1;
    }

    const Simulator::OverlayPainter overlay(unit.elementTexts(), pictureSize);
    QImage picture(pictureSize, QImage::Format_ARGB32_Premultiplied);
    QTimer redraw;
    redraw.setTimerType(Qt::PreciseTimer);
    QObject::connect(&redraw, &QTimer::timeout, &redraw, [&] {
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        overlay.paint(painter, unit.overlay());
    });
    redraw.start(1000 / framesPerSecond);
    Bench::tellReady();
    return QCoreApplication::exec();
}
