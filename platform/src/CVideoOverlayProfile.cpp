#include <Mavril/VideoOverlay/CVideoOverlayProfile.h>

#include <utility>

namespace Mavril::VideoOverlay {

CVideoOverlayProfile::CVideoOverlayProfile(QString name, QString sourceName)
    : m_name(std::move(name))
    , m_sourceName(std::move(sourceName))
{}

} // namespace Mavril::VideoOverlay
