#include "ElementDescription.h"

#include <Mavril/VideoOverlay/CVideoOverlayText.h>

#include <QFont>

namespace Mavril::VideoOverlay {

namespace {

QFont fontOf(const ElementDescription& description)
{
    QFont font;
    if (!description.fontFamily.isEmpty()) {
        font.setFamily(description.fontFamily);
    }
    if (description.fontSize > 0) {
        font.setPointSize(description.fontSize);
    }
    return font;
}

std::unique_ptr<CVideoOverlayElement> makeText(const ElementDescription& description)
{
    auto text = std::make_unique<CVideoOverlayText>();
    text->setText(description.text);
    text->setUnit(description.unit);
    text->setTimeout(description.timeout);
    text->setTextColor(description.textColor);
    text->setBackgroundColor(description.backgroundColor);
    text->setFont(fontOf(description));
    return text;
}

std::unique_ptr<CVideoOverlayElement> makePlain(const ElementDescription& description)
{
    auto element = std::make_unique<CVideoOverlayElement>();
    element->setWidth(description.width);
    element->setHeight(description.height);
    return element;
}

} // namespace

QString ElementDescription::key() const
{
    if (!binding.isEmpty()) {
        return binding;
    }
    return staticId != 0 ? QString::number(staticId) : caption;
}

std::unique_ptr<CVideoOverlayElement> ElementDescription::makeElement() const
{
    auto element = isText ? makeText(*this) : makePlain(*this);
    ElementParam& params = element->getParamObject();
    if (!binding.isEmpty()) {
        params.insert(ElementParam::NAME_COLUMNBOUND, binding);
    }
    if (staticId != 0) {
        params.insert(ElementParam::NAME_STATIC_ID, staticId);
    }
    if (!caption.isEmpty()) {
        params.insert(ElementParam::NAME_COLUMNCAPTION, caption);
    }
    element->setRow(row);
    element->setColumn(column);
    element->setType(type);
    element->setEnabled(enabled);
    element->setVisible(visible); // last: it is the showing that starts a time-out
    return element;
}

} // namespace Mavril::VideoOverlay
