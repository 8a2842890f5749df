#ifndef PLATFORM_PROFILEREADER_H
#define PLATFORM_PROFILEREADER_H

#include <QByteArray>
#include <QColor>
#include <QString>
#include <QVector>

#include <optional>

class QJsonObject;
class QJsonValue;

namespace Mavril::VideoOverlay {

/// What a profile says of one element; read, checked, and not yet made.
struct ElementDescription
{
    QString binding;  // an ElementParam element name; empty unless the element is bound
    int staticId = 0; // 0 unless the element is a static text
    QString caption;
    int row = 0;
    int column = 0;
    int type = 0;
    bool enabled = true;
    bool visible = true;
    QString text;
    QString unit;
    int timeout = 0;
    QColor textColor;
    QColor backgroundColor;
};

struct ProfileDescription
{
    QString name;
    QVector<ElementDescription> elements;
};

/// Reads a profile, whole or not at all. Errors say what is wrong and where: `file: elements[3].row: ...`.
class ProfileReader
{
public:
    static constexpr int MaxBytes = 32 * 1024 * 1024;

    explicit ProfileReader(QString sourceName);

    std::optional<ProfileDescription> readFile(const QString& file);
    std::optional<ProfileDescription> read(const QByteArray& json);
    QString error() const { return m_error; }

private:
    bool readElement(const QJsonObject& object, ElementDescription& element);
    bool readKind(const QJsonObject& object, ElementDescription& element);
    bool readIdentity(const QString& kind, const QJsonObject& object, ElementDescription& element);
    bool readInteger(const QJsonObject& object, const QString& field, int lowest, int highest, int& value);
    bool readBoolean(const QJsonObject& object, const QString& field, bool& value);
    bool readText(const QJsonObject& object, const QString& field, QString& value);
    bool readColor(const QJsonObject& object, const QString& field, QColor& value);
    bool checkFields(const QJsonObject& object, const QVector<QString>& known);
    bool checkDistinct(const QVector<ElementDescription>& elements);
    bool fail(const QString& field, const QString& what);

    QString m_sourceName;
    QString m_where; // the object being read, for messages: empty, or "elements[3]"
    QString m_error;
};

} // namespace Mavril::VideoOverlay

#endif
