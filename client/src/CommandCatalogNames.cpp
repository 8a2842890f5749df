#include <Tolvar/Varundo/Client/CommandCatalog.h>

#include <algorithm>
#include <array>
#include <iterator>

namespace Tolvar::Varundo::Client {

namespace {

// In the order of Verb.
constexpr std::array VerbNames{"value",  "state",  "text",  "position",  "orientation",
                               "colour", "format", "show",  "hide",      "toggle",
                               "on",     "off",    "clear", "main-pipe", "lateral"};

// In the order of PayloadKind.
constexpr std::array PayloadLayouts{
    "",
    "codec number",
    "format number",
    "value (single)",
    "column, row",
    "day, month, century, year",
    "hour, minute, second",
    "hours, minutes, seconds",
    "text",
    "line number, text",
    "colours",
    "number, colours",
    "x, y, z (doubles)",
    "two angles (singles)",
    "0, duration, 0, up to five texts separated by 0",
    "line number (packed decimal)",
    "index",
    "format, visible, column, row",
    "line number, colours, visible, 0, 0",
    "index, value (double)",
    "x, y, z (doubles), angle (single)",
};
static_assert(VerbNames.size() == static_cast<std::size_t>(Verb::Lateral) + 1);
static_assert(PayloadLayouts.size() == static_cast<std::size_t>(PayloadKind::Measurement3D) + 1);

constexpr std::array IndexedElements{"status-line", "line", "laser-calibration"};

// By element colour number; 4 to 9 are not in use. Meter counter 3 stands apart from the other two.
constexpr std::array ColorElements{
    "meter-counter-1",
    "meter-counter-2",
    "time",
    "date",
    "",
    "",
    "",
    "",
    "",
    "",
    "pan",
    "tilt",
    "video-counter",
    "camera-temperature",
    "inclination",
    "pressure",
    "external-temperature",
    "crawler-temperature",
    "crawler-pressure",
    "crawler-roll",
    "cable-speed",
    "meter-counter-3",
};

} // namespace

QLatin1String groupName(Protocol::Group group)
{
    constexpr std::array Names{"execute", "read", "write"};
    return QLatin1String(Names.at(group));
}

QLatin1String verbName(Verb verb)
{
    return QLatin1String(VerbNames.at(static_cast<std::size_t>(verb)));
}

std::optional<Verb> verbFromName(QStringView name)
{
    if (name == QLatin1String("color")) {
        return Verb::Color;
    }
    const auto found = std::find_if(VerbNames.begin(), VerbNames.end(),
                                    [&](const char* known) { return name == QLatin1String(known); });
    if (found == VerbNames.end()) {
        return std::nullopt;
    }
    return static_cast<Verb>(std::distance(VerbNames.begin(), found));
}

QLatin1String payloadLayout(PayloadKind kind)
{
    return QLatin1String(PayloadLayouts.at(static_cast<std::size_t>(kind)));
}

bool isIndexedElement(QStringView element)
{
    return std::any_of(IndexedElements.begin(), IndexedElements.end(),
                       [&](const char* known) { return element == QLatin1String(known); });
}

std::optional<quint8> elementColorNumber(QStringView element)
{
    const auto found = std::find_if(ColorElements.begin(), ColorElements.end(),
                                    [&](const char* known) { return element == QLatin1String(known); });
    if (element.isEmpty() || found == ColorElements.end()) {
        return std::nullopt;
    }
    return static_cast<quint8>(std::distance(ColorElements.begin(), found));
}

QLatin1String elementOfColorNumber(quint8 number)
{
    return QLatin1String(number < ColorElements.size() ? ColorElements.at(number) : "");
}

} // namespace Tolvar::Varundo::Client
