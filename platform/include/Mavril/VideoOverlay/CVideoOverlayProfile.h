#ifndef MAVRIL_VIDEOOVERLAY_CVIDEOOVERLAYPROFILE_H
#define MAVRIL_VIDEOOVERLAY_CVIDEOOVERLAYPROFILE_H

#include <VarundoPlatformExport.h>

#include <QString>

namespace Mavril::VideoOverlay {

/// A loaded set of elements. Owned by the overlay manager, until it loads the next one.
class VARUNDO_PLATFORM_EXPORT CVideoOverlayProfile
{
public:
    CVideoOverlayProfile(QString name, QString sourceName);

    QString name() const { return m_name; }             ///< as the profile calls itself; may be empty
    QString sourceName() const { return m_sourceName; } ///< where it was loaded from

private:
    QString m_name;
    QString m_sourceName;
};

} // namespace Mavril::VideoOverlay

#endif
