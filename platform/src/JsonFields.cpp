#include "JsonFields.h"

#include <QColor>
#include <QJsonArray>
#include <QJsonDocument>

#include <cmath>
#include <utility>

namespace Mavril::VideoOverlay {

namespace {

constexpr int longestQuotation = 60;

/// As JSON writes it, so that a fault stays one line.
QString quoted(const QString& text)
{
    const QString shown =
        text.size() > longestQuotation ? text.left(longestQuotation) + QStringLiteral("...") : text;
    const QByteArray array = QJsonDocument(QJsonArray{shown}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(array.mid(1, array.size() - 2));
}

/// QColor also takes "#RGB" and wider forms; a profile has one form with transparency and one without.
bool isColor(const QString& text)
{
    const bool isNumber = text.startsWith(QLatin1Char('#'));
    return (!isNumber || text.size() == 7 || text.size() == 9) && QColor::isValidColor(text);
}

} // namespace

QString inWords(const QJsonValue& value)
{
    switch (value.type()) {
    case QJsonValue::Undefined:
        return QStringLiteral("nothing");
    case QJsonValue::Null:
        return QStringLiteral("null");
    case QJsonValue::Bool:
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case QJsonValue::Double:
        return QString::number(value.toDouble(), 'g', 15);
    case QJsonValue::String:
        return quoted(value.toString());
    case QJsonValue::Array:
        return QStringLiteral("an array");
    case QJsonValue::Object:
        return QStringLiteral("an object");
    }
    return {};
}

JsonFields::JsonFields(QJsonObject object, QString path)
    : m_object(std::move(object))
    , m_path(std::move(path))
{}

void JsonFields::allowOnly(const QStringList& fields)
{
    for (auto field = m_object.constBegin(); field != m_object.constEnd(); ++field) {
        if (!fields.contains(field.key())) {
            fail({}, QStringLiteral("unknown field %1; known here are %2")
                         .arg(quoted(field.key()), fields.join(QLatin1String(", "))));
            return;
        }
    }
}

bool JsonFields::has(const QString& field) const
{
    return m_object.contains(field);
}

QJsonValue JsonFields::value(const QString& field) const
{
    return m_object.value(field);
}

void JsonFields::readInteger(const QString& field, int lowest, int highest, int& value)
{
    if (!isToBeRead(field)) {
        return;
    }
    const double number = m_object.value(field).toDouble(std::nan(""));
    if (!(number >= lowest && number <= highest) || number != std::floor(number)) {
        failExpecting(field, QStringLiteral("an integer from %1 to %2").arg(lowest).arg(highest));
        return;
    }
    value = static_cast<int>(number);
}

void JsonFields::readBoolean(const QString& field, bool& value)
{
    if (!isToBeRead(field)) {
        return;
    }
    if (!m_object.value(field).isBool()) {
        failExpecting(field, QStringLiteral("true or false"));
        return;
    }
    value = m_object.value(field).toBool();
}

void JsonFields::readText(const QString& field, QString& value)
{
    if (!isToBeRead(field)) {
        return;
    }
    if (!m_object.value(field).isString()) {
        failExpecting(field, QStringLiteral("a text"));
        return;
    }
    value = m_object.value(field).toString();
}

void JsonFields::readName(const QString& field, QString& value)
{
    value = m_object.value(field).toString();
    if (value.isEmpty()) {
        failExpecting(field, QStringLiteral("a text that is not empty"));
    }
}

void JsonFields::readColor(const QString& field, QColor& value)
{
    if (!isToBeRead(field)) {
        return;
    }
    const QString text = m_object.value(field).toString();
    if (!isColor(text)) {
        failExpecting(field, QStringLiteral("a colour such as \"#AARRGGBB\", \"#RRGGBB\" or \"white\""));
        return;
    }
    value = QColor(text);
}

void JsonFields::fail(const QString& field, const QString& what)
{
    if (isSound()) {
        const QString where = pathOf(field);
        m_fault = where.isEmpty() ? what : where + QLatin1String(": ") + what;
    }
}

void JsonFields::failExpecting(const QString& field, const QString& what)
{
    fail(field, QStringLiteral("expected %1, got %2").arg(what, inWords(m_object.value(field))));
}

void JsonFields::takeFaultOf(const JsonFields& inner)
{
    if (isSound()) {
        m_fault = inner.fault();
    }
}

QString JsonFields::pathOf(const QString& field) const
{
    const bool isInside = !m_path.isEmpty() && !field.isEmpty();
    return isInside ? m_path + QLatin1Char('.') + field : m_path + field;
}

} // namespace Mavril::VideoOverlay
