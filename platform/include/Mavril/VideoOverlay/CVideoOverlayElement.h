#ifndef MAVRIL_VIDEOOVERLAY_CVIDEOOVERLAYELEMENT_H
#define MAVRIL_VIDEOOVERLAY_CVIDEOOVERLAYELEMENT_H

#include <Mavril/VideoOverlay/ElementParam.h>
#include <VarundoPlatformExport.h>

#include <QObject>
#include <QString>

namespace Mavril::VideoOverlay {

/// Something that stands on the overlay's text grid. Lives in the GUI thread; owned by the overlay manager.
///
/// It is drawn when it is enabled and visible. Enabled is what the protocol switches; visible is the host's.
class VARUNDO_PLATFORM_EXPORT CVideoOverlayElement : public QObject
{
    Q_OBJECT

public:
    explicit CVideoOverlayElement(QObject* parent = nullptr);
    ~CVideoOverlayElement() override;

    virtual int column() const; ///< from 0
    virtual void setColumn(int column);
    virtual int row() const; ///< from 0
    virtual void setRow(int row);
    virtual bool enabled() const;
    virtual void setEnabled(bool enabled);
    virtual bool visible() const;
    virtual void setVisible(bool visible);
    virtual int type() const;
    virtual void setType(int type);
    virtual qreal width() const; ///< pixels; 0 when it was never set
    virtual void setWidth(qreal width);
    virtual qreal height() const; ///< pixels; 0 when it was never set
    virtual void setHeight(qreal height);

    virtual QString caption() const; ///< the value under NAME_COLUMNCAPTION, as text
    virtual ElementParam& getParamObject();

private:
    ElementParam m_params;
    int m_column = 0;
    int m_row = 0;
    int m_type = 0;
    bool m_enabled = false;
    bool m_visible = false;
    qreal m_width = 0.0;
    qreal m_height = 0.0;
};

} // namespace Mavril::VideoOverlay

#endif
