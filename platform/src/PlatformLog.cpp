#include "PlatformLog.h"

Q_LOGGING_CATEGORY(platformLog, "varundo.platform", QtWarningMsg)
