// The unit's connections: what its controllers do, and what they must be told.

#include "FuzzedUnit.h"

#include "Demand.h"
#include "HeapInUse.h"

#include <Tolvar/Varundo/Protocol.h>
#include <Tolvar/Varundo/TcpServer.h>

#include <QElapsedTimer>
#include <QThread>

#include <arpa/inet.h>
#include <linux/tcp.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace Tolvar::Varundo::Test {

namespace {

constexpr int patienceMs = 20000;

// Of the heap, for what waits: the unit's bounds, the answer that crosses one of them, and something to work
// with. A request of a few bytes can ask for 65 kB, so whoever keeps the answers instead of waiting is soon
// far beyond it.
constexpr qint64 allowance =
    TcpServer::MaxUnsentBytes + TcpServer::MaxUnreadBytes + 2 * Protocol::MaxPayloadSize + 512 * 1024;
// What the kernel holds for each end of a connection does not count, and is therefore kept small.
constexpr int kernelBuffer = 32768;

sockaddr_in unitAddress(int port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

/// Its size in all.
int checkAnswer(const QByteArray& bytes, const CommandMessage& request)
{
    demand(bytes.size() >= Protocol::FrameOverhead, "an answer has a whole header");
    demand(request.grpId == Protocol::Read && static_cast<quint8>(bytes.at(1)) == request.cmdId &&
               bytes.at(2) == Protocol::Read,
           "an answer belongs to the command before it");
    const int length = static_cast<quint8>(bytes.at(3)) + 256 * static_cast<quint8>(bytes.at(4));
    demand(length + Protocol::FrameOverhead <= bytes.size(), "an answer is whole");
    demand(bytes.at(length + Protocol::HeaderSize) == Protocol::Etx, "an answer ends with ETX");
    return length + Protocol::FrameOverhead;
}

/// The other end of a connection of this very process; -1 while it was not accepted yet.
int otherEnd(int connection)
{
    sockaddr_in own{};
    socklen_t size = sizeof own;
    getsockname(connection, reinterpret_cast<sockaddr*>(&own), &size);
    for (int descriptor = 3; descriptor < 1024; ++descriptor) {
        sockaddr_in6 peer{}; // the unit listens on IPv6, which takes both
        size = sizeof peer;
        if (getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &size) == 0 &&
            peer.sin6_port == own.sin_port && descriptor != connection) {
            return descriptor;
        }
    }
    return -1;
}

tcp_info infoOf(int socket)
{
    tcp_info info{};
    socklen_t size = sizeof info;
    getsockopt(socket, IPPROTO_TCP, TCP_INFO, &info, &size);
    return info;
}

/// Whether all that was written at one end of a connection lies at the other.
bool hasArrived(int from, int to)
{
    const tcp_info sender = infoOf(from);
    return sender.tcpi_notsent_bytes == 0 &&
           sender.tcpi_bytes_sent - sender.tcpi_bytes_retrans == infoOf(to).tcpi_bytes_received;
}

bool isClosed(int socket)
{
    char byte = 0;
    const ssize_t count = recv(socket, &byte, sizeof byte, MSG_DONTWAIT | MSG_PEEK);
    return count == 0 || (count < 0 && errno == ECONNRESET);
}

} // namespace

/// The kernel hands over at once, or when it finds the time.
template <class Condition>
void FuzzedUnit::settleUntil(Condition holds, const char* what)
{
    QElapsedTimer timer;
    timer.start();
    settle();
    while (!holds()) {
        demand(timer.elapsed() < patienceMs, what);
        QThread::usleep(100);
        settle();
    }
}

void FuzzedUnit::send(const QByteArray& bytes)
{
    if (m_sockets.isEmpty() || bytes.isEmpty()) {
        settle();
        return;
    }
    for (int at = 0; at < bytes.size() && m_typed < MostTyped; at += LargestRead) {
        const QByteArray read = bytes.mid(at, LargestRead);
        const auto sent = ::send(m_sockets.constLast(), read.constData(),
                                 static_cast<std::size_t>(read.size()), MSG_NOSIGNAL);
        demand(sent == read.size(), "the unit keeps its newest controller and takes what it says");
        awaitArrival(); // or it would be one read with what comes next
        const auto outcomes = m_model.read(std::vector<std::uint8_t>(read.begin(), read.end()));
        m_typed +=
            static_cast<int>(std::count_if(outcomes.begin(), outcomes.end(), [](const WireOutcome& outcome) {
                return outcome.kind == WireOutcome::Kind::Printable;
            }));
        checkReplies(outcomes);
    }
}

