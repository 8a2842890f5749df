#include "SimulatedClock.h"

#include <Mavril/SystemDateTime.h>

namespace Tolvar::Varundo::Simulator {

SimulatedClock::SimulatedClock(const QDateTime& start)
{
    runFrom(start.isValid() ? start : QDateTime::currentDateTime());
    Mavril::SystemDateTime::install(this);
}

SimulatedClock::~SimulatedClock()
{
    Mavril::SystemDateTime::install(nullptr);
}

void SimulatedClock::setDateTime(const QDateTime& dateTime)
{
    m_toldDateTime = dateTime;
    if (dateTime.isValid()) {
        runFrom(dateTime);
    }
}

void SimulatedClock::setTime(const QTime& time)
{
    m_toldTime = time;
    if (time.isValid()) {
        runFrom(QDateTime(now().date(), time));
    }
}

QDateTime SimulatedClock::now() const
{
    return m_start.addMSecs(m_sinceStart.elapsed());
}

void SimulatedClock::runFrom(const QDateTime& start)
{
    m_start = start;
    m_sinceStart.start();
}

} // namespace Tolvar::Varundo::Simulator
