#include <Tolvar/Varundo/Client/ZelClient.h>

#include <Tolvar/Varundo/Client/CommandCatalog.h>
#include <Tolvar/Varundo/Client/PayloadBuilder.h>
#include <Tolvar/Varundo/FrameCodec.h>
#include <Tolvar/Varundo/Protocol.h>

#include <QAbstractSocket>
#include <QIODevice>

#include <algorithm>
#include <utility>

namespace Tolvar::Varundo::Client {

namespace {

// The unit answers a request for the text of a status line that it does not have with the line's number
// alone, and needs no device for it. Two decimal digits fit into one byte of the request and of the answer.
constexpr quint8 EchoCommand = 0x90;
constexpr int FirstEchoNumber = 10;
constexpr int LastEchoNumber = 99;

/// Why a message cannot be a request; empty if it can.
QString flaw(const CommandMessage& command)
{
    if (command.cmdId == 0) {
        return QStringLiteral("command number 0 is never accepted");
    }
    if (command.grpId > Protocol::LastGroup) {
        return QStringLiteral("there is no command group %1").arg(command.grpId);
    }
    if (command.data.size() > Protocol::MaxPayloadSize) {
        return QStringLiteral("the payload has %1 bytes, a frame holds %2 at most")
            .arg(command.data.size())
            .arg(Protocol::MaxPayloadSize);
    }
    if (command.data.size() != command.length) {
        return QStringLiteral("the message announces %1 payload bytes and holds %2")
            .arg(command.length)
            .arg(command.data.size());
    }
    return QString();
}

} // namespace

ZelClient::ZelClient(QIODevice* device, const QString& peerName, QObject* parent)
    : QObject(parent)
    , m_device(device)
    , m_peerName(peerName)
    , m_echoNumber(FirstEchoNumber)
    , m_connected(device && device->isOpen())
{
    m_timer.setSingleShot(true);
    m_timer.setInterval(DefaultTimeout);
    connect(&m_timer, &QTimer::timeout, this, &ZelClient::handleTimeout);
    if (m_connected) {
        watchDevice();
    } else {
        m_errorText = QStringLiteral("no connection to %1").arg(peerName);
    }
}

ZelClient::~ZelClient() = default;

void ZelClient::setTimeout(int milliseconds)
{
    m_timer.setInterval(std::max(1, milliseconds));
}

void ZelClient::setWindow(int requests)
{
    m_window = std::clamp(requests, 1, MaxWindow);
    sendWaiting();
}

Reply* ZelClient::send(const CommandMessage& command)
{
    auto* reply = new Reply(command, this);
    const QString reason = flaw(command);
    if (!reason.isEmpty()) {
        reply->finish(Reply::Outcome::NotSent, reason);
    } else if (!m_connected) {
        reply->finish(Reply::Outcome::ConnectionLost, m_errorText);
    } else {
        m_waiting.push_back({command, reply});
        sendWaiting();
    }
    return reply;
}

Reply* ZelClient::sendEcho()
{
    return send(nextEcho());
}

bool ZelClient::writeUnframed(const QByteArray& bytes)
{
    // The unit replies to nothing that is typed; of anything else, nobody knows how much it will say.
    const bool isTyped = std::all_of(bytes.begin(), bytes.end(), [](char byte) {
        return static_cast<quint8>(byte) >= Protocol::FirstPrintable;
    });
    if (!m_connected || (!isTyped && (!m_onTheWay.empty() || m_order == Order::Restoring))) {
        return false;
    }
    if (!isTyped) {
        m_order = Order::Lost;
    }
    write(bytes);
    return m_connected;
}

void ZelClient::fail(const QString& reason)
{
    if (!m_connected) {
        return;
    }
    m_connected = false;
    m_timer.stop();
    m_errorText = QStringLiteral("connection to %1 lost: %2").arg(m_peerName, reason);
    if (m_device) {
        m_device->disconnect(this);
    }
    for (const Request& request : std::exchange(m_onTheWay, {})) {
        finish(request, Reply::Outcome::ConnectionLost, m_errorText);
    }
    for (const Request& request : std::exchange(m_waiting, {})) {
        finish(request, Reply::Outcome::ConnectionLost, m_errorText);
    }
    emit connectionLost(m_errorText);
}

void ZelClient::watchDevice()
{
    connect(m_device, &QIODevice::readyRead, this, &ZelClient::readDevice);
    connect(m_device, &QIODevice::aboutToClose, this,
            [this] { fail(QStringLiteral("closed on this side")); });
    connect(m_device, &QObject::destroyed, this, [this] { fail(QStringLiteral("closed on this side")); });
    if (auto* socket = qobject_cast<QAbstractSocket*>(m_device)) {
        connect(socket, &QAbstractSocket::disconnected, this,
                [this, socket] { readLast(socket->errorString()); });
    } else {
        connect(m_device, &QIODevice::readChannelFinished, this,
                [this] { readLast(QStringLiteral("the unit closed it")); });
    }
}

/// What the unit said before it closed still counts.
void ZelClient::readLast(const QString& reason)
{
    const QPointer<ZelClient> self(this);
    readDevice();
    if (self) {
        fail(reason);
    }
}

void ZelClient::readDevice()
{
    if (!m_device || !m_device->isReadable()) {
        return;
    }
    // A listener may delete this client.
    const QPointer<ZelClient> self(this);
    for (const Response& response : m_decoder.decode(m_device->readAll())) {
        emit received(response);
        if (!self || !m_connected) {
            return;
        }
        handle(response);
        if (!self || !m_connected) {
            return;
        }
    }
}

void ZelClient::sendWaiting()
{
    if (m_connected && m_order == Order::Lost && !m_waiting.empty()) {
        sendRestoringEcho();
    }
    while (m_connected && m_order == Order::Certain && !m_waiting.empty() &&
           m_onTheWay.size() < static_cast<std::size_t>(m_window)) {
        m_onTheWay.push_back(m_waiting.front());
        m_waiting.pop_front();
        if (m_onTheWay.size() == 1) {
            m_timer.start();
        }
        write(encodeFrame(m_onTheWay.back().command));
    }
}

void ZelClient::sendRestoringEcho()
{
    m_order = Order::Restoring;
    m_echo = nextEcho();
    m_timer.start();
    // A unit that has rejected may hold a frame open and reject everything until ETX comes first in what it
    // reads. If it holds none, it ignores the byte.
    const QByteArray way =
        m_unitMayHoldFrame ? QByteArray(1, static_cast<char>(Protocol::Etx)) : QByteArray();
    write(way + encodeFrame(m_echo));
}

CommandMessage ZelClient::nextEcho()
{
    const int number = m_echoNumber;
    m_echoNumber = number == LastEchoNumber ? FirstEchoNumber : number + 1;
    return makeCommand(*findCommand(Protocol::Read, EchoCommand), PayloadBuilder::packedNumber(number));
}

void ZelClient::write(const QByteArray& bytes)
{
    if (!m_device || m_device->write(bytes) != bytes.size()) {
        fail(m_device ? m_device->errorString() : QStringLiteral("closed on this side"));
        return;
    }
    emit sent(bytes);
}

} // namespace Tolvar::Varundo::Client
