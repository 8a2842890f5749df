#ifndef TOLVAR_VARUNDO_TESTS_MODELTABLES_H
#define TOLVAR_VARUNDO_TESTS_MODELTABLES_H

#include <array>
#include <cstdint>

/// The numbers of the protocol, written down for the model alone: a wrong row of the library's tables must
/// not be wrong here as well.
namespace Tolvar::Varundo::Model {

enum class Item : std::uint8_t {
    MeterCounter1,
    MeterCounter2,
    MeterCounter3,
    Date,
    Time,
    VideoCounter,
    CrawlerTemperature,
    CrawlerPressure,
    CrawlerRoll,
    CableSpeed,
    Pan,
    Tilt,
    ExternalTemperature,
    CameraTemperature,
    Pressure,
    Inclination,
};

constexpr int NoCommand = 0;

struct ItemRow
{
    Item item;
    const char* binding; ///< the overlay's name for it
    int show;            ///< execute; + 1 hides, + 2 toggles
    int writePosition;   ///< write
    int colourNumber;    ///< in the payload of write 0xE5
    int readState;       ///< read
    int readValue;       ///< read; NoCommand where it is no stored reading
    int formatAtStart;
};

// clang-format off
constexpr std::array<ItemRow, 16> Items{{
    {Item::MeterCounter1,       "SectionDistanceCounter", 0x30, 0x32,  0, 0x31, NoCommand, 0},
    {Item::MeterCounter2,       "SatDistanceCounter",     0x36, 0x38,  1, 0x37, NoCommand, 0},
    {Item::MeterCounter3,       "TotalDistanceCounter",   0x39, 0x3E, 21, 0x3C, NoCommand, 0},
    {Item::Date,                "Date",                   0x40, 0x42,  3, 0x41, NoCommand, 0},
    {Item::Time,                "Time",                   0x50, 0x52,  2, 0x51, NoCommand, 0},
    {Item::VideoCounter,        "VideoTimeCounter",       0x70, 0x72, 12, 0x71, NoCommand, 0},
    {Item::CrawlerTemperature,  "CrawlerTemperature",     0xB8, 0xC0, 17, 0xC1, 0xC0,      0},
    {Item::CrawlerPressure,     "CrawlerPressure",        0xBB, 0xC2, 18, 0xC3, 0xC2,      0},
    {Item::CrawlerRoll,         "CrawlerRoll",            0xDD, 0xC4, 19, 0xC5, 0xC4,      0},
    {Item::CableSpeed,          "Speed",                  0xCC, 0xC6, 20, 0xC7, 0xC6,      1},
    {Item::Pan,                 "CameraPan",              0xF0, 0xF0, 10, 0xF1, 0xF0,      0},
    {Item::Tilt,                "CameraTilt",             0xF3, 0xF3, 11, 0xF4, 0xF3,      1},
    {Item::ExternalTemperature, "ObjectTemperature",      0xDA, 0xFB, 16, 0xF8, 0xF5,      0},
    {Item::CameraTemperature,   "CameraTemperature",      0xF6, 0xF6, 13, 0xF7, 0xF6,      0},
    {Item::Pressure,            "CameraPressure",         0xF9, 0xF9, 15, 0xFA, 0xF9,      0},
    {Item::Inclination,         "CrawlerPitch",           0xFC, 0xFC, 14, 0xFC, 0xFB,      0},
}};
// clang-format on

/// Alpha, red, green, blue by colour number.
constexpr std::array<std::uint32_t, 16> ColourNumbers{
    0x00000000, 0xFFFFFFFF, 0xFF800000, 0xFF008000, 0xFF808000, 0xFF000080, 0xFF800080, 0xFF008080,
    0xFFA0A0A4, 0xFFC0C0C0, 0xFFFF0000, 0xFF00FF00, 0xFFFFFF00, 0xFF0000FF, 0xFFFF00FF, 0xFF000000,
};
constexpr std::uint32_t White = 0xFFFFFFFF;
constexpr std::uint32_t Blue = 0xFF0000FF;

constexpr std::array<int, 4> ShowStatusLine{0x90, 0x93, 0x96, 0x99};
constexpr const char* FreeTextBoxCaption = "OsdFreeTextBox";

} // namespace Tolvar::Varundo::Model

#endif
