#include <Tolvar/Varundo/Client/FrameMeaning.h>

#include <Tolvar/Varundo/Client/CommandCatalog.h>
#include <Tolvar/Varundo/Client/PayloadMeaning.h>
#include <Tolvar/Varundo/Protocol.h>

#include <QStringList>

namespace Tolvar::Varundo::Client {

namespace {

/// The element as it is typed: with its number if the payload names one.
QString elementText(const CommandInfo& info, const PayloadMeaning& payload)
{
    QString name = QLatin1String(info.element);
    if (payload.index < 0) {
        return name;
    }
    if (isIndexedElement(name)) {
        return QStringLiteral("%1-%2").arg(name).arg(payload.index);
    }
    const QString colored = elementOfColorNumber(static_cast<quint8>(payload.index));
    return colored.isEmpty() ? QStringLiteral("%1-%2").arg(name).arg(payload.index) : colored;
}

QString joined(const QStringList& words)
{
    QStringList used = words;
    used.removeAll(QString());
    return used.join(QLatin1Char(' '));
}

} // namespace

QString frameMeaning(const CommandMessage& message, Sender sender, TextCodec codec)
{
    const bool isAnswer = sender == Sender::Unit;
    const QString prefix = isAnswer ? QStringLiteral("answer:") : QString();
    const CommandInfo* info = findCommand(message.grpId, message.cmdId);
    if (!info || (isAnswer && info->group != Protocol::Read)) {
        const QString group = message.grpId <= Protocol::LastGroup
                                  ? QString(groupName(static_cast<Protocol::Group>(message.grpId)))
                                  : QStringLiteral("group %1").arg(message.grpId);
        return joined({prefix, QStringLiteral("unknown"), group,
                       QStringLiteral("command 0x%1,").arg(message.cmdId, 2, 16, QLatin1Char('0')),
                       QStringLiteral("%1 payload bytes").arg(message.data.size())});
    }
    const PayloadMeaning payload =
        payloadMeaning(isAnswer ? info->answer : info->request, message.data, codec);
    const QString element = elementText(*info, payload);
    const QString verb = verbName(info->verb);
    // The payload of an execute command is never looked at, by the unit either.
    const QString values =
        payload.valid || info->group == Protocol::Execute
            ? payload.quotedText
            : QStringLiteral("(payload of %1 bytes does not fit)").arg(message.data.size());
    if (isAnswer) {
        return joined({prefix, element, verb, values});
    }
    if (info->group != Protocol::Execute) {
        return joined({groupName(info->group), element, verb, values});
    }
    const bool elementFirst =
        info->verb != Verb::Show && info->verb != Verb::Hide && info->verb != Verb::Toggle;
    return elementFirst ? joined({element, verb}) : joined({verb, element});
}

QString frameElement(const CommandMessage& message, Sender sender)
{
    const CommandInfo* info = findCommand(message.grpId, message.cmdId);
    if (!info) {
        return QString();
    }
    const PayloadKind kind = sender == Sender::Unit ? info->answer : info->request;
    return elementText(*info, payloadMeaning(kind, message.data, TextCodec::Latin9));
}

Sender likelySender(const CommandMessage& message)
{
    const CommandInfo* info = findCommand(message.grpId, message.cmdId);
    if (message.grpId != Protocol::Read || message.data.isEmpty()) {
        return Sender::Controller;
    }
    const bool mayBeRequest = info && info->request != PayloadKind::None && message.data.size() == 1;
    return mayBeRequest ? Sender::Controller : Sender::Unit;
}

} // namespace Tolvar::Varundo::Client
