// The frame decoder against an independent model of it: any difference is a finding.
//
// Input: one byte that says how often the sink has had enough (0: never), then reads, each a length and its
// bytes.

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
    const int enoughAfter = input.byte() % 8;
    FrameDecoder decoder;
    ModelDecoder model;
    RecordingSink sink;
    sink.answerWantsMore([&] { return enoughAfter == 0 || sink.timesAsked() % enoughAfter != 0; });
    std::vector<WireOutcome> expected;
    while (!input.isEmpty()) {
        const QByteArray read = input.piece();
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
