#include <Tolvar/Varundo/Client/CommandCatalog.h>

#include <algorithm>
#include <array>

namespace Tolvar::Varundo::Client {

namespace {

using P = PayloadKind;
using V = Verb;

constexpr CommandInfo execute(quint8 id, const char* element, Verb verb)
{
    return {Protocol::Execute, id, element, verb, P::None, P::None};
}

constexpr CommandInfo read(quint8 id, const char* element, Verb verb, PayloadKind answer,
                           PayloadKind request = P::None)
{
    return {Protocol::Read, id, element, verb, request, answer};
}

constexpr CommandInfo write(quint8 id, const char* element, Verb verb, PayloadKind request)
{
    return {Protocol::Write, id, element, verb, request, P::None};
}

// Numbers and their gaps are the protocol's. Irregular on purpose: meter counter 3 in the read group, and the
// external temperature, whose state comes after the camera temperature's pair.
constexpr std::array Commands{
    execute(0x30, "meter-counter-1", V::Show),
    execute(0x31, "meter-counter-1", V::Hide),
    execute(0x32, "meter-counter-1", V::Toggle),
    execute(0x36, "meter-counter-2", V::Show),
    execute(0x37, "meter-counter-2", V::Hide),
    execute(0x38, "meter-counter-2", V::Toggle),
    execute(0x39, "meter-counter-3", V::Show),
    execute(0x3A, "meter-counter-3", V::Hide),
    execute(0x3B, "meter-counter-3", V::Toggle),
    execute(0x40, "date", V::Show),
    execute(0x41, "date", V::Hide),
    execute(0x42, "date", V::Toggle),
    execute(0x50, "time", V::Show),
    execute(0x51, "time", V::Hide),
    execute(0x52, "time", V::Toggle),
    execute(0x70, "video-counter", V::Show),
    execute(0x71, "video-counter", V::Hide),
    execute(0x72, "video-counter", V::Toggle),
    execute(0x80, "overlay", V::On),
    execute(0x81, "overlay", V::Off),
    execute(0x88, "overlay", V::Clear),
    execute(0x90, "status-line-1", V::Show),
    execute(0x91, "status-line-1", V::Hide),
    execute(0x92, "status-line-1", V::Toggle),
    execute(0x93, "status-line-2", V::Show),
    execute(0x94, "status-line-2", V::Hide),
    execute(0x95, "status-line-2", V::Toggle),
    execute(0x96, "status-line-3", V::Show),
    execute(0x97, "status-line-3", V::Hide),
    execute(0x98, "status-line-3", V::Toggle),
    execute(0x99, "status-line-4", V::Show),
    execute(0x9A, "status-line-4", V::Hide),
    execute(0x9B, "status-line-4", V::Toggle),
    execute(0xB8, "crawler-temperature", V::Show),
    execute(0xB9, "crawler-temperature", V::Hide),
    execute(0xBA, "crawler-temperature", V::Toggle),
    execute(0xBB, "crawler-pressure", V::Show),
    execute(0xBC, "crawler-pressure", V::Hide),
    execute(0xBD, "crawler-pressure", V::Toggle),
    execute(0xCC, "cable-speed", V::Show),
    execute(0xCD, "cable-speed", V::Hide),
    execute(0xCE, "cable-speed", V::Toggle),
    execute(0xD4, "measurement-3d", V::MainPipe),
    execute(0xD5, "measurement-3d", V::Lateral),
    execute(0xD6, "measurement-3d", V::Off),
    execute(0xDA, "external-temperature", V::Show),
    execute(0xDB, "external-temperature", V::Hide),
    execute(0xDC, "external-temperature", V::Toggle),
    execute(0xDD, "crawler-roll", V::Show),
    execute(0xDE, "crawler-roll", V::Hide),
    execute(0xDF, "crawler-roll", V::Toggle),
    execute(0xF0, "pan", V::Show),
    execute(0xF1, "pan", V::Hide),
    execute(0xF2, "pan", V::Toggle),
    execute(0xF3, "tilt", V::Show),
    execute(0xF4, "tilt", V::Hide),
    execute(0xF5, "tilt", V::Toggle),
    execute(0xF6, "camera-temperature", V::Show),
    execute(0xF7, "camera-temperature", V::Hide),
    execute(0xF8, "camera-temperature", V::Toggle),
    execute(0xF9, "pressure", V::Show),
    execute(0xFA, "pressure", V::Hide),
    execute(0xFB, "pressure", V::Toggle),
    execute(0xFC, "inclination", V::Show),
    execute(0xFD, "inclination", V::Hide),
    execute(0xFE, "inclination", V::Toggle),

    read(0x01, "text-codec", V::Value, P::Codec),
    read(0x30, "meter-counter-1", V::Value, P::Single),
    read(0x31, "meter-counter-1", V::State, P::State),
    read(0x36, "meter-counter-2", V::Value, P::Single),
    read(0x37, "meter-counter-2", V::State, P::State),
    read(0x3B, "meter-counter-3", V::Value, P::Single),
    read(0x3C, "meter-counter-3", V::State, P::State),
    read(0x40, "date", V::Value, P::Date),
    read(0x41, "date", V::State, P::State),
    read(0x50, "time", V::Value, P::Time),
    read(0x51, "time", V::State, P::State),
    read(0x70, "video-counter", V::Value, P::VideoCounter),
    read(0x71, "video-counter", V::State, P::State),
    read(0x90, "status-line", V::Text, P::LineText, P::PackedNumber),
    read(0x92, "status-line", V::State, P::StatusLineState, P::PackedNumber),
    read(0x98, "line", V::Text, P::LineText, P::PackedNumber),
    read(0xC0, "crawler-temperature", V::Value, P::Single),
    read(0xC1, "crawler-temperature", V::State, P::State),
    read(0xC2, "crawler-pressure", V::Value, P::Single),
    read(0xC3, "crawler-pressure", V::State, P::State),
    read(0xC4, "crawler-roll", V::Value, P::Single),
    read(0xC5, "crawler-roll", V::State, P::State),
    read(0xC6, "cable-speed", V::Value, P::Single),
    read(0xC7, "cable-speed", V::State, P::State),
    read(0xD4, "measurement-3d", V::Value, P::Measurement3D),
    read(0xF0, "pan", V::Value, P::Single),
    read(0xF1, "pan", V::State, P::State),
    read(0xF3, "tilt", V::Value, P::Single),
    read(0xF4, "tilt", V::State, P::State),
    read(0xF5, "external-temperature", V::Value, P::Single),
    read(0xF6, "camera-temperature", V::Value, P::Single),
    read(0xF7, "camera-temperature", V::State, P::State),
    read(0xF8, "external-temperature", V::State, P::State),
    read(0xF9, "pressure", V::Value, P::Single),
    read(0xFA, "pressure", V::State, P::State),
    read(0xFB, "inclination", V::Value, P::Single),
    read(0xFC, "inclination", V::State, P::State),
    read(0xFD, "laser-calibration", V::Value, P::Laser, P::Index),
    read(0xFF, "software-id", V::Value, P::Text),

    write(0x01, "text-codec", V::Value, P::Codec),
    write(0x30, "meter-counter-1", V::Value, P::Single),
    write(0x32, "meter-counter-1", V::Position, P::Position),
    write(0x36, "meter-counter-2", V::Value, P::Single),
    write(0x38, "meter-counter-2", V::Position, P::Position),
    write(0x3C, "meter-counter-3", V::Value, P::Single),
    write(0x3E, "meter-counter-3", V::Position, P::Position),
    write(0x40, "date", V::Value, P::Date),
    write(0x42, "date", V::Position, P::Position),
    write(0x50, "time", V::Value, P::Time),
    write(0x52, "time", V::Position, P::Position),
    write(0x62, "cursor", V::Position, P::Position),
    write(0x70, "video-counter", V::Value, P::VideoCounter),
    write(0x72, "video-counter", V::Position, P::Position),
    write(0x90, "status-line", V::Text, P::LineText),
    write(0x92, "free-text", V::Color, P::Colors),
    write(0x95, "cursor", V::Text, P::Text),
    write(0x98, "line", V::Text, P::LineText),
    write(0x99, "status-line", V::Color, P::NumberedColors),
    write(0xC0, "crawler-temperature", V::Position, P::Position),
    write(0xC2, "crawler-pressure", V::Position, P::Position),
    write(0xC4, "crawler-roll", V::Position, P::Position),
    write(0xC6, "cable-speed", V::Position, P::Position),
    write(0xD4, "measurement-3d", V::Position, P::Point3D),
    write(0xD5, "measurement-3d", V::Orientation, P::Orientation),
    write(0xD7, "free-text", V::Text, P::FreeText),
    write(0xE5, "element", V::Color, P::NumberedColors),
    write(0xF0, "pan", V::Position, P::Position),
    write(0xF3, "tilt", V::Position, P::Position),
    write(0xF5, "external-temperature", V::Format, P::Format),
    write(0xF6, "camera-temperature", V::Position, P::Position),
    write(0xF9, "pressure", V::Position, P::Position),
    write(0xFB, "external-temperature", V::Position, P::Position),
    write(0xFC, "inclination", V::Position, P::Position),
    write(0xFD, "inclination", V::Format, P::Format),
};

constexpr int sortKey(const CommandInfo& info)
{
    return info.group * 256 + info.id;
}

constexpr bool isSortedAndUnique()
{
    for (std::size_t i = 1; i < Commands.size(); ++i) {
        if (sortKey(Commands[i - 1]) >= sortKey(Commands[i])) {
            return false;
        }
    }
    return true;
}
static_assert(isSortedAndUnique(), "findCommand() searches by halves");

} // namespace

CommandRange allCommands()
{
    return {Commands.data(), Commands.data() + Commands.size()};
}

const CommandInfo* findCommand(quint8 group, quint8 id)
{
    const int key = group * 256 + id;
    const auto found =
        std::lower_bound(Commands.begin(), Commands.end(), key,
                         [](const CommandInfo& info, int wanted) { return sortKey(info) < wanted; });
    return found != Commands.end() && sortKey(*found) == key ? &*found : nullptr;
}

const CommandInfo* findCommand(Protocol::Group group, QStringView element, Verb verb)
{
    const auto found = std::find_if(Commands.begin(), Commands.end(), [&](const CommandInfo& info) {
        return info.group == group && info.verb == verb && element == QLatin1String(info.element);
    });
    return found != Commands.end() ? &*found : nullptr;
}

CommandMessage makeCommand(const CommandInfo& info, const QByteArray& payload)
{
    return {info.id, info.group, static_cast<quint16>(payload.size()), payload};
}

} // namespace Tolvar::Varundo::Client
