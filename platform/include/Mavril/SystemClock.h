#ifndef MAVRIL_SYSTEMCLOCK_H
#define MAVRIL_SYSTEMCLOCK_H

#include <VarundoPlatformExport.h>

class QDateTime;
class QTime;

namespace Mavril {

/// The clock that a SystemDateTime sets. The host implements it, owns it and installs it; it is called in the
/// GUI thread. A clock that is destroyed while it is installed takes itself out.
class VARUNDO_PLATFORM_EXPORT SystemClock
{
public:
    virtual ~SystemClock();
    virtual void setDateTime(const QDateTime& dateTime) = 0; ///< may be invalid: then the clock stays
    virtual void setTime(const QTime& time) = 0;             ///< may be invalid: then the clock stays
};

} // namespace Mavril

#endif
