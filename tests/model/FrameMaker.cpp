#include "FrameMaker.h"

#include "ModelTables.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace Tolvar::Varundo::Model {

namespace {

constexpr int Execute = 0;
constexpr int Read = 1;
constexpr int Write = 2;

void append(Bytes& bytes, const Bytes& more)
{
    // Not insert(): GCC 12 at -O3 warns of an overflow in it that cannot be.
    std::copy(more.begin(), more.end(), std::back_inserter(bytes));
}

constexpr std::array<int, 6> Actions{0x80, 0x81, 0x88, 0xD4, 0xD5, 0xD6};
constexpr std::array<int, 15> OtherReads{0x01, 0x30, 0x36, 0x3B, 0x40, 0x50, 0x70, 0x90,
                                         0x90, 0x92, 0x92, 0x98, 0xD4, 0xFD, 0xFF};
/// Those that make and change texts come more often.
constexpr std::array<int, 32> OtherWrites{0x01, 0x01, 0x01, 0x30, 0x36, 0x3C, 0x40, 0x50, 0x62, 0x62, 0x62,
                                          0x70, 0x90, 0x90, 0x90, 0x90, 0x90, 0x92, 0x92, 0x95, 0x95, 0x95,
                                          0x98, 0x98, 0x99, 0x99, 0xD4, 0xD5, 0xD7, 0xD7, 0xD7, 0xD7};

} // namespace

Bytes frame(int command, int group, const Bytes& payload)
{
    const std::size_t size = payload.size();
    Bytes bytes{0x02, static_cast<std::uint8_t>(command), static_cast<std::uint8_t>(group),
                static_cast<std::uint8_t>(size % 256), static_cast<std::uint8_t>(size / 256)};
    append(bytes, payload);
    bytes.push_back(0x03);
    return bytes;
}

Bytes FrameMaker::command(int codec)
{
    const int chance = m_random.below(100);
    if (chance < 22) {
        return execute();
    }
    if (chance < 48) {
        return read();
    }
    if (chance < 96) {
        return write(codec);
    }
    return unlikely();
}

/// Any command, whether there is one or not. (Neither the arguments of a call nor the operands of a sum have
/// an order; random numbers must have one.)
Bytes FrameMaker::unlikely()
{
    const int command = 1 + m_random.below(255);
    const int group = m_random.below(3);
    return frame(command, group, randomBytes(m_random.below(6)));
}

Bytes FrameMaker::execute()
{
    int command = 0;
    if (m_random.oneIn(8)) {
        command = m_random.oneIn(4) ? 0x88 : m_random.oneOf(Actions);
    } else if (m_random.oneIn(4)) {
        command = m_random.oneOf(ShowStatusLine);
        command += m_random.below(3);
    } else {
        command = m_random.oneOf(Items).show;
        command += m_random.below(3);
    }
    return frame(command, Execute, m_random.oneIn(6) ? randomBytes(m_random.below(4)) : Bytes());
}

Bytes FrameMaker::read()
{
    const ItemRow& item = m_random.oneOf(Items);
    int command = m_random.oneIn(3) ? item.readState : item.readValue;
    if (command == NoCommand || m_random.oneIn(2)) {
        command = m_random.oneOf(OtherReads);
    }
    Bytes payload;
    if (command == 0x90 || command == 0x92 || command == 0x98 || command == 0xFD) {
        const int length = m_random.oneIn(6) ? m_random.below(7) : 1;
        for (int at = 0; at < length; ++at) {
            payload.push_back(m_random.oneIn(6) ? oddByte() : static_cast<std::uint8_t>(m_random.below(6)));
        }
    } else if (m_random.oneIn(8)) {
        payload = randomBytes(m_random.below(4));
    }
    return frame(command, Read, payload);
}

Bytes FrameMaker::write(int codec)
{
    if (m_random.oneIn(4)) {
        const int command = m_random.oneOf(Items).writePosition;
        return frame(command, Write, spoiltLength(cell()));
    }
    if (m_random.oneIn(5)) {
        Bytes payload{
            static_cast<std::uint8_t>(m_random.oneIn(8) ? m_random.below(256) : m_random.below(23))};
        append(payload, colors());
        return frame(0xE5, Write, spoiltLength(payload));
    }
    if (m_random.oneIn(8)) {
        const int command = m_random.oneIn(2) ? 0xF5 : 0xFD;
        const auto format = m_random.oneIn(4) ? oddByte() : static_cast<std::uint8_t>(m_random.below(3));
        return frame(command, Write, spoiltLength({format}));
    }
    const int command = m_random.oneOf(OtherWrites);
    return frame(command, Write, spoiltLength(writePayload(command, codec)));
}

/// Among them frames without a reply, whose payload stays, and bytes that belong to no frame.
Bytes FrameMaker::broken()
{
    Bytes bytes = unlikely();
    switch (m_random.below(7)) {
    case 0:
        bytes[1] = 0;
        break;
    case 1:
        bytes[2] = static_cast<std::uint8_t>(3 + m_random.below(253));
        break;
    case 2:
        bytes.back() = oddByte();
        break;
    case 3:
        bytes.resize(static_cast<std::size_t>(m_random.below(static_cast<int>(bytes.size()))));
        break;
    case 4:
        bytes[3] = static_cast<std::uint8_t>(m_random.below(8));
        break;
    case 5:
        return {oddByte(), oddByte(), 0x0D, 0x0A};
    default:
        bytes[1] = 0;
        append(bytes, frame(0x32, 2, randomBytes(m_random.below(4))));
        break;
    }
    return bytes;
}

Bytes FrameMaker::typing()
{
    Bytes bytes;
    for (int count = 1 + m_random.below(4); count > 0; --count) {
        bytes.push_back(static_cast<std::uint8_t>(m_random.oneIn(4) ? 0x20 : 0x20 + m_random.below(0xE0)));
        if (m_random.oneIn(8)) {
            bytes.push_back(0x0A);
        }
    }
    return bytes;
}

} // namespace Tolvar::Varundo::Model
