#ifndef TOLVAR_VARUNDO_CLIENT_PAYLOADBUILDER_H
#define TOLVAR_VARUNDO_CLIENT_PAYLOADBUILDER_H

#include <Tolvar/Varundo/Client/Export.h>
#include <Tolvar/Varundo/Client/TextCodec.h>

#include <QByteArray>
#include <QDate>
#include <QStringList>
#include <QTime>

#include <optional>

/// The payloads that a controller sends, one function per layout. Pure functions; usable from any thread.
/// Arguments are typed so that what does not fit into its byte cannot be said.
namespace Tolvar::Varundo::Client::PayloadBuilder {

constexpr int MaxFreeTextLines = 5; ///< the unit drops what comes after
constexpr int MaxPackedNumber = 9999;

[[nodiscard]] ZEL_CLIENT_EXPORT QByteArray number(quint8 value);
[[nodiscard]] ZEL_CLIENT_EXPORT QByteArray codec(TextCodec codec);
[[nodiscard]] ZEL_CLIENT_EXPORT QByteArray position(quint8 column, quint8 row);
[[nodiscard]] ZEL_CLIENT_EXPORT QByteArray single(float value);
[[nodiscard]] ZEL_CLIENT_EXPORT QByteArray point3D(double x, double y, double z);
[[nodiscard]] ZEL_CLIENT_EXPORT QByteArray orientation(float first, float second);

/// The date must be valid and its year within 0 to 9999, the time valid.
[[nodiscard]] ZEL_CLIENT_EXPORT QByteArray date(const QDate& date);
[[nodiscard]] ZEL_CLIENT_EXPORT QByteArray time(const QTime& time);
[[nodiscard]] ZEL_CLIENT_EXPORT QByteArray videoCounter(quint8 hours, quint8 minutes, quint8 seconds);

/// Always the one-byte form. In the two-byte form the high nibble of the first byte leaks into the text
/// colour; a sender that never uses it cannot be bitten.
[[nodiscard]] ZEL_CLIENT_EXPORT QByteArray colors(quint8 textColor, quint8 backgroundColor);
[[nodiscard]] ZEL_CLIENT_EXPORT QByteArray numberedColors(quint8 number, quint8 textColor,
                                                          quint8 backgroundColor);

/// Line numbers of read commands are sent as decimal digits, two a byte: 12 is the byte 0x12.
/// The number must lie within 0 to MaxPackedNumber.
[[nodiscard]] ZEL_CLIENT_EXPORT QByteArray packedNumber(int number);

/// A line number, then text that encodeText() has encoded.
[[nodiscard]] ZEL_CLIENT_EXPORT QByteArray lineText(quint8 line, const QByteArray& encodedText);

/// Nothing, with the reason, if there are too many lines or if a line holds a zero byte once it is encoded:
/// the unit takes it for the end of the line before it decodes. Under UTF-16 that is nearly all text.
[[nodiscard]] ZEL_CLIENT_EXPORT std::optional<QByteArray>
freeText(quint8 durationSeconds, const QStringList& lines, TextCodec codec, QString* error = nullptr);

} // namespace Tolvar::Varundo::Client::PayloadBuilder

#endif
