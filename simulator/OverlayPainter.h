#ifndef TOLVAR_VARUNDO_SIMULATOR_OVERLAYPAINTER_H
#define TOLVAR_VARUNDO_SIMULATOR_OVERLAYPAINTER_H

#include "TextGrid.h"

#include <QFont>
#include <QRectF>
#include <QSize>
#include <QStringList>

class QPainter;

namespace Mavril::VideoOverlay {
class CVideoOverlayManager;
class CVideoOverlayText;
} // namespace Mavril::VideoOverlay

namespace Tolvar::Varundo::Simulator {

class ElementTexts;

/// Draws the overlay's texts: for each one that is enabled and visible a box in its background colour, and
/// on it the text, its unit and its line feeds. A text that shows nothing has no box. What reaches beyond the
/// picture is cut off. Colours that were never set are white on nothing. A text is drawn in the grid's font,
/// a letter a cell, unless it has a font of its own; that one starts at its cell and takes the room it needs.
///
/// GUI thread; owned by the FrameRenderer.
class OverlayPainter
{
public:
    OverlayPainter(const ElementTexts& texts, const QSize& picture);

    /// Draws the manager's elements in list order, later ones over earlier ones.
    void paint(QPainter& painter, const Mavril::VideoOverlay::CVideoOverlayManager& overlay) const;

private:
    void paintText(QPainter& painter, Mavril::VideoOverlay::CVideoOverlayText& element) const;
    static void paintLines(QPainter& painter, const QRectF& box, const QStringList& lines);
    QFont scaled(const QFont& wanted) const;

    const ElementTexts& m_texts;
    QSize m_picture;
    TextGrid m_grid;
};

} // namespace Tolvar::Varundo::Simulator

#endif
