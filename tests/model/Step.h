#ifndef TOLVAR_VARUNDO_TESTS_STEP_H
#define TOLVAR_VARUNDO_TESTS_STEP_H

#include "ModelText.h"

#include <array>

namespace Tolvar::Varundo::Model {

/// What a device may come to say or to be.
enum class Reading : std::uint8_t {
    ReelSpeed,
    RtsTemperature,
    CrawlerTemperature,
    CrawlerPressure,
    CrawlerRoll,
    CrawlerPitch,
    CameraPan,
    CameraTilt,
    CameraTemperature,
    CameraPressure,
    ReelDistances,    ///< section, SAT, total
    LaserCalibration, ///< first, second
    PositionSensor,   ///< x, y, z, angle
    NoReel,
    NoCamera,
    NoPositionSensor,
};
constexpr int Readings = 16;

enum class Interface : std::uint8_t { Serial, Tcp, Udp };

/// Year, month, day, second of the day: when every unit is switched on.
constexpr std::array<int, 4> ClockAtStart{2026, 3, 15, 12 * 3600};

/// One thing that happens to the unit. After each the model and the unit must agree.
struct Step
{
    enum class Kind : std::uint8_t {
        Send,        ///< all pieces in one write; the unit reads them at once
        Read,        ///< a device, which: Reading
        LoadProfile, ///< which: a number for profileVariant()
        RemoveProfile,
        CleanUp,         ///< the time has come to remove texts without anything to show
        HideTimedOut,    ///< the time of every text that shows for a while is over
        MoveElement,     ///< by the host. which: its place in the list; numbers: column, row
        SwitchElement,   ///< by the host. numbers: enabled
        EditText,        ///< by the host. numbers: one of HostTexts
        DeleteElement,   ///< by the host
        SelectInterface, ///< which: Interface
        Connect,         ///< another controller; it replaces the one before
        SetClock,        ///< which: seconds of the day; numbers: year, month, day
    };

    Kind kind = Kind::Send;
    int which = 0;
    std::array<double, 4> numbers{};
    std::vector<Bytes> pieces; ///< frames, parts of frames and anything else

    [[nodiscard]] Bytes bytes() const;
};

using Sequence = std::vector<Step>;

[[nodiscard]] Step sending(const Bytes& bytes);
[[nodiscard]] Step happening(Step::Kind kind, int which = 0, const std::array<double, 4>& numbers = {});

constexpr std::array<const char16_t*, 4> HostTexts{u"", u"host", u"  \u00A0", u"Line 1"};

} // namespace Tolvar::Varundo::Model

#endif
