#include <Mavril/VideoOverlay/CVideoOverlayProfile.h>

#include <utility>

namespace Mavril::VideoOverlay {

CVideoOverlayProfile::CVideoOverlayProfile(QString name, QString sourceName, int elementCount)
    : m_name(std::move(name))
    , m_sourceName(std::move(sourceName))
    , m_elementCount(elementCount)
{}

} // namespace Mavril::VideoOverlay
