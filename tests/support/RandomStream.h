#ifndef TOLVAR_VARUNDO_TEST_RANDOMSTREAM_H
#define TOLVAR_VARUNDO_TEST_RANDOMSTREAM_H

#include <cstdint>
#include <random>
#include <vector>

namespace Tolvar::Varundo::Test {

/// What a controller, a broken controller or noise may put on the wire, and the reads it may arrive in. The
/// same seed gives the same stream on every machine: only the generator's raw numbers are used.
class RandomStream
{
public:
    explicit RandomStream(std::uint32_t seed)
        : m_random(seed)
    {
        for (int part = 1 + below(8); part > 0; --part) {
            appendPart();
        }
        if (below(4) == 0) {
            bytes.resize(static_cast<std::size_t>(below(static_cast<int>(bytes.size()) + 1))); // cut off
        }
        for (std::size_t end = 0; end < bytes.size();) {
            const int longest = below(4) == 0 ? 2 : 2 * static_cast<int>(bytes.size());
            end += static_cast<std::size_t>(below(longest + 1));
            cuts.push_back(end < bytes.size() ? end : bytes.size());
        }
    }

    std::vector<std::uint8_t> bytes;
    std::vector<std::size_t> cuts; // where each read ends; the same place twice is an empty read

private:
    int below(int limit) { return static_cast<int>(m_random() % static_cast<std::uint32_t>(limit)); }
    void put(int byte) { bytes.push_back(static_cast<std::uint8_t>(byte)); }

    void appendPart()
    {
        switch (below(10)) {
        case 0:
        case 1:
        case 2:
            return appendFrame(1 + below(255), below(3), shortLength());
        case 3:
            return appendFrame(0, below(3), shortLength()); // dropped; its payload stays
        case 4:
            return appendFrameAfterDropped();
        case 5:
            return appendFrame(1 + below(255), 3 + below(253), shortLength());
        case 6:
            return appendMutatedFrame();
        case 7:
            for (int n = below(12); n > 0; --n) {
                put(0x20 + below(0xE0));
            }
            return;
        case 8:
            for (int n = below(12); n > 0; --n) {
                put(below(4) == 0 ? below(256) : below(7)); // control bytes more often than not
            }
            return;
        default:
            return appendFrame(below(256), below(3), longLength());
        }
    }

    int shortLength() { return below(5); }
    int longLength()
    {
        return below(400) == 0 ? below(65536) : below(40) == 0 ? below(4000) : 250 + below(12);
    }

    void appendFrame(int command, int group, int length)
    {
        put(2);
        put(command);
        put(group);
        put(length % 256);
        put(length / 256);
        for (int i = 0; i < length; ++i) {
            put(below(3) == 0 ? 2 + below(2) : below(256)); // looks like starts and ends
        }
        put(below(12) == 0 ? below(256) : 3);
    }

    /// A frame that announces the dropped one's payload as its own, and perhaps a little more or less.
    void appendFrameAfterDropped()
    {
        const int leftover = 1 + below(4);
        appendFrame(0, below(3), leftover);
        const int more = below(4) - 1;
        appendFrame(1 + below(255), below(3), more > 0 ? more : 0);
        const std::size_t lengthLow = bytes.size() - 3 - static_cast<std::size_t>(more > 0 ? more : 0);
        bytes[lengthLow] = static_cast<std::uint8_t>(leftover + more);
    }

    /// A byte changed, lost or doubled.
    void appendMutatedFrame()
    {
        const std::size_t begin = bytes.size();
        appendFrame(below(4), below(3), shortLength());
        const std::size_t size = bytes.size() - begin;
        const auto at =
            static_cast<std::ptrdiff_t>(begin + static_cast<std::size_t>(below(static_cast<int>(size))));
        switch (below(3)) {
        case 0:
            bytes[static_cast<std::size_t>(at)] = static_cast<std::uint8_t>(below(256));
            return;
        case 1:
            bytes.erase(bytes.begin() + at);
            return;
        default:
            bytes.insert(bytes.begin() + at, bytes[static_cast<std::size_t>(at)]);
        }
    }

    std::mt19937 m_random;
};

} // namespace Tolvar::Varundo::Test

#endif
