#include <Tolvar/Varundo/Client/ColorTable.h>

#include <algorithm>
#include <array>
#include <iterator>

namespace Tolvar::Varundo::Client {

namespace {

// Row n is colour n. There is no cyan, and 8 is not quite a neutral grey; both are the unit's.
constexpr std::array<ColorInfo, 16> Colors{{
    {0, "transparent", 0x00000000},
    {1, "white", 0xFFFFFFFF},
    {2, "maroon", 0xFF800000},
    {3, "green", 0xFF008000},
    {4, "olive", 0xFF808000},
    {5, "navy", 0xFF000080},
    {6, "purple", 0xFF800080},
    {7, "teal", 0xFF008080},
    {8, "gray", 0xFFA0A0A4},
    {9, "silver", 0xFFC0C0C0},
    {10, "red", 0xFFFF0000},
    {11, "lime", 0xFF00FF00},
    {12, "yellow", 0xFFFFFF00},
    {13, "blue", 0xFF0000FF},
    {14, "magenta", 0xFFFF00FF},
    {15, "black", 0xFF000000},
}};

struct Alias
{
    const char* name;
    quint8 number;
};

constexpr std::array Aliases{Alias{"grey", 8}, Alias{"fuchsia", 14}, Alias{"none", 0}};

bool sameName(QStringView name, const char* known)
{
    return name.compare(QLatin1String(known), Qt::CaseInsensitive) == 0;
}

} // namespace

const ColorInfo& colorInfo(quint8 number)
{
    return Colors.at(number & 0x0FU);
}

QLatin1String colorName(quint8 number)
{
    return QLatin1String(colorInfo(number).name);
}

std::optional<quint8> colorNumber(QStringView nameOrNumber)
{
    bool isNumber = false;
    const int number = nameOrNumber.toInt(&isNumber);
    if (isNumber) {
        return number >= 0 && number < static_cast<int>(Colors.size())
                   ? std::optional<quint8>(static_cast<quint8>(number))
                   : std::nullopt;
    }
    for (const ColorInfo& color : Colors) {
        if (sameName(nameOrNumber, color.name)) {
            return color.number;
        }
    }
    for (const Alias& alias : Aliases) {
        if (sameName(nameOrNumber, alias.name)) {
            return alias.number;
        }
    }
    return std::nullopt;
}

QStringList colorNames()
{
    QStringList names;
    std::transform(Colors.begin(), Colors.end(), std::back_inserter(names),
                   [](const ColorInfo& color) { return QString(QLatin1String(color.name)); });
    return names;
}

} // namespace Tolvar::Varundo::Client
