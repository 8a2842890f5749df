// How replies find their requests; see the class for the rules.
#include <Tolvar/Varundo/Client/ZelClient.h>

#include <Tolvar/Varundo/Client/PayloadBuilder.h>
#include <Tolvar/Varundo/Client/PayloadDecoder.h>
#include <Tolvar/Varundo/Protocol.h>

#include <utility>

namespace Tolvar::Varundo::Client {

namespace {

QString unansweredText()
{
    return QStringLiteral(
        "acknowledged, but no answer: the unit does not know this command, lacks the device that it "
        "asks, or has another interface selected");
}

bool isRead(const CommandMessage& command)
{
    return command.grpId == Protocol::Read;
}

} // namespace

void ZelClient::handle(const Response& response)
{
    switch (response.kind) {
    case Response::Kind::Ack:
        handleAcknowledge();
        break;
    case Response::Kind::Nack:
        handleReject();
        break;
    case Response::Kind::Frame:
        handleAnswer(response.frame);
        break;
    case Response::Kind::Noise:
        break;
    }
}

void ZelClient::handleAcknowledge()
{
    if (m_order != Order::Certain) {
        return;
    }
    popUnanswered();
    if (m_onTheWay.empty() || m_onTheWay.front().acknowledged) {
        return;
    }
    if (isRead(m_onTheWay.front().command)) {
        m_onTheWay.front().acknowledged = true;
    } else {
        popFirst(Reply::Outcome::Acknowledged, QString());
    }
    restartTimer();
    sendWaiting();
}

void ZelClient::handleReject()
{
    if (m_order != Order::Certain) {
        m_unitMayHoldFrame = true;
        return;
    }
    popUnanswered();
    if (m_onTheWay.empty() || m_onTheWay.front().acknowledged) {
        return;
    }
    popFirst(Reply::Outcome::Rejected, QStringLiteral("rejected by the unit (NACK)"));
    m_unitMayHoldFrame = true;
    loseOrder(QStringLiteral("sent behind a rejected request; the unit may or may not have acted on it"));
    sendWaiting();
}

void ZelClient::handleAnswer(const CommandMessage& answer)
{
    if (m_order == Order::Restoring) {
        const bool isOurs =
            answer.grpId == m_echo.grpId && answer.cmdId == m_echo.cmdId &&
            answer.data ==
                PayloadBuilder::number(static_cast<quint8>(PayloadDecoder::packedNumber(m_echo.data)));
        if (!isOurs) {
            return;
        }
        m_order = Order::Certain;
        m_unitMayHoldFrame = false;
        m_timer.stop();
    } else {
        if (m_onTheWay.empty() || !m_onTheWay.front().acknowledged || answer.grpId != Protocol::Read ||
            answer.cmdId != m_onTheWay.front().command.cmdId) {
            return;
        }
        const Request answered = m_onTheWay.front();
        m_onTheWay.pop_front();
        if (answered.reply) {
            answered.reply->finish(answer);
        }
        restartTimer();
    }
    sendWaiting();
}

void ZelClient::handleTimeout()
{
    const QString silence = QStringLiteral("no reply from %1 within %2 ms").arg(m_peerName).arg(timeout());
    if (m_order == Order::Restoring) {
        // Half a frame from before would swallow every reply to come.
        m_decoder.reset();
        m_order = Order::Lost;
        if (!m_waiting.empty()) {
            const Request request = m_waiting.front();
            m_waiting.pop_front();
            finish(request, Reply::Outcome::TimedOut, silence);
        }
    } else if (!m_onTheWay.empty()) {
        if (m_onTheWay.front().acknowledged) {
            popFirst(Reply::Outcome::Unanswered, unansweredText());
        } else {
            popFirst(Reply::Outcome::TimedOut, silence);
        }
        loseOrder(QStringLiteral(
            "sent behind a request without a reply; the unit may or may not have acted on it"));
    }
    sendWaiting();
}

/// The unit finishes one request before it looks at the next. If it replies to the second, nothing more will
/// come for the first.
void ZelClient::popUnanswered()
{
    if (m_onTheWay.size() > 1 && m_onTheWay.front().acknowledged) {
        popFirst(Reply::Outcome::Unanswered, unansweredText());
    }
}

void ZelClient::popFirst(Reply::Outcome outcome, const QString& errorText)
{
    const Request request = m_onTheWay.front();
    m_onTheWay.pop_front();
    finish(request, outcome, errorText);
}

void ZelClient::restartTimer()
{
    if (m_onTheWay.empty()) {
        m_timer.stop();
    } else {
        m_timer.start();
    }
}

void ZelClient::loseOrder(const QString& reasonForFollowers)
{
    m_timer.stop();
    m_order = Order::Lost;
    for (const Request& request : std::exchange(m_onTheWay, {})) {
        finish(request, Reply::Outcome::Abandoned, reasonForFollowers);
    }
}

void ZelClient::finish(const Request& request, Reply::Outcome outcome, const QString& errorText)
{
    if (request.reply) {
        request.reply->finish(outcome, errorText);
    }
}

} // namespace Tolvar::Varundo::Client
