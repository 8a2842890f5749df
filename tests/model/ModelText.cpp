#include "ModelText.h"

#include <algorithm>
#include <iterator>

namespace Tolvar::Varundo::Model {

namespace {

constexpr int Utf8 = 1;
constexpr int Utf16 = 2;
constexpr char16_t Replacement = 0xFFFD;
constexpr char16_t ByteOrderMark = 0xFEFF;
constexpr std::uint8_t Substitute = '?';

struct Latin9Difference
{
    std::uint8_t byte;
    char16_t character;
};

/// Where ISO-8859-15 is not ISO-8859-1.
constexpr Latin9Difference Latin9Differences[] = {
    {0xA4, 0x20AC}, {0xA6, 0x0160}, {0xA8, 0x0161}, {0xB4, 0x017D},
    {0xB8, 0x017E}, {0xBC, 0x0152}, {0xBD, 0x0153}, {0xBE, 0x0178},
};

struct Range
{
    char32_t first;
    char32_t last;
};

/// Characters without a shape of their own: where ISO-8859-15 does not have them, nothing takes their place.
constexpr Range Shapeless[] = {
    {0x034F, 0x034F}, {0x061C, 0x061C},   {0x115F, 0x1160},   {0x17B4, 0x17B5},
    {0x180B, 0x180F}, {0x200B, 0x200F},   {0x202A, 0x202E},   {0x2060, 0x206F},
    {0x3164, 0x3164}, {0xFE00, 0xFE0F},   {0xFEFF, 0xFEFF},   {0xFFA0, 0xFFA0},
    {0xFFF0, 0xFFF8}, {0x1BCA0, 0x1BCA3}, {0x1D173, 0x1D17A}, {0xE0000, 0xE0FFF},
};

constexpr Range Blanks[] = {
    {0x09, 0x0D},     {0x20, 0x20},     {0x85, 0x85},     {0xA0, 0xA0},     {0x1680, 0x1680},
    {0x2000, 0x200A}, {0x2028, 0x2029}, {0x202F, 0x202F}, {0x205F, 0x205F}, {0x3000, 0x3000},
};

template <std::size_t Size>
bool isIn(const Range (&ranges)[Size], char32_t character)
{
    return std::any_of(std::begin(ranges), std::end(ranges), [character](const Range& range) {
        return character >= range.first && character <= range.last;
    });
}

bool isHigh(char32_t unit)
{
    return unit >= 0xD800 && unit < 0xDC00;
}

bool isLow(char32_t unit)
{
    return unit >= 0xDC00 && unit < 0xE000;
}

/// The text's characters; a half of a pair comes as it is.
std::vector<char32_t> characters(const std::u16string& text)
{
    std::vector<char32_t> result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char32_t unit = text[at];
        if (isHigh(unit) && at + 1 < text.size() && isLow(text[at + 1])) {
            result.push_back(0x10000 + ((unit - 0xD800) << 10) + (text[++at] - 0xDC00U));
        } else {
            result.push_back(unit);
        }
    }
    return result;
}

void append(std::u16string& text, char32_t character)
{
    if (character < 0x10000) {
        text.push_back(static_cast<char16_t>(character));
        return;
    }
    text.push_back(static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10)));
    text.push_back(static_cast<char16_t>(0xDC00 + (character & 0x3FF)));
}

/// The length of the sequence that begins with this byte, 0 if none does.
std::size_t utf8Length(std::uint8_t first)
{
    if (first < 0x80) {
        return 1;
    }
    if (first >= 0xC2 && first < 0xE0) {
        return 2;
    }
    if (first >= 0xE0 && first < 0xF0) {
        return 3;
    }
    return first >= 0xF0 && first < 0xF5 ? 4 : 0;
}

/// What is broken costs one byte, and gives one replacement character.
std::u16string fromUtf8(const Bytes& bytes)
{
    constexpr char32_t Smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const Bytes mark{0xEF, 0xBB, 0xBF};
    std::u16string text;
    std::size_t at = bytes.size() >= 3 && std::equal(mark.begin(), mark.end(), bytes.begin()) ? 3 : 0;
    while (at < bytes.size()) {
        const std::size_t length = utf8Length(bytes[at]);
        bool whole = length > 0 && at + length <= bytes.size();
        char32_t character = length > 1 ? bytes[at] & (0x7FU >> length) : bytes[at];
        for (std::size_t next = 1; whole && next < length; ++next) {
            whole = (bytes[at + next] & 0xC0U) == 0x80;
            character = (character << 6) | (bytes[at + next] & 0x3FU);
        }
        whole = whole && character >= Smallest[length] && character <= 0x10FFFF && !isHigh(character) &&
                !isLow(character);
        append(text, whole ? character : Replacement);
        at += whole ? length : 1;
    }
    return text;
}

