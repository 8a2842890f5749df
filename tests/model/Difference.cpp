#include "Difference.h"

#include <Mavril/VideoOverlay/CVideoOverlayText.h>
#include <Tolvar/Varundo/DataManager.h>

#include <QFontMetrics>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace Tolvar::Varundo::Model {

using Mavril::VideoOverlay::CVideoOverlayElement;
using Mavril::VideoOverlay::CVideoOverlayText;

namespace {

QString unlike(const QString& what, const QString& expected, const QString& found)
{
    return QStringLiteral("%1: expected %2, found %3").arg(what, expected, found);
}

QString unlike(const char* what, double expected, double found)
{
    return unlike(QLatin1String(what), QString::number(expected), QString::number(found));
}

QString quoted(const QString& text)
{
    QString result;
    for (const QChar character : text) {
        const bool isPlain = character.unicode() >= 0x20 && character.unicode() < 0x7F;
        result += isPlain ? QString(character)
                          : QStringLiteral("\\u%1").arg(character.unicode(), 4, 16, QLatin1Char('0'));
    }
    return QLatin1Char('"') + result + QLatin1Char('"');
}

QString named(const Color& color)
{
    return color ? QStringLiteral("#%1").arg(*color, 8, 16, QLatin1Char('0')) : QStringLiteral("no color");
}

Color colorOf(const QColor& color)
{
    return color.isValid() ? Color(color.rgba()) : Color();
}

/// QString's own conversion swallows a byte-order mark.
QString unchanged(const std::u16string& text)
{
    return QString(reinterpret_cast<const QChar*>(text.data()), static_cast<int>(text.size()));
}

bool isSameText(const std::u16string& model, const QString& unit)
{
    return model.size() == static_cast<std::size_t>(unit.size()) &&
           std::memcmp(model.data(), unit.utf16(), model.size() * sizeof(char16_t)) == 0;
}

QString hex(const QByteArray& bytes)
{
    return bytes.isEmpty() ? QStringLiteral("nothing") : QString::fromLatin1(bytes.toHex(' ').toUpper());
}

QByteArray fromBytes(const Bytes& bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size())};
}

