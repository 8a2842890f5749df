#include "Unit.h"

#include "Frames.h"
#include "Printer.h"

#include <Tolvar/Varundo/Client/CommandCatalog.h>
#include <Tolvar/Varundo/Client/PayloadDecoder.h>
#include <Tolvar/Varundo/Protocol.h>

namespace Tolvar::Varundo::Zelctl {

using Client::Reply;

namespace {

constexpr int CloseTimeout = 1000; // milliseconds

} // namespace

Unit::Unit(const Options& options, Printer& printer)
    : m_options(options)
    , m_printer(printer)
{}

Unit::~Unit()
{
    m_client.reset();
    if (m_tcp) {
        m_tcp->close(CloseTimeout);
    }
    if (m_serial) {
        m_serial->close(CloseTimeout);
    }
}

bool Unit::Result::succeeded() const
{
    return outcome == Reply::Outcome::Acknowledged || outcome == Reply::Outcome::Answered;
}

ExitStatus Unit::Result::exitStatus() const
{
    switch (outcome) {
    case Reply::Outcome::Acknowledged:
    case Reply::Outcome::Answered:
        return Done;
    case Reply::Outcome::ConnectionLost:
        return NoConnection;
    case Reply::Outcome::NotSent:
        return Usage;
    default:
        return Refused;
    }
}

Unit::Result Unit::request(const CommandMessage& command)
{
    if (!connectOnce()) {
        return {Reply::Outcome::ConnectionLost, {}, m_errorText};
    }
    Result result = waitFor(m_client->send(command));
    learn(command, result);
    return result;
}

Unit::Result Unit::echo()
{
    if (!connectOnce()) {
        return {Reply::Outcome::ConnectionLost, {}, m_errorText};
    }
    return waitFor(m_client->sendEcho());
}

bool Unit::writeUnframed(const QByteArray& bytes)
{
    if (!connectOnce()) {
        return false;
    }
    return m_client->writeUnframed(bytes);
}

int Unit::transmissionTime(int byteCount) const
{
    return m_serial ? m_serial->transmissionTime(byteCount) : 0;
}

std::optional<Client::TextCodec> Unit::textCodec(Result* failure)
{
    if (m_options.codec) {
        return m_options.codec;
    }
    if (!m_codec) {
        const auto* command = Client::findCommand(Protocol::Read, u"text-codec", Client::Verb::Value);
        *failure = request(Client::makeCommand(*command));
        if (failure->succeeded() && !m_codec) {
            failure->outcome = Reply::Outcome::Unanswered;
            failure->errorText = QStringLiteral("the unit's answer about its codec is malformed");
        }
        if (!failure->succeeded()) {
            failure->errorText.prepend(QStringLiteral("cannot learn the unit's text codec: "));
        }
    }
    return m_codec;
}

/// Only once: a unit that could not be reached, or was lost, stays so until the program ends.
bool Unit::connectOnce()
{
    if (!m_tcp && !m_serial) {
        return m_options.serialDevice.isEmpty() ? openTcp() : openSerial();
    }
    return isConnected();
}

bool Unit::openTcp()
{
    m_tcp = std::make_unique<Client::TcpLink>(m_options.host, m_options.port);
    if (!m_tcp->openAndWait(m_options.timeout)) {
        m_errorText = m_tcp->errorText();
        return false;
    }
    adoptClient(m_tcp->device(), m_tcp->peerName());
    return isConnected();
}

bool Unit::openSerial()
{
    m_serial = std::make_unique<Client::SerialLink>(m_options.serialDevice, m_options.baudrate);
    if (!m_serial->open()) {
        m_errorText = m_serial->errorText();
        return false;
    }
    adoptClient(m_serial->device(), m_serial->peerName());
    connect(m_serial.get(), &Client::SerialLink::lost, m_client.get(), &Client::ZelClient::fail);
    return isConnected();
}

void Unit::adoptClient(QIODevice* device, const QString& peerName)
{
    m_client = std::make_unique<Client::ZelClient>(device, peerName);
    m_client->setTimeout(m_options.timeout);
    connect(m_client.get(), &Client::ZelClient::received, this, &Unit::received);
    connect(m_client.get(), &Client::ZelClient::connectionLost, this, [this](const QString& errorText) {
        m_errorText = errorText;
        emit connectionLost();
    });
    if (m_options.verbose) {
        connect(m_client.get(), &Client::ZelClient::sent, this, &Unit::traceSent);
        connect(m_client.get(), &Client::ZelClient::received, this, &Unit::traceReceived);
    }
}

Unit::Result Unit::waitFor(Reply* reply)
{
    const std::unique_ptr<Reply> owned(reply);
    reply->wait();
    return {reply->outcome(), reply->answer(), reply->errorText()};
}

/// Both ways in which the unit's codec becomes known.
void Unit::learn(const CommandMessage& command, const Result& result)
{
    const auto* info = Client::findCommand(command.grpId, command.cmdId);
    if (!info || !result.succeeded()) {
        return;
    }
    if (info->request == Client::PayloadKind::Codec) {
        m_codec = Client::PayloadDecoder::codec(command.data);
    } else if (info->answer == Client::PayloadKind::Codec) {
        m_codec = Client::PayloadDecoder::codec(result.answer.data);
    }
}

void Unit::traceSent(const QByteArray& bytes) const
{
    const auto codec = m_options.codec.value_or(m_codec.value_or(Client::TextCodec::Latin9));
    for (const Frames::Piece& piece : Frames::split(bytes)) {
        m_printer.trace(true, piece.bytes, Frames::meaning(piece, Client::Sender::Controller, codec));
    }
}

void Unit::traceReceived(const Client::Response& response) const
{
    const auto codec = m_options.codec.value_or(m_codec.value_or(Client::TextCodec::Latin9));
    const Frames::Piece piece = Frames::pieceOf(response);
    m_printer.trace(false, piece.bytes, Frames::meaning(piece, Client::Sender::Unit, codec));
}

} // namespace Tolvar::Varundo::Zelctl
