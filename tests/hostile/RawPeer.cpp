#include "RawPeer.h"

#include <arpa/inet.h>
#include <cerrno>
#include <fcntl.h>
#include <linux/filter.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

namespace Tolvar::Varundo::Test {

namespace {

constexpr int patience = 30000;

} // namespace

RawPeer RawPeer::connectTo(int port)
{
    const int descriptor = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<quint16>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        ::close(descriptor);
        return RawPeer(-1);
    }
    const int yes = 1;
    setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
    fcntl(descriptor, F_SETFL, O_NONBLOCK);
    return RawPeer(descriptor);
}

RawPeer RawPeer::openDevice(const QByteArray& device)
{
    const int descriptor = open(device.constData(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    termios settings{};
    if (tcgetattr(descriptor, &settings) == 0) {
        cfmakeraw(&settings);
        tcsetattr(descriptor, TCSANOW, &settings);
    }
    return RawPeer(descriptor);
}

bool RawPeer::waitFor(short event, int milliseconds) const
{
    pollfd state{m_descriptor, event, 0};
    return poll(&state, 1, milliseconds) == 1;
}

bool RawPeer::send(const QByteArray& bytes)
{
    return sendUntilBlocked(bytes, bytes.size(), patience) == bytes.size();
}

qint64 RawPeer::sendUntilBlocked(const QByteArray& block, qint64 atMost, int patienceMs)
{
    qint64 sent = 0;
    while (sent < atMost) {
        const qint64 at = sent % block.size();
        const ssize_t count = write(m_descriptor, block.constData() + at,
                                    static_cast<size_t>(qMin(block.size() - at, atMost - sent)));
        if (count > 0) {
            sent += count;
        } else if (errno != EAGAIN || !waitFor(POLLOUT, patienceMs)) {
            break;
        }
    }
    return sent;
}

QByteArray RawPeer::receive(qint64 count)
{
    QByteArray received;
    char bytes[65536];
    while (received.size() < count) {
        const auto wanted = static_cast<size_t>(qMin<qint64>(count - received.size(), sizeof bytes));
        const ssize_t got = read(m_descriptor, bytes, wanted);
        if (got > 0) {
            received.append(bytes, static_cast<int>(got));
        } else if (got == 0 || errno != EAGAIN || !waitFor(POLLIN, patience)) {
            break;
        }
    }
    return received;
}

QByteArray RawPeer::receiveUpTo(int most, int milliseconds)
{
    QByteArray received;
    waitFor(POLLIN, milliseconds);
    received.resize(most);
    const ssize_t got = read(m_descriptor, received.data(), static_cast<size_t>(most));
    received.resize(got > 0 ? static_cast<int>(got) : 0);
    return received;
}

QByteArray RawPeer::receiveFor(int milliseconds)
{
    QByteArray received;
    char bytes[65536];
    while (waitFor(POLLIN, milliseconds)) {
        const ssize_t got = read(m_descriptor, bytes, sizeof bytes);
        if (got <= 0) {
            break;
        }
        received.append(bytes, static_cast<int>(got));
    }
    return received;
}

void RawPeer::close()
{
    if (m_descriptor >= 0) {
        ::close(std::exchange(m_descriptor, -1));
    }
}

void RawPeer::reset()
{
    const linger atOnce{1, 0};
    setsockopt(m_descriptor, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    close();
}

bool RawPeer::vanish()
{
    sock_filter takeNothing{BPF_RET | BPF_K, 0, 0, 0};
    const sock_fprog filter{1, &takeNothing};
    return setsockopt(m_descriptor, SOL_SOCKET, SO_ATTACH_FILTER, &filter, sizeof filter) == 0;
}

} // namespace Tolvar::Varundo::Test
