#include "ModelNumbers.h"
#include "UnitModel.h"

#include <algorithm>
#include <cmath>

namespace Tolvar::Varundo::Model {

namespace {

/// Two digits a byte, read as a decimal number; 0 if it is none, or too large for 31 bits.
int packedDecimal(const Bytes& payload)
{
    constexpr long long Largest = 0x7FFFFFFF;
    long long number = 0;
    for (const std::uint8_t byte : payload) {
        number = number * 100 + (byte / 16) * 10LL + byte % 16;
        if (byte / 16 > 9 || byte % 16 > 9) {
            return 0;
        }
        number = std::min(number, Largest + 1);
    }
    return number > Largest ? 0 : static_cast<int>(number);
}

int colourNumberOf(const Color& color)
{
    const auto* const found = std::find_if(ColourNumbers.begin(), ColourNumbers.end(),
                                           [&color](std::uint32_t candidate) { return color == candidate; });
    return found != ColourNumbers.end() ? static_cast<int>(found - ColourNumbers.begin()) : 1;
}

void append(Bytes& payload, const Bytes& more)
{
    payload.insert(payload.end(), more.begin(), more.end());
}

} // namespace

void UnitModel::answer(int command, const Bytes& payload)
{
    if (answerItem(command)) {
        return;
    }
    if (command == 0x90 || command == 0x92 || command == 0x98) {
        return answerLine(command, packedDecimal(payload));
    }
    answerOther(command, payload);
}

bool UnitModel::answerItem(int command)
{
    for (const ItemRow& row : Items) {
        const ItemState& item = state(row.item);
        if (command == row.readState) {
            reply(command, {lowByte(item.format), lowByte(item.shown ? 1 : 0), lowByte(item.column),
                            lowByte(item.row)});
            return true;
        }
        if (command == row.readValue && command != NoCommand) {
            const bool asPercentage = row.item == Item::Inclination && item.format == 0;
            if (asPercentage) {
                constexpr std::size_t HeaderSize = 5;
                m_percentages.push_back(m_replies.size() + HeaderSize);
            }
            reply(command, bytesOf(asPercentage ? std::tan(item.value * 0.017453292F) * 100.0F : item.value));
            return true;
        }
    }
    return false;
}

void UnitModel::answerLine(int command, int line)
{
    Bytes payload{lowByte(line)};
    const bool isStatusLine = line >= 1 && line <= 4;
    const std::size_t index = isStatusLine ? static_cast<std::size_t>(line) - 1 : 0;
    if (command == 0x90 && isStatusLine) {
        append(payload, encoded(m_codec, m_statusLines[index].text));
    } else if (command == 0x92) {
        const StatusLine& status = m_statusLines[index];
        const int colors = colourNumberOf(status.colors.text) * 16 + colourNumberOf(status.colors.background);
        append(payload,
               {lowByte(isStatusLine ? colors : 0), lowByte(isStatusLine && status.shown ? 1 : 0), 0, 0});
    } else if (command == 0x98 && line < static_cast<int>(m_freeText.size())) {
        append(payload, encoded(m_codec, m_freeText[static_cast<std::size_t>(line)]));
    }
    reply(command, payload);
}

void UnitModel::answerOther(int command, const Bytes& payload)
{
    const auto distance = [this](std::size_t which) {
        return bytesOf(m_hasReel ? m_distances[which] : 0.0F);
    };
    const auto laser = [this](std::size_t which) {
        return m_hasCamera ? m_laser[which] : 0.0;
    };
    Bytes result;
    switch (command) {
    case 0x01:
        result = {lowByte(m_codec)};
        break;
    case 0x30:
        result = distance(0);
        break;
    case 0x36:
        result = distance(1);
        break;
    case 0x3B:
        result = distance(2);
        break;
    case 0x40:
        result = {lowByte(m_clock[2]), lowByte(m_clock[1]), 20, lowByte(m_clock[0] + 48)};
        break;
    case 0x50:
        result = {lowByte(m_clock[3] / 3600), lowByte(m_clock[3] / 60 % 60), lowByte(m_clock[3] % 60), 0};
        break;
    case 0x70:
        result = {10, 20, 30, 40};
        break;
    case 0xD4:
        if (!m_hasPositionSensor) {
            return;
        }
        for (const double coordinate : m_position) {
            append(result, bytesOf(coordinate));
        }
        append(result, bytesOf(m_angle));
        break;
    case 0xFD:
        result = {lowByte(byteAt(payload, 0))};
        if (byteAt(payload, 0) == 1) {
            append(result, bytesOf(laser(0) / 100.0));
        } else if (byteAt(payload, 0) == 2) {
            append(result, bytesOf(laser(1) / 100000.0));
        }
        break;
    case 0xFF:
        result = encoded(m_codec, u"Tolvar QR740 ZEL-interface: V3.1 - 20180828 - 12:00");
        break;
    default:
        return;
    }
    reply(command, result);
}

void UnitModel::reply(int command, const Bytes& payload)
{
    const auto size = static_cast<int>(payload.size());
    append(m_replies, {0x02, lowByte(command), 1, lowByte(size), lowByte(size / 256)});
    append(m_replies, payload);
    m_replies.push_back(0x03);
}

} // namespace Tolvar::Varundo::Model
