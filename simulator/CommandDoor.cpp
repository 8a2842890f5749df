#include "CommandDoor.h"

#include "UnitControl.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>

#include <cerrno>
#include <unistd.h>
#include <utility>

namespace Tolvar::Varundo::Simulator {

namespace {

bool failed(QString* error, const QString& what)
{
    *error = what;
    return false;
}

} // namespace

CommandDoor::CommandDoor(int descriptor, UnitControl& control, Snapshot snapshot, Answer answer,
                         QObject* parent)
    : QObject(parent)
    , m_control(control)
    , m_snapshot(std::move(snapshot))
    , m_answer(std::move(answer))
    , m_notifier(descriptor, QSocketNotifier::Read)
{
    connect(&m_notifier, &QSocketNotifier::activated, this, &CommandDoor::readPending);
}

/// One piece a turn, so that a script that never stops leaves the unit its time.
void CommandDoor::readPending()
{
    char bytes[4096];
    const ssize_t count = read(static_cast<int>(m_notifier.socket()), bytes, sizeof bytes);
    if (count == 0 || (count < 0 && errno != EAGAIN && errno != EINTR)) {
        m_notifier.setEnabled(false);
        if (!m_line.isEmpty()) {
            take(std::exchange(m_line, QByteArray()));
        }
        return;
    }
    for (ssize_t i = 0; i < count; ++i) {
        if (bytes[i] == '\n') {
            take(std::exchange(m_line, QByteArray()));
        } else if (m_line.size() < MaxLineBytes) {
            m_line.append(bytes[i]);
        } else {
            m_tooLong = true;
        }
    }
}

void CommandDoor::take(const QByteArray& line)
{
    const QString text = QString::fromUtf8(line).trimmed();
    QString error;
    if (std::exchange(m_tooLong, false)) {
        error = QStringLiteral("a line of more than %1 bytes").arg(MaxLineBytes);
    } else if (text.isEmpty() || text.startsWith(QLatin1Char('#'))) {
        return;
    } else if (carryOut(text.section(QLatin1Char(' '), 0, 0), text.section(QLatin1Char(' '), 1).trimmed(),
                        &error)) {
        m_answer(QStringLiteral("ok\n"));
        return;
    }
    m_answer(QStringLiteral("error: %1\n").arg(error));
}

bool CommandDoor::carryOut(const QString& verb, const QString& argument, QString* error)
{
    if (verb == QLatin1String("interface")) {
        return m_control.selectInterface(argument, error);
    }
    if (verb == QLatin1String("profile")) {
        return m_control.loadProfile(argument, error);
    }
    if (verb == QLatin1String("devices")) {
        QJsonParseError fault;
        const QJsonDocument readings = QJsonDocument::fromJson(argument.toUtf8(), &fault);
        if (!readings.isObject()) {
            return failed(error,
                          QStringLiteral("devices: expected an object in JSON: ") + fault.errorString());
        }
        return m_control.setDevices(readings.object(), error);
    }
    if (!argument.isEmpty()) {
        return failed(error, QStringLiteral("unknown command \"%1 %2\"").arg(verb, argument));
    }
    if (verb == QLatin1String("plug") || verb == QLatin1String("unplug")) {
        return m_control.setPlugged(verb == QLatin1String("plug"), error);
    }
    if (verb == QLatin1String("snapshot")) {
        return m_snapshot(error);
    }
    return failed(error,
                  QStringLiteral("unknown command \"%1\"; known are interface, profile, devices, plug, "
                                 "unplug, snapshot")
                      .arg(verb));
}

} // namespace Tolvar::Varundo::Simulator
