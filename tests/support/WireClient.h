#ifndef TOLVAR_VARUNDO_TEST_WIRECLIENT_H
#define TOLVAR_VARUNDO_TEST_WIRECLIENT_H

#include <QByteArray>
#include <QHostAddress>
#include <QTcpSocket>

#include <sys/socket.h>

namespace Tolvar::Varundo::Test {

/// A controller's end of a TCP connection, without any knowledge of the protocol.
///
/// It connects without the event loop: the kernel completes the connection, the server learns of it later.
class WireClient
{
public:
    explicit WireClient(quint16 port = 9998, const QHostAddress& address = QHostAddress::LocalHost)
    {
        m_socket.connectToHost(address, port);
        if (m_socket.waitForConnected(5000)) {
            // A byte sent is a segment sent, as far as it depends on this end.
            m_socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
        }
    }

    [[nodiscard]] bool isConnected() const { return m_socket.state() == QAbstractSocket::ConnectedState; }
    [[nodiscard]] QTcpSocket& socket() { return m_socket; }

    void send(const QByteArray& bytes)
    {
        m_socket.write(bytes);
        m_socket.flush();
    }
    void sendHex(const char* digits) { send(QByteArray::fromHex(digits)); }

    /// All that has come so far.
    [[nodiscard]] const QByteArray& received()
    {
        m_received += m_socket.readAll();
        return m_received;
    }
    [[nodiscard]] QByteArray receivedHex() { return received().toHex(); }
    void forget() { m_received.clear(); }

    /// Waits for so many bytes without the event loop: the server gets no chance to do anything meanwhile.
    [[nodiscard]] bool receivesWithoutEventLoop(int size)
    {
        while (received().size() < size) {
            if (!m_socket.waitForReadyRead(2000)) {
                return false;
            }
        }
        return true;
    }

    /// From now on at most one byte is taken from the kernel; what the server sends piles up.
    void stopReading() { m_socket.setReadBufferSize(1); }
    void startReading() { m_socket.setReadBufferSize(0); }

    /// Sends what is written, then closes in order; returns at once.
    void close() { m_socket.disconnectFromHost(); }

    /// Ends the connection by a reset, as a controller does whose machine is switched off and on.
    void reset()
    {
        const linger atOnce{1, 0};
        setsockopt(static_cast<int>(m_socket.socketDescriptor()), SOL_SOCKET, SO_LINGER, &atOnce,
                   sizeof(atOnce));
        m_socket.abort();
    }

private:
    QTcpSocket m_socket;
    QByteArray m_received;
};

} // namespace Tolvar::Varundo::Test

#endif
