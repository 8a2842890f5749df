#include "ProfileReader.h"

#include "JsonFields.h"
#include "RepeatedField.h"

#include <Mavril/VideoOverlay/ElementParam.h>

#include <QFile>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>
#include <QStringList>

#include <utility>

namespace Mavril::VideoOverlay {

namespace {

constexpr int lastCell = 255; // the protocol's positions are bytes
constexpr int lastType = 255;
constexpr int lastStaticId = 1'000'000;
constexpr int longestTimeout = 24 * 60 * 60;
constexpr int largestFont = 500;
constexpr int longestSide = 10'000;

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

void readFont(JsonFields& outer, ElementDescription& element)
{
    const QString font = QStringLiteral("font");
    if (!outer.has(font)) {
        return;
    }
    if (!outer.value(font).isObject()) {
        outer.failExpecting(font, QStringLiteral("an object with \"family\" and \"size\""));
        return;
    }
    JsonFields fields(outer.value(font).toObject(), outer.pathOf(font));
    fields.allowOnly({QStringLiteral("family"), QStringLiteral("size")});
    if (fields.has(QStringLiteral("family"))) {
        fields.readName(QStringLiteral("family"), element.fontFamily);
    }
    fields.readInteger(QStringLiteral("size"), 1, largestFont, element.fontSize);
    outer.takeFaultOf(fields);
}

void readBinding(JsonFields& fields, ElementDescription& element)
{
    const QString field = QStringLiteral("binding");
    element.binding = fields.value(field).toString();
    if (!bindings().contains(element.binding)) {
        fields.failExpecting(field, QStringLiteral("one of ") + bindings().join(QLatin1String(", ")));
    }
}

void readStaticId(JsonFields& fields, ElementDescription& element)
{
    const QString field = QStringLiteral("id");
    fields.readInteger(field, 1, lastStaticId, element.staticId);
    if (!fields.has(field)) {
        fields.failExpecting(field, QStringLiteral("an integer from 1 to %1").arg(lastStaticId));
    }
}

/// The free text box of the protocol, unless the caption says otherwise.
void readFreeCaption(JsonFields& fields, ElementDescription& element)
{
    element.caption = ElementParam::NAME_OSD_FREE_TEXT_BOX;
    if (fields.has(QStringLiteral("caption"))) {
        fields.readName(QStringLiteral("caption"), element.caption);
    }
}

void readPlainCaption(JsonFields& fields, ElementDescription& element)
{
    fields.readName(QStringLiteral("caption"), element.caption);
}

struct Kind
{
    QLatin1String name;
    QLatin1String identity; // the field that identifies an element of this kind, and no other
    void (*readIdentity)(JsonFields& fields, ElementDescription& element);
    bool isText;
};

const Kind kinds[] = {
    {QLatin1String("bound"), QLatin1String("binding"), readBinding, true},
    {QLatin1String("static"), QLatin1String("id"), readStaticId, true},
    {QLatin1String("free"), QLatin1String("caption"), readFreeCaption, true},
    {QLatin1String("plain"), QLatin1String("caption"), readPlainCaption, false},
};

/// Null, and a fault, if there is no such kind.
const Kind* readKind(JsonFields& fields)
{
    const QString field = QStringLiteral("kind");
    const QString name = fields.value(field).toString();
    for (const Kind& kind : kinds) {
        if (name == kind.name) {
            return &kind;
        }
    }
    fields.failExpecting(field, QStringLiteral("\"bound\", \"static\", \"free\" or \"plain\""));
    return nullptr;
}

QStringList fieldsOf(const Kind& kind)
{
    static const QStringList common{QStringLiteral("row"), QStringLiteral("column"), QStringLiteral("type"),
                                    QStringLiteral("enabled"), QStringLiteral("visible")};
    static const QStringList text{QStringLiteral("text"),
                                  QStringLiteral("unit"),
                                  QStringLiteral("timeout"),
                                  QStringLiteral("textColor"),
                                  QStringLiteral("backgroundColor"),
                                  QStringLiteral("font")};
    static const QStringList plain{QStringLiteral("width"), QStringLiteral("height")};
    return QStringList{QStringLiteral("kind"), QString(kind.identity)} + common +
           (kind.isText ? text : plain);
}

void readElement(JsonFields& fields, ElementDescription& element)
{
    const Kind* const kind = readKind(fields);
    if (!kind) {
        return;
    }
    element.isText = kind->isText;
    fields.allowOnly(fieldsOf(*kind));
    kind->readIdentity(fields, element);
    fields.readInteger(QStringLiteral("row"), 0, lastCell, element.row);
    fields.readInteger(QStringLiteral("column"), 0, lastCell, element.column);
    fields.readInteger(QStringLiteral("type"), 0, lastType, element.type);
    fields.readBoolean(QStringLiteral("enabled"), element.enabled);
    fields.readBoolean(QStringLiteral("visible"), element.visible);
    fields.readText(QStringLiteral("text"), element.text);
    fields.readText(QStringLiteral("unit"), element.unit);
    fields.readInteger(QStringLiteral("timeout"), 0, longestTimeout, element.timeout);
    fields.readColor(QStringLiteral("textColor"), element.textColor);
    fields.readColor(QStringLiteral("backgroundColor"), element.backgroundColor);
    fields.readInteger(QStringLiteral("width"), 0, longestSide, element.width);
    fields.readInteger(QStringLiteral("height"), 0, longestSide, element.height);
    readFont(fields, element);
}

QString elementPath(int index)
{
    return QStringLiteral("elements[%1]").arg(index);
}

/// "LINE:COLUMN", both from 1, the column in characters.
QString inLines(const QByteArray& json, int offset)
{
    const QByteArray before = json.left(offset);
    const QByteArray line = before.mid(before.lastIndexOf('\n') + 1);
    return QStringLiteral("%1:%2").arg(before.count('\n') + 1).arg(QString::fromUtf8(line).size() + 1);
}

} // namespace

ProfileReader::ProfileReader(QString sourceName)
    : m_sourceName(std::move(sourceName))
{}

std::optional<ProfileDescription> ProfileReader::readFile(const QString& file)
{
    QFile json(file);
    if (!json.open(QIODevice::ReadOnly)) {
        return fail(QStringLiteral(": cannot be read: ") + json.errorString());
    }
    const QByteArray content = json.read(MaxBytes + 1);
    if (json.error() != QFile::NoError) {
        return fail(QStringLiteral(": cannot be read: ") + json.errorString());
    }
    return read(content);
}

std::optional<ProfileDescription> ProfileReader::read(const QByteArray& json)
{
    if (json.size() > MaxBytes) {
        return fail(QStringLiteral(": larger than %1 bytes").arg(MaxBytes));
    }
    const std::optional<QJsonObject> root = parse(json);
    return root ? readRoot(*root) : std::nullopt;
}

std::optional<QJsonObject> ProfileReader::parse(const QByteArray& json)
{
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(json, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        // The offset is that of the first byte that was not looked at.
        return fail(QStringLiteral(":%1: %2").arg(inLines(json, qMax(parseError.offset - 1, 0)),
                                                  parseError.errorString()));
    }
    if (const auto repeated = RepeatedField::find(json)) {
        return fail(QStringLiteral(":%1: the field \"%2\" is there twice")
                        .arg(inLines(json, repeated->offset), repeated->name));
    }
    if (!document.isObject()) {
        return fail(QStringLiteral(": expected an object with \"elements\", got an array"));
    }
    return document.object();
}

std::optional<ProfileDescription> ProfileReader::readRoot(const QJsonObject& root)
{
    const QString elementsField = QStringLiteral("elements");
    ProfileDescription profile;
    JsonFields fields(root, QString());
    fields.allowOnly({QStringLiteral("name"), elementsField});
    fields.readText(QStringLiteral("name"), profile.name);
    const QJsonArray elements = fields.value(elementsField).toArray();
    if (!fields.value(elementsField).isArray()) {
        fields.failExpecting(elementsField, QStringLiteral("an array"));
    } else if (elements.size() > MaxElements) {
        fields.fail(
            elementsField,
            QStringLiteral("expected %1 elements at most, got %2").arg(MaxElements).arg(elements.size()));
    }
    if (!fields.isSound()) {
        return fail(QStringLiteral(": ") + fields.fault());
    }
    if (!readElements(elements, profile) || !checkDistinct(profile.elements)) {
        return std::nullopt;
    }
    return profile;
}

bool ProfileReader::readElements(const QJsonArray& elements, ProfileDescription& profile)
{
    profile.elements.resize(elements.size());
    for (int i = 0; i < elements.size(); ++i) {
        const QJsonValue value = elements.at(i);
        JsonFields fields(value.toObject(), elementPath(i));
        if (!value.isObject()) {
            fields.fail({}, QStringLiteral("expected an object, got ") + inWords(value));
        } else {
            readElement(fields, profile.elements[i]);
        }
        if (!fields.isSound()) {
            fail(QStringLiteral(": ") + fields.fault());
            return false;
        }
    }
    return true;
}

/// Two elements under one key could not be told apart.
bool ProfileReader::checkDistinct(const QVector<ElementDescription>& elements)
{
    QHash<QString, int> keys;
    for (int i = 0; i < elements.size(); ++i) {
        const QString key = elements.at(i).key();
        const auto first = keys.constFind(key);
        if (first != keys.constEnd()) {
            fail(QStringLiteral(": %1: \"%2\" is %3 already").arg(elementPath(i), key, elementPath(*first)));
            return false;
        }
        keys.insert(key, i);
    }
    return true;
}

std::nullopt_t ProfileReader::fail(const QString& what)
{
    m_error = m_sourceName + what;
    return std::nullopt;
}

} // namespace Mavril::VideoOverlay
