// What others implement or only carry about.

#include <Mavril/VideoOverlay/CVideoOverlayProfile.h>
#include <Mavril/VideoOverlay/IVideoOverlayElementAccessor.h>
#include <Tolvar/VideoOverlay/CVideoOverlayControlBackend.h>

#include <utility>

namespace Mavril::VideoOverlay {

IVideoOverlayElementAccessor::~IVideoOverlayElementAccessor() = default;

CVideoOverlayProfile::CVideoOverlayProfile(QString name, QString sourceName, int elementCount)
    : m_name(std::move(name))
    , m_sourceName(std::move(sourceName))
    , m_elementCount(elementCount)
{}

} // namespace Mavril::VideoOverlay

namespace Tolvar::VideoOverlay {

CVideoOverlayControlBackend::~CVideoOverlayControlBackend() = default;

} // namespace Tolvar::VideoOverlay
