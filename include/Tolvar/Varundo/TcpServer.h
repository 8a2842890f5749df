#ifndef TOLVAR_VARUNDO_TCPSERVER_H
#define TOLVAR_VARUNDO_TCPSERVER_H

#include <Tolvar/Varundo/CommandMessage.h>
#include <Tolvar/Varundo/Export.h>
#include <Tolvar/Varundo/FrameCodec.h>

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QVector>

#include <memory>

namespace Tolvar::Varundo {

class ClientSocket;

/// The network road: listens for controllers, serves the one that connected last, decodes and acknowledges
/// its frames, and writes the answers.
///
/// An older client's connection stays open, but nothing is read from it any more. There is one decoder for
/// all clients: a frame that one client began is continued with the next client's bytes. A client that has
/// disconnected is no client; replies are then dropped.
///
/// What peers can make it hold is bounded by the constants below. Lives in the host's event-loop thread.
///
/// A slot of its signals may turn an event loop: what arrives meanwhile waits until the slot returns. To
/// destroy the server from within one, use deleteLater().
class VARUNDO_EXPORT TcpServer : public QObject
{
    Q_OBJECT

public:
    /// While so many bytes of replies wait for a client that does not take them, no more of its frames are
    /// acted upon. One answer may exceed it, by its own size.
    static constexpr qint64 MaxUnsentBytes = 65536;
    /// What a client's connection holds of bytes that were not read yet.
    static constexpr int MaxUnreadBytes = 65536;
    /// What the kernel holds for a connection beyond that; it takes this for half of what it needs.
    static constexpr int KernelSendBufferBytes = 131072;
    /// So many older connections stay open beside the current one; the next one closes the oldest.
    static constexpr int MaxOlderClients = 16;
    /// After a failed accept (too many open files) the server tries again so much later.
    static constexpr int AcceptRetryMs = 1000;

    /// Listens on any address, IPv4 and IPv6, at once; a port that is taken is told on the log only.
    explicit TcpServer(QObject* parent = nullptr);
    ~TcpServer() override;

    void sendACK();
    void sendNACK();

    /// Listens on another port from now on. Connected clients stay. The port is used as a 16-bit number.
    void setListeningPort(int port);
    int listeningPort() const { return m_listeningPort; }

    /// What the decoder has seen so far.
    const FrameCounters& frameCounters() const;

public slots:
    void newConnection();
    void onReadyRead();
    /// Frames a record, writes it in one write and flushes it. Without a client it is dropped.
    void writeMessage(CommandMessage commandMessage);

signals:
    void receivedValidMessage(CommandMessage commandMessage);
    void printableCharReceived(char printableChar);

private:
    class Listener;
    class Reader;

    void listen();
    void retire(ClientSocket* older);
    void onDisconnected(ClientSocket* socket);
    void process();
    void deleteDeparted();
    void onAcceptError();
    ClientSocket* client() const;
    void sendByte(quint8 byte);

    Listener* m_server;
    QPointer<ClientSocket> m_client;
    QVector<ClientSocket*> m_olderClients;    // oldest first
    QVector<ClientSocket*> m_departedClients; // to be deleted
    std::shared_ptr<Reader> m_reader;         // kept by who is in it
    bool m_acceptFailed = false;              // and was told; until the next connection
    int m_listeningPort;
};

} // namespace Tolvar::Varundo

#endif
