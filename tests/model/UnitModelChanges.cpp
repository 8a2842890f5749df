#include "UnitModel.h"

#include <algorithm>
#include <cmath>

/// The unit takes a value that it has already for no change: what the host has done to the element stays.
namespace Tolvar::Varundo::Model {

namespace {

const char* bindingOf(Item item)
{
    return Items[static_cast<std::size_t>(item)].binding;
}

bool isSameReading(float left, float right)
{
    return std::fabs(left - right) * 100000.0F <= std::min(std::fabs(left), std::fabs(right));
}

} // namespace

void UnitModel::show(Item item, bool shown)
{
    if (state(item).shown == shown) {
        return;
    }
    state(item).shown = shown;
    if (Element* const element = m_overlay.find(bindingOf(item))) {
        element->enabled = shown;
    }
}

void UnitModel::showStatusLine(std::size_t line, bool shown)
{
    if (m_statusLines[line].shown == shown) {
        return;
    }
    m_statusLines[line].shown = shown;
    if (Element* const element = m_overlay.find(std::to_string(line + 1))) {
        element->enabled = shown;
    }
}

void UnitModel::setFormat(Item item, int format)
{
    if (state(item).format == format) {
        return;
    }
    state(item).format = format;
    Element* const element = m_overlay.find(bindingOf(item));
    if (item == Item::ExternalTemperature && element != nullptr) {
        element->unit = format == 1 ? u"\u00B0F" : u"\u00B0C";
    }
}

void UnitModel::setColors(Item item, const Colors& colors)
{
    if (state(item).colors == colors) {
        return;
    }
    state(item).colors = colors;
    if (Element* const element = m_overlay.find(bindingOf(item))) {
        element->colors = colors;
    }
}

void UnitModel::setValue(Item item, float value)
{
    if (!isSameReading(state(item).value, value)) {
        state(item).value = value;
    }
}

/// Compared with a thousandth, stored as it is.
void UnitModel::setPressure(Item item, float value)
{
    if (!isSameReading(state(item).value, static_cast<float>(static_cast<double>(value) / 1000.0))) {
        state(item).value = value;
    }
}

} // namespace Tolvar::Varundo::Model
