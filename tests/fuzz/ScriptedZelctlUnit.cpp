#include "ScriptedZelctlUnit.h"

#include "Demand.h"
#include "FuzzInput.h"
#include "Unit.h"

#include <Tolvar/Varundo/Client/CommandCatalog.h>

#include <QTimer>

#include <optional>

namespace Tolvar::Varundo {

namespace {

QByteArray answers; // those that are left
int requestCount = 0;

/// Nothing when the connection is lost.
std::optional<QByteArray> nextAnswer()
{
    ++requestCount;
    if (answers.isEmpty()) {
        return std::nullopt;
    }
    Test::FuzzInput input(reinterpret_cast<const std::uint8_t*>(answers.constData()),
                          static_cast<std::size_t>(answers.size()));
    const QByteArray answer = input.piece();
    answers = input.rest();
    return answer;
}

} // namespace

namespace Test {

void ScriptedZelctlUnit::setAnswers(const QByteArray& payloads)
{
    answers = payloads;
    requestCount = 0;
}

int ScriptedZelctlUnit::requests()
{
    return requestCount;
}

} // namespace Test

namespace Zelctl {

using Client::Reply;

Unit::Unit(const Options& options, Printer& printer)
    : m_options(options)
    , m_printer(printer)
{}

Unit::~Unit() = default;

bool Unit::Result::succeeded() const
{
    return outcome == Reply::Outcome::Acknowledged || outcome == Reply::Outcome::Answered;
}

ExitStatus Unit::Result::exitStatus() const
{
    if (outcome == Reply::Outcome::ConnectionLost) {
        return NoConnection;
    }
    return succeeded() ? Done : Refused;
}

Unit::Result Unit::request(const CommandMessage& command)
{
    Test::demand(Client::findCommand(command.grpId, command.cmdId) || command.grpId > Protocol::LastGroup ||
                     command.cmdId != 0,
                 "a request names a command");
    Test::demand(command.length == command.data.size(), "a request announces what it holds");
    const auto answer = nextAnswer();
    if (!answer) {
        return {Reply::Outcome::ConnectionLost, {}, QStringLiteral("the input is used up")};
    }
    if (*answer == "nack") {
        return {Reply::Outcome::Rejected, {}, QStringLiteral("rejected")};
    }
    if (command.grpId != Protocol::Read) {
        return {Reply::Outcome::Acknowledged, {}, QString()};
    }
    return {Reply::Outcome::Answered,
            {command.cmdId, command.grpId, static_cast<quint16>(answer->size()), *answer},
            QString()};
}

Unit::Result Unit::echo()
{
    return request({0x90, Protocol::Read, 1, QByteArray(1, '\1')});
}

bool Unit::writeUnframed(const QByteArray& bytes)
{
    Test::demand(!bytes.isEmpty(), "somebody has something to say");
    m_errorText = QStringLiteral("the input is used up"); // also for those who wait for more
    const auto answer = nextAnswer();
    if (!answer) {
        return false;
    }
    Client::ResponseDecoder decoder;
    for (const Client::Response& response : decoder.decode(*answer)) {
        emit received(response);
    }
    QTimer::singleShot(0, this, &Unit::connectionLost); // who waits for more need not wait
    return true;
}

std::optional<Client::TextCodec> Unit::textCodec(Result* failure)
{
    if (m_options.codec) {
        return m_options.codec;
    }
    const auto answer = nextAnswer();
    if (!answer || answer->isEmpty()) {
        *failure = {Reply::Outcome::Unanswered, {}, QStringLiteral("the codec is not known")};
        return std::nullopt;
    }
    return Client::textCodecFromNumber(static_cast<quint8>(answer->at(0)));
}

int Unit::transmissionTime(int) const
{
    return 0;
}

} // namespace Zelctl

} // namespace Tolvar::Varundo
