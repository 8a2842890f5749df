#include "ClientSocket.h"

#include <Tolvar/Varundo/TcpServer.h>

#include <QHostAddress>
#include <QPointer>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace Tolvar::Varundo {

namespace {

void setOption(int descriptor, int level, int name, int value)
{
    setsockopt(descriptor, level, name, &value, sizeof value);
}

/// The notifiers see to the next attempt.
bool isTemporary(int error)
{
    return error == EAGAIN || error == EINTR;
}

QString peerOf(int descriptor)
{
    sockaddr_storage address{};
    socklen_t size = sizeof address;
    auto* const any = reinterpret_cast<sockaddr*>(&address);
    if (getpeername(descriptor, any, &size) != 0) {
        return QStringLiteral("that is gone already");
    }
    const quint16 port = ntohs(any->sa_family == AF_INET6 ? reinterpret_cast<sockaddr_in6*>(any)->sin6_port
                                                          : reinterpret_cast<sockaddr_in*>(any)->sin_port);
    return QStringLiteral("%1 port %2").arg(QHostAddress(any).toString()).arg(port);
}

} // namespace

ClientSocket::ClientSocket(int descriptor, int maxUnreadBytes, QObject* parent)
    : QObject(parent)
    , m_descriptor(descriptor)
    , m_maxUnreadBytes(maxUnreadBytes)
    , m_readable(descriptor, QSocketNotifier::Read, this)
    , m_writable(descriptor, QSocketNotifier::Write, this)
    , m_peer(peerOf(descriptor))
{
    m_writable.setEnabled(false);
    setOptions();
    connect(&m_readable, &QSocketNotifier::activated, this, &ClientSocket::onReadable);
    connect(&m_writable, &QSocketNotifier::activated, this, &ClientSocket::onWritable);
}

ClientSocket::~ClientSocket()
{
    if (m_descriptor >= 0) {
        closeDescriptor();
    }
}

void ClientSocket::setOptions()
{
    // Acknowledgement and answer are two small writes; without this the second one waits for the peer's
    // delayed ACK.
    setOption(m_descriptor, IPPROTO_TCP, TCP_NODELAY, 1);
    // A controller whose cable was cut never says goodbye.
    setOption(m_descriptor, SOL_SOCKET, SO_KEEPALIVE, 1);
    // Else the kernel lets it grow to megabytes, for each of the clients that stay open and never read.
    setOption(m_descriptor, SOL_SOCKET, SO_SNDBUF, TcpServer::KernelSendBufferBytes);
}

int ClientSocket::read(char* buffer, int size)
{
    m_wasRead = true;
    if (!m_unread.isEmpty()) {
        const int taken = std::min(size, m_unread.size());
        std::memcpy(buffer, m_unread.constData(), static_cast<std::size_t>(taken));
        m_unread.remove(0, taken);
        m_readable.setEnabled(m_connected);
        return taken;
    }
    return m_mayHaveMore ? receive(buffer, size) : 0;
}

QByteArray ClientSocket::takeUnread()
{
    m_readable.setEnabled(m_connected);
    return std::exchange(m_unread, QByteArray());
}

void ClientSocket::send(const char* bytes, int size)
{
    if (!m_connected) {
        return;
    }
    // There may be room by now, though the event loop has not told: a slot can take long.
    if (hasQueue()) {
        sendQueued();
    }
    const int sent = m_connected && !hasQueue() ? sendNow(bytes, size) : 0;
    if (m_connected && sent < size) {
        m_queue.append(bytes + sent, size - sent);
        m_writable.setEnabled(true);
    }
    m_mayHaveMore = m_mayHaveMore || m_readsLeft > 0; // the peer may have gone on meanwhile
}

void ClientSocket::abort()
{
    if (m_descriptor < 0) {
        return;
    }
    m_connected = false;
    while (m_unread.size() < m_maxUnreadBytes && m_mayHaveMore) {
        keepUnread();
    }
    m_queue.clear();
    m_queueStart = 0;
    closeDescriptor();
    emit disconnected();
}

/// The notifiers themselves are deleted with this object only: one of them may be calling.
void ClientSocket::closeDescriptor()
{
    m_readable.setEnabled(false);
    m_writable.setEnabled(false);
    close(std::exchange(m_descriptor, -1));
}

void ClientSocket::onReadable()
{
    const QPointer<ClientSocket> self(this);
    m_mayHaveMore = true;
    m_readsLeft = MaxReadsATurn;
    m_wasRead = false;
    emit readyRead();
    if (!self || m_descriptor < 0) {
        return;
    }
    if (!m_wasRead) {
        keepUnread();
    }
    if (m_hasEnded) {
        abort();
    }
}

/// Also when send() has been faster: who waits for room is still to be told.
void ClientSocket::onWritable()
{
    sendQueued();
    if (m_connected) {
        m_writable.setEnabled(hasQueue());
        emit bytesWritten();
    }
}

void ClientSocket::sendQueued()
{
    m_queueStart += sendNow(m_queue.constData() + m_queueStart, static_cast<int>(bytesToWrite()));
    if (!hasQueue()) {
        m_queue.clear();
        m_queueStart = 0;
    } else if (m_queueStart > bytesToWrite()) {
        // A peer may read on and on without ever emptying the queue.
        m_queue.remove(0, m_queueStart);
        m_queueStart = 0;
    }
}

/// Whoever does not read makes room by doing so later; until then nothing more is received.
void ClientSocket::keepUnread()
{
    const int before = m_unread.size();
    if (before >= m_maxUnreadBytes) {
        m_readable.setEnabled(false);
        return;
    }
    m_unread.resize(m_maxUnreadBytes);
    m_unread.resize(before + receive(m_unread.data() + before, m_maxUnreadBytes - before));
}

int ClientSocket::receive(char* buffer, int size)
{
    const ssize_t received = recv(m_descriptor, buffer, static_cast<std::size_t>(size), MSG_DONTWAIT);
    m_mayHaveMore = received == size;
    --m_readsLeft;
    if (received == 0 || (received < 0 && !isTemporary(errno))) {
        m_hasEnded = true; // the notifier fires again, and the end is told from there
    }
    return static_cast<int>(std::max<ssize_t>(received, 0));
}

int ClientSocket::sendNow(const char* bytes, int size)
{
    const ssize_t sent =
        ::send(m_descriptor, bytes, static_cast<std::size_t>(size), MSG_DONTWAIT | MSG_NOSIGNAL);
    if (sent < 0 && !isTemporary(errno)) {
        fail();
    }
    return static_cast<int>(std::max<ssize_t>(sent, 0));
}

/// Told by the event loop, not to who is just sending. What had arrived before is still received.
void ClientSocket::fail()
{
    m_connected = false;
    m_mayHaveMore = true;
    QMetaObject::invokeMethod(this, &ClientSocket::abort, Qt::QueuedConnection);
}

} // namespace Tolvar::Varundo
