#include "DeviceNode.h"

#include <QFile>

#include <cerrno>
#include <unistd.h>

namespace Tolvar::Varundo::Simulator {

DeviceNode::DeviceNode(const QString& node, const QString& device)
    : m_node(QFile::encodeName(node))
    , m_device(QFile::encodeName(device))
    , m_isMade(symlink(m_device.constData(), m_node.constData()) == 0)
{
    if (m_isMade) {
        return;
    }
    const int reason = errno;
    m_error = reason == EEXIST
                  ? QStringLiteral("%1 exists already and is left alone; take the adapter out, or if a "
                                   "simulator that was killed has left it: rm %1")
                        .arg(node)
                  : QStringLiteral("cannot make %1: %2; run as root, or in a /dev of your own under "
                                   "\"unshare -rm\" as docs/simulator.md shows")
                        .arg(node, qt_error_string(reason));
}

/// Somebody may have put something else there by now.
DeviceNode::~DeviceNode()
{
    char target[256];
    const ssize_t length = m_isMade ? readlink(m_node.constData(), target, sizeof target) : -1;
    if (length >= 0 && QByteArray(target, static_cast<int>(length)) == m_device) {
        unlink(m_node.constData());
    }
}

} // namespace Tolvar::Varundo::Simulator
