#ifndef TOLVAR_VARUNDO_TESTS_MODELNUMBERS_H
#define TOLVAR_VARUNDO_TESTS_MODELNUMBERS_H

#include "ModelText.h"

#include <string>

/// Numbers inside payloads: the most significant byte comes first.
namespace Tolvar::Varundo::Model {

[[nodiscard]] Bytes bytesOf(float value);
[[nodiscard]] Bytes bytesOf(double value);
[[nodiscard]] inline std::uint8_t lowByte(int value)
{
    return static_cast<std::uint8_t>(static_cast<unsigned>(value) % 256);
}

/// A byte of a payload; 0 where there is none.
[[nodiscard]] inline int byteAt(const Bytes& payload, std::size_t at)
{
    return at < payload.size() ? payload[at] : 0;
}
[[nodiscard]] Bytes from(const Bytes& payload, std::size_t begin);
/// The last bytes of a payload, fewer if it has not so many.
[[nodiscard]] Bytes last(const Bytes& payload, std::size_t count);

/// So many bytes as hexadecimal digits, with 00 for the missing ones: how the host's numbers are compared.
[[nodiscard]] std::string hexDigits(const Bytes& bytes, std::size_t count);

} // namespace Tolvar::Varundo::Model

#endif
