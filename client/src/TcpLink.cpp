#include <Tolvar/Varundo/Client/TcpLink.h>

#include <QEventLoop>
#include <QTcpSocket>

namespace Tolvar::Varundo::Client {

namespace {

/// What may lie unread in the socket; the operating system holds the unit back beyond it.
constexpr qint64 ReadBufferSize = 65536;

QString peerNameOf(const QString& host, quint16 port)
{
    const QString shown = host.contains(QLatin1Char(':')) ? QLatin1Char('[') + host + QLatin1Char(']') : host;
    return QStringLiteral("%1:%2").arg(shown).arg(port);
}

} // namespace

TcpLink::TcpLink(const QString& host, quint16 port, QObject* parent)
    : QObject(parent)
    , m_host(host)
    , m_peerName(peerNameOf(host, port))
    , m_socket(new QTcpSocket(this))
    , m_port(port)
{
    m_socket->setReadBufferSize(ReadBufferSize);
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this,
            [this] { giveUp(QStringLiteral("no answer within %1 ms").arg(m_timer.interval())); });
    connect(m_socket, &QAbstractSocket::errorOccurred, this, [this] { giveUp(m_socket->errorString()); });
    connect(m_socket, &QAbstractSocket::connected, this, [this] {
        m_timer.stop();
        m_state = State::Open;
        // Requests are small and each waits for its reply; collecting them only costs time.
        m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        emit opened();
    });
}

TcpLink::~TcpLink() = default;

void TcpLink::open(int timeoutMilliseconds)
{
    m_state = State::Opening;
    m_timer.start(timeoutMilliseconds);
    m_socket->connectToHost(m_host, m_port);
}

bool TcpLink::openAndWait(int timeoutMilliseconds)
{
    QEventLoop loop;
    connect(this, &TcpLink::opened, &loop, &QEventLoop::quit);
    connect(this, &TcpLink::failed, &loop, &QEventLoop::quit);
    open(timeoutMilliseconds);
    if (m_state == State::Opening) {
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    }
    return m_state == State::Open;
}

QIODevice* TcpLink::device() const
{
    return m_socket;
}

void TcpLink::close(int timeoutMilliseconds)
{
    m_socket->disconnectFromHost();
    if (m_socket->state() != QAbstractSocket::UnconnectedState) {
        m_socket->waitForDisconnected(timeoutMilliseconds);
    }
}

void TcpLink::giveUp(const QString& reason)
{
    // Once the connection stands, its end is the client's to tell.
    if (m_state != State::Opening) {
        return;
    }
    m_state = State::Failed;
    m_timer.stop();
    m_errorText = QStringLiteral("cannot connect to %1: %2").arg(m_peerName, reason);
    m_socket->abort();
    emit failed(m_errorText);
}

} // namespace Tolvar::Varundo::Client
