#ifndef TOLVAR_VARUNDO_TEST_PSEUDOADAPTER_H
#define TOLVAR_VARUNDO_TEST_PSEUDOADAPTER_H

#include <QByteArray>
#include <QCoreApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

namespace Tolvar::Varundo::Test {

/// A USB serial adapter without hardware: a pseudo-terminal whose one end stands at an adapter's device node,
/// and whose other end is the controller's. Needs a /dev of the test's own (isolate).
///
/// Plugged in by its constructor, pulled by its destructor; in between it can be pulled and plugged at will.
class PseudoAdapter
{
public:
    explicit PseudoAdapter(const char* node = "/dev/ttyUSB1")
        : m_node(node)
    {
        static_cast<void>(plug());
    }
    ~PseudoAdapter() { unplug(); }
    PseudoAdapter(const PseudoAdapter&) = delete;
    PseudoAdapter& operator=(const PseudoAdapter&) = delete;

    [[nodiscard]] bool isPlugged() const { return m_controller >= 0 && m_nodeMounted; }

    [[nodiscard]] bool plug()
    {
        m_controller = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
        if (m_controller < 0 || grantpt(m_controller) != 0 || unlockpt(m_controller) != 0) {
            return false;
        }
        const char* const unitEnd = ptsname(m_controller);
        struct stat device
        {};
        const int node = open(m_node.constData(), O_CREAT | O_WRONLY | O_CLOEXEC, 0666);
        if (!unitEnd || stat(unitEnd, &device) != 0 || node < 0) {
            return false;
        }
        close(node);
        m_device = device.st_rdev;
        m_nodeMounted = mount(unitEnd, m_node.constData(), "", MS_BIND, nullptr) == 0;
        return m_nodeMounted;
    }

    /// The node goes and the line hangs up, as when the plug is pulled.
    void unplug()
    {
        removeNodeOnly();
        hangUpOnly();
    }

    /// The line hangs up, the node is still there.
    void hangUpOnly()
    {
        if (m_controller >= 0) {
            close(m_controller);
            m_controller = -1;
        }
    }

    /// The node goes, the line stays.
    void removeNodeOnly()
    {
        if (m_nodeMounted) {
            umount2(m_node.constData(), MNT_DETACH);
            m_nodeMounted = false;
            ::unlink(m_node.constData());
        }
    }

    /// Whether this process, the unit, holds the adapter open. True also for one that was pulled meanwhile.
    [[nodiscard]] bool isOpenedByUnit() const
    {
        const long limit = sysconf(_SC_OPEN_MAX);
        for (int handle = 0; handle < std::min(limit, 1024L); ++handle) {
            struct stat device
            {};
            if (handle != m_controller && fstat(handle, &device) == 0 && S_ISCHR(device.st_mode) &&
                device.st_rdev == m_device) {
                return true;
            }
        }
        return false;
    }

    /// What the unit has set on the line.
    [[nodiscard]] termios line() const
    {
        termios settings{};
        tcgetattr(m_controller, &settings);
        return settings;
    }

    /// Sends what the line takes at once, and returns how many bytes that were. A line that nobody reads
    /// takes some kilobytes.
    int send(const QByteArray& bytes)
    {
        const ssize_t count = ::write(m_controller, bytes.constData(), static_cast<size_t>(bytes.size()));
        return static_cast<int>(std::max<ssize_t>(count, 0));
    }

    /// All that has arrived for the controller.
    QByteArray take()
    {
        QByteArray all;
        char some[4096];
        for (;;) {
            const ssize_t count = ::read(m_controller, some, sizeof some);
            if (count <= 0) {
                return all;
            }
            all.append(some, static_cast<int>(count));
        }
    }

    /// Turns the event loop until so many bytes have arrived for the controller, or time is up.
    QByteArray receive(int atLeast, int timeoutMs = 5000)
    {
        return transfer(QByteArray(), atLeast, timeoutMs);
    }

    /// Sends all, however little the line takes at a time, and returns what comes back: at least so many
    /// bytes, and what follows them at once.
    QByteArray exchange(const QByteArray& bytes, int atLeast = 1, int timeoutMs = 5000)
    {
        const QByteArray received = transfer(bytes, atLeast, timeoutMs);
        return received + transfer(QByteArray(), 1, 5);
    }

private:
    QByteArray transfer(const QByteArray& bytes, int atLeast, int timeoutMs)
    {
        QByteArray received;
        int sent = 0;
        QElapsedTimer timer;
        timer.start();
        do {
            QCoreApplication::processEvents();
            sent += send(bytes.mid(sent));
            received += take();
            if (sent == bytes.size() && received.size() >= atLeast) {
                break;
            }
            pollfd controller{m_controller, POLLIN, 0};
            poll(&controller, 1, 1);
        } while (timer.elapsed() < timeoutMs);
        return received;
    }

    QByteArray m_node;
    dev_t m_device = 0;
    int m_controller = -1;
    bool m_nodeMounted = false;
};

} // namespace Tolvar::Varundo::Test

#endif
