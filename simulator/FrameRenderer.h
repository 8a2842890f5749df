#ifndef TOLVAR_VARUNDO_SIMULATOR_FRAMERENDERER_H
#define TOLVAR_VARUNDO_SIMULATOR_FRAMERENDERER_H

#include "OverlayPainter.h"
#include "PipeScene.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QImage>
#include <QSize>

namespace Tolvar::Varundo::Simulator {

class SimulatedUnit;

/// The unit's video output: the camera's picture with the overlay drawn in. GUI thread; must not outlive the
/// unit.
class FrameRenderer
{
public:
    FrameRenderer(const SimulatedUnit& unit, const QSize& size);

    QImage render() const; ///< as it is now
    QByteArray renderPng() const;

private:
    const SimulatedUnit& m_unit;
    PipeScene m_scene;
    OverlayPainter m_overlayPainter;
    QElapsedTimer m_sinceStart;
};

} // namespace Tolvar::Varundo::Simulator

#endif
