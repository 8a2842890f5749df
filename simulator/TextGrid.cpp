#include "TextGrid.h"

#include <QFontMetricsF>

namespace Tolvar::Varundo::Simulator {

namespace {

// The letters of the font in parts of its size; with these it fills a cell without touching the next row.
constexpr qreal letterWidth = 0.602;
constexpr qreal lineHeight = 1.17;

QFont cellFont(qreal cellWidth, qreal cellHeight)
{
    QFont font(QStringLiteral("DejaVu Sans Mono"));
    font.setStyleHint(QFont::Monospace);
    font.setFixedPitch(true);
    font.setBold(true);
    font.setPixelSize(qMax(1, qRound(qMin(cellWidth / letterWidth, cellHeight / lineHeight))));
    // Wider pictures have wider letters; and whatever font the machine has, a letter fills its cell.
    const auto advance = [&font] {
        return QFontMetricsF(font).horizontalAdvance(QLatin1Char('0'));
    };
    font.setStretch(qBound(50, qRound(100.0 * cellWidth / advance()), 400));
    font.setLetterSpacing(QFont::AbsoluteSpacing, cellWidth - advance());
    return font;
}

} // namespace

TextGrid::TextGrid(const QSize& picture)
    : m_cellWidth(static_cast<qreal>(picture.width()) / Columns)
    , m_cellHeight(static_cast<qreal>(picture.height()) / Rows)
    , m_font(cellFont(m_cellWidth, m_cellHeight))
{}

bool TextGrid::contains(int column, int row)
{
    return column >= 0 && column < Columns && row >= 0 && row < Rows;
}

QRectF TextGrid::cells(int column, int row, int columns, int rows) const
{
    return {column * m_cellWidth, row * m_cellHeight, columns * m_cellWidth, rows * m_cellHeight};
}

} // namespace Tolvar::Varundo::Simulator
