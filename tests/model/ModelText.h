#ifndef TOLVAR_VARUNDO_TESTS_MODELTEXT_H
#define TOLVAR_VARUNDO_TESTS_MODELTEXT_H

#include <cstdint>
#include <string>
#include <vector>

/// Text as the model has it: UTF-16 units, and codecs written out, without Qt's.
namespace Tolvar::Varundo::Model {

using Bytes = std::vector<std::uint8_t>;

/// The codec is the number that the controller has written; all but 1 and 2 are ISO-8859-15.
[[nodiscard]] std::u16string decoded(int codec, const Bytes& bytes);
[[nodiscard]] Bytes encoded(int codec, const std::u16string& text);

[[nodiscard]] std::u16string trimmed(const std::u16string& text);
[[nodiscard]] std::u16string withoutNul(const std::u16string& text);

} // namespace Tolvar::Varundo::Model

#endif
