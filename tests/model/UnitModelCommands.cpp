#include "ModelNumbers.h"
#include "UnitModel.h"

#include <algorithm>
#include <cstdio>

namespace Tolvar::Varundo::Model {

namespace {

Color numbered(int number)
{
    return ColourNumbers[static_cast<std::size_t>(number)];
}

/// One byte: text and background. Two: the background's first, which spills into the text's.
Colors colorsAt(const Bytes& payload, std::size_t at)
{
    if (payload.size() <= at) {
        return {numbered(0), numbered(0)};
    }
    const int pair = payload.size() == at + 1 ? payload[at] : (payload[at + 1] << 4 | payload[at]) & 0xFF;
    return {numbered(pair >> 4), numbered(pair & 0x0F)};
}

std::string digits(const char* format, int first, int second, int third)
{
    char text[40];
    std::snprintf(text, sizeof text, format, first, second, third);
    return text;
}

int daysIn(int month, int year)
{
    constexpr int Days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool isLeapYear = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    return Days[month - 1] + (month == 2 && isLeapYear ? 1 : 0);
}

} // namespace

void UnitModel::execute(int command)
{
    const auto switched = [command](int show, bool shown) {
        return command == show + 2 ? !shown : command == show;
    };
    for (const ItemRow& row : Items) {
        if (command >= row.show && command <= row.show + 2) {
            return show(row.item, switched(row.show, state(row.item).shown));
        }
    }
    for (std::size_t line = 0; line < ShowStatusLine.size(); ++line) {
        if (command >= ShowStatusLine[line] && command <= ShowStatusLine[line] + 2) {
            return showStatusLine(line, switched(ShowStatusLine[line], m_statusLines[line].shown));
        }
    }
    switch (command) {
    case 0x80:
        return tell("overlay on");
    case 0x81:
        return tell("overlay off");
    case 0x88:
        return m_overlay.removeCustom();
    case 0xD4:
        return tell("3d main-pipe");
    case 0xD5:
        return tell("3d lateral");
    case 0xD6:
        return tell("3d off");
    default:
        return;
    }
}

void UnitModel::write(int command, const Bytes& payload)
{
    if (writePosition(command, payload)) {
        return;
    }
    switch (command) {
    case 0x01:
        m_codec = byteAt(payload, 0);
        return;
    case 0x30:
        return tell("section " + hexDigits(payload, 4));
    case 0x36:
        return tell("sat " + hexDigits(payload, 4));
    case 0x3C:
        return tell("total " + hexDigits(payload, 4));
    case 0x40:
        return tellDate(payload);
    case 0x50:
        return tellTime(payload);
    case 0x62:
        m_cursorColumn = byteAt(payload, 0);
        m_cursorRow = byteAt(payload, 1);
        m_typingGoesOn = m_typingGoesOn && !m_cursorIsWatched;
        return;
    case 0x70:
        return tell(
            digits("video-counter %d %d %d", byteAt(payload, 0), byteAt(payload, 1), byteAt(payload, 2)));
    case 0x90:
        return writeStatusLine(payload);
    case 0x92:
        m_lineColors = colorsAt(payload, 0);
        return;
    case 0x95:
        return writeAtCursor(decoded(m_codec, payload));
    case 0x98:
        return writeLine(payload);
    case 0x99:
        return writeStatusLineColors(payload);
    case 0xD4:
    case 0xD5:
        return writeMeasurement(command, payload);
    case 0xD7:
        return writeFreeText(payload);
    case 0xE5:
        return writeElementColors(payload);
    case 0xF5:
        return setFormat(Item::ExternalTemperature, byteAt(payload, 0));
    case 0xFD:
        return setFormat(Item::Inclination, byteAt(payload, 0));
    default:
        return;
    }
}

bool UnitModel::writePosition(int command, const Bytes& payload)
{
    const auto* const row = std::find_if(Items.begin(), Items.end(), [command](const ItemRow& candidate) {
        return candidate.writePosition == command;
    });
    if (row == Items.end()) {
        return false;
    }
    ItemState& item = state(row->item);
    if (item.column == byteAt(payload, 0) && item.row == byteAt(payload, 1)) {
        return true;
    }
    item.column = byteAt(payload, 0);
    item.row = byteAt(payload, 1);
    if (Element* const element = m_overlay.find(row->binding)) {
        element->column = item.column;
        element->row = item.row;
    }
    return true;
}

void UnitModel::writeStatusLineColors(const Bytes& payload)
{
    const int line = byteAt(payload, 0);
    const Colors colors = colorsAt(payload, 1);
    if (line < 1 || line > 4 || m_statusLines[static_cast<std::size_t>(line) - 1].colors == colors) {
        return;
    }
    m_statusLines[static_cast<std::size_t>(line) - 1].colors = colors;
    if (Element* const element = m_overlay.find(std::to_string(line))) {
        element->colors = colors;
    }
}

void UnitModel::writeElementColors(const Bytes& payload)
{
    for (const ItemRow& row : Items) {
        if (row.colourNumber == byteAt(payload, 0)) {
            return setColors(row.item, colorsAt(payload, 1));
        }
    }
}

/// The last number is taken from the end of the payload, however long that is.
void UnitModel::writeMeasurement(int command, const Bytes& payload)
{
    if (command == 0xD4) {
        tell("3d position " + hexDigits(payload, 8) + ' ' + hexDigits(from(payload, 8), 8) + ' ' +
             hexDigits(last(payload, 8), 8));
    } else {
        tell("3d orientation " + hexDigits(payload, 4) + ' ' + hexDigits(last(payload, 4), 4));
    }
}

void UnitModel::tellDate(const Bytes& payload)
{
    const int day = byteAt(payload, 0);
    const int month = byteAt(payload, 1);
    const int century = byteAt(payload, 2);
    const int year = century * 100 + byteAt(payload, 3);
    const bool isDate = century <= 99 && byteAt(payload, 3) <= 99 && year > 0 && month >= 1 && month <= 12 &&
                        day >= 1 && day <= daysIn(month, year);
    const int now = m_clock[3];
    tell(isDate ? digits("clock date %04d-%02d-%02d", year, month, day) +
                      digits(" %02d:%02d:%02d", now / 3600, now / 60 % 60, now % 60)
                : "clock date invalid");
}

void UnitModel::tellTime(const Bytes& payload)
{
    const int hour = byteAt(payload, 0);
    const int minute = byteAt(payload, 1);
    const int second = byteAt(payload, 2);
    tell(hour < 24 && minute < 60 && second < 60 ? digits("clock time %02d:%02d:%02d", hour, minute, second)
                                                 : "clock time invalid");
}

} // namespace Tolvar::Varundo::Model
