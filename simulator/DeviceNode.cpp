#include "DeviceNode.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Tolvar::Varundo::Simulator {

/// A mount is the better node, since it is a device to whoever looks; where mounts are not permitted a link
/// has to do.
DeviceNode::DeviceNode(const QString& node, const QString& device)
    : m_node(QFile::encodeName(node))
    , m_device(QFile::encodeName(device))
{
    if (makeMount() || (errno != EEXIST && makeLink())) {
        return;
    }
    const int reason = errno;
    m_error = reason == EEXIST
                  ? QStringLiteral("%1 exists already and is left alone; take the adapter out, or if a "
                                   "simulator that was killed has left it: umount %1; rm %1")
                        .arg(node)
                  : QStringLiteral("cannot make %1: %2; run as root, or in a /dev of your own under "
                                   "\"unshare -rm\" as docs/simulator.md shows")
                        .arg(node, qt_error_string(reason));
}

DeviceNode::~DeviceNode()
{
    struct stat left
    {};
    if (m_kind == Kind::Mount) {
        umount2(m_node.constData(), MNT_DETACH);
        // Only the empty file that was mounted upon: somebody may have put something else there by now.
        if (lstat(m_node.constData(), &left) == 0 && S_ISREG(left.st_mode) && left.st_size == 0) {
            unlink(m_node.constData());
        }
    } else if (m_kind == Kind::Link &&
               QFile::encodeName(QFile::symLinkTarget(QFile::decodeName(m_node))) == m_device) {
        unlink(m_node.constData());
    }
}

bool DeviceNode::makeMount()
{
    const int file = open(m_node.constData(), O_CREAT | O_EXCL | O_WRONLY | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (file < 0) {
        return false;
    }
    close(file);
    if (mount(m_device.constData(), m_node.constData(), nullptr, MS_BIND, nullptr) != 0) {
        const int reason = errno;
        unlink(m_node.constData());
        errno = reason;
        return false;
    }
    m_kind = Kind::Mount;
    return true;
}

bool DeviceNode::makeLink()
{
    if (symlink(m_device.constData(), m_node.constData()) != 0) {
        return false;
    }
    m_kind = Kind::Link;
    return true;
}

} // namespace Tolvar::Varundo::Simulator
