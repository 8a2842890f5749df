#include "UnitModel.h"

namespace Tolvar::Varundo::Model {

UnitModel::UnitModel(Flaw flaw)
    : m_flaw(flaw)
{
    startFormats();
}

void UnitModel::apply(const Step& step)
{
    m_replies.clear();
    m_told.clear();
    m_percentages.clear();
    switch (step.kind) {
    case Step::Kind::Send:
        return m_receiver.read(step.bytes(), *this);
    case Step::Kind::Read:
        return read(static_cast<Reading>(step.which), step.numbers);
    case Step::Kind::LoadProfile:
        return loadProfile(step.which);
    case Step::Kind::RemoveProfile:
        m_overlay.clear();
        m_cursorIsWatched = false; // the unit lets go of everything that it watches, the cursor too
        return;
    case Step::Kind::CleanUp:
        return m_overlay.removeEmptyCustom();
    case Step::Kind::HideTimedOut:
        return m_overlay.hideTimedOut();
    case Step::Kind::MoveElement:
    case Step::Kind::SwitchElement:
    case Step::Kind::EditText:
    case Step::Kind::DeleteElement:
        return editElement(step);
    case Step::Kind::SelectInterface:
        return selectInterface(static_cast<Interface>(step.which));
    case Step::Kind::Connect:
        return; // the receiver does not know what a connection is
    case Step::Kind::SetClock:
        m_clock = {static_cast<int>(step.numbers[0]), static_cast<int>(step.numbers[1]),
                   static_cast<int>(step.numbers[2]), step.which};
        return;
    }
}

void UnitModel::accepted(const Frame& frame)
{
    constexpr std::uint8_t Ack = 0x06;
    m_replies.push_back(Ack);
    ++m_framesAccepted;
    if (m_interface != Interface::Tcp) {
        return;
    }
    if (frame.group == 0) {
        execute(frame.command);
    } else if (frame.group == 1) {
        answer(frame.command, frame.payload);
    } else {
        write(frame.command, frame.payload);
    }
}

void UnitModel::rejected()
{
    constexpr std::uint8_t Nack = 0x15;
    m_replies.push_back(Nack);
}

void UnitModel::startFormats()
{
    for (const ItemRow& row : Items) {
        state(row.item).format = row.formatAtStart;
    }
    m_codec = 0;
    m_cursorIsWatched = true;
}

void UnitModel::loadProfile(int variant)
{
    m_overlay.replace(profileVariant(variant));
    startFormats();
    bind();
}

/// What stands on the overlay is where the elements begin; the others stay what they were.
void UnitModel::bind()
{
    for (const ItemRow& row : Items) {
        if (const Element* const element = m_overlay.find(row.binding)) {
            ItemState& item = state(row.item);
            item.column = element->column;
            item.row = element->row;
            item.shown = element->enabled;
            item.colors = element->colors;
            if (row.item == Item::ExternalTemperature) {
                item.format = element->unit == u"\u00B0F" ? 1 : 0;
            }
        }
    }
    for (std::size_t line = 0; line < m_statusLines.size(); ++line) {
        if (const Element* const element = m_overlay.find(std::to_string(line + 1))) {
            m_statusLines[line] = {element->text, element->enabled, element->colors};
        }
    }
}

void UnitModel::read(Reading reading, const std::array<double, 4>& numbers)
{
    const auto value = static_cast<float>(numbers[0]);
    switch (reading) {
    case Reading::ReelSpeed:
        return setValue(Item::CableSpeed, value);
    case Reading::RtsTemperature:
        return setValue(Item::ExternalTemperature, value);
    case Reading::CrawlerTemperature:
        return setValue(Item::CrawlerTemperature, value);
    case Reading::CrawlerPressure:
        return setPressure(Item::CrawlerPressure, value);
    case Reading::CrawlerRoll:
        return setValue(Item::CrawlerRoll, value);
    case Reading::CrawlerPitch:
        return setValue(Item::Inclination, value);
    case Reading::CameraPan:
        return setValue(Item::Pan, value);
    case Reading::CameraTilt:
        return setValue(Item::Tilt, value);
    case Reading::CameraTemperature:
        return setValue(Item::CameraTemperature, value);
    case Reading::CameraPressure:
        return setPressure(Item::Pressure, value);
    case Reading::ReelDistances:
        m_hasReel = true;
        m_distances = {value, static_cast<float>(numbers[1]), static_cast<float>(numbers[2])};
        return;
    case Reading::LaserCalibration:
        m_hasCamera = true;
        m_laser = {numbers[0], numbers[1]};
        return;
    case Reading::PositionSensor:
        m_hasPositionSensor = true;
        m_position = {numbers[0], numbers[1], numbers[2]};
        m_angle = static_cast<float>(numbers[3]);
        return;
    case Reading::NoReel:
        m_hasReel = false;
        return;
    case Reading::NoCamera:
        m_hasCamera = false;
        return;
    case Reading::NoPositionSensor:
        m_hasPositionSensor = false;
        return;
    }
}

/// The host's own doing: the controller's side is not told, and goes on from what it believes.
void UnitModel::editElement(const Step& step)
{
    std::vector<Element>& elements = m_overlay.elements();
    if (elements.empty()) {
        return;
    }
    const std::size_t at = static_cast<std::size_t>(step.which) % elements.size();
    Element& element = elements[at];
    if (step.kind == Step::Kind::MoveElement) {
        element.column = static_cast<int>(step.numbers[0]);
        element.row = static_cast<int>(step.numbers[1]);
    } else if (step.kind == Step::Kind::SwitchElement) {
        element.enabled = step.numbers[0] != 0.0;
    } else if (step.kind == Step::Kind::DeleteElement) {
        elements.erase(elements.begin() + static_cast<std::ptrdiff_t>(at));
    } else if (element.isText) {
        element.text = HostTexts[static_cast<std::size_t>(step.numbers[0]) % HostTexts.size()];
    }
}

void UnitModel::selectInterface(Interface interface)
{
    if (interface != m_interface) {
        m_interface = interface;
        tell("interface " + std::to_string(static_cast<int>(interface)));
    }
}

} // namespace Tolvar::Varundo::Model
