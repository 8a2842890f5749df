#ifndef TOLVAR_VARUNDO_TEST_STOREDSETTINGS_H
#define TOLVAR_VARUNDO_TEST_STOREDSETTINGS_H

#include <CApplicationSettings.h>

#include <QString>
#include <QTemporaryDir>

namespace Tolvar::Varundo::Test {

/// The host's settings in a file of the test's own, empty at first.
class StoredSettings
{
public:
    StoredSettings()
    {
        CApplicationSettings::instance()->setFileName(m_dir.filePath(QStringLiteral("settings")));
    }

    void storeInterface(const QString& text)
    {
        CApplicationSettings::instance()->setCustomSetting(key(), text);
    }
    /// "nothing stored" when there is no such setting.
    [[nodiscard]] QString storedInterface() const
    {
        return CApplicationSettings::instance()->getCustomSetting(key(), QStringLiteral("nothing stored"));
    }

private:
    static QString key() { return QStringLiteral("ZEL_INTERFACE"); }

    QTemporaryDir m_dir;
};

} // namespace Tolvar::Varundo::Test

#endif
