#include <CApplicationSettings.h>

#include "PlatformLog.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QSaveFile>
#include <QStandardPaths>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace {

QString defaultFileName()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation) +
           QStringLiteral("/settings.json");
}

/// What has been renamed or made in a directory is on disk only when the directory is.
bool syncDirectory(const QString& directory)
{
    const int handle = open(QFile::encodeName(directory).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0) {
        return false;
    }
    const bool done = fsync(handle) == 0 || errno == EINVAL; // some file systems have nothing to do here
    close(handle);
    return done;
}

/// The directory, and every one above it that is missing.
bool makeDirectory(const QString& directory)
{
    if (QFileInfo(directory).isDir()) {
        return true;
    }
    const QString parent = QFileInfo(directory).absolutePath();
    return parent != directory && makeDirectory(parent) && QDir().mkdir(directory) && syncDirectory(parent);
}

/// Where a link leads to, so that the link outlives the file being replaced.
QString resolved(const QString& name)
{
    const QFileInfo file(name);
    return file.isSymLink() ? file.symLinkTarget() : file.absoluteFilePath();
}

/// A device must be neither read, which might never end, nor replaced by a file.
bool isSomethingElse(const QString& name)
{
    const QFileInfo file(name);
    return file.exists() && !file.isFile();
}

/// Empty on success, else the reason.
QString write(const QString& name, const QByteArray& content)
{
    if (isSomethingElse(name)) {
        return QStringLiteral("it is not a regular file");
    }
    const QString directory = QFileInfo(name).absolutePath();
    if (!makeDirectory(directory)) {
        return QStringLiteral("the directory %1 cannot be made").arg(directory);
    }
    QSaveFile file(name);
    if (!file.open(QIODevice::WriteOnly)) {
        return file.errorString();
    }
    if (file.write(content) != content.size() || !file.flush() || fsync(file.handle()) != 0) {
        return file.error() == QFile::NoError ? qt_error_string(errno) : file.errorString();
    }
    if (!file.commit()) {
        return file.errorString();
    }
    return syncDirectory(directory)
               ? QString()
               : QStringLiteral("the directory %1 cannot be brought to disk").arg(directory);
}

} // namespace

CApplicationSettings* CApplicationSettings::instance()
{
    static CApplicationSettings settings;
    return &settings;
}

QString CApplicationSettings::getCustomSetting(const QString& key, const QString& defaultValue) const
{
    const QJsonValue value = values().value(key);
    if (!value.isString() && !value.isUndefined()) {
        qCWarning(platformLog) << "setting" << key << "in" << fileName() << "is not a text";
    }
    return value.toString(defaultValue);
}

void CApplicationSettings::setCustomSetting(const QString& key, const QString& value)
{
    values().insert(key, value);
    save();
}

/// Made absolute, so that a change of the working directory does not move the settings.
void CApplicationSettings::setFileName(const QString& file)
{
    m_fileName = file.isEmpty() ? QString() : QFileInfo(file).absoluteFilePath();
    m_values.reset();
}

/// Read when they are first needed: the default file's name depends on the application's, which is set in
/// main().
QJsonObject& CApplicationSettings::values() const
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

QJsonObject CApplicationSettings::load() const
{
    QFile file(resolved(fileName()));
    if (!file.exists()) {
        return {};
    }
    QString reason;
    if (isSomethingElse(file.fileName())) {
        qCWarning(platformLog) << "settings" << fileName() << "cannot be read: it is not a regular file";
        return {};
    }
    if (file.open(QIODevice::ReadOnly)) {
        QJsonParseError parseError;
        const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &parseError);
        if (file.error() == QFile::NoError && document.isObject()) {
            return document.object();
        }
        reason = file.error() != QFile::NoError                 ? file.errorString()
                 : parseError.error != QJsonParseError::NoError ? parseError.errorString()
                                                                : QStringLiteral("not a JSON object");
    } else {
        reason = file.errorString();
    }
    // Kept, since the next change would write over it.
    const QString aside = file.fileName() + QStringLiteral(".broken");
    file.close();
    QFile::remove(aside);
    const bool kept = QFile::rename(file.fileName(), aside);
    qCWarning(platformLog) << "settings" << fileName() << "cannot be used:" << reason
                           << (kept ? "- kept as" : "- cannot be kept as") << aside;
    return {};
}

void CApplicationSettings::save() const
{
    const QString reason = write(resolved(fileName()), QJsonDocument(values()).toJson());
    if (!reason.isEmpty()) {
        qCWarning(platformLog) << "settings" << fileName() << "cannot be written:" << reason;
    }
}
