#ifndef TOLVAR_VARUNDO_TRANSPORT_FRAMEREADER_H
#define TOLVAR_VARUNDO_TRANSPORT_FRAMEREADER_H

#include <Tolvar/Varundo/FrameCodec.h>

#include <QByteArray>
#include <QElapsedTimer>

#include <memory>

class QObject;

namespace Tolvar::Varundo {

/// The reading half of a transport: takes what its device has received, has it decoded, and holds back while
/// the other end does not take its replies. Owned by a transport, which supplies the device by overriding.
///
/// Holding back is what bounds memory: a few bytes of request can ask for a large answer, so even the rest of
/// a read that was taken from the device already waits until the replies have gone. And what a read asks for
/// may take long, so after a while the host's event loop has its turn first.
class FrameReader : public std::enable_shared_from_this<FrameReader>
{
public:
    /// So long, and the frame that is being acted upon then, a call of process() takes. Before the event loop
    /// is through once there may be two: of the turn that was asked for, and of new bytes.
    static constexpr int MaxTurnMs = 20;
    /// The longest read of a device: the longest frame and a little, so that such a frame comes in one read
    /// and is decoded in one go (4 % more bytes a second than with 64 KiB; with 16 KiB it is 10 % less). All
    /// reads go into one buffer, since one made for each costs every request an allocation.
    static constexpr int MaxReadBytes = 66 * 1024;
    /// What is kept of the bytes of devices that have gone while a frame was acted upon.
    static constexpr int MaxLastWordsBytes = 65536;

    /// Stands while the transport calls its listeners. Who destroys the transport from in there must not take
    /// the reader along.
    class Call
    {
    public:
        explicit Call(FrameReader& reader);
        ~Call();
        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;

    private:
        std::shared_ptr<FrameReader> m_reader;
    };

    FrameReader() = default;
    virtual ~FrameReader() = default;
    FrameReader(const FrameReader&) = delete;
    FrameReader& operator=(const FrameReader&) = delete;

    /// Reads and decodes until nothing is left, the other end is behind, or the turn is over; in the last
    /// case it asks for another turn. To be called when bytes have arrived and when replies have gone. A call
    /// from within an outcome returns at once; the outer call takes everything up.
    void process();

    /// Whether process() has been called and has not returned: what it calls is still at work.
    bool isProcessing() const { return m_processing; }

    /// To be called when the transport is destroyed. That must not happen while a call stands; if it does all
    /// the same, the transport is asked nothing any more, and its device goes when the call has returned.
    void transportDestroyed(QObject* device);
    bool isOrphaned() const { return m_orphanedDevice; }

    /// Gives up what is held back.
    void discardRest() { m_rest.clear(); }

    /// Takes the bytes of a device that is about to go; they are acted upon like any others, before whatever
    /// the next one brings.
    void leave(const QByteArray& lastWords);

    const FrameCounters& counters() const { return m_decoder.counters(); }

protected:
    virtual int read(char* buffer, int size) = 0; ///< one read of the device; 0 when it has nothing
    virtual bool isBehind() const = 0;            ///< whether too many replies wait to be taken
    virtual void callAgain() = 0;                 ///< process(), once, when the event loop has had its turn
    virtual void onFrameAccepted(const CommandMessage& message) = 0;
    virtual void onFrameRejected() = 0;
    virtual void onPrintableByte(quint8 byte) = 0;

private:
    friend class FrameDecoder;
    void frameAccepted(const CommandMessage& message);
    void frameRejected();
    void printableByte(quint8 byte);
    void byteDiscarded(quint8) {} // the decoder's counter is all that is kept of it
    bool wantsMore() const { return !isOrphaned() && !isBehind() && !m_turn.hasExpired(MaxTurnMs); }
    bool decodeNext();
    bool decodeRead(const char* bytes, int size);
    void tellOfLosses(const FrameCounters& before) const;

    FrameDecoder m_decoder;
    std::unique_ptr<char[]> m_buffer; // made with the first read
    QByteArray m_rest;      // of a read, held back; what the device has received since comes after it
    QByteArray m_lastWords; // of devices that have gone since
    QElapsedTimer m_turn;
    bool m_processing = false;
    int m_calls = 0;
    QObject* m_orphanedDevice = nullptr;
};

} // namespace Tolvar::Varundo

#endif
