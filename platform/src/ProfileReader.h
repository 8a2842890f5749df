#ifndef PLATFORM_PROFILEREADER_H
#define PLATFORM_PROFILEREADER_H

#include "ElementDescription.h"

#include <QByteArray>
#include <QString>
#include <QVector>

#include <optional>

class QJsonArray;
class QJsonObject;

namespace Mavril::VideoOverlay {

struct ProfileDescription
{
    QString name;
    QVector<ElementDescription> elements;
};

/// Reads a profile, whole or not at all; docs/profile-format.md tells what may stand in it. Errors say what
/// is wrong and where: `file: elements[3].row: ...`.
class ProfileReader
{
public:
    static constexpr int MaxBytes = 32 * 1024 * 1024;
    static constexpr int MaxElements = 100'000;

    explicit ProfileReader(QString sourceName);

    std::optional<ProfileDescription> readFile(const QString& file);
    std::optional<ProfileDescription> read(const QByteArray& json);
    QString error() const { return m_error; }

private:
    std::optional<QJsonObject> parse(const QByteArray& json);
    std::optional<ProfileDescription> readRoot(const QJsonObject& root);
    bool readElements(const QJsonArray& elements, ProfileDescription& profile);
    bool checkDistinct(const QVector<ElementDescription>& elements);
    std::nullopt_t fail(const QString& what);

    QString m_sourceName;
    QString m_error;
};

} // namespace Mavril::VideoOverlay

#endif
