#include <Tolvar/Varundo/TcpServer.h>

#include "ClientSocket.h"
#include "FrameReader.h"
#include "TransportLog.h"

#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

#include <unistd.h>

#include <array>
#include <utility>

namespace Tolvar::Varundo {

class TcpServer::Reader final : public FrameReader
{
public:
    explicit Reader(TcpServer& server)
        : m_server(server)
        , m_nextTurn(new QTimer(&server))
    {
        m_nextTurn->setSingleShot(true);
        QObject::connect(m_nextTurn, &QTimer::timeout, &server, &TcpServer::process);
    }

private:
    int read(char* buffer, int size) override
    {
        ClientSocket* const client = m_server.client();
        return client ? client->read(buffer, size) : 0;
    }

    bool isBehind() const override
    {
        const ClientSocket* const client = m_server.client();
        return client && client->bytesToWrite() >= MaxUnsentBytes;
    }

    void callAgain() override { m_nextTurn->start(0); }

    void onFrameAccepted(const CommandMessage& message) override
    {
        m_server.sendACK();
        emit m_server.receivedValidMessage(message);
    }

    void onFrameRejected() override { m_server.sendNACK(); }

    void onPrintableByte(quint8 byte) override
    {
        emit m_server.printableCharReceived(static_cast<char>(byte));
    }

    TcpServer& m_server;
    QTimer* m_nextTurn; // one, however often it is asked for
};

namespace {

/// A connection that waits to be taken on. Nobody reads it meanwhile.
class WaitingConnection final : public QTcpSocket
{
public:
    WaitingConnection(int descriptor, QObject* parent)
        : QTcpSocket(parent)
        , m_descriptor(descriptor)
    {}
    ~WaitingConnection() override
    {
        if (m_descriptor >= 0) {
            ::close(m_descriptor);
        }
    }
    int takeDescriptor() { return std::exchange(m_descriptor, -1); }

private:
    int m_descriptor;
};

} // namespace

/// Leaves the descriptors of connections as they come.
class TcpServer::Listener final : public QTcpServer
{
public:
    using QTcpServer::QTcpServer;

