#include <Tolvar/Varundo/TcpServer.h>

#include "FrameReader.h"
#include "TransportLog.h"

#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

#include <utility>

namespace Tolvar::Varundo {

class TcpServer::Reader final : public FrameReader
{
public:
    explicit Reader(TcpServer& server)
        : m_server(server)
    {}

    /// Bytes of a client that has left; they are acted upon like any others.
    void leave(const QByteArray& lastWords) { m_lastWords += lastWords; }

private:
    QByteArray readAvailable() override
    {
        if (!m_lastWords.isEmpty()) {
            return std::exchange(m_lastWords, QByteArray());
        }
        QTcpSocket* const client = m_server.client();
        return client ? client->readAll() : QByteArray();
    }

    bool isBehind() const override
    {
        const QTcpSocket* const client = m_server.client();
        return client && client->bytesToWrite() >= MaxUnsentBytes;
    }

    void frameAccepted(const CommandMessage& message) override
    {
        m_server.sendACK();
        emit m_server.receivedValidMessage(message);
    }

    void frameRejected() override { m_server.sendNACK(); }

    void printableByte(quint8 byte) override { emit m_server.printableCharReceived(static_cast<char>(byte)); }

    TcpServer& m_server;
    QByteArray m_lastWords;
};

TcpServer::TcpServer(QObject* parent)
    : QObject(parent)
    , m_server(new QTcpServer(this))
    , m_reader(std::make_unique<Reader>(*this))
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
    // The sockets go with the server; what they say on their way out must not reach half of this object.
    const auto sockets = m_server->findChildren<QTcpSocket*>();
    for (QTcpSocket* const socket : sockets) {
        socket->disconnect(this);
    }
}

const FrameCounters& TcpServer::frameCounters() const
{
    return m_reader->counters();
}

void TcpServer::newConnection()
{
    QTcpSocket* const socket = m_server->nextPendingConnection();
    if (!socket) {
        return;
    }
    m_acceptFailed = false;
    if (m_client) {
        retire(m_client);
    }
    m_client = socket;

    // Acknowledgement and answer are two small writes; without this the second one waits for the peer's
    // delayed ACK.
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    // A controller whose cable was cut never says goodbye.
    socket->setSocketOption(QAbstractSocket::KeepAliveOption, 1);
    socket->setReadBufferSize(MaxUnreadBytes);

    connect(socket, &QTcpSocket::disconnected, this, [this, socket] { onDisconnected(socket); });
    connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    connect(socket, &QTcpSocket::readyRead, this, &TcpServer::onReadyRead);
    connect(socket, &QTcpSocket::bytesWritten, this, [this] { m_reader->process(); });
    qCDebug(transportLog) << "client" << socket->peerAddress() << socket->peerPort() << "connected";
}

/// Whichever socket has something to say, the current client is the one that is read.
void TcpServer::onReadyRead()
{
    if (!client()) {
        sendNACK();
        return;
    }
    m_reader->process();
}

void TcpServer::sendACK()
{
    send(QByteArray(1, static_cast<char>(Protocol::Ack)));
}

void TcpServer::sendNACK()
{
    send(QByteArray(1, static_cast<char>(Protocol::Nack)));
}

void TcpServer::writeMessage(CommandMessage commandMessage)
{
    if (client()) {
        send(encodeFrame(commandMessage));
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
/// had to say is not read any more.
void TcpServer::retire(QTcpSocket* older)
{
    m_reader->discardRest();
    m_olderClients.append(older);
    if (m_olderClients.size() > MaxOlderClients) {
        QTcpSocket* const oldest = m_olderClients.takeFirst();
        qCDebug(transportLog) << "closing the oldest connection," << oldest->peerAddress()
                              << oldest->peerPort();
        oldest->abort();
    }
}

void TcpServer::onDisconnected(QTcpSocket* socket)
{
    qCDebug(transportLog) << "client" << socket->peerAddress() << socket->peerPort() << "disconnected";
    m_olderClients.removeOne(socket);
    if (socket != m_client) {
        return;
    }
    m_client = nullptr;
    // Replies have nowhere to go any more; commands that arrived in time are carried out all the same.
    if (socket->isOpen()) {
        m_reader->leave(socket->readAll());
    }
    m_reader->process();
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
QTcpSocket* TcpServer::client() const
{
    return m_client && m_client->state() == QAbstractSocket::ConnectedState ? m_client.data() : nullptr;
}

void TcpServer::send(const QByteArray& bytes)
{
    if (QTcpSocket* const socket = client()) {
        socket->write(bytes);
        socket->flush();
    }
}

} // namespace Tolvar::Varundo
