#ifndef TOLVAR_VARUNDO_TEST_WIREOUTCOME_H
#define TOLVAR_VARUNDO_TEST_WIREOUTCOME_H

#include <Tolvar/Varundo/CommandMessage.h>

#include <QByteArray>
#include <QString>

namespace Tolvar::Varundo::Test {

/// One thing that a decoder has told: an accepted record, a rejection, a typed byte, a byte thrown away.
struct WireOutcome
{
    enum class Kind : quint8 { Accepted, Rejected, Printable, Discarded };

    Kind kind = Kind::Rejected;
    quint8 byte = 0;       // of Printable and Discarded
    CommandMessage record; // of Accepted

    friend bool operator==(const WireOutcome& a, const WireOutcome& b)
    {
        return a.kind == b.kind && a.byte == b.byte && a.record.cmdId == b.record.cmdId &&
               a.record.grpId == b.record.grpId && a.record.length == b.record.length &&
               a.record.data == b.record.data;
    }
    friend bool operator!=(const WireOutcome& a, const WireOutcome& b) { return !(a == b); }
};

/// A record as a test's rows write it, "5/1 2:4142": command/group length:payload; numbers decimal, bytes
/// hex.
inline QString describe(const CommandMessage& record)
{
    return QStringLiteral("%1/%2 %3:%4")
        .arg(record.cmdId)
        .arg(record.grpId)
        .arg(record.length)
        .arg(QString::fromLatin1(record.data.toHex()));
}

/// "ACK 5/1 2:4142", "NACK", "char 41" or "drop 0d".
inline QString describe(const WireOutcome& outcome)
{
    const QString byte = QStringLiteral("%1").arg(outcome.byte, 2, 16, QLatin1Char('0'));
    switch (outcome.kind) {
    case WireOutcome::Kind::Accepted:
        return QStringLiteral("ACK ") + describe(outcome.record);
    case WireOutcome::Kind::Rejected:
        return QStringLiteral("NACK");
    case WireOutcome::Kind::Printable:
        return QStringLiteral("char ") + byte;
    case WireOutcome::Kind::Discarded:
        return QStringLiteral("drop ") + byte;
    }
    return QStringLiteral("?");
}

} // namespace Tolvar::Varundo::Test

#endif
