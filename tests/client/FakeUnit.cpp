#include "FakeUnit.h"

namespace Tolvar::Varundo::Tests {

namespace {

constexpr quint8 StatusLineText = 0x90;
constexpr int LastStatusLine = 4;

} // namespace

void FakeUnit::behaveWell(const CommandMessage& frame)
{
    say(ack());
    if (frame.grpId != Protocol::Read) {
        return;
    }
    const int line = frame.data.toHex().toInt();
    if (frame.cmdId == StatusLineText && line > LastStatusLine) {
        say(answer(frame.cmdId, QByteArray(1, static_cast<char>(line))));
    } else if (m_answers.contains(frame.cmdId)) {
        say(answer(frame.cmdId, m_answers.value(frame.cmdId)));
    }
}

QByteArray FakeUnit::answer(quint8 cmdId, const QByteArray& payload)
{
    return encodeFrame({cmdId, Protocol::Read, static_cast<quint16>(payload.size()), payload});
}

void FakeUnit::frameAccepted(const CommandMessage& frame)
{
    m_frames.append(frame);
    if (m_behaviour) {
        const Behaviour behaviour = m_behaviour; // it may set another one
        behaviour(frame);
    } else {
        behaveWell(frame);
    }
}

void FakeUnit::take(const QByteArray& bytes)
{
    m_received.append(bytes);
    m_decoder.decode(bytes.constData(), bytes.size(), *this);
}

} // namespace Tolvar::Varundo::Tests
