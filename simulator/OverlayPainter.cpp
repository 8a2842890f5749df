#include "OverlayPainter.h"

#include "ElementTexts.h"

#include <Mavril/VideoOverlay/CVideoOverlayManager.h>
#include <Mavril/VideoOverlay/CVideoOverlayText.h>

#include <QColor>
#include <QFontMetricsF>
#include <QMutexLocker>
#include <QPainter>

#include <algorithm>

namespace Tolvar::Varundo::Simulator {

namespace {

constexpr qreal usualHeight = 576.0;
constexpr qreal pixelsPerPoint = 96.0 / 72.0;

/// Text may come straight from the wire: what is no character to look at takes no room, and what nobody can
/// see is not laid out.
QString drawnLine(const QStringRef& text, int mostLetters)
{
    QString line;
    for (const QChar letter : text) {
        if (line.size() == mostLetters) {
            break;
        }
        if (letter.category() != QChar::Other_Control) {
            line += letter;
        }
    }
    return line;
}

QStringList drawnLines(const QString& text, int mostLines, int mostLetters)
{
    QStringList lines;
    int from = 0;
    while (from <= text.size() && lines.size() < mostLines) {
        const int end = text.indexOf(QLatin1Char('\n'), from);
        const int to = end < 0 ? text.size() : end;
        lines.append(drawnLine(text.midRef(from, to - from), mostLetters));
        from = to + 1;
    }
    return lines;
}

int longest(const QStringList& lines)
{
    const auto shorter = [](const QString& a, const QString& b) {
        return a.size() < b.size();
    };
    return std::max_element(lines.begin(), lines.end(), shorter)->size();
}

QSizeF sizeOf(const QStringList& lines, const QFontMetricsF& metrics)
{
    qreal width = 0.0;
    for (const QString& line : lines) {
        width = qMax(width, metrics.horizontalAdvance(line));
    }
    return {width, metrics.height() * lines.size()};
}

} // namespace

OverlayPainter::OverlayPainter(const ElementTexts& texts, const QSize& picture)
    : m_texts(texts)
    , m_picture(picture)
    , m_grid(picture)
{}

void OverlayPainter::paint(QPainter& painter, const Mavril::VideoOverlay::CVideoOverlayManager& overlay) const
{
    painter.setRenderHint(QPainter::TextAntialiasing);
    const QMutexLocker locker(overlay.mutex());
    const auto elements = overlay.getElementList();
    for (auto* const element : elements) {
        auto* const text = qobject_cast<Mavril::VideoOverlay::CVideoOverlayText*>(element);
        if (text && text->enabled() && text->visible() && TextGrid::contains(text->column(), text->row())) {
            paintText(painter, *text);
        }
    }
}

void OverlayPainter::paintText(QPainter& painter, Mavril::VideoOverlay::CVideoOverlayText& element) const
{
    const QString text = m_texts.of(element).inWhole();
    const QPointF corner = m_grid.cells(element.column(), element.row(), 1, 1).topLeft();
    const bool isOnGrid = element.font() == QFont();
    const QFont font = isOnGrid ? m_grid.font() : scaled(element.font());
    // A letter of another font is at least a pixel wide and high.
    const QStringList lines =
        isOnGrid ? drawnLines(text, TextGrid::Rows - element.row(), TextGrid::Columns - element.column())
                 : drawnLines(text, m_picture.height(), m_picture.width());
    const int columns = longest(lines);
    if (columns == 0) {
        return;
    }
    const QRectF box = isOnGrid ? m_grid.cells(element.column(), element.row(), columns, lines.size())
                                : QRectF(corner, sizeOf(lines, QFontMetricsF(font)));
    if (element.backgroundColor().isValid()) {
        painter.fillRect(box, element.backgroundColor());
    }
    painter.setFont(font);
    painter.setPen(element.textColor().isValid() ? element.textColor() : QColor(Qt::white));
    paintLines(painter, box, lines);
}

/// The letters' height is centred in each line; the room for accents above it is not needed twice.
void OverlayPainter::paintLines(QPainter& painter, const QRectF& box, const QStringList& lines)
{
    const QFontMetricsF metrics(painter.font());
    const qreal lineHeight = box.height() / lines.size();
    qreal baseline = box.top() + (lineHeight + metrics.ascent() - metrics.descent()) / 2.0;
    for (const QString& line : lines) {
        painter.drawText(QPointF(box.left(), baseline), line);
        baseline += lineHeight;
    }
}

/// A profile's font: its size is meant for the usual picture and follows any other.
QFont OverlayPainter::scaled(const QFont& wanted) const
{
    QFont font = wanted;
    font.setLetterSpacing(QFont::PercentageSpacing, 100.0);
    font.setStretch(QFont::Unstretched);
    if (font.pointSizeF() > 0.0) {
        const qreal linesPerPoint = m_picture.height() / usualHeight * pixelsPerPoint;
        font.setPixelSize(qMax(1, qRound(font.pointSizeF() * linesPerPoint)));
    } else {
        font.setPixelSize(m_grid.font().pixelSize());
    }
    return font;
}

} // namespace Tolvar::Varundo::Simulator
