#ifndef TOLVAR_VARUNDO_TEST_HOOKEDSETTINGS_H
#define TOLVAR_VARUNDO_TEST_HOOKEDSETTINGS_H

#include "HookPoints.h"

namespace Tolvar::Varundo::Test {

/// Makes the settings a hook point too; null ends it.
void hookSettings(HookPoints* points);

} // namespace Tolvar::Varundo::Test

#endif
