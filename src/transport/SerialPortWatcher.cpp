#include <Tolvar/Varundo/SerialPortWatcher.h>

#include <QFile>
#include <QTimer>

#include <utility>

namespace Tolvar::Varundo {

namespace {

// Adapters enumerate as ttyUSB1 on units whose own electronics hold ttyUSB0, and as ttyUSB0 on the others.
constexpr const char* namesByPreference[] = {"ttyUSB1", "ttyUSB0"};

/// Empty when there is no adapter.
QString findAdapter()
{
    for (const char* const name : namesByPreference) {
        if (QFile::exists(QStringLiteral("/dev/") + QLatin1String(name))) {
            return QLatin1String(name);
        }
    }
    return {};
}

} // namespace

SerialPortWatcher::SerialPortWatcher(QString portName, QObject* parent)
    : QObject(parent)
    , m_portName(std::move(portName))
    , m_pollTimer(new QTimer(this))
{
    connect(m_pollTimer, &QTimer::timeout, this, &SerialPortWatcher::checkPorts);
}

void SerialPortWatcher::startWatching()
{
    m_pollTimer->start(PollIntervalMs);
}

void SerialPortWatcher::stopWatching()
{
    m_pollTimer->stop();
}

void SerialPortWatcher::setPortName(QString portName)
{
    m_portName = std::move(portName);
}

void SerialPortWatcher::checkPorts()
{
    const QString found = findAdapter();
    if (!found.isEmpty()) {
        // Kept even when it is not reported: only the first appearance is.
        m_portName = found;
        if (!std::exchange(m_connected, true)) {
            emit serialPortConnected(m_portName);
        }
    } else if (std::exchange(m_connected, false)) {
        emit serialPortDisconnected();
    }
}

} // namespace Tolvar::Varundo
