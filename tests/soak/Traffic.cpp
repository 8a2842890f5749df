#include "Traffic.h"

#include <QHash>
#include <QTimer>

namespace Tolvar::Varundo::Test {

using namespace Client;
using Protocol::Execute;
using Protocol::Read;

namespace {

/// Texts that controllers made stay until somebody removes them.
constexpr int commandsBetweenClearings = 200;

} // namespace

Traffic::Traffic(QIODevice* device, const QString& name, quint32 seed, QObject* parent)
    : QObject(parent)
    , m_client(device, name)
    , m_random(seed)
{
    m_client.setWindow(Window);
    m_client.setTimeout(TimeoutMs);
}

void Traffic::start()
{
    m_running = true;
    QTimer::singleShot(0, this, &Traffic::sendNext);
}

void Traffic::stop()
{
    m_running = false;
}

void Traffic::sendNext()
{
    while (m_running && m_underWay < Window) {
        ++m_underWay;
        Reply* const reply = m_client.send(nextCommand());
        connect(reply, &Reply::finished, this, [this, reply] {
            reply->deleteLater();
            finished(*reply);
            sendNext();
        });
    }
}

void Traffic::finished(const Reply& reply)
{
    --m_underWay;
    if (reply.succeeded()) {
        ++m_done;
    } else if (m_disturbed || !m_running) {
        ++m_lost;
    } else {
        ++m_errors;
        if (m_firstError.isEmpty()) {
            m_firstError = QStringLiteral("command %1 of group %2, after %3: %4")
                               .arg(reply.command().cmdId, 2, 16, QLatin1Char('0'))
                               .arg(reply.command().grpId)
                               .arg(m_done)
                               .arg(reply.errorText());
        }
    }
}

CommandMessage Traffic::nextCommand()
{
    if (++m_sent % commandsBetweenClearings == 0) {
        return makeCommand(*findCommand(Execute, u"overlay", Verb::Clear));
    }
    if (m_selected && random(8) == 0) {
        m_client.writeUnframed(QByteArray(1 + random(5), static_cast<char>('A' + random(26))));
    }
    const CommandRange all = allCommands();
    const CommandInfo* command = nullptr;
    do {
        command = all.begin() + random(static_cast<int>(all.size()));
    } while (command->group == Read && !m_selected);
    return makeCommand(*command, randomPayload(command->request));
}

/// Mostly of the right length, as the unit acknowledges the others all the same.
QByteArray Traffic::randomPayload(PayloadKind kind)
{
    static const QHash<int, int> lengths = {
        {int(PayloadKind::None), 0},         {int(PayloadKind::Codec), 1},
        {int(PayloadKind::Format), 1},       {int(PayloadKind::Single), 4},
        {int(PayloadKind::Position), 2},     {int(PayloadKind::Date), 4},
        {int(PayloadKind::Time), 3},         {int(PayloadKind::VideoCounter), 3},
        {int(PayloadKind::Colors), 1},       {int(PayloadKind::NumberedColors), 2},
        {int(PayloadKind::Point3D), 24},     {int(PayloadKind::Orientation), 8},
        {int(PayloadKind::PackedNumber), 1}, {int(PayloadKind::Index), 1},
    };
    const int length = random(20) == 0 ? random(64) : lengths.value(int(kind), random(40));
    QByteArray payload;
    for (int i = 0; i < length; ++i) {
        // Small numbers are those that mean something: positions, line numbers, codecs.
        payload.append(static_cast<char>(random(2) == 0 ? random(25) : random(256)));
    }
    return payload;
}

} // namespace Tolvar::Varundo::Test
