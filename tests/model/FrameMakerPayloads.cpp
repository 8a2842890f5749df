#include "FrameMaker.h"

#include <array>
#include <string_view>
#include <utility>

namespace Tolvar::Varundo::Model {

namespace {

void append(Bytes& bytes, const Bytes& more)
{
    bytes.insert(bytes.end(), more.begin(), more.end());
}

constexpr std::array<std::u16string_view, 12> Texts{
    u"",
    u" ",
    u"\u00A0 \t",
    u"A",
    u"Root",
    u"  hi  ",
    u"Gr\u00F6\u00DFe 5 \u20AC",
    u"AB",
    u"\u0416\u4E2D",
    u"\U0001F600",
    u"\u3000x\u2003",
    u"A\u0301\u200B\uFEFF",
};

} // namespace

Bytes FrameMaker::writePayload(int command, int codec)
{
    const auto line = [this](int first) {
        return static_cast<std::uint8_t>(m_random.oneIn(12) ? oddByte() : first + m_random.below(4));
    };
    Bytes payload;
    switch (command) {
    case 0x01:
        return {static_cast<std::uint8_t>(m_random.oneIn(10) ? oddByte() : m_random.below(3))};
    case 0x40:
        return {static_cast<std::uint8_t>(m_random.below(33)), static_cast<std::uint8_t>(m_random.below(14)),
                m_random.oneIn(3) ? oddByte() : std::uint8_t{20},
                m_random.oneIn(5) ? oddByte() : static_cast<std::uint8_t>(m_random.below(100))};
    case 0x50:
    case 0x70:
        return {static_cast<std::uint8_t>(m_random.below(26)), static_cast<std::uint8_t>(m_random.below(62)),
                m_random.oneIn(5) ? oddByte() : static_cast<std::uint8_t>(m_random.below(62))};
    case 0x62:
        return cell();
    case 0x92:
        return colors();
    case 0x95:
        return text(codec);
    case 0x90:
    case 0x98:
        payload = {line(command == 0x90 ? 1 : 0)};
        append(payload, text(codec));
        return payload;
    case 0x99:
        payload = {line(1)};
        append(payload, colors());
        return payload;
    case 0xD4:
        return randomBytes(24);
    case 0xD5:
        return randomBytes(8);
    case 0xD7:
        return freeText(codec);
    default:
        return randomBytes(4);
    }
}

/// Mostly one of few cells, so that texts and the cursor meet.
Bytes FrameMaker::cell()
{
    if (m_random.oneIn(6)) {
        return {oddByte(), oddByte()};
    }
    return {static_cast<std::uint8_t>(m_random.oneIn(3) ? 3 : 0),
            static_cast<std::uint8_t>(m_random.below(4))};
}

Bytes FrameMaker::colors()
{
    if (m_random.oneIn(3)) {
        return {static_cast<std::uint8_t>(m_random.oneIn(4) ? m_random.byte() : m_random.below(16)),
                static_cast<std::uint8_t>(m_random.oneIn(4) ? m_random.byte() : m_random.below(16))};
    }
    return {m_random.byte()};
}

Bytes FrameMaker::freeText(int codec)
{
    Bytes payload{m_random.byte(), m_random.oneIn(2) ? std::uint8_t{0} : m_random.byte(), m_random.byte()};
    if (m_random.oneIn(4)) { // the same as at another time
        append(payload, {'A', 'B', 0, ' ', 0, 'C'});
        return payload;
    }
    const int lines = m_random.below(8);
    for (int line = 0; line < lines; ++line) {
        append(payload, line == 0 ? Bytes() : Bytes{0});
        append(payload, text(m_random.oneIn(3) ? codec : m_random.below(2)));
    }
    return payload;
}

/// In the codec that is selected, mostly.
Bytes FrameMaker::text(int codec)
{
    if (m_random.oneIn(12)) {
        return randomBytes(m_random.below(m_random.oneIn(10) ? 300 : 12));
    }
    const std::u16string words(m_random.oneOf(Texts));
    const int codecUsed = m_random.oneIn(8) ? m_random.below(3) : codec;
    Bytes bytes = encoded(codecUsed, words);
    if (codec == 2 && bytes.size() % 2 == 0) {
        const bool highFirst = m_random.oneIn(3);
        for (std::size_t at = 0; highFirst && at < bytes.size(); at += 2) {
            std::swap(bytes[at], bytes[at + 1]); // the mark as well, which says so
        }
        if (m_random.oneIn(2) && bytes.size() >= 2) {
            bytes.erase(bytes.begin(), bytes.begin() + 2); // without its mark
        }
    }
    if (m_random.oneIn(6)) {
        const Bytes nul(codec == 2 ? 2 : 1, 0);
        bytes.insert(m_random.oneIn(2) ? bytes.begin() : bytes.end(), nul.begin(), nul.end());
    }
    return bytes;
}

Bytes FrameMaker::randomBytes(int count)
{
    Bytes bytes;
    for (int at = 0; at < count; ++at) {
        bytes.push_back(m_random.oneIn(4) ? oddByte() : m_random.byte());
    }
    return bytes;
}

Bytes FrameMaker::spoiltLength(Bytes payload)
{
    const int chance = m_random.below(100);
    if (chance < 4) {
        return {};
    }
    if (chance < 14 && !payload.empty()) {
        payload.resize(static_cast<std::size_t>(m_random.below(static_cast<int>(payload.size()))));
    } else if (chance < 20) {
        append(payload, randomBytes(1 + m_random.below(9)));
    }
    return payload;
}

/// Where something ends: the control bytes, the digits' and the types' limits.
std::uint8_t FrameMaker::oddByte()
{
    constexpr std::array<std::uint8_t, 20> Odd{0,    1,    2,    3,    4,    5,    6,    9,    0x0A, 0x0F,
                                               0x10, 0x15, 0x1F, 0x20, 0x63, 0x64, 0x7F, 0x80, 0xFE, 0xFF};
    return m_random.oneOf(Odd);
}

} // namespace Tolvar::Varundo::Model
