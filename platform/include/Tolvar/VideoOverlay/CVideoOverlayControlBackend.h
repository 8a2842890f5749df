#ifndef TOLVAR_VIDEOOVERLAY_CVIDEOOVERLAYCONTROLBACKEND_H
#define TOLVAR_VIDEOOVERLAY_CVIDEOOVERLAYCONTROLBACKEND_H

#include <VarundoPlatformExport.h>

namespace Tolvar::VideoOverlay {

/// The switch that shows or hides the overlay as a whole. The host implements it.
class VARUNDO_PLATFORM_EXPORT CVideoOverlayControlBackend
{
public:
    virtual ~CVideoOverlayControlBackend();
    virtual void setOverlayVisible(bool show) = 0;
};

} // namespace Tolvar::VideoOverlay

#endif
