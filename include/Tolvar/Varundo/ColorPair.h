#ifndef TOLVAR_VARUNDO_COLORPAIR_H
#define TOLVAR_VARUNDO_COLORPAIR_H

#include <QColor>
#include <QPair>

namespace Tolvar::Varundo {

/// The colours of an on-screen element: first the text colour, then the background colour.
using ColorPair = QPair<QColor, QColor>;

} // namespace Tolvar::Varundo

#endif
