#include "StepGenerator.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace Tolvar::Varundo::Model {

namespace {

using Kind = Step::Kind;

} // namespace

StepGenerator::StepGenerator(std::uint32_t seed)
    : m_random(seed)
{}

Sequence StepGenerator::sequence(long frames)
{
    if (!m_random.oneIn(4)) { // otherwise there is nothing on the overlay for a while
        add(happening(Kind::LoadProfile, m_random.below(ProfileVariants)));
    }
    while (m_model.framesAccepted() < frames) {
        if (m_random.oneIn(8)) {
            add(whatHappens());
            addLook(m_sequence.back());
        } else {
            addSending();
        }
        addTidying();
    }
    return m_sequence;
}

void StepGenerator::add(const Step& step)
{
    m_model.apply(step);
    m_sequence.push_back(step);
}

/// A reading that nobody asks for may be wrong unnoticed.
void StepGenerator::addLook(const Step& happened)
{
    if (happened.kind != Kind::Read || !m_random.oneIn(3)) {
        return;
    }
    Step look;
    for (const ItemRow& row : Items) {
        if (row.readValue != NoCommand) {
            look.pieces.push_back(frame(row.readValue, 1, {}));
        }
    }
    for (const int distance : {0x30, 0x36, 0x3B, 0xD4}) {
        look.pieces.push_back(frame(distance, 1, {}));
    }
    look.pieces.push_back(frame(0xFD, 1, {1}));
    look.pieces.push_back(frame(0xFD, 1, {2}));
    add(look);
}

void StepGenerator::addSending()
{
    Step step;
    for (int pieces = m_random.oneIn(2) ? 1 : 1 + m_random.below(6); pieces > 0; --pieces) {
        const int chance = m_random.below(100);
        if (chance < 3) {
            step.pieces.push_back(m_frames.broken());
        } else if (chance < 11) {
            step.pieces.push_back(m_frames.typing());
        } else {
            step.pieces.push_back(m_frames.command(m_model.codec()));
        }
    }
    if (m_random.oneIn(12)) {
        addCut(step.bytes());
    } else {
        add(step);
    }
}

/// As the network may cut it.
void StepGenerator::addCut(const Bytes& bytes)
{
    for (std::size_t begin = 0; begin < bytes.size();) {
        const std::size_t end = std::min(
            bytes.size(), begin + 1 + static_cast<std::size_t>(m_random.below(m_random.oneIn(3) ? 3 : 20)));
        add(sending(Bytes(bytes.begin() + static_cast<std::ptrdiff_t>(begin),
                          bytes.begin() + static_cast<std::ptrdiff_t>(end))));
        begin = end;
    }
}

/// Nothing would be learned from a receiver that swallows everything, from an overlay with hundreds of texts,
/// and from a unit whose interface is another.
void StepGenerator::addTidying()
{
    constexpr std::size_t ManyElements = 60;
    const bool isJammed = m_model.receiver().waitingFor() != ModelReceiver::Waiting::Start;
    if (isJammed && !m_random.oneIn(4)) {
        add(sending(wayOut()));
    }
    if (m_model.elements().size() > ManyElements) {
        add(sending(frame(0x88, 0, {})));
    }
    if (m_model.interface() != Interface::Tcp && m_random.oneIn(6)) {
        add(happening(Kind::SelectInterface, static_cast<int>(Interface::Tcp)));
    }
}

Bytes StepGenerator::wayOut() const
{
    constexpr std::size_t MostAtOnce = 1500; // what is surely read at once
    switch (m_model.receiver().waitingFor()) {
    case ModelReceiver::Waiting::Command:
        return {0x32, 2, 0, 0, 3};
    case ModelReceiver::Waiting::Group:
        return {2, 0, 0, 3};
    case ModelReceiver::Waiting::LengthLow:
        return {0, 0, 3};
    case ModelReceiver::Waiting::LengthHigh:
        return {0};
    case ModelReceiver::Waiting::Payload:
        return Bytes(std::min(m_model.receiver().missingPayload(), MostAtOnce), 'x');
    case ModelReceiver::Waiting::Start:
    case ModelReceiver::Waiting::End:
        break;
    }
    return {3};
}

