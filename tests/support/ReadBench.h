#ifndef TOLVAR_VARUNDO_TEST_READBENCH_H
#define TOLVAR_VARUNDO_TEST_READBENCH_H

#include "ModelSnapshot.h"

#include <Tolvar/Varundo/Protocol.h>
#include <Tolvar/Varundo/ReadCommandParser.h>
#include <Tolvar/Varundo/ReadCommandResponder.h>

#include <QList>

#include <type_traits>

namespace Tolvar::Varundo::Test {

using Responder = ReadCommandResponder;

/// A responder with a data model of its own and a parser in front of it; keeps the answers.
class ReadBench
{
public:
    ReadBench()
    {
        QObject::connect(&responder, &Responder::commandReady, &m_context,
                         [this](CommandMessage answer) { m_answers.append(answer); });
    }

    /// The answers to a slot that is called directly.
    template <class... Parameters>
    QStringList answersOf(void (Responder::*slot)(Parameters...), std::common_type_t<Parameters>... arguments)
    {
        (responder.*slot)(arguments...);
        return takeAnswers();
    }

    /// The answers to a request that comes in through the parser.
    QStringList answersTo(int cmdId, const QByteArray& payload = {})
    {
        CommandMessage request;
        request.cmdId = static_cast<quint8>(cmdId);
        request.grpId = Protocol::Read;
        request.length = static_cast<quint16>(payload.size());
        request.data = payload;
        parser.parseCommandMessage(request);
        return takeAnswers();
    }

    DataManager model;
    ReadCommandResponder responder{&model};
    ReadCommandParser parser{&responder};

private:
    QStringList takeAnswers()
    {
        QStringList texts;
        for (const CommandMessage& answer : m_answers) {
            texts.append(asText(answer));
        }
        m_answers.clear();
        return texts;
    }

    QObject m_context;
    QList<CommandMessage> m_answers;
};

/// One answer of the read group, as text.
[[nodiscard]] inline QStringList answer(int cmdId, const QByteArray& payload)
{
    return {asText(CommandMessage{static_cast<quint8>(cmdId), Protocol::Read,
                                  static_cast<quint16>(payload.size()), payload})};
}

[[nodiscard]] inline QStringList answerHex(int cmdId, const char* payloadHex)
{
    return answer(cmdId, QByteArray::fromHex(payloadHex));
}

} // namespace Tolvar::Varundo::Test

#endif
