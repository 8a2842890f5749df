#ifndef TOLVAR_VARUNDO_SIMULATOR_CONTROLBACKEND_H
#define TOLVAR_VARUNDO_SIMULATOR_CONTROLBACKEND_H

#include <Tolvar/VideoOverlay/CVideoOverlayControlBackend.h>

namespace Tolvar::Varundo::Simulator {

/// The switch of the overlay as a whole; on at first. GUI thread; owned by the SimulatedUnit.
class ControlBackend final : public Tolvar::VideoOverlay::CVideoOverlayControlBackend
{
public:
    ~ControlBackend() override;

    void setOverlayVisible(bool show) override { m_overlayVisible = show; }
    bool overlayVisible() const { return m_overlayVisible; }

private:
    bool m_overlayVisible = true;
};

} // namespace Tolvar::Varundo::Simulator

#endif
