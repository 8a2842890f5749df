#include "BenchUnit.h"
#include "Operation.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace Tolvar::Varundo::Bench {

namespace {

constexpr int framesInARead = 64;

/// Looks at what it is told, so that nothing can be left out.
struct LookingSink
{
    void frameAccepted(const CommandMessage& message)
    {
        ++frames;
        sum += message.cmdId + message.data.size();
    }
    void frameRejected() { ++rejections; }
    void printableByte(quint8 byte) { sum += byte; }
    void byteDiscarded(quint8) { ++sum; }
    bool wantsMore() const { return true; }

    quint64 frames = 0;
    quint64 rejections = 0;
    qint64 sum = 0;
};

/// What one would write by hand for whole reads of valid and broken frames: the same outcomes, as directly as
/// it goes, without counters, leftovers or back-pressure.
template <class Sink>
void decodeByHand(const char* bytes, int size, Sink& sink)
{
    int at = 0;
    while (at < size) {
        const auto byte = static_cast<quint8>(bytes[at]);
        if (byte != Protocol::Stx) {
            ++at;
            if (byte >= Protocol::FirstPrintable) {
                sink.printableByte(byte);
            } else {
                sink.byteDiscarded(byte);
            }
            continue;
        }
        if (size - at < Protocol::FrameOverhead) {
            return;
        }
        const auto command = static_cast<quint8>(bytes[at + 1]);
        const auto group = static_cast<quint8>(bytes[at + 2]);
        const int length = static_cast<quint8>(bytes[at + 3]) + 256 * static_cast<quint8>(bytes[at + 4]);
        if (group > Protocol::LastGroup || size - at < Protocol::FrameOverhead + length ||
            static_cast<quint8>(bytes[at + 5 + length]) != Protocol::Etx) {
            sink.frameRejected();
            return;
        }
        const QByteArray payload = length > 0 ? QByteArray(bytes + at + 5, length) : QByteArray();
        at += Protocol::FrameOverhead + length;
        if (command != 0 && group != Protocol::NoGroup) {
            sink.frameAccepted(CommandMessage{command, group, static_cast<quint16>(length), payload});
        }
    }
}

void insist(bool holds)
{
    if (!holds) {
        std::fprintf(stderr, "a codec operation does not do what it is measured for\n");
        std::exit(1);
    }
}

struct Decoding
{
    FrameDecoder decoder;
    LookingSink sink;
};

Operation decoding(const QByteArray& frame, int frames)
{
    const auto state = std::make_shared<Decoding>();
    const QByteArray read = frame.repeated(frames);
    return {[state, read, frames] {
                const quint64 before = state->sink.frames;
                state->decoder.decode(read.constData(), read.size(), state->sink);
                insist(state->sink.frames - before == static_cast<quint64>(frames));
            },
            frames, read.size()};
}

Operation decodingCut(const QByteArray& frame)
{
    const auto state = std::make_shared<Decoding>();
    return {[state, frame] {
                const quint64 before = state->sink.frames;
                for (const char& byte : frame) {
                    state->decoder.decode(&byte, 1, state->sink);
                }
                insist(state->sink.frames == before + 1);
            },
            1, frame.size()};
}

Operation decodingByHand(const QByteArray& frame, int frames)
{
    const auto sink = std::make_shared<LookingSink>();
    const QByteArray read = frame.repeated(frames);
    return {[sink, read, frames] {
                const quint64 before = sink->frames;
                decodeByHand(read.constData(), read.size(), *sink);
                insist(sink->frames - before == static_cast<quint64>(frames));
            },
            frames, read.size()};
}

Operation encoding(int payload)
{
    const CommandMessage message{0xF0, Protocol::Read, static_cast<quint16>(payload),
                                 QByteArray(payload, 'x')};
    return {[message, payload] { insist(encodeFrame(message).size() == payload + Protocol::FrameOverhead); },
            1, payload + Protocol::FrameOverhead};
}

} // namespace

void addCodecOperations(std::vector<OperationMaker>& list)
{
    const QByteArray smallest = BenchUnit::frame(0xF0, Protocol::Read);
    const QByteArray small = BenchUnit::frame(0x32, Protocol::Write, QByteArray("\12\2", 2));
    const QByteArray medium = BenchUnit::frame(0x90, Protocol::Write, QByteArray(256, 'x'));
    const QByteArray largest = BenchUnit::frame(0x90, Protocol::Write, QByteArray(65535, 'x'));
    list.insert(list.end(), {{"decode a frame of 6 bytes",
                              [=] {
                                  return decoding(smallest, framesInARead);
                              }},
                             {"decode a frame of 6 bytes, by hand",
                              [=] {
                                  return decodingByHand(smallest, framesInARead);
                              }},
                             {"decode a frame of 8 bytes",
                              [=] {
                                  return decoding(small, framesInARead);
                              }},
                             {"decode a frame of 262 bytes",
                              [=] {
                                  return decoding(medium, framesInARead);
                              }},
                             {"decode a frame of 65,541 bytes",
                              [=] {
                                  return decoding(largest, 1);
                              }},
                             {"decode a frame of 6 bytes, cut at every byte",
                              [=] {
                                  return decodingCut(smallest);
                              }},
                             {"decode a frame of 262 bytes, cut at every byte",
                              [=] {
                                  return decodingCut(medium);
                              }},
                             {"encode a frame of 10 bytes",
                              [] {
                                  return encoding(4);
                              }},
                             {"encode a frame of 65,541 bytes", [] {
                                  return encoding(65535);
                              }}});
}

} // namespace Tolvar::Varundo::Bench
