#include "ResyncCommand.h"

#include "Zelctl.h"

#include <Tolvar/Varundo/Protocol.h>

#include <QEventLoop>
#include <QTimer>

namespace Tolvar::Varundo::Zelctl {

namespace {

// Outside a frame the unit ignores this byte. As the head of a frame it makes a read command, which changes
// nothing, with a payload of 0x0101 bytes. So many of them fill up whatever frame the unit may be waiting
// for.
constexpr char Filler = 0x01;
constexpr int FillerSize = Protocol::MaxPayloadSize + Protocol::FrameOverhead + 0x0101;
constexpr int Attempts = 4;
constexpr int QuietTime = 200; // milliseconds

/// A serial line takes its time for so many bytes: more than a minute at the default rate.
void waitForTransmission(Zelctl& zelctl, int byteCount)
{
    QEventLoop loop;
    QObject::connect(&zelctl.unit(), &Unit::connectionLost, &loop, &QEventLoop::quit);
    QTimer::singleShot(zelctl.unit().transmissionTime(byteCount), &loop, &QEventLoop::quit);
    loop.exec();
}

/// Until the unit has said nothing for a while: only what begins a read of its own can end a held frame.
void waitForQuiet(Zelctl& zelctl)
{
    QEventLoop loop;
    QTimer quiet;
    quiet.setSingleShot(true);
    QObject::connect(&quiet, &QTimer::timeout, &loop, &QEventLoop::quit);
    QObject::connect(&zelctl.unit(), &Unit::received, &quiet, [&quiet] { quiet.start(QuietTime); });
    QObject::connect(&zelctl.unit(), &Unit::connectionLost, &loop, &QEventLoop::quit);
    QTimer::singleShot(zelctl.options().timeout, &loop, &QEventLoop::quit);
    quiet.start(QuietTime);
    loop.exec();
}

/// Ends the frame that the unit may hold, and asks whether it listens.
Unit::Result endFrame(Zelctl& zelctl)
{
    if (!zelctl.unit().writeUnframed(QByteArray(1, static_cast<char>(Protocol::Etx)))) {
        return {Client::Reply::Outcome::ConnectionLost, {}, zelctl.unit().errorText()};
    }
    return zelctl.unit().echo();
}

} // namespace

ExitStatus resynchronise(Zelctl& zelctl, const CommandCall& call)
{
    if (!call.arguments.isEmpty()) {
        return zelctl.usage(
            QStringLiteral("resync: '%1' is more than this command takes").arg(call.arguments.first()));
    }
    Unit::Result result = endFrame(zelctl);
    // Filling up may complete a frame whose payload is left over for the next one; hence more than one
    // attempt.
    for (int attempt = 1; attempt < Attempts && result.exitStatus() == Refused; ++attempt) {
        if (zelctl.unit().writeUnframed(QByteArray(FillerSize, Filler))) {
            waitForTransmission(zelctl, FillerSize);
            waitForQuiet(zelctl);
        }
        result = endFrame(zelctl);
    }
    zelctl.unit().forgetTextCodec();
    QJsonObject object{{QStringLiteral("request"), QStringLiteral("resync")},
                       {QStringLiteral("outcome"),
                        result.succeeded() ? QStringLiteral("in-step") : QStringLiteral("out-of-step")}};
    if (!result.succeeded()) {
        object.insert(QStringLiteral("error"), result.errorText);
        zelctl.printer().error(QStringLiteral("resync: ") + result.errorText);
    }
    zelctl.printer().result(QString(), object);
    return result.exitStatus();
}

} // namespace Tolvar::Varundo::Zelctl
