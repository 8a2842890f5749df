#ifndef TOLVAR_VARUNDO_CLIENT_TCPLINK_H
#define TOLVAR_VARUNDO_CLIENT_TCPLINK_H

#include <Tolvar/Varundo/Client/Export.h>
#include <Tolvar/Varundo/Protocol.h>

#include <QObject>
#include <QString>
#include <QTimer>

class QIODevice;
class QTcpSocket;

namespace Tolvar::Varundo::Client {

/// Opens the TCP connection to a unit and owns its socket. Lives in one thread with an event loop; must
/// outlive the ZelClient that uses its device.
class ZEL_CLIENT_EXPORT TcpLink : public QObject
{
    Q_OBJECT

public:
    explicit TcpLink(const QString& host, quint16 port = Protocol::DefaultTcpPort, QObject* parent = nullptr);
    ~TcpLink() override;

    /// Begins to connect; opened() or failed() follows within this time. At most once per object.
    void open(int timeoutMilliseconds);

    /// Runs an event loop until the connection stands or has failed.
    bool openAndWait(int timeoutMilliseconds);

    [[nodiscard]] QIODevice* device() const;
    [[nodiscard]] QString peerName() const { return m_peerName; } ///< host and port
    [[nodiscard]] QString errorText() const { return m_errorText; }

    /// Sends what is still to be sent, then closes; waits no longer than given.
    void close(int timeoutMilliseconds);

signals:
    void opened();
    void failed(const QString& errorText);

private:
    enum class State : quint8 { Closed, Opening, Open, Failed };

    void giveUp(const QString& reason);

    QString m_host;
    QString m_peerName;
    QString m_errorText;
    QTcpSocket* m_socket;
    QTimer m_timer;
    quint16 m_port;
    State m_state = State::Closed;
};

} // namespace Tolvar::Varundo::Client

#endif
