#ifndef TOLVAR_VARUNDO_TRANSPORT_FRAMEREADER_H
#define TOLVAR_VARUNDO_TRANSPORT_FRAMEREADER_H

#include <Tolvar/Varundo/FrameCodec.h>

#include <QByteArray>

namespace Tolvar::Varundo {

/// The reading half of a transport: takes what its device has received, has it decoded, and holds back while
/// the other end does not take its replies. Owned by a transport, which supplies the device by overriding.
///
/// Holding back is what bounds memory: a few bytes of request can ask for a large answer, so even the rest of
/// a read that was taken from the device already waits until the replies have gone.
class FrameReader
{
public:
    FrameReader() = default;
    virtual ~FrameReader() = default;
    FrameReader(const FrameReader&) = delete;
    FrameReader& operator=(const FrameReader&) = delete;

    /// Reads and decodes until nothing is left or the other end is behind. To be called when bytes have
    /// arrived and when replies have gone. A call from within an outcome returns at once; the outer call
    /// takes everything up.
    void process();

    /// Gives up what is held back.
    void discardRest() { m_rest.clear(); }

    const FrameCounters& counters() const { return m_decoder.counters(); }

protected:
    virtual QByteArray readAvailable() = 0; ///< one read of the device; empty when it has nothing
    virtual bool isBehind() const = 0;      ///< whether too many replies wait to be taken
    virtual void frameAccepted(const CommandMessage& message) = 0;
    virtual void frameRejected() = 0;
    virtual void printableByte(quint8 byte) = 0;

private:
    friend class FrameDecoder;
    void byteDiscarded(quint8) {} // the decoder's counter is all that is kept of it
    bool wantsMore() const { return !isBehind(); }

    FrameDecoder m_decoder;
    QByteArray m_rest; // of a read, held back; what the device has received since comes after it
    bool m_processing = false;
};

} // namespace Tolvar::Varundo

#endif
