#ifndef TOLVAR_VARUNDO_ZELCTL_HEXBYTES_H
#define TOLVAR_VARUNDO_ZELCTL_HEXBYTES_H

#include <QByteArray>
#include <QString>

#include <optional>

namespace Tolvar::Varundo::Zelctl {

/// Bytes from pairs of hexadecimal digits, with or without blanks, colons, commas or 0x in front. Nothing,
/// with the reason, if there is anything else, or half a byte.
[[nodiscard]] std::optional<QByteArray> hexBytes(const QString& text, QString* error);

} // namespace Tolvar::Varundo::Zelctl

#endif
