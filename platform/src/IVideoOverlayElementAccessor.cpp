#include <Mavril/VideoOverlay/IVideoOverlayElementAccessor.h>

namespace Mavril::VideoOverlay {

IVideoOverlayElementAccessor::~IVideoOverlayElementAccessor() = default;

} // namespace Mavril::VideoOverlay
