#include "RepeatedField.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>
#include <QVector>

namespace Mavril::VideoOverlay {

namespace {

/// Behind the closing quotation mark.
int endOfString(const QByteArray& json, int begin)
{
    int i = begin + 1;
    while (i < json.size() && json.at(i) != '"') {
        i += json.at(i) == '\\' ? 2 : 1;
    }
    return i + 1;
}

bool isFollowedByColon(const QByteArray& json, int i)
{
    while (i < json.size() && QByteArray::fromRawData(" \t\r\n", 4).contains(json.at(i))) {
        ++i;
    }
    return i < json.size() && json.at(i) == ':';
}

/// Two spellings of one name, with and without escapes, are the same name.
QString decoded(const QByteArray& string)
{
    if (!string.contains('\\')) {
        return QString::fromUtf8(string.mid(1, string.size() - 2));
    }
    return QJsonDocument::fromJson('[' + string + ']').array().at(0).toString();
}

} // namespace

std::optional<RepeatedField> RepeatedField::find(const QByteArray& json)
{
    QVector<QSet<QString>> openObjects; // the names that each one has so far
    for (int i = 0; i < json.size(); ++i) {
        const char c = json.at(i);
        if (c == '{') {
            openObjects.append(QSet<QString>());
        } else if (c == '}' && !openObjects.isEmpty()) {
            openObjects.removeLast();
        } else if (c == '"') {
            const int end = endOfString(json, i);
            if (!openObjects.isEmpty() && isFollowedByColon(json, end)) {
                const QString name = decoded(json.mid(i, end - i));
                if (openObjects.last().contains(name)) {
                    return RepeatedField{name, i};
                }
                openObjects.last().insert(name);
            }
            i = end - 1;
        }
    }
    return std::nullopt;
}

} // namespace Mavril::VideoOverlay
