#include "HexBytes.h"

#include <QRegularExpression>
#include <QStringList>

namespace Tolvar::Varundo::Zelctl {

std::optional<QByteArray> hexBytes(const QString& text, QString* error)
{
    static const QRegularExpression Separators(QStringLiteral("[\\s:,]+"));
    static const QRegularExpression Pairs(QStringLiteral("^(0[xX])?(([0-9A-Fa-f]{2})+)$"));
    QByteArray bytes;
    for (const QString& word : text.split(Separators, Qt::SkipEmptyParts)) {
        const QRegularExpressionMatch match = Pairs.match(word);
        if (!match.hasMatch()) {
            *error = QStringLiteral("'%1': expected bytes of two hexadecimal digits").arg(word);
            return std::nullopt;
        }
        bytes.append(QByteArray::fromHex(match.captured(2).toLatin1()));
    }
    if (bytes.isEmpty()) {
        *error = QStringLiteral("no bytes given");
        return std::nullopt;
    }
    return bytes;
}

} // namespace Tolvar::Varundo::Zelctl
