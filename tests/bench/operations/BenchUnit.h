#ifndef TOLVAR_VARUNDO_BENCH_BENCHUNIT_H
#define TOLVAR_VARUNDO_BENCH_BENCHUNIT_H

#include "FakeDevices.h"

#include <Mavril/VideoOverlay/CVideoOverlayManager.h>
#include <Tolvar/Varundo/CommandParser.h>
#include <Tolvar/Varundo/FrameCodec.h>
#include <Tolvar/Varundo/Runner.h>
#include <Tolvar/Varundo/ZelVideoOverlayElementAccessor.h>

#include <QByteArray>

#include <memory>

namespace Tolvar::Varundo::Bench {

/// A whole unit with the reference overlay and all devices, fed with bytes directly or over a socket. One at
/// a time: devices and settings are the process'.
class BenchUnit
{
public:
    BenchUnit();
    ~BenchUnit();
    BenchUnit(const BenchUnit&) = delete;
    BenchUnit& operator=(const BenchUnit&) = delete;

    /// Bytes as a transport would read them: decoded, carried out, and answered up to the framed answer.
    void feed(const QByteArray& bytes) { m_decoder.decode(bytes.constData(), bytes.size(), *this); }
    int answerSize() const { return m_answer.size(); }

    /// Opens a connection to the unit; talk() then sends a request, lets the unit's event loop run, and
    /// returns when so many bytes have come back.
    void connectOverTcp();
    void talk(const QByteArray& request, int replySize);
    /// The system calls that talk() itself has made so far, which are none of the unit's.
    quint64 clientCalls() const { return m_clientCalls; }

    void loadProfile(const QByteArray& json);
    /// Texts of a controller's in column 0 of line 1, none blank.
    void makeCustomTexts(int count);
    static QByteArray frame(int command, int group, const QByteArray& payload = {});
    /// A few elements of each kind that the protocol knows, and else ones of the host's own; so many in all,
    /// but at least those.
    static QByteArray profileOf(int elements);
    /// The same, but a controller reaches all of them: each has an id of its own.
    static QByteArray profileOfBound(int elements);

    // The decoder's sink.
    void frameAccepted(const CommandMessage& message) { m_parser->onCommandMessageReceived(message); }
    void frameRejected() {}
    void printableByte(quint8 byte) { runner->onPrintableCharReceived(static_cast<char>(byte)); }
    void byteDiscarded(quint8) {}
    bool wantsMore() const { return true; }

    Test::FakeDevices devices;
    Mavril::VideoOverlay::CVideoOverlayManager manager;
    ZelVideoOverlayElementAccessor accessor;
    std::unique_ptr<Runner> runner;

private:
    CommandParser* m_parser = nullptr;
    FrameDecoder m_decoder;
    QByteArray m_answer;
    int m_port = 0;
    int m_client = -1;
    quint64 m_clientCalls = 0;
};

} // namespace Tolvar::Varundo::Bench

#endif
