#ifndef TOLVAR_VARUNDO_TRANSPORT_CLIENTSOCKET_H
#define TOLVAR_VARUNDO_TRANSPORT_CLIENTSOCKET_H

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <QString>

namespace Tolvar::Varundo {

/// A controller's connection, read and written on the descriptor itself. Made and owned by the TcpServer, in
/// whose thread it lives.
///
/// Why no QTcpSocket: what that one does for a small request costs more than the library's own work. It asks
/// how much there is before it reads, copies twice, and switches its write notifier on and off for each
/// flushed write, which wakes up the event loop that is just running, four times a request. Without it a
/// request takes 5 system calls in place of 10, and 3 if it was there before the last one's reply had gone.
///
/// A signal's receiver may turn an event loop; the socket must not be deleted meanwhile.
class ClientSocket final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool connected READ isConnected)

public:
    /// So often at most the descriptor is read in one turn of the event loop: again after each reply, since
    /// the next request may be there. Saves that request the turn (a tenth of its processor time); one that
    /// is not there costs a system call.
    static constexpr int MaxReadsATurn = 16;

    /// Takes over a connected descriptor, blocking or not. What nobody takes up is received all the same, up
    /// to this bound, so that the end of a connection is noticed.
    ClientSocket(int descriptor, int maxUnreadBytes, QObject* parent);
    ~ClientSocket() override;

    bool isConnected() const { return m_connected; }
    const QString& peer() const { return m_peer; }

    /// What has arrived, at most so much. 0 if there is nothing; a device's read then ends there.
    int read(char* buffer, int size);
    /// What has arrived and was not taken up, also after the end of the connection.
    QByteArray takeUnread();

    /// Hands bytes to the kernel at once; what it does not take waits, in order.
    void send(const char* bytes, int size);
    qint64 bytesToWrite() const { return m_queue.size() - m_queueStart; }

    /// Ends the connection, unsent bytes or not; tells of it before it returns.
    void abort();

signals:
    void readyRead();
    void bytesWritten(); ///< some of what had to wait
    void disconnected(); ///< once

private:
    void setOptions();
    void onReadable();
    void onWritable();
    int receive(char* buffer, int size);
    int sendNow(const char* bytes, int size);
    bool hasQueue() const { return m_queueStart < m_queue.size(); }
    void sendQueued();
    void keepUnread();
    void fail();
    void closeDescriptor();

    int m_descriptor;
    const int m_maxUnreadBytes;
    QSocketNotifier m_readable;
    QSocketNotifier m_writable;
    QString m_peer;
    QByteArray m_unread; // received while nobody took it up
    QByteArray m_queue;  // to be sent, from m_queueStart on
    int m_queueStart = 0;
    int m_readsLeft = 0;
    bool m_connected = true;
    bool m_mayHaveMore = false; // since the notifier fired; a short receive has emptied it, but for a reply
    bool m_wasRead = false;     // since then
    bool m_hasEnded = false;    // the peer has said its last word, or the connection has broken
};

} // namespace Tolvar::Varundo

#endif
