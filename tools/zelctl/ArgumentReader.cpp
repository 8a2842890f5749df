#include "ArgumentReader.h"

#include <Tolvar/Varundo/Client/ColorTable.h>

#include <array>
#include <cmath>

namespace Tolvar::Varundo::Zelctl {

QString ArgumentReader::word(const QString& name)
{
    if (atEnd()) {
        fail(QStringLiteral("%1 is missing").arg(name));
        return QString();
    }
    return m_arguments.at(m_at++);
}

int ArgumentReader::integer(const QString& name, int smallest, int largest)
{
    const QString text = word(name);
    bool isNumber = false;
    const int value = text.toInt(&isNumber);
    if (!isNumber || value < smallest || value > largest) {
        fail(QStringLiteral("%1 '%2': expected a whole number from %3 to %4")
                 .arg(name, text)
                 .arg(smallest)
                 .arg(largest));
        return smallest;
    }
    return value;
}

float ArgumentReader::single(const QString& name)
{
    const QString text = word(name);
    bool isNumber = false;
    const float value = text.toFloat(&isNumber);
    if (!isNumber) {
        fail(QStringLiteral("%1 '%2': expected a number that fits into a single").arg(name, text));
    }
    return value;
}

double ArgumentReader::real(const QString& name)
{
    const QString text = word(name);
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    if (!isNumber) {
        fail(QStringLiteral("%1 '%2': expected a number").arg(name, text));
    }
    return value;
}

quint8 ArgumentReader::color(const QString& name)
{
    const QString text = word(name);
    const auto number = Client::colorNumber(text);
    if (!number) {
        fail(QStringLiteral("%1 '%2': expected 0 to 15 or one of %3")
                 .arg(name, text, Client::colorNames().join(QStringLiteral(", "))));
    }
    return number.value_or(0);
}

QDate ArgumentReader::date(const QString& name)
{
    const QString text = word(name);
    const QDate date = text == QLatin1String("today") ? QDate::currentDate()
                                                      : QDate::fromString(text, QStringLiteral("yyyy-MM-dd"));
    if (!date.isValid() || date.year() < 0) {
        fail(QStringLiteral("%1 '%2': expected a date such as 2026-03-15, or today").arg(name, text));
        return QDate(2000, 1, 1);
    }
    return date;
}

QTime ArgumentReader::time(const QString& name)
{
    const QString text = word(name);
    const QTime time = text == QLatin1String("now") ? QTime::currentTime()
                                                    : QTime::fromString(text, QStringLiteral("hh:mm:ss"));
    if (!time.isValid()) {
        fail(QStringLiteral("%1 '%2': expected a time such as 09:05:00, or now").arg(name, text));
        return QTime(0, 0);
    }
    return time;
}

QString ArgumentReader::text(const QString& name)
{
    if (atEnd()) {
        fail(QStringLiteral("%1 is missing").arg(name));
    }
    return rest().join(QLatin1Char(' '));
}

QStringList ArgumentReader::rest()
{
    QStringList left = m_arguments.mid(m_at);
    m_at = m_arguments.size();
    return left;
}

void ArgumentReader::fail(const QString& error)
{
    if (m_error.isEmpty()) {
        m_error = error;
    }
}

bool ArgumentReader::finish()
{
    if (!atEnd()) {
        fail(QStringLiteral("'%1' is more than this command takes").arg(peek()));
    }
    return m_error.isEmpty();
}

} // namespace Tolvar::Varundo::Zelctl
