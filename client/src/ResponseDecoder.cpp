#include <Tolvar/Varundo/Client/ResponseDecoder.h>

#include <optional>
#include <utility>

namespace Tolvar::Varundo::Client {

namespace {

/// What one byte brought about.
class ByteOutcome
{
public:
    void frameAccepted(const CommandMessage& message) { m_frame = message; }
    void frameRejected() { m_rejected = true; }
    void printableByte(quint8 byte) { m_outside = byte; }
    void byteDiscarded(quint8 byte) { m_outside = byte; }
    [[nodiscard]] static bool wantsMore() { return true; }

    [[nodiscard]] const std::optional<CommandMessage>& frame() const { return m_frame; }
    [[nodiscard]] bool rejected() const { return m_rejected; }
    [[nodiscard]] std::optional<quint8> outside() const { return m_outside; }

private:
    std::optional<CommandMessage> m_frame;
    std::optional<quint8> m_outside;
    bool m_rejected = false;
};

void appendNoise(QVector<Response>& responses, const QByteArray& bytes)
{
    if (!responses.isEmpty() && responses.last().kind == Response::Kind::Noise) {
        responses.last().bytes.append(bytes);
    } else {
        responses.append({Response::Kind::Noise, {}, bytes});
    }
}

} // namespace

QVector<Response> ResponseDecoder::decode(const QByteArray& bytes)
{
    QVector<Response> responses;
    for (const char& byte : bytes) {
        decodeByte(byte, responses);
    }
    return responses;
}

void ResponseDecoder::reset()
{
    m_decoder = FrameDecoder();
    m_frameBytes.clear();
}

// A byte at a time, so that a rejection costs this byte only and not the rest of the read.
void ResponseDecoder::decodeByte(const char& byte, QVector<Response>& responses)
{
    ByteOutcome outcome;
    m_decoder.decode(&byte, 1, outcome);

    if (outcome.rejected()) {
        // The byte is where the frame went wrong; it may well begin something of its own.
        const QByteArray broken = std::exchange(m_frameBytes, QByteArray());
        reset();
        appendNoise(responses, broken);
        decodeByte(byte, responses);
    } else if (outcome.frame()) {
        m_frameBytes.append(byte);
        responses.append(
            {Response::Kind::Frame, *outcome.frame(), std::exchange(m_frameBytes, QByteArray())});
    } else if (outcome.outside() == Protocol::Ack) {
        responses.append({Response::Kind::Ack, {}, QByteArray(1, byte)});
    } else if (outcome.outside() == Protocol::Nack) {
        responses.append({Response::Kind::Nack, {}, QByteArray(1, byte)});
    } else if (outcome.outside()) {
        appendNoise(responses, QByteArray(1, byte));
    } else {
        m_frameBytes.append(byte);
        if (!isInsideFrame()) {
            // A complete frame that nobody may send: command 0. Its payload must not leak into the next one.
            const QByteArray dropped = m_frameBytes;
            reset();
            appendNoise(responses, dropped);
        }
    }
}

} // namespace Tolvar::Varundo::Client
