#include <Tolvar/Varundo/Client/PayloadBuilder.h>

#include <QtEndian>

#include <cstring>
#include <initializer_list>

namespace Tolvar::Varundo::Client::PayloadBuilder {

namespace {

QByteArray bytes(std::initializer_list<int> values)
{
    QByteArray result;
    result.reserve(static_cast<int>(values.size()));
    for (const int value : values) {
        result.append(static_cast<char>(value));
    }
    return result;
}

template <class Bits, class Number>
void appendBigEndian(QByteArray& payload, Number number)
{
    static_assert(sizeof(Bits) == sizeof(Number));
    Bits bits = 0;
    std::memcpy(&bits, &number, sizeof bits);
    bits = qToBigEndian(bits);
    payload.append(reinterpret_cast<const char*>(&bits), sizeof bits);
}

} // namespace

QByteArray number(quint8 value)
{
    return bytes({value});
}

QByteArray codec(TextCodec codec)
{
    return number(static_cast<quint8>(codec));
}

QByteArray position(quint8 column, quint8 row)
{
    return bytes({column, row});
}

QByteArray single(float value)
{
    QByteArray payload;
    appendBigEndian<quint32>(payload, value);
    return payload;
}

QByteArray point3D(double x, double y, double z)
{
    QByteArray payload;
    appendBigEndian<quint64>(payload, x);
    appendBigEndian<quint64>(payload, y);
    appendBigEndian<quint64>(payload, z);
    return payload;
}

QByteArray orientation(float first, float second)
{
    return single(first) + single(second);
}

QByteArray date(const QDate& date)
{
    Q_ASSERT(date.isValid() && date.year() >= 0 && date.year() <= 9999);
    return bytes({date.day(), date.month(), date.year() / 100, date.year() % 100});
}

QByteArray time(const QTime& time)
{
    Q_ASSERT(time.isValid());
    return bytes({time.hour(), time.minute(), time.second()});
}

QByteArray videoCounter(quint8 hours, quint8 minutes, quint8 seconds)
{
    return bytes({hours, minutes, seconds});
}

QByteArray colors(quint8 textColor, quint8 backgroundColor)
{
    return bytes({((textColor & 0x0F) << 4) | (backgroundColor & 0x0F)});
}

QByteArray numberedColors(quint8 number, quint8 textColor, quint8 backgroundColor)
{
    return bytes({number}) + colors(textColor, backgroundColor);
}

QByteArray packedNumber(int number)
{
    Q_ASSERT(number >= 0 && number <= MaxPackedNumber);
    const int width = number > 99 ? 4 : 2;
    return QByteArray::fromHex(QByteArray::number(number).rightJustified(width, '0'));
}

QByteArray lineText(quint8 line, const QByteArray& encodedText)
{
    return bytes({line}) + encodedText;
}

std::optional<QByteArray> freeText(quint8 durationSeconds, const QStringList& lines, TextCodec codec,
                                   QString* error)
{
    const auto refuse = [error](const QString& reason) {
        if (error) {
            *error = reason;
        }
        return std::nullopt;
    };
    if (lines.size() > MaxFreeTextLines) {
        return refuse(QStringLiteral("%1 lines given, the unit shows %2 at most")
                          .arg(lines.size())
                          .arg(MaxFreeTextLines));
    }
    QByteArray payload = bytes({0, durationSeconds, 0});
    for (int i = 0; i < lines.size(); ++i) {
        const auto encoded = lines.at(i).isEmpty() ? QByteArray() : encodeText(lines.at(i), codec, error);
        if (!encoded) {
            return std::nullopt;
        }
        if (encoded->contains('\0')) {
            return refuse(QStringLiteral("line %1 holds a zero byte in %2, which ends a line on the wire")
                              .arg(i + 1)
                              .arg(QString(textCodecName(codec))));
        }
        payload.append(i > 0 ? QByteArray(1, '\0') + *encoded : *encoded);
    }
    return payload;
}

} // namespace Tolvar::Varundo::Client::PayloadBuilder
