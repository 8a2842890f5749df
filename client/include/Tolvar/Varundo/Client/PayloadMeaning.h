#ifndef TOLVAR_VARUNDO_CLIENT_PAYLOADMEANING_H
#define TOLVAR_VARUNDO_CLIENT_PAYLOADMEANING_H

#include <Tolvar/Varundo/Client/CommandCatalog.h>
#include <Tolvar/Varundo/Client/Export.h>
#include <Tolvar/Varundo/Client/TextCodec.h>

#include <QByteArray>
#include <QJsonObject>
#include <QString>

/// Payloads in words and as JSON, for logs and tools. Pure functions; usable from any thread.
namespace Tolvar::Varundo::Client {

/// A payload taken apart.
struct PayloadMeaning
{
    bool valid = false; ///< false: the bytes have not the size of the layout; the rest is then empty
    int index = -1;     ///< number of the line or element that the payload names, -1 if it names none
    QJsonObject fields; ///< by name; a number that is not finite is null
    QString text;       ///< the plain values, as they would be typed on the command line
    QString quotedText; ///< the same on one line: texts in quotes, a picture for what ends a line
};

[[nodiscard]] ZEL_CLIENT_EXPORT PayloadMeaning payloadMeaning(PayloadKind kind, const QByteArray& payload,
                                                              TextCodec codec);

/// The fewest digits that still give this very number back.
[[nodiscard]] ZEL_CLIENT_EXPORT QString plainNumber(float value);
[[nodiscard]] ZEL_CLIENT_EXPORT QString plainNumber(double value);

} // namespace Tolvar::Varundo::Client

#endif
