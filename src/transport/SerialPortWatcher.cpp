#include <Tolvar/Varundo/SerialPortWatcher.h>

#include "TransportLog.h"

#include <QTimer>

#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

namespace Tolvar::Varundo {

namespace {

struct Adapter
{
    const char* name;
    const char* node;
};

// Adapters enumerate as ttyUSB1 on units whose own electronics hold ttyUSB0, and as ttyUSB0 on the others.
constexpr Adapter adaptersByPreference[] = {{"ttyUSB1", "/dev/ttyUSB1"}, {"ttyUSB0", "/dev/ttyUSB0"}};

/// Tells one node from a later one of the same name; 0 when there is none. The kernel is asked without Qt
/// between: a look may fall into the end of the process, when Qt's globals are no longer to be used. And by
/// statx(), since where time stamps have 32 bits stat() fails for a node that is dated after 2038.
quint64 nodeIdentity(const char* node)
{
    struct statx found
    {};
    return statx(AT_FDCWD, node, AT_NO_AUTOMOUNT, STATX_INO, &found) == 0 ? found.stx_ino : 0;
}

/// Null when there is no adapter.
const Adapter* findAdapter()
{
    for (const Adapter& adapter : adaptersByPreference) {
        if (nodeIdentity(adapter.node) != 0) {
            return &adapter;
        }
    }
    return nullptr;
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
    if (const Adapter* const found = findAdapter()) {
        // Kept even when it is not reported: only the first appearance is.
        m_portName = QLatin1String(found->name);
        if (!std::exchange(m_connected, true)) {
            m_reportedNode = found->node;
            m_reportedIdentity = nodeIdentity(found->node);
            emit serialPortConnected(m_portName);
        } else {
            tellOfAnExchange();
        }
    } else if (std::exchange(m_connected, false)) {
        m_reportedNode = nullptr;
        emit serialPortDisconnected();
    }
}

/// An adapter that takes another's place between two looks is not reported, so nothing is sent or received
/// until both nodes have been away at a look. Whoever stands before the silent unit finds out from the log.
void SerialPortWatcher::tellOfAnExchange()
{
    if (m_reportedNode && nodeIdentity(m_reportedNode) != m_reportedIdentity) {
        qCWarning(
            transportLog,
            "the adapter at %s has gone and %s is in its place; it is not taken up until no adapter has "
            "been there for %d ms",
            m_reportedNode, qPrintable(m_portName), PollIntervalMs);
        m_reportedNode = nullptr; // told once
    }
}

} // namespace Tolvar::Varundo
