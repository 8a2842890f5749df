#include <Mavril/SystemDateTime.h>

#include "PlatformLog.h"

#include <Mavril/SystemClock.h>

#include <QDateTime>
#include <QTime>

namespace Mavril {

namespace {

SystemClock* installedClock = nullptr;

} // namespace

SystemClock::~SystemClock()
{
    if (installedClock == this) {
        installedClock = nullptr;
    }
}

void SystemDateTime::setDateTime(const QDateTime& dateTime)
{
    if (installedClock) {
        installedClock->setDateTime(dateTime);
    } else {
        qCWarning(platformLog) << "no clock is installed; not set to" << dateTime;
    }
}

void SystemDateTime::setTime(const QTime& time)
{
    if (installedClock) {
        installedClock->setTime(time);
    } else {
        qCWarning(platformLog) << "no clock is installed; not set to" << time;
    }
}

void SystemDateTime::install(SystemClock* clock)
{
    installedClock = clock;
}

} // namespace Mavril
