#ifndef TOLVAR_VARUNDO_CLIENT_RESPONSEDECODER_H
#define TOLVAR_VARUNDO_CLIENT_RESPONSEDECODER_H

#include <Tolvar/Varundo/Client/Export.h>
#include <Tolvar/Varundo/CommandMessage.h>
#include <Tolvar/Varundo/FrameCodec.h>

#include <QByteArray>
#include <QMetaType>
#include <QVector>

namespace Tolvar::Varundo::Client {

/// One thing that the unit has sent.
struct Response
{
    enum class Kind : quint8 {
        Ack,
        Nack,
        Frame,
        Noise, ///< bytes that belong to nothing
    };

    Kind kind = Kind::Noise;
    CommandMessage frame; ///< for Frame only
    QByteArray bytes;     ///< as they were on the wire
};

/// Takes the unit's output apart: acknowledgement bytes and frames in any mixture, cut anywhere. No I/O;
/// not thread-safe.
///
/// The frame grammar is the unit's own decoder, but not its manner of giving up: a controller must not lose
/// an acknowledgement because of a disturbed byte in front of it. What does not fit is told as noise, and the
/// next byte is looked at with a fresh mind. Memory is bounded by one frame of the largest size.
class ZEL_CLIENT_EXPORT ResponseDecoder
{
public:
    /// What has been completed by these bytes, in wire order. Noise is told when it ends or the bytes do.
    [[nodiscard]] QVector<Response> decode(const QByteArray& bytes);

    /// True while a frame has begun and is not complete.
    [[nodiscard]] bool isInsideFrame() const { return m_decoder.state() != FrameDecoder::State::WaitStart; }

    /// What has come of that frame so far.
    [[nodiscard]] const QByteArray& incompleteFrame() const { return m_frameBytes; }

    /// Gives an incomplete frame up.
    void reset();

private:
    // A reference on purpose: of a copy compilers know that it is one byte, and warn of the others, which the
    // decoder looks at only if they are there.
    void decodeByte(const char& byte, QVector<Response>& responses);

    FrameDecoder m_decoder;
    QByteArray m_frameBytes; // of the frame that is being received
};

} // namespace Tolvar::Varundo::Client

Q_DECLARE_METATYPE(Tolvar::Varundo::Client::Response)

#endif
