#ifndef CAPPLICATIONSETTINGS_H
#define CAPPLICATIONSETTINGS_H

#include <VarundoPlatformExport.h>

#include <QJsonObject>
#include <QString>

#include <optional>

/// The host's settings: one persistent text a key. GUI thread only.
///
/// They stand in one JSON file, which is read when it is first needed and written as a whole. The process is
/// its only writer: what somebody else writes meanwhile is overwritten, though never mixed.
class VARUNDO_PLATFORM_EXPORT CApplicationSettings
{
public:
    static CApplicationSettings* instance();

    /// The default also stands for a value that is no text; such a value stays in the file until it is set.
    QString getCustomSetting(const QString& key, const QString& defaultValue) const;
    /// On disk when it returns, never half written: whoever reads finds the old file or the new one. If it
    /// cannot be written, that is logged, and the value holds until the process ends or the next change
    /// manages to write it too.
    void setCustomSetting(const QString& key, const QString& value);
    /// Changes over to another file, and reads it. An empty name stands for the default, settings.json in
    /// the application's own configuration directory.
    ///
    /// A file that cannot be understood is renamed to NAME.broken and logged, and the settings start empty.
    void setFileName(const QString& file);

private:
    CApplicationSettings() = default;

    QJsonObject& values() const;
    QString fileName() const;
    QJsonObject load() const;
    void save() const;

    QString m_fileName; // empty: the default
    mutable std::optional<QJsonObject> m_values;
};

#endif
