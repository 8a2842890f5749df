#ifndef TOLVAR_VARUNDO_FRAMECODEC_H
#define TOLVAR_VARUNDO_FRAMECODEC_H

#include <Tolvar/Varundo/CommandMessage.h>
#include <Tolvar/Varundo/Protocol.h>

#include <QByteArray>

#include <algorithm>
#include <utility>

namespace Tolvar::Varundo {

/// Puts the bytes of one frame into a buffer that has room for the payload and Protocol::FrameOverhead: STX,
/// command, group, length low, length high, payload, ETX.
///
/// The record's own length field is sent, not the payload's size. A record whose two disagree goes out
/// with a wrong length on purpose: a payload beyond 65535 bytes has no right one.
inline void putFrame(const CommandMessage& message, char* frame)
{
    frame[0] = static_cast<char>(Protocol::Stx);
    frame[1] = static_cast<char>(message.cmdId);
    frame[2] = static_cast<char>(message.grpId);
    frame[3] = static_cast<char>(message.length & 0xFF);
    frame[4] = static_cast<char>(message.length >> 8);
    std::copy(message.data.begin(), message.data.end(), frame + Protocol::HeaderSize);
    frame[Protocol::HeaderSize + message.data.size()] = static_cast<char>(Protocol::Etx);
}

/// The same, as bytes of its own.
[[nodiscard]] inline QByteArray encodeFrame(const CommandMessage& message)
{
    QByteArray frame(message.data.size() + Protocol::FrameOverhead, Qt::Uninitialized);
    putFrame(message, frame.data());
    return frame;
}

/// What a decoder has seen since it was made. Never reset, wraps after 2^64.
struct FrameCounters
{
    quint64 accepted = 0;       ///< frames acknowledged and delivered
    quint64 rejected = 0;       ///< rejections told to the sink (one NACK each)
    quint64 dropped = 0;        ///< complete frames dropped without a reply (command 0)
    quint64 discardedBytes = 0; ///< bytes thrown away: control bytes outside frames, rests of rejected reads
};

/// The receive side of the wire: turns bytes into records. No I/O, no event loop, no QObject; not
/// thread-safe.
///
/// One instance serves one transport for its whole life. Nothing resets it: not a port that closes, not a new
/// client, not silence. It is fed one read of the device at a time, because a rejection throws away the rest
/// of the read that it happens in.
///
/// A Sink receives the outcomes, in wire order, from within decode():
/// - `void frameAccepted(const CommandMessage&)`: acknowledge, then act; the decoder is ready for re-use by
/// then.
/// - `void frameRejected()`: send a NACK; called at most once per read.
/// - `void printableByte(quint8)`: a byte 0x20 to 0xFF outside a frame.
/// - `void byteDiscarded(quint8)`: a control byte outside a frame; no reply.
/// - `bool wantsMore()`: asked after each frame and each printable byte that more bytes follow; false makes
/// decode() return early.
class FrameDecoder
{
public:
    enum class State : quint8 {
        WaitStart = 0,
        WaitCmdId = 1,
        WaitGrpId = 2,
        WaitLengthLow = 3,
        WaitLengthHigh = 4,
        ReadPayload = 5,
        WaitEnd = 6,
    };

    /// Decodes one read of the device. Returns how many bytes were used up: all of them, unless the sink did
    /// not want more; the rest then goes to resume(), unchanged and before anything newer.
    template <class Sink>
    qsizetype decode(const char* bytes, qsizetype size, Sink& sink);

    /// Goes on with the rest of a read that decode() or resume() left.
    template <class Sink>
    qsizetype resume(const char* bytes, qsizetype size, Sink& sink);

    [[nodiscard]] State state() const { return m_state; }
    [[nodiscard]] const FrameCounters& counters() const { return m_counters; }

private:
    template <class Sink>
    int acceptWhole(const char* bytes, qsizetype size, Sink& sink);
    int announcedLength() const { return m_lengthLow + 256 * m_lengthHigh; }
    void beginPayload();
    template <class Sink>
    void closeFrame(Sink& sink);
    template <class Sink>
    void reject(Sink& sink);
    void clearRecord();

