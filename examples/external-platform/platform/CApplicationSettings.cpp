#include <CApplicationSettings.h>

#include <QDebug>
#include <QSettings>

/// A QSettings file. QSettings writes it as a whole, and sync() puts it on disk.
CApplicationSettings* CApplicationSettings::instance()
{
    static CApplicationSettings settings;
    return &settings;
}

QString CApplicationSettings::getCustomSetting(const QString& key, const QString& defaultValue) const
{
    return QSettings(m_fileName, QSettings::IniFormat).value(key, defaultValue).toString();
}

void CApplicationSettings::setCustomSetting(const QString& key, const QString& value)
{
    QSettings store(m_fileName, QSettings::IniFormat);
    store.setValue(key, value);
    store.sync();
    if (store.status() != QSettings::NoError) {
        qWarning() << "not kept, since" << m_fileName << "cannot be written:" << key;
    }
}

void CApplicationSettings::setFileName(const QString& file)
{
    m_fileName = file;
}
