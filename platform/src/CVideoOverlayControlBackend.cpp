#include <Tolvar/VideoOverlay/CVideoOverlayControlBackend.h>

namespace Tolvar::VideoOverlay {

CVideoOverlayControlBackend::~CVideoOverlayControlBackend() = default;

} // namespace Tolvar::VideoOverlay
