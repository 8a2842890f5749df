#ifndef TOLVAR_VARUNDO_TEST_MODELDECODER_H
#define TOLVAR_VARUNDO_TEST_MODELDECODER_H

#include "WireOutcome.h"

#include <cstdint>
#include <vector>

namespace Tolvar::Varundo::Test {

/// The receive state machine a second time, as plain as its table: one byte at a time, nothing clever,
/// nothing shared with the library's decoder. The two are compared.
class ModelDecoder
{
public:
    struct Counters
    {
        std::uint64_t accepted = 0;
        std::uint64_t rejected = 0;
        std::uint64_t dropped = 0;
        std::uint64_t thrownAway = 0;
        std::uint64_t givenUp = 0;      // frames begun with more leftover bytes than they announce
        std::uint64_t withLeftover = 0; // frames accepted that hold bytes of a dropped one
    };

    [[nodiscard]] std::vector<WireOutcome> read(const std::vector<std::uint8_t>& bytes)
    {
        std::vector<WireOutcome> outcomes;
        bool nackSent = false;
        const auto nack = [&] {
            if (!nackSent) {
                nackSent = true;
                ++counters.rejected;
                outcomes.push_back({WireOutcome::Kind::Rejected, 0, {}});
            }
        };
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            const int byte = bytes[i];
            if (state == 0) {
                waitStart(byte, outcomes);
            } else if (state == 1) {
                command = byte;
                state = 2;
            } else if (state == 2) {
                if (byte > 2) {
                    counters.thrownAway += bytes.size() - i;
                    nack();
                    return outcomes;
                }
                group = byte;
                state = 3;
            } else if (state == 3) {
                low = byte;
                state = 4;
            } else if (state == 4) {
                high = byte;
                lengthIsKnown();
            } else if (state == 5) {
                payload.push_back(static_cast<std::uint8_t>(byte));
                state = payload.size() == announced() ? 6 : 5;
            } else if (byte != 3) {
                counters.thrownAway += bytes.size() - i;
                nack();
                if (surplus) {
                    emptyRecord();
                }
                return outcomes;
            } else if (surplus) {
                nack();
                emptyRecord();
            } else if (command == 0) {
                ++counters.dropped;
                leftover = payload.size();
                state = 0;
            } else {
                accept(outcomes);
            }
        }
        return outcomes;
    }

    int state = 0;
    Counters counters;

private:
    [[nodiscard]] std::size_t announced() const
    {
        return static_cast<std::size_t>(low) + 256 * static_cast<std::size_t>(high);
    }

    void waitStart(int byte, std::vector<WireOutcome>& outcomes)
    {
        if (byte == 2) {
            state = 1;
        } else if (byte >= 0x20) {
            outcomes.push_back({WireOutcome::Kind::Printable, static_cast<quint8>(byte), {}});
        } else {
            ++counters.thrownAway;
            outcomes.push_back({WireOutcome::Kind::Discarded, static_cast<quint8>(byte), {}});
        }
    }

    void lengthIsKnown()
    {
        if (payload.size() > announced()) {
            ++counters.givenUp;
            surplus = true;
            payload.clear();
            leftover = 0;
        }
        state = payload.size() == announced() ? 6 : 5;
    }

    void accept(std::vector<WireOutcome>& outcomes)
    {
        CommandMessage record;
        record.cmdId = static_cast<quint8>(command);
        record.grpId = static_cast<quint8>(group);
        record.length = static_cast<quint16>(announced());
        for (const std::uint8_t byte : payload) {
            record.data.append(static_cast<char>(byte));
        }
        outcomes.push_back({WireOutcome::Kind::Accepted, 0, record});
        ++counters.accepted;
        counters.withLeftover += leftover > 0 ? 1 : 0;
        emptyRecord();
    }

    void emptyRecord()
    {
        state = 0;
        command = group = low = high = 0;
        payload.clear();
        leftover = 0;
        surplus = false;
    }

    int command = 0;
    int group = 0;
    int low = 0;
    int high = 0;
    std::vector<std::uint8_t> payload;
    std::size_t leftover = 0;
    bool surplus = false;
};

} // namespace Tolvar::Varundo::Test

#endif
