#include "SettableClock.h"

#include <ctime>
#include <sys/time.h>

namespace {

bool isSet = false;
qint64 setMSecs = 0;

} // namespace

// Takes the C library's place for everything that is loaded into this program.
extern "C" int gettimeofday(timeval* now, void* /*zone*/) noexcept
{
    timespec actual{};
    if (isSet) {
        actual.tv_sec = static_cast<time_t>(setMSecs / 1000);
        actual.tv_nsec = static_cast<long>(setMSecs % 1000) * 1000000;
    } else {
        clock_gettime(CLOCK_REALTIME, &actual);
    }
    now->tv_sec = actual.tv_sec;
    now->tv_usec = static_cast<suseconds_t>(actual.tv_nsec / 1000);
    return 0;
}

namespace Tolvar::Varundo::Test {

SettableClock::SettableClock(const QDateTime& now)
{
    setMSecs = now.toMSecsSinceEpoch();
    isSet = true;
}

SettableClock::~SettableClock()
{
    isSet = false;
}

} // namespace Tolvar::Varundo::Test
