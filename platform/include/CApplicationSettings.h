#ifndef CAPPLICATIONSETTINGS_H
#define CAPPLICATIONSETTINGS_H

#include <VarundoPlatformExport.h>

#include <QHash>
#include <QString>

#include <optional>

/// The host's settings: one persistent text a key. GUI thread only.
class VARUNDO_PLATFORM_EXPORT CApplicationSettings
{
public:
    static CApplicationSettings* instance();

    QString getCustomSetting(const QString& key, const QString& defaultValue) const;
    /// On disk when it returns, never half written. If it cannot be written, that is logged, and the value
    /// holds until the process ends.
    void setCustomSetting(const QString& key, const QString& value);
    /// Changes over to another file, and reads it. The default is the application's own settings file.
    void setFileName(const QString& file);

private:
    CApplicationSettings() = default;

    QHash<QString, QString>& values() const;
    QString fileName() const;
    QHash<QString, QString> load() const;
    void save() const;

    QString m_fileName; // empty: the default
    mutable std::optional<QHash<QString, QString>> m_values;
};

#endif
