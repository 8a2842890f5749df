#ifndef MAVRIL_VIDEOOVERLAY_CVIDEOOVERLAYTEXT_H
#define MAVRIL_VIDEOOVERLAY_CVIDEOOVERLAYTEXT_H

#include <Mavril/VideoOverlay/CVideoOverlayElement.h>

#include <QColor>
#include <QFont>
#include <QString>

class QTimer;

namespace Mavril::VideoOverlay {

/// A text on the overlay. With a time-out it hides itself (visible becomes false) so many seconds after it
/// was shown, or after its text or time-out was set while it shows.
class VARUNDO_PLATFORM_EXPORT CVideoOverlayText : public CVideoOverlayElement
{
    Q_OBJECT

public:
    explicit CVideoOverlayText(QObject* parent = nullptr);
    ~CVideoOverlayText() override;

    void setVisible(bool visible) override;

    virtual QString text() const;
    virtual void setText(const QString& text);
    virtual QColor textColor() const;
    virtual void setTextColor(const QColor& color);
    virtual QColor backgroundColor() const;
    virtual void setBackgroundColor(const QColor& color);
    virtual QFont font() const;
    virtual void setFont(const QFont& font);
    virtual int timeout() const; ///< seconds; 0: stays
    virtual void setTimeout(int seconds);
    virtual QString unit() const;
    virtual void setUnit(const QString& unit);

private:
    void restartTimeout();

    QString m_text;
    QColor m_textColor;
    QColor m_backgroundColor;
    QFont m_font;
    int m_timeout = 0;
    QString m_unit;
    QTimer* m_timeoutTimer = nullptr; // made when the first time-out is set
};

} // namespace Mavril::VideoOverlay

#endif
