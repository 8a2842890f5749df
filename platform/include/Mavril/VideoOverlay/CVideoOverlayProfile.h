#ifndef MAVRIL_VIDEOOVERLAY_CVIDEOOVERLAYPROFILE_H
#define MAVRIL_VIDEOOVERLAY_CVIDEOOVERLAYPROFILE_H

#include <VarundoPlatformExport.h>

#include <QString>

namespace Mavril::VideoOverlay {

/// What was loaded: the profile that the manager's elements come from. Owned by the overlay manager, until it
/// loads the next one. GUI thread only.
class VARUNDO_PLATFORM_EXPORT CVideoOverlayProfile
{
public:
    CVideoOverlayProfile(QString name, QString sourceName, int elementCount = 0);

    QString name() const { return m_name; }             ///< as the profile calls itself; may be empty
    QString sourceName() const { return m_sourceName; } ///< where it was loaded from
    int elementCount() const { return m_elementCount; } ///< when it was loaded

private:
    QString m_name;
    QString m_sourceName;
    int m_elementCount;
};

} // namespace Mavril::VideoOverlay

#endif
