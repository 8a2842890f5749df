#include "Profile.h"

namespace Tolvar::Varundo::Model {

namespace {

using Kind = ProfileElement::Kind;

constexpr std::uint32_t HalfBlack = 0x80000000;
constexpr std::uint32_t Cyan = 0xFF00FFFF; // no colour number has it
constexpr int LongerThanAnyTest = 86400;

ProfileElement bound(const ItemRow& row, int column, int line)
{
    ProfileElement element;
    element.identity = row.binding;
    element.column = column;
    element.row = line;
    if (row.item == Item::ExternalTemperature) {
        element.unit = u"\u00B0C";
    }
    return element;
}

ProfileElement statusLine(int number, int row)
{
    ProfileElement element;
    element.kind = Kind::Static;
    element.identity = std::to_string(number);
    element.row = row;
    element.text = u"Line ";
    element.text.push_back(static_cast<char16_t>(u'0' + number % 10));
    return element;
}

ProfileElement freeText(const std::string& caption, int column, int row)
{
    ProfileElement element;
    element.kind = Kind::Free;
    element.identity = caption;
    element.column = column;
    element.row = row;
    element.enabled = false;
    return element;
}

/// All there is, as a host would have it.
Profile everything()
{
    Profile profile;
    for (const ItemRow& row : Items) {
        profile.push_back(bound(row, 2, static_cast<int>(profile.size())));
    }
    for (int line = 1; line <= 4; ++line) {
        profile.push_back(statusLine(line, 18 + line));
    }
    profile.push_back(freeText(FreeTextBoxCaption, 5, 12));
    return profile;
}

/// All there is and elements of the host's own, in another order, with unusual looks.
Profile unusual()
{
    Profile profile;
    profile.push_back(freeText("Operator", 3, 3));
    profile.back().text = u"J. Doe";
    profile.push_back(freeText(FreeTextBoxCaption, 255, 255));
    profile.back().text = u"a\nb";
    profile.back().timeout = LongerThanAnyTest;
    profile.push_back(statusLine(12, 0));
    for (int line = 5; line >= 1; --line) { // 5 is not one of the four
        profile.push_back(statusLine(line, 0));
        profile.back().enabled = line % 2 == 0;
        profile.back().visible = line % 3 != 0;
        profile.back().textColor = line == 2 ? Cyan : ColourNumbers[static_cast<std::size_t>(line)];
        profile.back().backgroundColor =
            line == 3 ? HalfBlack : ColourNumbers[15U - static_cast<unsigned>(line)];
        profile.back().unit = u"u";
    }
    ProfileElement logo;
    logo.kind = Kind::Plain;
    logo.identity = "Logo";
    logo.type = 7;
    profile.push_back(logo);
    for (auto row = Items.rbegin(); row != Items.rend(); ++row) {
        profile.push_back(bound(*row, 255 - row->colourNumber, 200 + row->colourNumber));
        profile.back().enabled = row->show % 2 == 0;
        profile.back().type = row->colourNumber;
        profile.back().textColor = Cyan;
        profile.back().backgroundColor = HalfBlack;
        profile.back().unit = u"\u00B0F";
    }
    return profile;
}

/// Half of them stand on the overlay, all in the first cell; the controller can still write to the others.
Profile half(unsigned which)
{
    Profile profile;
    for (const ItemRow& row : Items) {
        if (static_cast<unsigned>(row.item) % 2 == which) {
            profile.push_back(bound(row, 0, 0));
            profile.back().unit = u"\u00B0F ";
        }
    }
    profile.push_back(statusLine(2 + static_cast<int>(which), 1));
    return profile;
}

Profile linesOnly()
{
    Profile profile;
    for (int line = 4; line >= 1; --line) {
        profile.push_back(statusLine(line, line));
        profile.back().text.clear();
        profile.back().textColor = ColourNumbers[static_cast<std::size_t>(line) * 3];
    }
    profile.push_back(freeText(FreeTextBoxCaption, 0, 0));
    return profile;
}

} // namespace

Profile profileVariant(int number)
{
    switch (number % ProfileVariants) {
    case 1:
        return unusual();
    case 2:
        return half(0);
    case 3:
        return half(1);
    case 4:
        return linesOnly();
    case 5:
        return {};
    default:
        return everything();
    }
}

} // namespace Tolvar::Varundo::Model
