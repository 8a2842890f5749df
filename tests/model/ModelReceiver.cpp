#include "ModelReceiver.h"

namespace Tolvar::Varundo::Model {

namespace {

constexpr std::uint8_t Stx = 0x02;
constexpr std::uint8_t Etx = 0x03;

} // namespace

void ModelReceiver::read(const Bytes& bytes, FrameListener& listener)
{
    m_hasRejected = false;
    for (const std::uint8_t byte : bytes) {
        if (!take(byte, listener)) {
            return;
        }
    }
}

bool ModelReceiver::take(std::uint8_t byte, FrameListener& listener)
{
    switch (m_waiting) {
    case Waiting::Start:
        if (byte == Stx) {
            m_waiting = Waiting::Command;
        } else if (byte >= 0x20) {
            listener.typed(byte);
        }
        return true;
    case Waiting::Command:
        m_frame.command = byte;
        m_waiting = Waiting::Group;
        return true;
    case Waiting::Group:
        if (byte > 2) {
            reject(listener);
            return false;
        }
        m_frame.group = byte;
        m_waiting = Waiting::LengthLow;
        return true;
    case Waiting::LengthLow:
        m_length = byte;
        m_waiting = Waiting::LengthHigh;
        return true;
    case Waiting::LengthHigh:
        m_length += std::size_t{256} * byte;
        m_surplus = m_frame.payload.size() > m_length;
        if (m_surplus) {
            m_frame.payload.clear();
        }
        m_waiting = m_frame.payload.size() == m_length ? Waiting::End : Waiting::Payload;
        return true;
    case Waiting::Payload:
        m_frame.payload.push_back(byte);
        m_waiting = m_frame.payload.size() == m_length ? Waiting::End : Waiting::Payload;
        return true;
    case Waiting::End:
        return takeEnd(byte, listener);
    }
    return false;
}

bool ModelReceiver::takeEnd(std::uint8_t byte, FrameListener& listener)
{
    if (m_surplus) { // rejected at its end, and the receiver is in order again
        reject(listener);
        m_frame = {};
        m_surplus = false;
        m_waiting = Waiting::Start;
        return byte == Etx;
    }
    if (byte != Etx) {
        reject(listener); // and it is waited on
        return false;
    }
    m_waiting = Waiting::Start;
    if (m_frame.command != 0) { // otherwise its payload stays
        const Frame frame = m_frame;
        m_frame = {};
        listener.accepted(frame);
    }
    return true;
}

void ModelReceiver::reject(FrameListener& listener)
{
    if (!m_hasRejected) {
        listener.rejected();
    }
    m_hasRejected = true;
}

} // namespace Tolvar::Varundo::Model
