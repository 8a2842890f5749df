#include "ControllerLink.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QHostAddress>
#include <QThread>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

namespace Tolvar::Varundo::Tests {

namespace {

constexpr int PatienceMs = 10000;
constexpr int MaxDescriptor = 1024;
constexpr int LongTurnMs = 10; // half of what the unit takes at most

/// How many bytes wait in a socket, either to be read (FIONREAD) or to reach the other end (TIOCOUTQ).
int waitingBytes(int socket, unsigned long queue)
{
    int count = 0;
    return ioctl(socket, queue, &count) == 0 ? count : -1;
}

/// Has the kernel acknowledge at once what has arrived, so that the other end's queue empties without delay.
void acknowledgeAtOnce(int socket)
{
    const int on = 1;
    setsockopt(socket, IPPROTO_TCP, TCP_QUICKACK, &on, sizeof on);
}

/// The port number at one end of a socket, 0 if there is none; function is getsockname or getpeername.
template <class Function>
quint16 portOf(int socket, Function function)
{
    sockaddr_in6 address{};
    socklen_t size = sizeof address;
    if (function(socket, reinterpret_cast<sockaddr*>(&address), &size) != 0 ||
        (address.sin6_family != AF_INET && address.sin6_family != AF_INET6)) {
        return 0;
    }
    return ntohs(address.sin6_port); // stands at the same place in an IPv4 address
}

} // namespace

ControllerLink::ControllerLink(quint16 port)
{
    m_socket.connectToHost(QHostAddress(QHostAddress::LocalHost), port);
    const QDeadlineTimer deadline(PatienceMs);
    while (m_unitsEnd < 0 && !deadline.hasExpired()) {
        QCoreApplication::processEvents();
        m_unitsEnd = isConnected() ? unitsEnd() : -1;
    }
    m_socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
}

bool ControllerLink::send(const QByteArray& bytes)
{
    m_socket.write(bytes);
    return settle();
}

QByteArray ControllerLink::takeReceived()
{
    return m_socket.readAll();
}

/// Bytes can be in five places: with us, in either kernel queue, or with the unit, which answers within the
/// event that brings them. Only we and the unit run in between, in this thread; so when all the queues are
/// found empty one after the other, in the order in which bytes pass them, nothing is on its way. But a unit
/// that has been at work for long gives others their turn, and goes on in the next one.
bool ControllerLink::settle()
{
    const auto ours = static_cast<int>(m_socket.socketDescriptor());
    const QDeadlineTimer deadline(PatienceMs);
    while (!deadline.hasExpired()) {
        QElapsedTimer turn;
        turn.start();
        QCoreApplication::processEvents();
        if (!isConnected()) {
            return false;
        }
        if (turn.hasExpired(LongTurnMs)) {
            continue;
        }
        acknowledgeAtOnce(ours);
        acknowledgeAtOnce(m_unitsEnd);
        if (m_socket.bytesToWrite() == 0 && waitingBytes(ours, TIOCOUTQ) == 0 &&
            waitingBytes(m_unitsEnd, FIONREAD) == 0 && waitingBytes(m_unitsEnd, TIOCOUTQ) == 0 &&
            waitingBytes(ours, FIONREAD) == 0) {
            return true;
        }
        QThread::yieldCurrentThread();
    }
    return false;
}

int ControllerLink::unitsEnd() const
{
    for (int descriptor = 0; descriptor < MaxDescriptor; ++descriptor) {
        if (portOf(descriptor, &getpeername) == m_socket.localPort() &&
            portOf(descriptor, &getsockname) == m_socket.peerPort()) {
            return descriptor;
        }
    }
    return -1;
}

} // namespace Tolvar::Varundo::Tests
