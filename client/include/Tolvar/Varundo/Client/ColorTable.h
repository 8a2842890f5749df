#ifndef TOLVAR_VARUNDO_CLIENT_COLORTABLE_H
#define TOLVAR_VARUNDO_CLIENT_COLORTABLE_H

#include <Tolvar/Varundo/Client/Export.h>

#include <QLatin1String>
#include <QStringList>
#include <QStringView>

#include <optional>

/// The sixteen colours that the unit knows. Constant data; usable from any thread.
namespace Tolvar::Varundo::Client {

struct ColorInfo
{
    quint8 number;
    const char* name;
    quint32 argb; ///< as 0xAARRGGBB
};

/// Only the low four bits of the number are looked at, as the unit does.
[[nodiscard]] ZEL_CLIENT_EXPORT const ColorInfo& colorInfo(quint8 number);
[[nodiscard]] ZEL_CLIENT_EXPORT QLatin1String colorName(quint8 number);

/// A name, in any case, or a number from 0 to 15.
[[nodiscard]] ZEL_CLIENT_EXPORT std::optional<quint8> colorNumber(QStringView nameOrNumber);

[[nodiscard]] ZEL_CLIENT_EXPORT QStringList colorNames();

} // namespace Tolvar::Varundo::Client

#endif
