#ifndef TOLVAR_VARUNDO_COLORNUMBERS_H
#define TOLVAR_VARUNDO_COLORNUMBERS_H

#include <Tolvar/Varundo/Export.h>

#include <QColor>

namespace Tolvar::Varundo {

/// The colour that a number on the wire stands for. Only the low four bits of the number are looked at.
VARUNDO_EXPORT QColor colorFromNumber(quint8 number);

/// The number 0 to 15 that stands for a colour. A colour outside the table, an invalid one included, is
/// answered as 1 (white).
VARUNDO_EXPORT quint8 numberFromColor(const QColor& color);

} // namespace Tolvar::Varundo

#endif
