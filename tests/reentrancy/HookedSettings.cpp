#include "HookedSettings.h"

#include <CApplicationSettings.h>

#include <QHash>

// Settings of the host's own, which take the reference implementation's place in this program.

namespace {

Tolvar::Varundo::Test::HookPoints* hookPoints = nullptr;

QHash<QString, QString>& storedTexts()
{
    static QHash<QString, QString> stored;
    return stored;
}

} // namespace

QString CApplicationSettings::getCustomSetting(const QString& key, const QString& defaultValue) const
{
    return storedTexts().value(key, defaultValue);
}

void CApplicationSettings::setCustomSetting(const QString& key, const QString& value)
{
    storedTexts().insert(key, value);
    if (hookPoints) {
        hookPoints->reached("settings.setCustomSetting");
    }
}

namespace Tolvar::Varundo::Test {

void hookSettings(HookPoints* points)
{
    hookPoints = points;
}

} // namespace Tolvar::Varundo::Test
