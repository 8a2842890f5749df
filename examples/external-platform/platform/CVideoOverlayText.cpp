#include <Mavril/VideoOverlay/CVideoOverlayText.h>

#include <QTimer>

#include <chrono>

namespace Mavril::VideoOverlay {

CVideoOverlayText::CVideoOverlayText(QObject* parent)
    : CVideoOverlayElement(parent)
{}

CVideoOverlayText::~CVideoOverlayText() = default;

void CVideoOverlayText::setVisible(bool visible)
{
    CVideoOverlayElement::setVisible(visible);
    restartTimeout();
}

QString CVideoOverlayText::text() const
{
    return m_text;
}

void CVideoOverlayText::setText(const QString& text)
{
    m_text = text;
    restartTimeout();
}

QColor CVideoOverlayText::textColor() const
{
    return m_textColor;
}

void CVideoOverlayText::setTextColor(const QColor& color)
{
    m_textColor = color;
}

QColor CVideoOverlayText::backgroundColor() const
{
    return m_backgroundColor;
}

void CVideoOverlayText::setBackgroundColor(const QColor& color)
{
    m_backgroundColor = color;
}

QFont CVideoOverlayText::font() const
{
    return m_font;
}

void CVideoOverlayText::setFont(const QFont& font)
{
    m_font = font;
}

int CVideoOverlayText::timeout() const
{
    return m_timeout;
}

void CVideoOverlayText::setTimeout(int seconds)
{
    m_timeout = seconds;
    restartTimeout();
}

QString CVideoOverlayText::unit() const
{
    return m_unit;
}

void CVideoOverlayText::setUnit(const QString& unit)
{
    m_unit = unit;
}

void CVideoOverlayText::restartTimeout()
{
    if (!m_timeoutTimer) {
        m_timeoutTimer = new QTimer(this);
        m_timeoutTimer->setSingleShot(true);
        connect(m_timeoutTimer, &QTimer::timeout, this, [this] { setVisible(false); });
    }
    m_timeoutTimer->stop();
    if (visible() && m_timeout > 0) {
        m_timeoutTimer->start(std::chrono::seconds(m_timeout));
    }
}

} // namespace Mavril::VideoOverlay
