#ifndef PLATFORM_JSONFIELDS_H
#define PLATFORM_JSONFIELDS_H

#include <QJsonObject>
#include <QString>
#include <QStringList>

class QColor;

namespace Mavril::VideoOverlay {

/// Reads the fields of one JSON object and checks them. A field that is left out leaves its value as it was.
///
/// The first fault stays, and everything after it does nothing: a caller reads all fields and asks once.
class JsonFields
{
public:
    /// The path says where the object is, in messages: empty for the document's own.
    JsonFields(QJsonObject object, QString path);

    /// Any other field is a fault: it is most likely a typo.
    void allowOnly(const QStringList& fields);
    [[nodiscard]] bool has(const QString& field) const;
    [[nodiscard]] QJsonValue value(const QString& field) const;

    void readInteger(const QString& field, int lowest, int highest, int& value);
    void readBoolean(const QString& field, bool& value);
    void readText(const QString& field, QString& value);
    /// A text that is there and not empty.
    void readName(const QString& field, QString& value);
    void readColor(const QString& field, QColor& value);

    /// A fault of one field, or with an empty name of the object itself.
    void fail(const QString& field, const QString& what);
    void failExpecting(const QString& field, const QString& what);
    void takeFaultOf(const JsonFields& inner);
    [[nodiscard]] bool isSound() const { return m_fault.isEmpty(); }
    [[nodiscard]] QString fault() const { return m_fault; } ///< with its place in front
    [[nodiscard]] QString pathOf(const QString& field) const;

private:
    [[nodiscard]] bool isToBeRead(const QString& field) const { return isSound() && has(field); }

    QJsonObject m_object;
    QString m_path;
    QString m_fault;
};

/// A JSON value as a message shows it.
QString inWords(const QJsonValue& value);

} // namespace Mavril::VideoOverlay

#endif
