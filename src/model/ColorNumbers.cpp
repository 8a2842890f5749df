#include <Tolvar/Varundo/ColorNumbers.h>

namespace Tolvar::Varundo {

namespace {

struct Rgba
{
    quint8 red;
    quint8 green;
    quint8 blue;
    quint8 alpha;
};

/// One row per colour number. The names are those of the protocol reference; Qt's named colours among them
/// are written out, so that a table look-up costs no construction order.
constexpr Rgba palette[] = {
    {0, 0, 0, 0},         //  0 transparent, the only one
    {255, 255, 255, 255}, //  1 white
    {128, 0, 0, 255},     //  2 maroon
    {0, 128, 0, 255},     //  3 green
    {128, 128, 0, 255},   //  4 olive
    {0, 0, 128, 255},     //  5 navy
    {128, 0, 128, 255},   //  6 purple
    {0, 128, 128, 255},   //  7 teal
    {160, 160, 164, 255}, //  8 gray, as Qt::gray: not neutral
    {192, 192, 192, 255}, //  9 silver
    {255, 0, 0, 255},     // 10 red
    {0, 255, 0, 255},     // 11 lime
    {255, 255, 0, 255},   // 12 yellow
    {0, 0, 255, 255},     // 13 blue
    {255, 0, 255, 255},   // 14 magenta; there is no cyan
    {0, 0, 0, 255},       // 15 black
};
constexpr quint8 paletteSize = sizeof(palette) / sizeof(palette[0]);
static_assert(paletteSize == 16, "a colour number is four bits");

constexpr quint8 numberOfWhite = 1;

} // namespace

QColor colorFromNumber(quint8 number)
{
    const Rgba& row = palette[number & 0x0F];
    return QColor(row.red, row.green, row.blue, row.alpha);
}

quint8 numberFromColor(const QColor& color)
{
    for (quint8 number = 0; number < paletteSize; ++number) {
        if (color == colorFromNumber(number)) {
            return number;
        }
    }
    return numberOfWhite;
}

} // namespace Tolvar::Varundo
