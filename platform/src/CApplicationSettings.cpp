#include <CApplicationSettings.h>

#include "PlatformLog.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QStandardPaths>

#include <fcntl.h>
#include <unistd.h>

namespace {

QString defaultFileName()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation) +
           QStringLiteral("/settings.json");
}

/// A renamed file is on disk only when its directory is.
void syncDirectory(const QString& directory)
{
    const int handle = open(QFile::encodeName(directory).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle >= 0) {
        fsync(handle);
        close(handle);
    }
}

} // namespace

CApplicationSettings* CApplicationSettings::instance()
{
    static CApplicationSettings settings;
    return &settings;
}

QString CApplicationSettings::getCustomSetting(const QString& key, const QString& defaultValue) const
{
    return values().value(key, defaultValue);
}

void CApplicationSettings::setCustomSetting(const QString& key, const QString& value)
{
    values().insert(key, value);
    save();
}

void CApplicationSettings::setFileName(const QString& file)
{
    m_fileName = file;
    m_values.reset();
}

/// Read when they are first needed: the default file's name depends on the application's, which is set in
/// main().
QHash<QString, QString>& CApplicationSettings::values() const
{
    if (!m_values) {
        m_values = load();
    }
    return *m_values;
}

QString CApplicationSettings::fileName() const
{
    return m_fileName.isEmpty() ? defaultFileName() : m_fileName;
}

QHash<QString, QString> CApplicationSettings::load() const
{
    QHash<QString, QString> values;
    QFile file(fileName());
    if (!file.exists()) {
        return values;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(platformLog) << "settings" << file.fileName() << "cannot be read:" << file.errorString();
        return values;
    }
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &error);
    if (!document.isObject()) {
        const QString aside = file.fileName() + QStringLiteral(".broken");
        QFile::remove(aside);
        const bool kept = QFile::rename(file.fileName(), aside);
        qCWarning(platformLog) << "settings" << file.fileName() << "are broken:" << error.errorString()
                               << (kept ? "- kept as" : "- cannot be kept as") << aside;
        return values;
    }
    const QJsonObject object = document.object();
    for (auto value = object.begin(); value != object.end(); ++value) {
        values.insert(value.key(), value.value().toString());
    }
    return values;
}

/// Written beside the old file, brought to disk, and renamed over it: whoever reads finds the old or the new.
void CApplicationSettings::save() const
{
    const QString name = fileName();
    const QString directory = QFileInfo(name).absolutePath();
    QJsonObject object;
    const auto& current = values();
    for (auto value = current.begin(); value != current.end(); ++value) {
        object.insert(value.key(), value.value());
    }
    QDir().mkpath(directory);
    QSaveFile file(name);
    if (!file.open(QIODevice::WriteOnly) || file.write(QJsonDocument(object).toJson()) < 0 || !file.flush() ||
        fsync(file.handle()) != 0 || !file.commit()) {
        qCWarning(platformLog) << "settings" << name << "cannot be written:" << file.errorString();
        return;
    }
    syncDirectory(directory);
}
