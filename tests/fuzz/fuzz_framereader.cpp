// The reading half of a transport, over a device in memory: reads of any size, a peer that takes the replies
// or does not, calls from within outcomes. What is told is compared with the model of the decoder, and
// nothing may be acted upon while the peer is behind.
//
// Input: steps, each a byte that says what happens and what that needs.

#include "Demand.h"
#include "FuzzInput.h"
#include "ModelDecoder.h"

#include "FrameReader.h"

#include <algorithm>
#include <deque>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

class MemoryReader final : public FrameReader
{
public:
    void receive(const QByteArray& bytes)
    {
        if (!bytes.isEmpty()) { // an empty read says that there is nothing
            m_received.push_back(bytes);
        }
    }

    /// The device has gone, and these bytes of it are left.
    void lose(const QByteArray& lastWords)
    {
        m_lastWords += lastWords;
        leave(lastWords);
    }
    /// The same, from within the next outcome.
    void loseInCall(const QByteArray& lastWords) { m_lostInCall = lastWords; }

    /// Turn by turn, until there is no more to do for now.
    void run()
    {
        do {
            m_wantsTurn = false;
            process();
        } while (m_wantsTurn);
    }

    /// The peer has taken so many replies.
    void take(int replies) { m_untaken = std::max(0, m_untaken - replies); }

    void setPatience(int replies) { m_patience = replies; }
    void setCallsBack(bool callsBack) { m_callsBack = callsBack; }

    bool isHeldBack() const { return isBehind(); }

    /// To be asked when the peer is not behind: then nothing may be left.
    void checkDone()
    {
        expectLastWords();
        demand(m_received.empty() && m_told.size() == m_expected.size(),
               "with a peer that keeps up nothing is left over");
        demand(counters().accepted == m_model.counters.accepted &&
                   counters().rejected == m_model.counters.rejected &&
                   counters().dropped == m_model.counters.dropped &&
                   counters().discardedBytes == m_model.counters.thrownAway,
               "reader and model count the same");
    }

private:
    int read(char* buffer, int size) override
    {
        demand(!isBehind(), "nothing is read while the peer is behind");
        expectLastWords();
        demand(m_told.size() == m_expected.size(),
               "a read is decoded to its end before the next one is taken");
        if (m_received.empty()) {
            return 0;
        }
        const QByteArray bytes = m_received.front();
        m_received.pop_front();
        demand(bytes.size() <= size, "a read fits into the buffer");
        expect(bytes);
        std::copy(bytes.begin(), bytes.end(), buffer);
        return bytes.size();
    }

    void expect(const QByteArray& read)
    {
        for (const WireOutcome& outcome : m_model.read(std::vector<std::uint8_t>(read.begin(), read.end()))) {
            if (outcome.kind != WireOutcome::Kind::Discarded) { // a reader only counts those
                m_expected.push_back(outcome);
            }
        }
    }

    /// They are a read of their own, which the device is not asked for, and come before what it has next.
    void expectLastWords()
    {
        if (!m_lastWords.isEmpty()) {
            expect(std::exchange(m_lastWords, QByteArray()));
        }
    }

    bool isBehind() const override { return m_untaken >= m_patience; }

    void callAgain() override { m_wantsTurn = true; }

    void onFrameAccepted(const CommandMessage& message) override
    {
        demand(!isBehind(), "nothing is acted upon while the peer is behind");
        tell({WireOutcome::Kind::Accepted, 0, message});
        m_untaken += 1 + message.cmdId % 4;
        lose(std::exchange(m_lostInCall, QByteArray()));
        if (m_callsBack) {
            process(); // as when writing a reply makes the device say that there is more to read
        }
    }
    void onFrameRejected() override
    {
        tell({WireOutcome::Kind::Rejected, 0, {}});
        ++m_untaken;
    }
    void onPrintableByte(quint8 byte) override { tell({WireOutcome::Kind::Printable, byte, {}}); }

    void tell(const WireOutcome& outcome)
    {
        if (m_told.size() == m_expected.size()) {
            expectLastWords();
        }
        m_told.push_back(outcome);
        demand(m_told.size() <= m_expected.size() && m_expected[m_told.size() - 1] == outcome,
               "reader and model tell the same outcomes, in the same order");
    }

    std::deque<QByteArray> m_received;
    QByteArray m_lastWords; // not expected yet
    QByteArray m_lostInCall;
    ModelDecoder m_model;
    std::vector<WireOutcome> m_expected;
    std::vector<WireOutcome> m_told;
    int m_untaken = 0;
    int m_patience = 1;
    bool m_callsBack = false;
    bool m_wantsTurn = false;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput input(data, size);
    const auto made = std::make_shared<MemoryReader>();
    MemoryReader& reader = *made;
    while (!input.isEmpty()) {
        switch (const int what = input.byte(); what % 8) {
        case 0:
            reader.take(input.byte());
            reader.run();
            break;
        case 1:
            reader.setPatience(1 + input.byte());
            reader.run();
            break;
        case 2:
            reader.setCallsBack(what >= 128);
            break;
        case 3:
            reader.receive(input.piece()); // and nobody says so yet
            break;
        case 4:
            if (what < 128) {
                reader.lose(input.piece());
            } else {
                reader.loseInCall(input.piece());
            }
            break;
        default:
            reader.receive(input.piece());
            reader.run();
        }
        if (!reader.isHeldBack()) {
            reader.run();
        }
        if (!reader.isHeldBack()) {
            reader.checkDone();
        }
    }
    for (int i = 0; reader.isHeldBack(); ++i) {
        demand(i <= 100000, "a peer that takes its replies gets them all");
        reader.take(std::numeric_limits<int>::max());
        reader.run();
    }
    reader.checkDone();
    return 0;
}
