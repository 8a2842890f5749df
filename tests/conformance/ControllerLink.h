#ifndef TOLVAR_VARUNDO_TESTS_CONTROLLERLINK_H
#define TOLVAR_VARUNDO_TESTS_CONTROLLERLINK_H

#include <QByteArray>
#include <QTcpSocket>

namespace Tolvar::Varundo::Tests {

/// One controller's TCP connection to a unit in this process, in step with it: send() returns when the unit
/// has taken the bytes and everything that it answered has arrived. Thus each send() is one read of the unit,
/// and silence is known for certain, without waiting for a time to pass.
class ControllerLink
{
public:
    /// Connects, and waits until the unit has accepted; isConnected() tells whether it did.
    explicit ControllerLink(quint16 port);

    /// False if the unit does not take the bytes in time.
    [[nodiscard]] bool send(const QByteArray& bytes);
    /// What has arrived since the last call.
    [[nodiscard]] QByteArray takeReceived();
    [[nodiscard]] bool isConnected() const { return m_socket.state() == QAbstractSocket::ConnectedState; }

private:
    [[nodiscard]] bool settle();
    [[nodiscard]] int unitsEnd() const;

    QTcpSocket m_socket;
    int m_unitsEnd = -1; ///< the descriptor of the unit's socket, not ours to close
};

} // namespace Tolvar::Varundo::Tests

#endif
