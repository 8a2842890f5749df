#ifndef TOLVAR_VARUNDO_CLIENT_ZELCLIENT_H
#define TOLVAR_VARUNDO_CLIENT_ZELCLIENT_H

#include <Tolvar/Varundo/Client/Export.h>
#include <Tolvar/Varundo/Client/Reply.h>
#include <Tolvar/Varundo/Client/ResponseDecoder.h>
#include <Tolvar/Varundo/CommandMessage.h>

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>

#include <deque>

class QIODevice;

namespace Tolvar::Varundo::Client {

/// Talks to one unit over an open device, for example a TCP socket. Lives in one thread with an event loop,
/// which is the device's thread too; neither owns nor closes the device.
///
/// Requests go out in order, one at a time unless a wider window is set. ACK and NACK carry no number, so
/// requests and replies are matched by their order, and answers by their command as well. After a request
/// that failed on the way, the order is no longer certain: something may still come late. The next request is
/// then preceded by an echo, a read command with a number that the unit sends back; all that arrives before
/// that number is late, and ignored. So a late reply is never taken for a newer one.
class ZEL_CLIENT_EXPORT ZelClient : public QObject
{
    Q_OBJECT

public:
    static constexpr int DefaultTimeout = 2000; ///< milliseconds
    static constexpr int MaxWindow = 16;        ///< also bounds what waits in the device to be written

    /// The peer name stands in error texts, for example "127.0.0.1:9998".
    ZelClient(QIODevice* device, const QString& peerName, QObject* parent = nullptr);
    ~ZelClient() override;

    /// How long a request waits for its ACK, and a read again for its answer; in milliseconds.
    void setTimeout(int milliseconds);
    [[nodiscard]] int timeout() const { return m_timer.interval(); }

    /// How many requests may be on the way at once, 1 to MaxWindow.
    void setWindow(int requests);
    [[nodiscard]] int window() const { return m_window; }

    [[nodiscard]] bool isConnected() const { return m_connected; }
    [[nodiscard]] QString errorText() const { return m_errorText; } ///< why the connection ended

    /// Sends a command, now or when its turn comes. The reply is never null.
    Reply* send(const CommandMessage& command);

    /// Sends a request that changes nothing and that every unit answers. Once it is answered, the unit has
    /// handled everything that was sent before.
    Reply* sendEcho();

    /// Writes bytes as they are, past all requests: typed text, or anything for a test. No reply belongs to
    /// them; follow received() for what comes back. Returns whether the device took them.
    bool writeUnframed(const QByteArray& bytes);

public slots:
    /// Ends the connection for a reason that the device has no signal for.
    void fail(const QString& reason);

signals:
    void sent(const QByteArray& bytes);
    void received(const Tolvar::Varundo::Client::Response& response);
    void connectionLost(const QString& errorText);

private:
    struct Request
    {
        CommandMessage command;
        QPointer<Reply> reply;
        bool acknowledged = false;
    };

    enum class Order : quint8 {
        Certain,
        Lost,      // something may come late; an echo is needed before the next request
        Restoring, // the echo is on its way
    };

    void watchDevice();
    void readLast(const QString& reason);
    void readDevice();
    void handle(const Response& response);
    void handleAcknowledge();
    void handleReject();
    void handleAnswer(const CommandMessage& answer);
    void handleTimeout();
    void sendWaiting();
    void sendRestoringEcho();
    CommandMessage nextEcho();
    void write(const QByteArray& bytes);
    void popUnanswered();
    void popFirst(Reply::Outcome outcome, const QString& errorText);
    void restartTimer();
    void loseOrder(const QString& reasonForFollowers);
    static void finish(const Request& request, Reply::Outcome outcome, const QString& errorText);

    QPointer<QIODevice> m_device;
    QString m_peerName;
    QString m_errorText;
    ResponseDecoder m_decoder;
    std::deque<Request> m_waiting;
    std::deque<Request> m_onTheWay;
    CommandMessage m_echo; // the one that restores the order
    QTimer m_timer;        // of the oldest request on the way, or of the echo
    int m_window = 1;
    int m_echoNumber;
    Order m_order = Order::Certain;
    bool m_unitMayHoldFrame = false; // the last reply was a NACK
    bool m_connected = false;
};

} // namespace Tolvar::Varundo::Client

#endif
