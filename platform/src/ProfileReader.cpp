#include "ProfileReader.h"

#include <Mavril/VideoOverlay/ElementParam.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>
#include <QSet>
#include <QStringList>

#include <cmath>

namespace Mavril::VideoOverlay {

namespace {

constexpr int lastCell = 255; // the protocol's positions are bytes

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
        return QLatin1Char('"') + value.toString().left(60) + QLatin1Char('"');
    case QJsonValue::Array:
        return QStringLiteral("an array");
    case QJsonValue::Object:
        return QStringLiteral("an object");
    }
    return {};
}

const QStringList& bindings()
{
    static const QStringList names{
        ElementParam::NAME_SECTION_DISTANCE_COUNTER,
        ElementParam::NAME_SAT_DISTANCE_COUNTER,
        ElementParam::NAME_TOTAL_DISTANCE_COUNTER,
        ElementParam::NAME_DATE,
        ElementParam::NAME_TIME,
        ElementParam::NAME_VIDEO_TIME_COUNTER,
        ElementParam::NAME_CRAWLER_TEMPERATURE,
        ElementParam::NAME_CRAWLER_PRESSURE,
        ElementParam::NAME_CRAWLER_ROLL,
        ElementParam::NAME_CRAWLER_PITCH,
        ElementParam::NAME_CAMERA_TILT,
        ElementParam::NAME_CAMERA_PAN,
        ElementParam::NAME_CAMERA_TEMPERATURE,
        ElementParam::NAME_CAMERA_PRESSURE,
        ElementParam::NAME_OBJECT_TEMPERATURE,
        ElementParam::NAME_SPEED,
    };
    return names;
}

/// QColor also takes "#RGB" and wider forms; a profile has one form with transparency and one without.
QColor colorFromText(const QString& text)
{
    const bool isNumber = text.startsWith(QLatin1Char('#'));
    return isNumber && text.size() != 7 && text.size() != 9 ? QColor() : QColor(text);
}

} // namespace

ProfileReader::ProfileReader(QString sourceName)
    : m_sourceName(std::move(sourceName))
{}

std::optional<ProfileDescription> ProfileReader::readFile(const QString& file)
{
    QFile json(file);
    if (!json.open(QIODevice::ReadOnly)) {
        m_error = QStringLiteral("%1: cannot be read: %2").arg(m_sourceName, json.errorString());
        return std::nullopt;
    }
    return read(json.read(MaxBytes + 1));
}

std::optional<ProfileDescription> ProfileReader::read(const QByteArray& json)
{
    if (json.size() > MaxBytes) {
        m_error = QStringLiteral("%1: larger than %2 bytes").arg(m_sourceName).arg(MaxBytes);
        return std::nullopt;
    }
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(json, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        const QByteArray before = json.left(parseError.offset);
        m_error = QStringLiteral("%1:%2:%3: %4")
                      .arg(m_sourceName)
                      .arg(before.count('\n') + 1)
                      .arg(before.size() - before.lastIndexOf('\n'))
                      .arg(parseError.errorString());
        return std::nullopt;
    }
    if (!document.isObject()) {
        m_error = QStringLiteral("%1: expected an object with \"elements\"").arg(m_sourceName);
        return std::nullopt;
    }

    const QJsonObject root = document.object();
    const QString elementsField = QStringLiteral("elements");
    ProfileDescription profile;
    m_where.clear();
    if (!checkFields(root, {QStringLiteral("name"), elementsField}) ||
        !readText(root, QStringLiteral("name"), profile.name)) {
        return std::nullopt;
    }
    if (!root.value(elementsField).isArray()) {
        fail(elementsField,
             QStringLiteral("expected an array, got %1").arg(inWords(root.value(elementsField))));
        return std::nullopt;
    }
    const QJsonArray elements = root.value(elementsField).toArray();
    profile.elements.resize(elements.size());
    for (int i = 0; i < elements.size(); ++i) {
        m_where = QStringLiteral("elements[%1]").arg(i);
        if (!elements.at(i).isObject()) {
            fail({}, QStringLiteral("expected an object, got %1").arg(inWords(elements.at(i))));
            return std::nullopt;
        }
        if (!readElement(elements.at(i).toObject(), profile.elements[i])) {
            return std::nullopt;
        }
    }
    if (!checkDistinct(profile.elements)) {
        return std::nullopt;
    }
    return profile;
}

bool ProfileReader::readElement(const QJsonObject& object, ElementDescription& element)
{
    return readKind(object, element) &&
           readInteger(object, QStringLiteral("row"), 0, lastCell, element.row) &&
           readInteger(object, QStringLiteral("column"), 0, lastCell, element.column) &&
           readInteger(object, QStringLiteral("type"), 0, lastCell, element.type) &&
           readInteger(object, QStringLiteral("timeout"), 0, 24 * 60 * 60, element.timeout) &&
           readBoolean(object, QStringLiteral("enabled"), element.enabled) &&
           readBoolean(object, QStringLiteral("visible"), element.visible) &&
           readText(object, QStringLiteral("text"), element.text) &&
           readText(object, QStringLiteral("unit"), element.unit) &&
           readColor(object, QStringLiteral("textColor"), element.textColor) &&
           readColor(object, QStringLiteral("backgroundColor"), element.backgroundColor);
}