    /// -1 if no connection waits.
    int takeNext()
    {
        const std::unique_ptr<QTcpSocket> next(nextPendingConnection());
        return next ? static_cast<WaitingConnection&>(*next).takeDescriptor() : -1;
    }

private:
    void incomingConnection(qintptr descriptor) override
    {
        addPendingConnection(new WaitingConnection(static_cast<int>(descriptor), this));
    }
};

TcpServer::TcpServer(QObject* parent)
    : QObject(parent)
    , m_server(new Listener(this))
    , m_reader(std::make_shared<Reader>(*this))
    , m_listeningPort(Protocol::DefaultTcpPort)
{
    // Taken one at a time and after the signal, so that QTcpServer never looks for a connection when nobody
    // waits. After such a look it cannot tell that from an error any more: when the descriptors ran out it
    // would neither report it nor stop, and keep the processor busy.
    m_server->setMaxPendingConnections(1);
    connect(m_server, &QTcpServer::newConnection, this, &TcpServer::newConnection, Qt::QueuedConnection);
    connect(m_server, &QTcpServer::acceptError, this, &TcpServer::onAcceptError);
    listen();
}

TcpServer::~TcpServer()
{
    m_reader->transportDestroyed(m_server);
}

const FrameCounters& TcpServer::frameCounters() const
{
    return m_reader->counters();
}

void TcpServer::newConnection()
{
    const int descriptor = m_server->takeNext();
    if (descriptor < 0) {
        return;
    }
    m_acceptFailed = false;
    if (m_client) {
        retire(m_client);
    }
    auto* const socket = new ClientSocket(descriptor, MaxUnreadBytes, m_server);
    m_client = socket;
    connect(socket, &ClientSocket::disconnected, this, [this, socket] { onDisconnected(socket); });
    connect(socket, &ClientSocket::readyRead, this, &TcpServer::onReadyRead);
    connect(socket, &ClientSocket::bytesWritten, this, [this] { process(); });
    qCDebug(transportLog) << "client" << socket->peer() << "connected";
}

/// Whichever socket has something to say, the current client is the one that is read.
void TcpServer::onReadyRead()
{
    if (!client()) {
        sendNACK();
        return;
    }
    process();
}

void TcpServer::sendACK()
{
    sendByte(Protocol::Ack);
}

void TcpServer::sendNACK()
{
    sendByte(Protocol::Nack);
}

void TcpServer::sendByte(quint8 byte)
{
    if (ClientSocket* const socket = client()) {
        const auto reply = static_cast<char>(byte);
        socket->send(&reply, 1);
    }
}

void TcpServer::writeMessage(CommandMessage commandMessage)
{
    ClientSocket* const socket = client();
    if (!socket) {
        return;
    }
    // All answers but long texts fit in here; it saves each an allocation, one of two.
    std::array<char, 256> shortFrame;
    const int size = commandMessage.data.size() + Protocol::FrameOverhead;
    if (size <= static_cast<int>(shortFrame.size())) {
        putFrame(commandMessage, shortFrame.data());
        socket->send(shortFrame.data(), size);
    } else {
        socket->send(encodeFrame(commandMessage).constData(), size);
    }
}

void TcpServer::setListeningPort(int port)
{
    if (port == m_listeningPort) {
        return;
    }
    m_server->close();
    m_listeningPort = port;
    listen();
}

void TcpServer::listen()
{
    if (!m_server->listen(QHostAddress::Any, static_cast<quint16>(m_listeningPort))) {
        qCWarning(transportLog, "cannot listen on TCP port %d: %s", m_listeningPort,
                  qPrintable(m_server->errorString()));
    }
}

/// A newer client has come. The older one keeps its connection and takes what was sent to it; what it still
/// had to say is not read any more, nor is it carried out if it was held back since it did not read.
void TcpServer::retire(ClientSocket* older)
{
    if (older->bytesToWrite() >= MaxUnsentBytes) {
        m_reader->discardRest();
    }
    m_olderClients.append(older);
    if (m_olderClients.size() > MaxOlderClients) {
        ClientSocket* const oldest = m_olderClients.takeFirst();
        qCDebug(transportLog) << "closing the oldest connection," << oldest->peer();
        oldest->abort();
    }
}

void TcpServer::onDisconnected(ClientSocket* socket)
{
    qCDebug(transportLog) << "client" << socket->peer() << "disconnected";
    m_olderClients.removeOne(socket);
    m_departedClients.append(socket);
    if (socket != m_client) {
        deleteDeparted();
        return;
    }
    m_client = nullptr;
    // Replies have nowhere to go any more; commands that arrived in time are carried out all the same.
    m_reader->leave(socket->takeUnread());
    process();
}

void TcpServer::process()
{
    const std::shared_ptr<Reader> reader = m_reader;
    reader->process();
    if (!reader->isOrphaned()) {
        deleteDeparted();
    }
}

/// A client may go while a frame of its own is still acted upon, by a host that turns an event loop
/// meanwhile. That loop would delete the very socket whose signal has not returned yet, so it is kept until
/// it has.
void TcpServer::deleteDeparted()
{
    if (m_reader->isProcessing()) {
        return;
    }
    const auto sockets = std::exchange(m_departedClients, {});
    for (ClientSocket* const socket : sockets) {
        socket->deleteLater();
    }
}

/// The server stops accepting after an error, such as too many open files, and nobody but us starts it again.
void TcpServer::onAcceptError()
{
    if (!std::exchange(m_acceptFailed, true)) {
        qCWarning(transportLog, "cannot accept a connection: %s; trying again every %d ms",
                  qPrintable(m_server->errorString()), AcceptRetryMs);
    }
    QTimer::singleShot(AcceptRetryMs, m_server, [this] {
        if (m_server->isListening()) {
            m_server->resumeAccepting();
        }
    });
}

/// Null once it has disconnected, even while its socket still exists.
ClientSocket* TcpServer::client() const
{
    return m_client && m_client->isConnected() ? m_client.data() : nullptr;
}

} // namespace Tolvar::Varundo