float singleAt(const QByteArray& bytes, std::size_t at)
{
    quint32 bits = 0;
    for (std::size_t byte = 0; byte < sizeof bits; ++byte) {
        bits = bits << 8 | static_cast<quint8>(bytes.at(static_cast<int>(at + byte)));
    }
    float value = 0.0F;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

/// A percentage that is as good as the expected one is put in its place.
QByteArray withPercentagesOf(const UnitModel& model, const QByteArray& expected, QByteArray found)
{
    constexpr float Tolerance = 1e-5F;
    constexpr int Size = sizeof(float);
    for (const std::size_t at : model.percentages()) {
        const int begin = static_cast<int>(at);
        if (found.size() < begin + Size) {
            break;
        }
        const float ours = singleAt(expected, at);
        const float units = singleAt(found, at);
        if ((std::isnan(ours) && std::isnan(units)) ||
            std::fabs(ours - units) <= Tolerance * std::fabs(ours)) {
            found.replace(begin, Size, expected.mid(begin, Size));
        }
    }
    return found;
}

QString differenceOfReplies(const UnitModel& model, const RealUnit& unit)
{
    const QByteArray expected = fromBytes(model.replies());
    if (expected == unit.replies() || expected == withPercentagesOf(model, expected, unit.replies())) {
        return {};
    }
    return unlike(QStringLiteral("replies"), hex(expected), hex(unit.replies()));
}

QString joined(const std::vector<std::string>& told)
{
    QStringList texts;
    for (const std::string& text : told) {
        texts.append(QString::fromStdString(text));
    }
    return texts.isEmpty() ? QStringLiteral("nothing") : texts.join(QStringLiteral(", "));
}

QString differenceOfSize(const Element& expected, const CVideoOverlayText& found)
{
    const QFontMetrics metrics(found.font());
    const int height = expected.measured ? metrics.height() : 0;
    const int width = expected.measured ? metrics.horizontalAdvance(unchanged(*expected.measured)) : 0;
    if (!qFuzzyCompare(1.0 + found.height(), 1.0 + height)) {
        return unlike("height", height, found.height());
    }
    return qFuzzyCompare(1.0 + found.width(), 1.0 + width) ? QString()
                                                           : unlike("width", width, found.width());
}

QString differenceOfText(const Element& expected, const CVideoOverlayText& found)
{
    const auto texts = [](const char* what, const std::u16string& model, const QString& unit) {
        return unlike(QLatin1String(what), quoted(unchanged(model)), quoted(unit));
    };
    if (!isSameText(expected.text, found.text())) {
        return texts("text", expected.text, found.text());
    }
    if (!isSameText(expected.unit, found.unit())) {
        return texts("unit", expected.unit, found.unit());
    }
    if (expected.timeout != found.timeout()) {
        return unlike("time-out", expected.timeout, found.timeout());
    }
    const Colors colors{colorOf(found.textColor()), colorOf(found.backgroundColor())};
    if (expected.colors.text != colors.text) {
        return unlike(QStringLiteral("text color"), named(expected.colors.text), named(colors.text));
    }
    if (expected.colors.background != colors.background) {
        return unlike(QStringLiteral("background color"), named(expected.colors.background),
                      named(colors.background));
    }
    return differenceOfSize(expected, found);
}

QString differenceOfElement(const Element& expected, const CVideoOverlayElement& found)
{
    if (expected.column != found.column()) {
        return unlike("column", expected.column, found.column());
    }
    if (expected.row != found.row()) {
        return unlike("row", expected.row, found.row());
    }
    if (expected.enabled != found.enabled()) {
        return unlike("enabled", expected.enabled, found.enabled());
    }
    if (expected.visible != found.visible()) {
        return unlike("visible", expected.visible, found.visible());
    }
    if (expected.type != found.type()) {
        return unlike("type", expected.type, found.type());
    }
    const auto* const text = qobject_cast<const CVideoOverlayText*>(&found);
    if (expected.isText != (text != nullptr)) {
        return unlike("is a text", expected.isText, text != nullptr);
    }
    return text != nullptr ? differenceOfText(expected, *text) : QString();
}

QString differenceOfOverlay(const UnitModel& model, RealUnit& unit)
{
    const auto found = unit.elements();
    const std::vector<Element>& expected = model.elements();
    const auto common = std::min(expected.size(), static_cast<std::size_t>(found.size()));
    for (std::size_t at = 0; at < common; ++at) {
        CVideoOverlayElement& element = *found.at(static_cast<int>(at));
        const QString name =
            QStringLiteral("element %1 %2").arg(at).arg(QString::fromStdString(expected[at].key));
        if (unit.keyOf(element) != QLatin1String(expected[at].key.c_str())) {
            return unlike(name, QStringLiteral("this key"), unit.keyOf(element));
        }
        const QString difference = differenceOfElement(expected[at], element);
        if (!difference.isEmpty()) {
            return name.trimmed() + QStringLiteral(": ") + difference;
        }
    }
    return expected.size() == static_cast<std::size_t>(found.size())
               ? QString()
               : unlike("number of elements", static_cast<double>(expected.size()), found.size());
}

} // namespace

QString firstDifference(const UnitModel& model, RealUnit& unit)
{
    QString ofReplies = differenceOfReplies(model, unit);
    if (!ofReplies.isEmpty()) {
        return ofReplies;
    }
    if (model.told() != unit.told()) {
        return unlike(QStringLiteral("the host is told"), joined(model.told()), joined(unit.told()));
    }
    const QPoint cursor = unit.data().cursorPosition();
    if (cursor != QPoint(model.cursorColumn(), model.cursorRow())) {
        return unlike(QStringLiteral("cursor"),
                      QStringLiteral("%1,%2").arg(model.cursorColumn()).arg(model.cursorRow()),
                      QStringLiteral("%1,%2").arg(cursor.x()).arg(cursor.y()));
    }
    return differenceOfOverlay(model, unit);
}

} // namespace Tolvar::Varundo::Model
