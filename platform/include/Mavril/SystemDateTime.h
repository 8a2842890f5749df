#ifndef MAVRIL_SYSTEMDATETIME_H
#define MAVRIL_SYSTEMDATETIME_H

#include <VarundoPlatformExport.h>

class QDateTime;
class QTime;

namespace Mavril {

class SystemClock;

/// Sets the unit's clock, whichever is installed. Without one a call is logged and dropped. GUI thread only.
class VARUNDO_PLATFORM_EXPORT SystemDateTime
{
public:
    void setDateTime(const QDateTime& dateTime);
    void setTime(const QTime& time);

    /// Not owned. Null takes the installed one out.
    static void install(SystemClock* clock);
};

} // namespace Mavril

#endif
