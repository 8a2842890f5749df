#ifndef TOLVAR_VARUNDO_CLIENT_TEXTCODEC_H
#define TOLVAR_VARUNDO_CLIENT_TEXTCODEC_H

#include <Tolvar/Varundo/Client/Export.h>

#include <QByteArray>
#include <QLatin1String>
#include <QString>
#include <QStringView>

#include <optional>

/// Text on the wire. The unit keeps one codec for all text in both directions; a controller asks for it or
/// sets it before the first text. Usable from any thread.
namespace Tolvar::Varundo::Client {

enum class TextCodec : quint8 {
    Latin9 = 0, ///< ISO-8859-15; the unit treats every unknown number like it
    Utf8 = 1,
    Utf16 = 2, ///< with a byte-order mark when it is encoded here or by the unit
};

[[nodiscard]] ZEL_CLIENT_EXPORT TextCodec textCodecFromNumber(quint8 number);
[[nodiscard]] ZEL_CLIENT_EXPORT QLatin1String textCodecName(TextCodec codec);
[[nodiscard]] ZEL_CLIENT_EXPORT std::optional<TextCodec> textCodecFromName(QStringView name);

/// Nothing if the codec lacks a character of the text: the unit would show a substitute. The error then
/// names the first such character.
[[nodiscard]] ZEL_CLIENT_EXPORT std::optional<QByteArray> encodeText(const QString& text, TextCodec codec,
                                                                     QString* error = nullptr);

/// Never fails: what cannot be decoded becomes replacement characters.
[[nodiscard]] ZEL_CLIENT_EXPORT QString decodeText(const QByteArray& bytes, TextCodec codec);

} // namespace Tolvar::Varundo::Client

#endif
