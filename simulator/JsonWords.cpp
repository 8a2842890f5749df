#include "JsonWords.h"

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>

namespace Tolvar::Varundo::Simulator {

namespace {

constexpr int longestQuotation = 60;

/// As JSON writes it, so that a message stays one line.
QString quoted(const QString& text)
{
    const QString shown =
        text.size() > longestQuotation ? text.left(longestQuotation) + QStringLiteral("...") : text;
    const QByteArray array = QJsonDocument(QJsonArray{shown}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(array.mid(1, array.size() - 2));
}

} // namespace

QString JsonWords::of(const QJsonValue& value)
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

QString JsonWords::expected(const QString& what, const QJsonValue& got)
{
    return QStringLiteral("expected %1, got ").arg(what) + of(got);
}

QString JsonWords::unknownField(const QJsonObject& object, const QStringList& known)
{
    for (auto field = object.constBegin(); field != object.constEnd(); ++field) {
        if (!known.contains(field.key())) {
            return QStringLiteral("unknown field ") + quoted(field.key()) +
                   QStringLiteral("; known here are ") + known.join(QLatin1String(", "));
        }
    }
    return {};
}

QString JsonWords::lineAndColumn(const QByteArray& json, int offset)
{
    const QByteArray before = json.left(offset);
    const QByteArray line = before.mid(before.lastIndexOf('\n') + 1);
    return QStringLiteral("%1:%2").arg(before.count('\n') + 1).arg(QString::fromUtf8(line).size() + 1);
}

} // namespace Tolvar::Varundo::Simulator
