#include "VideoCounter.h"

namespace Tolvar::Varundo::Simulator {

QString VideoCounter::toText() const
{
    return QString::asprintf("%02d:%02d:%02d", hours, minutes, seconds);
}

} // namespace Tolvar::Varundo::Simulator