void FuzzedUnit::flood(quint8 command, quint8 line, int count)
{
    if (m_sockets.isEmpty() || m_model.state != 0 || m_typed >= MostTyped) {
        return; // where a read ends would matter, and the unit decides that now
    }
    send(QByteArray::fromHex("020501000003")); // takes what a dropped frame has left behind
    QByteArray request;
    request.append(char(0x02)).append(static_cast<char>(command)).append(char(0x01));
    request.append(char(0x01)).append(char(0x00)).append(static_cast<char>(line)).append(char(0x03));
    std::vector<WireOutcome> outcomes;
    const qint64 heapBefore = heapInUse();
    for (const QByteArray& requests : {request.repeated(count / 2), request.repeated(count - count / 2)}) {
        const auto sent = ::send(m_sockets.constLast(), requests.constData(),
                                 static_cast<std::size_t>(requests.size()), MSG_NOSIGNAL | MSG_DONTWAIT);
        demand(sent == requests.size(), "so few bytes find room somewhere on the way");
        const auto told = m_model.read(std::vector<std::uint8_t>(requests.begin(), requests.end()));
        outcomes.insert(outcomes.end(), told.begin(), told.end());
        settle();
        demand(heapInUse() - heapBefore < allowance,
               "what waits for a controller that does not take it is bounded");
    }
    checkReplies(outcomes);
}

void FuzzedUnit::sendFromOldest(const QByteArray& bytes)
{
    if (m_sockets.size() < 2) {
        return;
    }
    // It may have been closed by the unit, or be full: what becomes of it is of no interest to anybody.
    static_cast<void>(::send(m_sockets.constFirst(), bytes.constData(),
                             static_cast<std::size_t>(bytes.size()), MSG_NOSIGNAL | MSG_DONTWAIT));
    settle();
    checkReplies({});
}

void FuzzedUnit::connectController()
{
    const int connection = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    setsockopt(connection, SOL_SOCKET, SO_RCVBUF, &kernelBuffer, sizeof kernelBuffer);
    const sockaddr_in address = unitAddress(m_runner->zelTcpPort());
    demand(connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0,
           "the unit can be connected to");
    const int yes = 1;
    setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
    // Closed by a reset: after thousands of ordinary ends the kernel would be out of ports for a while.
    const linger atOnce{1, 0};
    setsockopt(connection, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    m_sockets.append(connection);
    if (m_sockets.size() > MaxControllers) {
        close(m_sockets.takeFirst());
    }
    settleUntil([&] { return (m_unitEnd = otherEnd(connection)) >= 0; }, "the unit accepts connections");
    setsockopt(m_unitEnd, SOL_SOCKET, SO_SNDBUF, &kernelBuffer, sizeof kernelBuffer);
    const int firstTooMany = m_sockets.size() - 2 - TcpServer::MaxOlderClients;
    if (firstTooMany >= 0) {
        settleUntil([&] { return isClosed(m_sockets.at(firstTooMany)); },
                    "the unit keeps no more connections than it says");
    }
}

void FuzzedUnit::disconnectNewest()
{
    if (!m_sockets.isEmpty()) {
        close(m_sockets.takeLast());
        settle();
    }
    // Those that are left are older ones, and not served any more.
    for (const int socket : qAsConst(m_sockets)) {
        close(socket);
    }
    m_sockets.clear();
    settle();
}

void FuzzedUnit::awaitArrival()
{
    settleUntil([&] { return hasArrived(m_sockets.constLast(), m_unitEnd); }, "what is sent arrives");
    settle();
}

/// All that the unit has to say for now.
QByteArray FuzzedUnit::received()
{
    QByteArray bytes;
    const auto takeAvailable = [&] {
        char piece[65536];
        const ssize_t count = recv(m_sockets.constLast(), piece, sizeof piece, MSG_DONTWAIT);
        bytes.append(piece, static_cast<int>(std::max<ssize_t>(count, 0)));
        return count > 0;
    };
    settleUntil(
        [&] {
            while (takeAvailable()) {
                settle(); // the unit may have held back what comes next
            }
            return hasArrived(m_unitEnd, m_sockets.constLast()) && !takeAvailable();
        },
        "what the unit says arrives");
    return bytes;
}

/// Every accepted frame is acknowledged once, every rejection is told once, in order; what else comes is
/// whole answers, each behind an acknowledgement.
void FuzzedUnit::checkReplies(const std::vector<WireOutcome>& outcomes)
{
    const QByteArray replies = received();
    int at = 0;
    for (const WireOutcome& outcome : outcomes) {
        if (outcome.kind != WireOutcome::Kind::Accepted && outcome.kind != WireOutcome::Kind::Rejected) {
            continue;
        }
        const bool accepted = outcome.kind == WireOutcome::Kind::Accepted;
        demand(at < replies.size(), "every frame has its acknowledgement or rejection");
        demand(static_cast<quint8>(replies.at(at++)) == (accepted ? Protocol::Ack : Protocol::Nack),
               "acknowledged or rejected as it should be");
        if (accepted && at < replies.size() && replies.at(at) == Protocol::Stx) {
            demand(m_runner->interface() == Runner::Tcp, "only the selected interface answers");
            at += checkAnswer(replies.mid(at, Protocol::MaxPayloadSize + Protocol::FrameOverhead),
                              outcome.record);
        }
    }
    demand(at == replies.size(), "the unit says nothing more than it was asked for");
}

} // namespace Tolvar::Varundo::Test
