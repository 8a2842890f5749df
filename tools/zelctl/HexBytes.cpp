#include "HexBytes.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>

namespace Tolvar::Varundo::Zelctl {

namespace {

constexpr int LongestQuotation = 60;

/// Not by a regular expression: on a frame of the largest size in one word that one gives up.
bool arePairs(const QByteArray& digits)
{
    return !digits.isEmpty() && digits.size() % 2 == 0 &&
           std::all_of(digits.begin(), digits.end(), [](char digit) {
               return (digit >= '0' && digit <= '9') || (digit >= 'A' && digit <= 'F') ||
                      (digit >= 'a' && digit <= 'f');
           });
}

} // namespace

std::optional<QByteArray> hexBytes(const QString& text, QString* error)
{
    static const QRegularExpression Separators(QStringLiteral("[\\s:,]+"));
    QByteArray bytes;
    for (const QString& word : text.split(Separators, Qt::SkipEmptyParts)) {
        const bool hasPrefix = word.startsWith(QLatin1String("0x"), Qt::CaseInsensitive);
        const QByteArray digits = word.mid(hasPrefix ? 2 : 0).toLatin1();
        if (!arePairs(digits)) {
            const QString shown =
                word.size() > LongestQuotation ? word.left(LongestQuotation) + QStringLiteral("...") : word;
            *error = QStringLiteral("'%1': expected bytes of two hexadecimal digits").arg(shown);
            return std::nullopt;
        }
        bytes.append(QByteArray::fromHex(digits));
    }
    if (bytes.isEmpty()) {
        *error = QStringLiteral("no bytes given");
        return std::nullopt;
    }
    return bytes;
}

} // namespace Tolvar::Varundo::Zelctl
