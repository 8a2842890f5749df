#ifndef TOLVAR_VARUNDO_SIMULATOR_SURFACENOISE_H
#define TOLVAR_VARUNDO_SIMULATOR_SURFACENOISE_H

#include <QtGlobal>

namespace Tolvar::Varundo::Simulator {

/// The irregularity of old concrete: random, but the same at the same place at all times. No state.
class SurfaceNoise
{
public:
    /// 0 to 1, independent from one lattice point to the next.
    static float atPoint(int x, int y);

    /// 0 to 1, smooth in between. x goes from 0 to the period, where it closes, as around a pipe.
    static float smooth(float x, float y, int period);

    /// 0 to 1: several sizes of the smooth one, from patches to grains.
    static float rough(float x, float y, int period);
};

} // namespace Tolvar::Varundo::Simulator

#endif
