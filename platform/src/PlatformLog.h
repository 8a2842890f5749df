#ifndef PLATFORM_PLATFORMLOG_H
#define PLATFORM_PLATFORMLOG_H

#include <QLoggingCategory>

Q_DECLARE_LOGGING_CATEGORY(platformLog)

#endif
