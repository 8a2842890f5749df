#include <Mavril/SystemClock.h>
#include <Mavril/SystemDateTime.h>

#include <QDateTime>
#include <QDebug>
#include <QTime>

namespace Mavril {

namespace {

SystemClock* theClock = nullptr;

} // namespace

SystemClock::~SystemClock()
{
    if (theClock == this) {
        theClock = nullptr;
    }
}

void SystemDateTime::install(SystemClock* clock)
{
    theClock = clock;
}

void SystemDateTime::setDateTime(const QDateTime& dateTime)
{
    if (theClock) {
        theClock->setDateTime(dateTime);
    } else {
        qWarning() << "this unit's clock cannot be set; asked for" << dateTime;
    }
}

void SystemDateTime::setTime(const QTime& time)
{
    if (theClock) {
        theClock->setTime(time);
    } else {
        qWarning() << "this unit's clock cannot be set; asked for" << time;
    }
}

} // namespace Mavril
