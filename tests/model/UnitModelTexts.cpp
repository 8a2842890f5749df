#include "ModelNumbers.h"
#include "UnitModel.h"

namespace Tolvar::Varundo::Model {

namespace {

constexpr int TypeOfWritten = 1;
constexpr int TypeOfTyped = 3;

} // namespace

void UnitModel::writeStatusLine(const Bytes& payload)
{
    const int line = byteAt(payload, 0);
    std::u16string text = withoutNul(decoded(m_codec, from(payload, 1)));
    if (m_flaw == Flaw::StatusLine3UnderUtf16 && line == 3 && m_codec == 2 && !text.empty()) {
        text.pop_back();
    }
    if (line < 1 || line > 4 || m_statusLines[static_cast<std::size_t>(line) - 1].text == text) {
        return;
    }
    m_statusLines[static_cast<std::size_t>(line) - 1].text = text;
    if (Element* const element = m_overlay.find(std::to_string(line))) {
        element->text = text;
    }
}

/// Split first, decoded afterwards. The duration is not kept, and so only the same text with 0 is no change.
void UnitModel::writeFreeText(const Bytes& payload)
{
    constexpr std::size_t MostLines = 5;
    const int duration = byteAt(payload, 1);
    std::vector<Bytes> pieces(1);
    for (const std::uint8_t byte : from(payload, 3)) {
        if (byte == 0) {
            pieces.emplace_back();
        } else {
            pieces.back().push_back(byte);
        }
    }
    pieces.resize(MostLines);
    std::vector<std::u16string> lines;
    std::u16string shown;
    for (const Bytes& piece : pieces) {
        lines.push_back(trimmed(decoded(m_codec, piece)));
        if (!lines.back().empty()) {
            shown += shown.empty() ? u"" : u"\n";
            shown += lines.back();
        }
    }
    if (lines == m_freeText && duration == 0) {
        return;
    }
    m_freeText = lines;
    if (Element* const box = m_overlay.find(FreeTextBoxCaption)) {
        box->timeout = duration;
        box->text = shown;
        box->enabled = true;
        box->visible = true;
    }
}

void UnitModel::writeLine(const Bytes& payload)
{
    const std::u16string text = trimmed(withoutNul(decoded(m_codec, from(payload, 1))));
    m_overlay.addCustom(TypeOfWritten, 0, byteAt(payload, 0), {White, Blue}, text).measured = text;
}

/// NUL characters are removed from a new text, and stay in one that takes another's place.
void UnitModel::writeAtCursor(const std::u16string& text)
{
    if (Element* const element = m_overlay.customAt(m_cursorColumn, m_cursorRow)) {
        element->text = text;
        return;
    }
    const std::u16string clean = withoutNul(text);
    m_overlay.addCustom(TypeOfWritten, m_cursorColumn, m_cursorRow, m_lineColors, clean).measured = clean;
}

void UnitModel::typed(std::uint8_t character)
{
    if (m_interface != Interface::Tcp) {
        return;
    }
    const std::u16string text(1, char16_t{character});
    Element* const element = m_overlay.customAt(m_cursorColumn, m_cursorRow);
    if (element == nullptr) {
        m_overlay.addCustom(TypeOfTyped, m_cursorColumn, m_cursorRow, m_lineColors, text);
    } else {
        element->text = m_typingGoesOn ? element->text + text : text;
    }
    m_typingGoesOn = true;
}

} // namespace Tolvar::Varundo::Model
