#include "ProfileJson.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace Tolvar::Varundo::Model {

namespace {

QString named(std::uint32_t color)
{
    return QStringLiteral("#%1").arg(color, 8, 16, QLatin1Char('0'));
}

QJsonObject elementJson(const ProfileElement& element)
{
    using Kind = ProfileElement::Kind;
    const QString identity = QString::fromStdString(element.identity);
    QJsonObject json{{QStringLiteral("column"), element.column},
                     {QStringLiteral("row"), element.row},
                     {QStringLiteral("enabled"), element.enabled},
                     {QStringLiteral("visible"), element.visible},
                     {QStringLiteral("type"), element.type}};
    switch (element.kind) {
    case Kind::Bound:
        json.insert(QStringLiteral("kind"), QStringLiteral("bound"));
        json.insert(QStringLiteral("binding"), identity);
        break;
    case Kind::Static:
        json.insert(QStringLiteral("kind"), QStringLiteral("static"));
        json.insert(QStringLiteral("id"), identity.toInt());
        break;
    case Kind::Free:
        json.insert(QStringLiteral("kind"), QStringLiteral("free"));
        if (element.identity != FreeTextBoxCaption) {
            json.insert(QStringLiteral("caption"), identity);
        }
        break;
    case Kind::Plain:
        json.insert(QStringLiteral("kind"), QStringLiteral("plain"));
        json.insert(QStringLiteral("caption"), identity);
        return json;
    }
    json.insert(QStringLiteral("text"), QString::fromStdU16String(element.text));
    json.insert(QStringLiteral("unit"), QString::fromStdU16String(element.unit));
    json.insert(QStringLiteral("timeout"), element.timeout);
    json.insert(QStringLiteral("textColor"), named(element.textColor));
    json.insert(QStringLiteral("backgroundColor"), named(element.backgroundColor));
    return json;
}

} // namespace

QByteArray profileJson(const Profile& profile)
{
    QJsonArray elements;
    for (const ProfileElement& element : profile) {
        elements.append(elementJson(element));
    }
    return QJsonDocument(QJsonObject{{QStringLiteral("elements"), elements}}).toJson();
}

} // namespace Tolvar::Varundo::Model
