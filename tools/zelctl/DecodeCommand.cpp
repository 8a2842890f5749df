#include "DecodeCommand.h"

#include "Frames.h"
#include "HexBytes.h"
#include "Zelctl.h"

#include <Tolvar/Varundo/Client/PayloadMeaning.h>

#include <QCommandLineParser>
#include <QFile>

#include <cstdio>

namespace Tolvar::Varundo::Zelctl {

namespace {

using Client::Sender;

QString inputText(const QStringList& arguments)
{
    if (!arguments.isEmpty() && arguments != QStringList(QStringLiteral("-"))) {
        return arguments.join(QLatin1Char(' '));
    }
    QFile input;
    return input.open(stdin, QIODevice::ReadOnly) ? QString::fromLatin1(input.readAll()) : QString();
}

QJsonObject describe(const Frames::Piece& piece, Sender sender, Client::TextCodec codec)
{
    QJsonObject object{{QStringLiteral("kind"), Frames::kindName(piece.kind)},
                       {QStringLiteral("hex"), Printer::hex(piece.bytes)},
                       {QStringLiteral("meaning"), Frames::meaning(piece, sender, codec)}};
    const auto* info = Client::findCommand(piece.frame.grpId, piece.frame.cmdId);
    if (piece.kind != Frames::Kind::Frame || !info) {
        return object;
    }
    const bool isAnswer = sender == Sender::Unit;
    const auto payload =
        Client::payloadMeaning(isAnswer ? info->answer : info->request, piece.frame.data, codec);
    object.insert(QStringLiteral("sender"), isAnswer ? QStringLiteral("unit") : QStringLiteral("controller"));
    object.insert(QStringLiteral("group"), QString(Client::groupName(info->group)));
    object.insert(QStringLiteral("element"), Client::frameElement(piece.frame, sender));
    object.insert(QStringLiteral("verb"), QString(Client::verbName(info->verb)));
    object.insert(QStringLiteral("fields"), payload.fields);
    return object;
}

} // namespace

void declareDecode(QCommandLineParser& parser)
{
    parser.addOption(
        {QStringLiteral("from"),
         QStringLiteral("Who sent the bytes: unit or controller. Without it, each frame is judged by "
                        "its payload."),
         QStringLiteral("SENDER")});
}

ExitStatus decodeBytes(Zelctl& zelctl, const CommandCall& call)
{
    const QString from = call.options.value(QStringLiteral("from"));
    const bool isUnit = from == QLatin1String("unit");
    if (!from.isEmpty() && !isUnit && from != QLatin1String("controller")) {
        return zelctl.usage(QStringLiteral("decode: --from %1: expected unit or controller").arg(from));
    }
    QString error;
    const auto bytes = hexBytes(inputText(call.arguments), &error);
    if (!bytes) {
        return zelctl.usage(QStringLiteral("decode: %1").arg(error));
    }
    const auto codec = zelctl.options().codec.value_or(Client::TextCodec::Latin9);
    ExitStatus status = Done;
    for (const Frames::Piece& piece : Frames::split(*bytes)) {
        const Sender fixed = isUnit ? Sender::Unit : Sender::Controller;
        const Sender sender = from.isEmpty() ? Client::likelySender(piece.frame) : fixed;
        zelctl.printer().result(
            QStringLiteral("%1  %2").arg(Printer::hex(piece.bytes), Frames::meaning(piece, sender, codec)),
            describe(piece, sender, codec));
        if (piece.kind == Frames::Kind::Stray || piece.kind == Frames::Kind::Incomplete) {
            status = Refused;
        }
    }
    return status;
}

} // namespace Tolvar::Varundo::Zelctl
