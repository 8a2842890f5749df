#include "ModelOverlay.h"

#include "ModelText.h"

#include <algorithm>

namespace Tolvar::Varundo::Model {

namespace {

template <class Condition>
void eraseIf(std::vector<Element>& elements, Condition condition)
{
    elements.erase(std::remove_if(elements.begin(), elements.end(), condition), elements.end());
}

Element* foundIn(std::vector<Element>& elements, std::vector<Element>::iterator at)
{
    return at != elements.end() ? &*at : nullptr;
}

} // namespace

void ModelOverlay::replace(const Profile& profile)
{
    m_elements.clear();
    for (const ProfileElement& description : profile) {
        Element element;
        element.key = description.identity;
        element.isText = description.kind != ProfileElement::Kind::Plain;
        element.column = description.column;
        element.row = description.row;
        element.enabled = description.enabled;
        element.visible = description.visible;
        element.type = description.type;
        element.timeout = description.timeout;
        element.text = description.text;
        element.unit = description.unit;
        element.colors = {description.textColor, description.backgroundColor};
        m_elements.push_back(element);
    }
}

Element* ModelOverlay::find(const std::string& key)
{
    return foundIn(m_elements, std::find_if(m_elements.begin(), m_elements.end(),
                                            [&key](const Element& element) { return element.key == key; }));
}

Element* ModelOverlay::customAt(int column, int row)
{
    return foundIn(m_elements,
                   std::find_if(m_elements.begin(), m_elements.end(), [column, row](const Element& element) {
                       return element.isCustom() && element.column == column && element.row == row;
                   }));
}

Element& ModelOverlay::addCustom(int type, int column, int row, const Colors& colors,
                                 const std::u16string& text)
{
    Element element;
    element.column = column;
    element.row = row;
    element.enabled = true;
    element.visible = true;
    element.type = type;
    element.text = text;
    element.colors = colors;
    m_elements.push_back(element);
    return m_elements.back();
}

void ModelOverlay::removeCustom()
{
    eraseIf(m_elements, [](const Element& element) { return element.isCustom(); });
}

void ModelOverlay::removeEmptyCustom()
{
    eraseIf(m_elements,
            [](const Element& element) { return element.isCustom() && trimmed(element.text).empty(); });
}

void ModelOverlay::hideTimedOut()
{
    for (Element& element : m_elements) {
        element.visible = element.visible && element.timeout == 0;
    }
}

} // namespace Tolvar::Varundo::Model
