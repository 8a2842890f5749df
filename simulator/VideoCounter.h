#ifndef TOLVAR_VARUNDO_SIMULATOR_VIDEOCOUNTER_H
#define TOLVAR_VARUNDO_SIMULATOR_VIDEOCOUNTER_H

#include <QString>

namespace Tolvar::Varundo::Simulator {

/// The video counter as the picture shows it. It stands still, since nothing is recorded here. A plain value.
struct VideoCounter
{
    int hours = 0; ///< as written, which may be beyond any clock
    int minutes = 0;
    int seconds = 0;

    QString toText() const; ///< hh:mm:ss
};

} // namespace Tolvar::Varundo::Simulator

#endif