/// The kind decides what identifies the element, and so which of the identifying fields may be there.
bool ProfileReader::readKind(const QJsonObject& object, ElementDescription& element)
{
    QVector<QString> known{QStringLiteral("kind"),           QStringLiteral("row"),
                           QStringLiteral("column"),         QStringLiteral("type"),
                           QStringLiteral("timeout"),        QStringLiteral("enabled"),
                           QStringLiteral("visible"),        QStringLiteral("text"),
                           QStringLiteral("unit"),           QStringLiteral("textColor"),
                           QStringLiteral("backgroundColor")};
    const QString kind = object.value(QStringLiteral("kind")).toString();
    if (kind == QLatin1String("bound")) {
        known.append(QStringLiteral("binding"));
    } else if (kind == QLatin1String("static")) {
        known.append(QStringLiteral("id"));
    } else if (kind != QLatin1String("free")) {
        return fail(QStringLiteral("kind"),
                    QStringLiteral("expected \"bound\", \"static\" or \"free\", got %1")
                        .arg(inWords(object.value(QStringLiteral("kind")))));
    }
    return checkFields(object, known) && readIdentity(kind, object, element);
}

bool ProfileReader::readIdentity(const QString& kind, const QJsonObject& object, ElementDescription& element)
{
    if (kind == QLatin1String("free")) {
        element.caption = ElementParam::NAME_OSD_FREE_TEXT_BOX;
        return true;
    }
    if (kind == QLatin1String("static")) {
        const QString field = QStringLiteral("id");
        return object.contains(field) ? readInteger(object, field, 1, 1'000'000, element.staticId)
                                      : fail(field, QStringLiteral("a static text needs a number"));
    }
    const QString field = QStringLiteral("binding");
    const QJsonValue binding = object.value(field);
    if (!bindings().contains(binding.toString())) {
        return fail(field, QStringLiteral("expected one of %1; got %2")
                               .arg(bindings().join(QLatin1String(", ")), inWords(binding)));
    }
    element.binding = binding.toString();
    return true;
}

bool ProfileReader::readInteger(const QJsonObject& object, const QString& field, int lowest, int highest,
                                int& value)
{
    if (!object.contains(field)) {
        return true;
    }
    const QJsonValue json = object.value(field);
    const double number = json.toDouble(std::nan(""));
    if (!(number >= lowest && number <= highest) || number != std::floor(number)) {
        return fail(field, QStringLiteral("expected an integer from %1 to %2, got %3")
                               .arg(lowest)
                               .arg(highest)
                               .arg(inWords(json)));
    }
    value = static_cast<int>(number);
    return true;
}

bool ProfileReader::readBoolean(const QJsonObject& object, const QString& field, bool& value)
{
    if (!object.contains(field)) {
        return true;
    }
    const QJsonValue json = object.value(field);
    if (!json.isBool()) {
        return fail(field, QStringLiteral("expected true or false, got %1").arg(inWords(json)));
    }
    value = json.toBool();
    return true;
}

bool ProfileReader::readText(const QJsonObject& object, const QString& field, QString& value)
{
    if (!object.contains(field)) {
        return true;
    }
    const QJsonValue json = object.value(field);
    if (!json.isString()) {
        return fail(field, QStringLiteral("expected a text, got %1").arg(inWords(json)));
    }
    value = json.toString();
    return true;
}

bool ProfileReader::readColor(const QJsonObject& object, const QString& field, QColor& value)
{
    if (!object.contains(field)) {
        return true;
    }
    const QJsonValue json = object.value(field);
    value = colorFromText(json.toString());
    if (!value.isValid()) {
        return fail(
            field, QStringLiteral("expected a colour such as \"#AARRGGBB\", \"#RRGGBB\" or \"white\", got %1")
                       .arg(inWords(json)));
    }
    return true;
}

/// A field that is not known is most likely a typo of one that is.
bool ProfileReader::checkFields(const QJsonObject& object, const QVector<QString>& known)
{
    for (auto field = object.begin(); field != object.end(); ++field) {
        if (!known.contains(field.key())) {
            return fail(field.key(),
                        QStringLiteral("unknown field; known here are %1")
                            .arg(QStringList(known.begin(), known.end()).join(QLatin1String(", "))));
        }
    }
    return true;
}

/// Two elements under one key could not be told apart.
bool ProfileReader::checkDistinct(const QVector<ElementDescription>& elements)
{
    QSet<QString> keys;
    for (int i = 0; i < elements.size(); ++i) {
        const ElementDescription& element = elements.at(i);
        const QString key = !element.binding.isEmpty() ? element.binding
                            : element.staticId != 0    ? QString::number(element.staticId)
                                                       : element.caption;
        if (keys.contains(key)) {
            m_where = QStringLiteral("elements[%1]").arg(i);
            return fail({}, QStringLiteral("\"%1\" is there twice").arg(key));
        }
        keys.insert(key);
    }
    return true;
}

bool ProfileReader::fail(const QString& field, const QString& what)
{
    const QString separator = m_where.isEmpty() || field.isEmpty() ? QString() : QStringLiteral(".");
    m_error = QStringLiteral("%1: %2: %3").arg(m_sourceName, m_where + separator + field, what);
    return false;
}

} // namespace Mavril::VideoOverlay
