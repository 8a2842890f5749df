#ifndef MAVRIL_VIDEOOVERLAY_IVIDEOOVERLAYELEMENTACCESSOR_H
#define MAVRIL_VIDEOOVERLAY_IVIDEOOVERLAYELEMENTACCESSOR_H

#include <VarundoPlatformExport.h>

#include <QColor>
#include <QPoint>
#include <QString>

namespace Mavril::VideoOverlay {

class CVideoOverlayElement;
class ElementParam;

/// Reaches overlay elements by key. The overlay manager names, registers and unregisters its elements through
/// it; who implements it changes them. GUI thread only.
class VARUNDO_PLATFORM_EXPORT IVideoOverlayElementAccessor
{
public:
    virtual ~IVideoOverlayElementAccessor();

    virtual QString generateElementKey(ElementParam& params) = 0;
    virtual void registerElement(QString key, CVideoOverlayElement* element) = 0;
    virtual void unregisterElement(CVideoOverlayElement* element) = 0;
    virtual void setElementPosition(const QString& key, QPoint position) = 0;
    virtual void setElementVisibility(const QString& key, bool visible) = 0;
    virtual void setElementText(const QString& key, const QString& text) = 0;
    virtual void setElementTextColor(const QString& key, QColor& colour) = 0;
    virtual void setElementBackgroundColor(const QString& key, QColor& colour) = 0;
    virtual void setElementUnit(const QString& key, const QString& unit) = 0;
    virtual void setElementFreeTextEnabled(const QString& key, int timeout, const QString& text) = 0;
};

} // namespace Mavril::VideoOverlay

#endif
