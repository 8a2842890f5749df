#include <Mavril/VideoOverlay/CVideoOverlayElement.h>

namespace Mavril::VideoOverlay {

CVideoOverlayElement::CVideoOverlayElement(QObject* parent)
    : QObject(parent)
{}

CVideoOverlayElement::~CVideoOverlayElement() = default;

int CVideoOverlayElement::column() const
{
    return m_column;
}

void CVideoOverlayElement::setColumn(int column)
{
    m_column = column;
}

int CVideoOverlayElement::row() const
{
    return m_row;
}

void CVideoOverlayElement::setRow(int row)
{
    m_row = row;
}

bool CVideoOverlayElement::enabled() const
{
    return m_enabled;
}

void CVideoOverlayElement::setEnabled(bool enabled)
{
    m_enabled = enabled;
}

bool CVideoOverlayElement::visible() const
{
    return m_visible;
}

void CVideoOverlayElement::setVisible(bool visible)
{
    m_visible = visible;
}

int CVideoOverlayElement::type() const
{
    return m_type;
}

void CVideoOverlayElement::setType(int type)
{
    m_type = type;
}

qreal CVideoOverlayElement::width() const
{
    return m_width;
}

void CVideoOverlayElement::setWidth(qreal width)
{
    m_width = width;
}

qreal CVideoOverlayElement::height() const
{
    return m_height;
}

void CVideoOverlayElement::setHeight(qreal height)
{
    m_height = height;
}

QString CVideoOverlayElement::caption() const
{
    return m_params.value(ElementParam::NAME_COLUMNCAPTION).toString();
}

ElementParam& CVideoOverlayElement::getParamObject()
{
    return m_params;
}

} // namespace Mavril::VideoOverlay
