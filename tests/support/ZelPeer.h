#ifndef TOLVAR_VARUNDO_TEST_ZELPEER_H
#define TOLVAR_VARUNDO_TEST_ZELPEER_H

#include <Tolvar/Varundo/Protocol.h>

#include <QByteArray>
#include <QHostAddress>
#include <QSignalSpy>
#include <QTcpSocket>
#include <QtTest>

namespace Tolvar::Varundo::Test {

inline QByteArray frame(Protocol::Group group, int id, const QByteArray& payload = QByteArray())
{
    QByteArray bytes;
    bytes.append(static_cast<char>(Protocol::Stx));
    bytes.append(static_cast<char>(id));
    bytes.append(static_cast<char>(group));
    bytes.append(static_cast<char>(payload.size() & 0xFF));
    bytes.append(static_cast<char>(payload.size() >> 8));
    bytes.append(payload);
    bytes.append(static_cast<char>(Protocol::Etx));
    return bytes;
}

inline const QByteArray Ack(1, static_cast<char>(Protocol::Ack));
inline const QByteArray Nack(1, static_cast<char>(Protocol::Nack));

/// A controller at the end of a TCP connection, in the unit's own thread.
class ZelPeer
{
public:
    explicit ZelPeer(int port)
    {
        m_socket.connectToHost(QHostAddress(QHostAddress::LocalHost), static_cast<quint16>(port));
        // The unit takes a connection in the event loop, after the kernel has.
        m_connected = m_socket.waitForConnected(5000) && exchange(frame(Protocol::Execute, 0x33)) == Ack;
    }

    [[nodiscard]] bool isConnected() const { return m_connected; }
    QTcpSocket& socket() { return m_socket; }

    void send(const QByteArray& bytes)
    {
        m_socket.write(bytes);
        m_socket.flush();
    }

    /// Sends, and returns all that comes back, at least so many bytes. The unit replies within one call
    /// chain: once the first byte is here, the last one is on its way.
    QByteArray exchange(const QByteArray& bytes, int atLeast = 1)
    {
        QSignalSpy arrived(&m_socket, &QTcpSocket::readyRead);
        QByteArray received = m_socket.readAll();
        send(bytes);
        while (received.size() < atLeast && arrived.wait()) {
            received += m_socket.readAll();
        }
        QTest::qWait(5);
        return received + m_socket.readAll();
    }

private:
    QTcpSocket m_socket;
    bool m_connected = false;
};

} // namespace Tolvar::Varundo::Test

#endif
