#include "ModelNumbers.h"

#include <algorithm>
#include <cstring>

namespace Tolvar::Varundo::Model {

namespace {

template <class Bits, class Number>
Bytes bigEndian(Number value)
{
    static_assert(sizeof(Bits) == sizeof(Number));
    Bits bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    Bytes bytes(sizeof bits);
    for (std::size_t at = sizeof bits; at > 0; --at) {
        bytes[at - 1] = static_cast<std::uint8_t>(bits & 0xFF);
        bits >>= 8;
    }
    return bytes;
}

} // namespace

Bytes bytesOf(float value)
{
    return bigEndian<std::uint32_t>(value);
}

Bytes bytesOf(double value)
{
    return bigEndian<std::uint64_t>(value);
}

Bytes from(const Bytes& payload, std::size_t begin)
{
    return {payload.begin() + static_cast<std::ptrdiff_t>(std::min(begin, payload.size())), payload.end()};
}

Bytes last(const Bytes& payload, std::size_t count)
{
    return from(payload, payload.size() - std::min(count, payload.size()));
}

std::string hexDigits(const Bytes& bytes, std::size_t count)
{
    constexpr const char* Digits = "0123456789abcdef";
    std::string text;
    for (std::size_t at = 0; at < count; ++at) {
        const int byte = byteAt(bytes, at);
        text += Digits[byte / 16];
        text += Digits[byte % 16];
    }
    return text;
}

} // namespace Tolvar::Varundo::Model