/// A mark says which byte comes first; without one it is the low one. An odd byte at the end is dropped.
std::u16string fromUtf16(const Bytes& bytes)
{
    std::u16string text;
    bool highFirst = false;
    for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
        const unsigned low = bytes[at + (highFirst ? 1 : 0)];
        const unsigned high = bytes[at + (highFirst ? 0 : 1)];
        const auto unit = static_cast<char16_t>(high * 256 + low);
        if (at == 0 && (unit == ByteOrderMark || unit == 0xFFFE)) {
            highFirst = unit != ByteOrderMark;
        } else {
            text.push_back(unit);
        }
    }
    return text;
}

std::u16string fromLatin9(const Bytes& bytes)
{
    std::u16string text;
    for (const std::uint8_t byte : bytes) {
        const auto* const found =
            std::find_if(std::begin(Latin9Differences), std::end(Latin9Differences),
                         [byte](const Latin9Difference& difference) { return difference.byte == byte; });
        text.push_back(found != std::end(Latin9Differences) ? found->character : char16_t{byte});
    }
    return text;
}

Bytes toLatin9(const std::u16string& text)
{
    Bytes bytes;
    const std::vector<char32_t> all = characters(text);
    for (std::size_t at = 0; at < all.size(); ++at) {
        const auto* const found = std::find_if(
            std::begin(Latin9Differences), std::end(Latin9Differences),
            [&](const Latin9Difference& row) { return row.character == all[at] || row.byte == all[at]; });
        if (found != std::end(Latin9Differences)) {
            bytes.push_back(found->character == all[at] ? found->byte : Substitute);
        } else if (all[at] < 0x100) {
            bytes.push_back(static_cast<std::uint8_t>(all[at]));
        } else if (!isIn(Shapeless, all[at]) && !(isHigh(all[at]) && at + 1 == all.size())) {
            bytes.push_back(Substitute); // but a first half at the very end waits for its other half
        }
    }
    return bytes;
}

Bytes toUtf8(const std::u16string& text)
{
    Bytes bytes;
    const auto put = [&bytes](char32_t byte) {
        bytes.push_back(static_cast<std::uint8_t>(byte));
    };
    const std::vector<char32_t> all = characters(text);
    for (std::size_t at = 0; at < all.size(); ++at) {
        const char32_t character = all[at];
        if (character < 0x80) {
            put(character);
        } else if (character < 0x800) {
            put(0xC0 | (character >> 6));
            put(0x80 | (character & 0x3F));
        } else if (isHigh(character) || isLow(character)) {
            if (at + 1 < all.size()) { // half a pair; at the very end either half is waited with
                put(Substitute);
            }
        } else {
            put(character < 0x10000 ? 0xE0 | (character >> 12) : 0xF0 | (character >> 18));
            if (character >= 0x10000) {
                put(0x80 | ((character >> 12) & 0x3F));
            }
            put(0x80 | ((character >> 6) & 0x3F));
            put(0x80 | (character & 0x3F));
        }
    }
    return bytes;
}

Bytes toUtf16(const std::u16string& text)
{
    Bytes bytes{0xFF, 0xFE};
    for (const char16_t unit : text) {
        bytes.push_back(static_cast<std::uint8_t>(unit % 256));
        bytes.push_back(static_cast<std::uint8_t>(unit / 256));
    }
    return bytes;
}

} // namespace

std::u16string decoded(int codec, const Bytes& bytes)
{
    return codec == Utf8 ? fromUtf8(bytes) : codec == Utf16 ? fromUtf16(bytes) : fromLatin9(bytes);
}

Bytes encoded(int codec, const std::u16string& text)
{
    return codec == Utf8 ? toUtf8(text) : codec == Utf16 ? toUtf16(text) : toLatin9(text);
}

std::u16string trimmed(const std::u16string& text)
{
    std::size_t begin = 0;
    std::size_t end = text.size();
    while (begin < end && isIn(Blanks, text[begin])) {
        ++begin;
    }
    while (end > begin && isIn(Blanks, text[end - 1])) {
        --end;
    }
    return text.substr(begin, end - begin);
}

std::u16string withoutNul(const std::u16string& text)
{
    std::u16string result;
    std::copy_if(text.begin(), text.end(), std::back_inserter(result),
                 [](char16_t unit) { return unit != 0; });
    return result;
}

} // namespace Tolvar::Varundo::Model
