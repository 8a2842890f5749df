#ifndef TOLVAR_VARUNDO_SIMULATOR_TEXTGRID_H
#define TOLVAR_VARUNDO_SIMULATOR_TEXTGRID_H

#include <QFont>
#include <QRectF>
#include <QSize>

namespace Tolvar::Varundo::Simulator {

/// The grid that overlay texts stand on: 60 columns and 24 rows over the whole picture, whatever its size. A
/// cell of the usual 720x576 picture is 12 pixels wide and 24 high. A plain value.
class TextGrid
{
public:
    static constexpr int Columns = 60;
    static constexpr int Rows = 24;

    explicit TextGrid(const QSize& picture);

    /// False for what lies beyond the picture; positions on the wire reach up to 255.
    static bool contains(int column, int row);

    QRectF cells(int column, int row, int columns, int rows) const; ///< in pixels
    const QFont& font() const { return m_font; }                    ///< its letters fill one cell each

private:
    qreal m_cellWidth;
    qreal m_cellHeight;
    QFont m_font;
};

} // namespace Tolvar::Varundo::Simulator

#endif
