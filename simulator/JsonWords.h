#ifndef TOLVAR_VARUNDO_SIMULATOR_JSONWORDS_H
#define TOLVAR_VARUNDO_SIMULATOR_JSONWORDS_H

#include <QString>
#include <QStringList>

class QByteArray;
class QJsonObject;
class QJsonValue;

namespace Tolvar::Varundo::Simulator {

/// What messages about JSON that somebody wrote by hand have in common. No state.
class JsonWords
{
public:
    /// A value as a message shows it: numbers and texts themselves, the rest by kind.
    static QString of(const QJsonValue& value);

    static QString expected(const QString& what, const QJsonValue& got);

    /// A field that is not known is most likely a typo. Empty when all are known.
    static QString unknownField(const QJsonObject& object, const QStringList& known);

    /// "LINE:COLUMN" of a byte, both from 1, the column in characters.
    static QString lineAndColumn(const QByteArray& json, int offset);
};

} // namespace Tolvar::Varundo::Simulator

#endif
