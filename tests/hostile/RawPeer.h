#ifndef TOLVAR_VARUNDO_TEST_RAWPEER_H
#define TOLVAR_VARUNDO_TEST_RAWPEER_H

#include <QByteArray>

#include <utility>

namespace Tolvar::Varundo::Test {

/// A descriptor that talks to a unit in another process: a TCP connection or a serial device. No event loop,
/// no buffers but the kernel's; every call returns.
class RawPeer
{
public:
    static RawPeer connectTo(int port);
    static RawPeer openDevice(const QByteArray& device);

    RawPeer(RawPeer&& other) noexcept
        : m_descriptor(std::exchange(other.m_descriptor, -1))
    {}
    RawPeer& operator=(RawPeer&& other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    ~RawPeer() { close(); }

    bool isOpen() const { return m_descriptor >= 0; }

    /// Everything, waiting for the other end; false if it takes no more for half a minute.
    bool send(const QByteArray& bytes);
    /// As much as the other end takes without being waited for longer than this.
    qint64 sendUntilBlocked(const QByteArray& block, qint64 atMost, int patienceMs);
    /// So many bytes; what has come if they do not within half a minute.
    QByteArray receive(qint64 count);
    /// What has come, at most so much, after waiting for anything no longer than this.
    QByteArray receiveUpTo(int most, int milliseconds);
    /// All until nothing comes for this time.
    QByteArray receiveFor(int milliseconds);
    QByteArray exchange(const QByteArray& bytes, qint64 answerSize)
    {
        return send(bytes) ? receive(answerSize) : QByteArray("(not taken)");
    }

    void close(); ///< with FIN
    void reset(); ///< with RST
    /// As if the cable were cut: from now on the kernel drops whatever comes, so that the other end is not
    /// even told that nobody takes it. Good for as long as this is neither closed nor sent with. False if the
    /// machine cannot do that.
    bool vanish();

private:
    explicit RawPeer(int descriptor)
        : m_descriptor(descriptor)
    {}
    bool waitFor(short event, int milliseconds) const;

    int m_descriptor;
};

} // namespace Tolvar::Varundo::Test

#endif
