// The frame decoder against an independent model of it: any difference is a finding.
//
// Input: one byte that says how often the sink has had enough (its last three bits; 0: never), then reads,
// each a length and its bytes. With the byte's first bit set each read begins with a byte more, which is odd
// for one with a frame of up to 65535 bytes in it, for as long as there is room for such.

#include "Demand.h"
#include "FuzzInput.h"
#include "ModelDecoder.h"
#include "RecordingSink.h"

#include <Tolvar/Varundo/FrameCodec.h>

#include <vector>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

/// Decodes a read to its end, however often the sink makes the decoder stop.
void decodeWhole(FrameDecoder& decoder, const QByteArray& read, RecordingSink& sink)
{
    qsizetype used = decoder.decode(read.constData(), read.size(), sink);
    while (used < read.size()) {
        const qsizetype more = decoder.resume(read.constData() + used, read.size() - used, sink);
        demand(more > 0, "the decoder goes on with the rest of a read");
        used += more;
    }
    demand(used == read.size(), "the decoder uses up what it was given and no more");
}

/// Bytes of long frames that one input has room for: one of the longest, or many of a few hundred.
constexpr int longFrames = 65536;

QByteArray nextRead(FuzzInput& input, int& room)
{
    if (room <= 0 || input.byte() % 2 == 0) {
        return input.piece();
    }
    const QByteArray before = input.piece();
    const QByteArray frame = input.frameWithoutEnd();
    room -= frame.size();
    return before + frame + input.piece(); // which begins with ETX where the frame is to be whole
}

void checkRoundTrip(const CommandMessage& message)
{
    const QByteArray frame = encodeFrame(message);
    FrameDecoder decoder;
    RecordingSink sink;
    decodeWhole(decoder, frame, sink);
    demand(sink.outcomes() == std::vector<WireOutcome>{{WireOutcome::Kind::Accepted, 0, message}},
           "an encoded record decodes to itself");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput input(data, size);
    const int kind = input.byte();
    const int enoughAfter = kind % 8;
    int room = kind >= 128 ? longFrames : 0;
    FrameDecoder decoder;
    ModelDecoder model;
    RecordingSink sink;
    sink.answerWantsMore([&] { return enoughAfter == 0 || sink.timesAsked() % enoughAfter != 0; });
    std::vector<WireOutcome> expected;
    while (!input.isEmpty()) {
        const QByteArray read = nextRead(input, room);
        decodeWhole(decoder, read, sink);
        const auto outcomes = model.read(std::vector<std::uint8_t>(read.begin(), read.end()));
        expected.insert(expected.end(), outcomes.begin(), outcomes.end());
        demand(static_cast<int>(decoder.state()) == model.state, "decoder and model are in the same state");
    }
    demand(sink.outcomes() == expected, "decoder and model tell the same outcomes");
    const FrameCounters& counted = decoder.counters();
    demand(counted.accepted == model.counters.accepted && counted.rejected == model.counters.rejected &&
               counted.dropped == model.counters.dropped &&
               counted.discardedBytes == model.counters.thrownAway,
           "decoder and model count the same");
    for (const WireOutcome& outcome : expected) {
        if (outcome.kind == WireOutcome::Kind::Accepted) {
            checkRoundTrip(outcome.record);
        }
    }
    return 0;
}