Step StepGenerator::whatHappens()
{
    const int chance = m_random.below(100);
    if (chance < 45) {
        return reading();
    }
    if (chance < 60) {
        return happening(Kind::CleanUp);
    }
    if (chance < 66) {
        return happening(Kind::HideTimedOut);
    }
    if (chance < 83) {
        return hostsEdit();
    }
    if (chance < 89) {
        return happening(Kind::LoadProfile, m_random.below(ProfileVariants));
    }
    if (chance < 90) {
        return happening(Kind::RemoveProfile);
    }
    if (chance < 93) {
        return happening(Kind::SelectInterface, m_random.below(3));
    }
    if (chance < 95) {
        return happening(Kind::Connect);
    }
    Step clock = happening(Kind::SetClock, m_random.below(86400));
    clock.numbers = {2000.0 + m_random.below(38), 1.0 + m_random.below(12), 1.0 + m_random.below(28), 0.0};
    return clock;
}

Step StepGenerator::reading()
{
    constexpr std::array<int, 7> Whole{
        0, 1, -1, 25, 2001, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()};
    constexpr std::array<int, 4> Thousandfold{2, 2000, 1, 1000};
    Step step = happening(Kind::Read, m_random.below(Readings));
    for (double& value : step.numbers) {
        value = number();
    }
    switch (static_cast<Reading>(step.which)) {
    case Reading::CrawlerTemperature:
    case Reading::CameraTemperature:
        step.numbers[0] = m_random.oneIn(4) ? m_random.below(3000) : m_random.oneOf(Whole);
        break;
    case Reading::CrawlerPressure:
    case Reading::CameraPressure:
        step.numbers[0] = m_random.oneIn(6) ? m_random.oneOf(Whole) : m_random.oneOf(Thousandfold);
        break;
    case Reading::CameraPan:
    case Reading::CameraTilt:
        step.numbers[0] = m_random.oneIn(4) ? -32768 : m_random.oneIn(4) ? 32767 : m_random.below(360) - 180;
        break;
    case Reading::NoReel:
    case Reading::NoCamera:
    case Reading::NoPositionSensor:
        step.which = m_random.oneIn(3) ? step.which : static_cast<int>(Reading::ReelSpeed);
        break;
    default:
        break;
    }
    return step;
}

double StepGenerator::number()
{
    constexpr std::array<double, 12> Odd{0.0,
                                         -0.0,
                                         1.0,
                                         -1.0,
                                         1e-7,
                                         45.0,
                                         90.0,
                                         1.00001,
                                         0.999995,
                                         1e38,
                                         std::numeric_limits<double>::infinity(),
                                         std::numeric_limits<double>::quiet_NaN()};
    switch (m_random.below(3)) {
    case 0:
        return m_random.oneOf(Odd);
    case 1:
        return (m_random.below(20000) - 10000) / 64.0;
    default:
        float value = 0.0F;
        const std::uint32_t bits = m_random.bits();
        std::memcpy(&value, &bits, sizeof value);
        return std::isnan(value) ? 0.0 : static_cast<double>(value);
    }
}

Step StepGenerator::hostsEdit()
{
    constexpr std::array<Kind, 4> Kinds{Kind::MoveElement, Kind::SwitchElement, Kind::EditText,
                                        Kind::DeleteElement};
    Step step = happening(m_random.oneOf(Kinds));
    step.which = m_random.below(1000);
    if (step.kind == Kind::MoveElement) {
        step.numbers = {m_random.oneIn(3) ? 3.0 : 0.0, static_cast<double>(m_random.below(4)), 0, 0};
    } else {
        step.numbers = {static_cast<double>(m_random.below(static_cast<int>(HostTexts.size()))), 0, 0, 0};
        if (step.kind == Kind::DeleteElement && m_random.oneIn(2)) {
            return happening(Kind::CleanUp); // or there would be no elements left before long
        }
    }
    return step;
}

} // namespace Tolvar::Varundo::Model
