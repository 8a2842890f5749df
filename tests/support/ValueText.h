#ifndef TOLVAR_VARUNDO_TEST_VALUETEXT_H
#define TOLVAR_VARUNDO_TEST_VALUETEXT_H

#include <Tolvar/Varundo/ColorPair.h>
#include <Tolvar/Varundo/CommandMessage.h>

#include <QColor>
#include <QDate>
#include <QPoint>
#include <QString>
#include <QStringList>
#include <QTime>

#include <cstddef>
#include <cstring>

/// Values as text that is equal exactly when the values are: numbers by their bits, colours by their model
/// and all their components. So a NaN equals itself and 0.0 differs from -0.0.
namespace Tolvar::Varundo::Test {

/// A literal as a QString: the tests compare lists of many of them.
inline QString operator""_s(const char* text, std::size_t size)
{
    return QString::fromUtf8(text, static_cast<int>(size));
}

inline QString asText(int value)
{
    return QString::number(value);
}

inline QString asText(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

inline QString asText(float value)
{
    quint32 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return QStringLiteral("float %1").arg(bits, 8, 16, QLatin1Char('0'));
}

inline QString asText(double value)
{
    quint64 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return QStringLiteral("double %1").arg(bits, 16, 16, QLatin1Char('0'));
}

inline QString asText(const QString& text)
{
    return QLatin1Char('"') + text + QLatin1Char('"');
}

inline QString asText(const QStringList& texts)
{
    return QStringLiteral("[%1: %2]").arg(texts.size()).arg(texts.join(QLatin1Char('|')));
}

inline QString asText(const QPoint& point)
{
    return QStringLiteral("(%1, %2)").arg(point.x()).arg(point.y());
}

inline QString asText(const QColor& color)
{
    if (!color.isValid()) {
        return QStringLiteral("invalid");
    }
    const QRgba64 components = color.rgba64();
    return QStringLiteral("%1:%2").arg(int(color.spec())).arg(quint64(components), 16, 16, QLatin1Char('0'));
}

inline QString asText(const ColorPair& pair)
{
    return QStringLiteral("%1 on %2").arg(asText(pair.first), asText(pair.second));
}

inline QString asText(const QDate& date)
{
    return date.isValid() ? date.toString(Qt::ISODate) : QStringLiteral("no date");
}

inline QString asText(const QTime& time)
{
    return time.isValid() ? time.toString(Qt::ISODateWithMs) : QStringLiteral("no time");
}

inline QString asText(const CommandMessage& message)
{
    return QStringLiteral("cmd %1 grp %2 length %3 data %4")
        .arg(message.cmdId, 2, 16, QLatin1Char('0'))
        .arg(message.grpId)
        .arg(message.length)
        .arg(QString::fromLatin1(message.data.toHex(' ')));
}

} // namespace Tolvar::Varundo::Test

#endif
