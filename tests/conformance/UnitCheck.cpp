#include "UnitCheck.h"

#include "ExampleUnit.h"
#include "UnitElement.h"

#include <Mavril/VideoOverlay/CVideoOverlayText.h>
#include <Mavril/VideoOverlay/ElementParam.h>

#include <Tolvar/Varundo/ColorNumbers.h>

namespace Tolvar::Varundo::Tests {

using Mavril::VideoOverlay::CVideoOverlayText;
using Mavril::VideoOverlay::ElementParam;

namespace {

QString pairOf(int first, int second)
{
    return QStringLiteral("%1,%2").arg(first).arg(second);
}

QString pairOf(const QPoint& point)
{
    return pairOf(point.x(), point.y());
}

/// By comparing with each colour of the table, so that an unknown colour does not pass for a known one.
QString numberOf(const QColor& color)
{
    for (quint8 number = 0; number < 16; ++number) {
        if (color == colorFromNumber(number)) {
            return QString::number(number);
        }
    }
    return color.isValid() ? color.name(QColor::HexArgb) : QStringLiteral("never set");
}

QString numbersOf(const QColor& text, const QColor& background)
{
    return numberOf(text) + QLatin1Char(',') + numberOf(background);
}

QString onOff(bool on)
{
    return on ? QStringLiteral("on") : QStringLiteral("off");
}

std::optional<QPoint> pointFrom(const QString& word)
{
    const QStringList numbers = word.split(QLatin1Char(','));
    bool isColumn = false;
    bool isRow = false;
    const QPoint point(numbers.value(0).toInt(&isColumn), numbers.value(1).toInt(&isRow));
    return numbers.size() == 2 && isColumn && isRow ? std::optional<QPoint>(point) : std::nullopt;
}

} // namespace

UnitCheck::UnitCheck(ExampleUnit& unit, const QStringList& words)
    : m_unit(unit)
    , m_words(words)
{}

QString UnitCheck::failure()
{
    const QString subject = word(0);
    if (const UnitElement* const element = UnitElement::find(subject)) {
        return elementFailure(*element);
    }
    if (subject == QLatin1String("free-text")) {
        return freeTextFailure();
    }
    if (subject == QLatin1String("text")) {
        return writtenTextFailure();
    }
    if (subject == QLatin1String("no") && word(1) == QLatin1String("text")) {
        return noTextFailure();
    }
    if (subject == QLatin1String("texts")) {
        return equal(QString::number(m_unit.writtenTexts()), 1);
    }
    if (subject == QLatin1String("overlay")) {
        return equal(onOff(m_unit.overlayOn()), 1);
    }
    if (subject == QLatin1String("cursor")) {
        return equal(pairOf(m_unit.model().cursorPosition()), 1);
    }
    if (subject == QLatin1String("codec")) {
        return equal(QString::number(m_unit.model().textCodec()), 1);
    }
    if (subject == QLatin1String("told")) {
        const QString told = m_unit.takeTold();
        return equal(told.isEmpty() ? QStringLiteral("nothing") : told, 1);
    }
    return notUnderstood();
}

QString UnitCheck::elementFailure(const UnitElement& element)
{
    const DataManager& model = m_unit.model();
    const CVideoOverlayText* const shown = m_unit.element(*element.key);
    if (!shown) {
        return QStringLiteral("the overlay has no %1").arg(word(0));
    }
    const QString what = word(1);
    if (what == QLatin1String("shown") || what == QLatin1String("hidden")) {
        const bool visible = (model.*element.visible)();
        if (visible != shown->enabled()) {
            return wants(QStringLiteral("one thing in the model and another on the overlay"));
        }
        return equal(visible ? QStringLiteral("shown") : QStringLiteral("hidden"), 1);
    }
    if (what == QLatin1String("position") && element.position) {
        return positionFailure(element);
    }
    if (what == QLatin1String("colours")) {
        return colorsFailure(element);
    }
    if (what == QLatin1String("format") && element.format) {
        return equal(QString::number((model.*element.format)()), 2);
    }
    if (what == QLatin1String("unit")) {
        return equal(shown->unit(), 2);
    }
    if (what == QLatin1String("text") && element.text) {
        return (model.*element.text)() == shown->text()
                   ? equal(shown->text(), 2)
                   : wants(QStringLiteral("one thing in the model and another on the overlay"));
    }
    return notUnderstood();
}

QString UnitCheck::positionFailure(const UnitElement& element)
{
    const CVideoOverlayText& shown = *m_unit.element(*element.key);
    const QPoint model = (m_unit.model().*element.position)();
    const QPoint overlay(shown.column(), shown.row());
    if (model != overlay) {
        return wants(
            QStringLiteral("%1 in the model and %2 on the overlay").arg(pairOf(model), pairOf(overlay)));
    }
    return equal(pairOf(model), 2);
}

QString UnitCheck::colorsFailure(const UnitElement& element)
{
    const CVideoOverlayText& shown = *m_unit.element(*element.key);
    const ColorPair colors = (m_unit.model().*element.colors)();
    const QString model = numbersOf(colors.first, colors.second);
    const QString overlay = numbersOf(shown.textColor(), shown.backgroundColor());
    if (model != overlay) {
        return wants(QStringLiteral("%1 in the model and %2 on the overlay").arg(model, overlay));
    }
    return equal(model, 2);
}

QString UnitCheck::freeTextFailure()
{
    const CVideoOverlayText* const box = m_unit.element(ElementParam::NAME_OSD_FREE_TEXT_BOX);
    if (!box) {
        return QStringLiteral("the overlay has no free text box");
    }
    const QString what = word(1);
    if (what == QLatin1String("shown") || what == QLatin1String("hidden")) {
        return equal(box->enabled() && box->visible() ? QStringLiteral("shown") : QStringLiteral("hidden"),
                     1);
    }
    if (what == QLatin1String("timeout")) {
        return equal(QString::number(box->timeout()), 2);
    }
    if (what == QLatin1String("colours")) {
        return equal(numbersOf(box->textColor(), box->backgroundColor()), 2);
    }
    return what == QLatin1String("text") ? equal(box->text(), 2) : notUnderstood();
}

/// A text that a controller wrote: text 3,4 "abc", text 3,4 colours 1,13.
QString UnitCheck::writtenTextFailure()
{
    const std::optional<QPoint> at = pointFrom(word(1));
    if (!at) {
        return notUnderstood();
    }
    const CVideoOverlayText* const text = m_unit.writtenText(at->x(), at->y());
    if (!text) {
        return wants(QStringLiteral("no text there"));
    }
    if (word(2) == QLatin1String("colours")) {
        return equal(numbersOf(text->textColor(), text->backgroundColor()), 3);
    }
    return equal(text->text(), 2);
}

QString UnitCheck::noTextFailure()
{
    const std::optional<QPoint> at = pointFrom(word(2));
    if (!at || m_words.size() != 3) {
        return notUnderstood();
    }
    const CVideoOverlayText* const text = m_unit.writtenText(at->x(), at->y());
    return text ? wants(QStringLiteral("\"%1\"").arg(text->text())) : QString();
}

/// Compares the words from an index on with what was found.
QString UnitCheck::equal(const QString& found, int from) const
{
    if (from >= m_words.size()) {
        return notUnderstood();
    }
    return m_words.mid(from).join(QLatin1Char(' ')) == found ? QString() : wants(found);
}

QString UnitCheck::wants(const QString& found) const
{
    return QStringLiteral("expected \"%1\", found: %2").arg(m_words.join(QLatin1Char(' ')), found);
}

QString UnitCheck::notUnderstood() const
{
    return QStringLiteral("\"%1\" says nothing about a unit").arg(m_words.join(QLatin1Char(' ')));
}

} // namespace Tolvar::Varundo::Tests