    State m_state = State::WaitStart;
    bool m_refused = false; // the frame under assembly cannot be accepted; it is read to its end only
    bool m_rejectedThisRead = false; // a read is answered with one NACK at most
    quint8 m_cmdId = 0;
    quint8 m_grpId = 0;
    quint8 m_lengthLow = 0;
    quint8 m_lengthHigh = 0;
    QByteArray m_payload; // grows with the bytes received, never with the length announced
    FrameCounters m_counters;
};

template <class Sink>
qsizetype FrameDecoder::decode(const char* bytes, qsizetype size, Sink& sink)
{
    m_rejectedThisRead = false;
    return resume(bytes, size, sink);
}

template <class Sink>
qsizetype FrameDecoder::resume(const char* bytes, qsizetype size, Sink& sink)
{
    qsizetype at = 0;
    const auto abandonRead = [&](qsizetype from) {
        m_counters.discardedBytes += static_cast<quint64>(size - from);
        reject(sink);
        return size;
    };
    const auto isEnough = [&] {
        return at < size && !sink.wantsMore();
    };

    while (at < size) {
        const auto byte = static_cast<quint8>(bytes[at]);
        switch (m_state) {
        case State::WaitStart:
            if (byte == Protocol::Stx) {
                if (const int taken = acceptWhole(bytes + at, size - at, sink)) {
                    at += taken;
                    if (isEnough()) {
                        return at;
                    }
                    break;
                }
            }
            ++at;
            if (byte == Protocol::Stx) {
                m_state = State::WaitCmdId;
            } else if (byte >= Protocol::FirstPrintable) {
                sink.printableByte(byte);
                if (isEnough()) {
                    return at;
                }
            } else {
                ++m_counters.discardedBytes;
                sink.byteDiscarded(byte);
            }
            break;
        case State::WaitCmdId:
            ++at;
            m_cmdId = byte;
            m_state = State::WaitGrpId;
            break;
        case State::WaitGrpId:
            // The state stays: the next read begins with another try for the group byte.
            if (byte > Protocol::LastGroup) {
                return abandonRead(at);
            }
            ++at;
            m_grpId = byte;
            m_state = State::WaitLengthLow;
            break;
        case State::WaitLengthLow:
            ++at;
            m_lengthLow = byte;
            m_state = State::WaitLengthHigh;
            break;
        case State::WaitLengthHigh:
            ++at;
            m_lengthHigh = byte;
            beginPayload();
            break;
        case State::ReadPayload: {
            const auto taken = std::min<qsizetype>(announcedLength() - m_payload.size(), size - at);
            m_payload.append(bytes + at, static_cast<int>(taken));
            at += taken;
            if (m_payload.size() == announcedLength()) {
                m_state = State::WaitEnd;
            }
            break;
        }
        case State::WaitEnd:
            if (byte == Protocol::Etx) {
                ++at;
                closeFrame(sink);
                if (isEnough()) {
                    return at;
                }
                break;
            }
            if (m_refused) {
                clearRecord();
                m_state = State::WaitStart;
            }
            // Otherwise the state stays and the frame is held: a later read that begins with ETX completes
            // it.
            return abandonRead(at);
        }
    }
    return at;
}

/// The way that nearly every frame takes: it lies whole in the read and nothing is wrong with it. Then it
/// need not go through the states byte by byte, which takes three times as long. Returns how many bytes it
/// has; 0, with nothing done, for any other frame.
template <class Sink>
int FrameDecoder::acceptWhole(const char* bytes, qsizetype size, Sink& sink)
{
    if (size < Protocol::FrameOverhead || !m_payload.isEmpty()) {
        return 0;
    }
    const auto cmdId = static_cast<quint8>(bytes[1]);
    const auto grpId = static_cast<quint8>(bytes[2]);
    const int length = static_cast<quint8>(bytes[3]) + 256 * static_cast<quint8>(bytes[4]);
    const int whole = Protocol::FrameOverhead + length;
    if (cmdId == 0 || grpId > Protocol::LastGroup || size < whole ||
        static_cast<quint8>(bytes[whole - 1]) != Protocol::Etx) {
        return 0;
    }
    const CommandMessage message{cmdId, grpId, static_cast<quint16>(length),
                                 length > 0 ? QByteArray(bytes + Protocol::HeaderSize, length)
                                            : QByteArray()};
    ++m_counters.accepted;
    sink.frameAccepted(message);
    return whole;
}

/// The header is complete. Payload bytes of an earlier frame that was never accepted are still in the buffer
/// and count towards this one, on purpose: only an accepted frame clears them. If they are already more than
/// this frame announces, it can never be accepted; then they are given up, and the frame is read to its end
/// to keep in step, and rejected there.
inline void FrameDecoder::beginPayload()
{
    if (m_payload.size() > announcedLength()) {
        m_payload.clear();
        m_refused = true;
    }
    m_state = m_payload.size() == announcedLength() ? State::WaitEnd : State::ReadPayload;
}

template <class Sink>
void FrameDecoder::closeFrame(Sink& sink)
{
    m_state = State::WaitStart;
    if (m_refused) {
        clearRecord();
        reject(sink);
        return;
    }
    // Dropped without a reply, and the record stays as it is: its payload counts towards the next frame.
    if (m_cmdId == 0 || m_grpId == Protocol::NoGroup) {
        ++m_counters.dropped;
        return;
    }
    const CommandMessage message{m_cmdId, m_grpId, static_cast<quint16>(announcedLength()),
                                 std::exchange(m_payload, QByteArray())};
    clearRecord();
    ++m_counters.accepted;
    sink.frameAccepted(message);
}

template <class Sink>
void FrameDecoder::reject(Sink& sink)
{
    if (!std::exchange(m_rejectedThisRead, true)) {
        ++m_counters.rejected;
        sink.frameRejected();
    }
}

inline void FrameDecoder::clearRecord()
{
    m_refused = false;
    m_cmdId = m_grpId = m_lengthLow = m_lengthHigh = 0;
    m_payload.clear();
}

} // namespace Tolvar::Varundo

#endif
