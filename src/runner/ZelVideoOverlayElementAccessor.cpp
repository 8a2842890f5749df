#include <Tolvar/Varundo/ZelVideoOverlayElementAccessor.h>

#include "InTurn.h"

#include <Mavril/VideoOverlay/CVideoOverlayElement.h>
#include <Mavril/VideoOverlay/CVideoOverlayText.h>
#include <Mavril/VideoOverlay/ElementParam.h>

namespace Tolvar::Varundo {

using Mavril::VideoOverlay::CVideoOverlayElement;
using Mavril::VideoOverlay::CVideoOverlayText;
using Mavril::VideoOverlay::ElementParam;

ZelVideoOverlayElementAccessor::ZelVideoOverlayElementAccessor(QObject* parent)
    : QObject(parent)
{}

ZelVideoOverlayElementAccessor::~ZelVideoOverlayElementAccessor() = default;

QString ZelVideoOverlayElementAccessor::generateElementKey(ElementParam& params)
{
    for (const QString& name :
         {ElementParam::NAME_COLUMNBOUND, ElementParam::NAME_STATIC_ID, ElementParam::NAME_COLUMNCAPTION}) {
        QString key = params.value(name).toString();
        if (!key.isEmpty()) {
            return key;
        }
    }
    return {};
}

void ZelVideoOverlayElementAccessor::registerElement(QString key, CVideoOverlayElement* element)
{
    if (key.isEmpty()) {
        return;
    }
    Entry& entry = m_registry[key];
    // Who was under the key before is not found by it any more, alive or not.
    const auto before = m_keys.find(entry.address);
    if (before != m_keys.end() && *before == key) {
        m_keys.erase(before);
    }
    entry = {element, element};
    if (element) {
        m_keys.insert(element, key);
    }
}

void ZelVideoOverlayElementAccessor::unregisterElement(CVideoOverlayElement* element)
{
    // A profile of 100,000 elements is unloaded in seconds this way, and took minutes with the walk alone.
    const auto latest = m_keys.find(element);
    if (latest != m_keys.end() && m_registry.value(*latest).element == element) {
        m_registry.remove(*latest);
        m_keys.erase(latest);
        return;
    }
    for (auto entry = m_registry.begin(); entry != m_registry.end(); ++entry) {
        if (entry->element == element) {
            m_registry.erase(entry);
            return;
        }
    }
}

void ZelVideoOverlayElementAccessor::setElementPosition(const QString& key, QPoint position)
{
    const QPointer<CVideoOverlayElement> element = m_registry.value(key).element;
    inTurn([&] { return !element.isNull(); }, [&] { element->setColumn(position.x()); },
           [&] { element->setRow(position.y()); });
}

void ZelVideoOverlayElementAccessor::setElementVisibility(const QString& key, bool visible)
{
    if (CVideoOverlayElement* const element = m_registry.value(key).element) {
        element->setEnabled(visible);
    }
}

void ZelVideoOverlayElementAccessor::setElementText(const QString& key, const QString& text)
{
    if (CVideoOverlayText* const element = textElement(key)) {
        element->setText(text);
    }
}

void ZelVideoOverlayElementAccessor::setElementTextColor(const QString& key, QColor& colour)
{
    if (CVideoOverlayText* const element = textElement(key)) {
        element->setTextColor(colour);
    }
}

void ZelVideoOverlayElementAccessor::setElementBackgroundColor(const QString& key, QColor& colour)
{
    if (CVideoOverlayText* const element = textElement(key)) {
        element->setBackgroundColor(colour);
    }
}

void ZelVideoOverlayElementAccessor::setElementUnit(const QString& key, const QString& unit)
{
    if (CVideoOverlayText* const element = textElement(key)) {
        element->setUnit(unit);
    }
}

void ZelVideoOverlayElementAccessor::setElementFreeTextEnabled(const QString& key, int timeout,
                                                               const QString& text)
{
    const QPointer<CVideoOverlayText> element = textElement(key);
    // Hidden first and shown last: it is the showing that starts the time-out, with the new text already in
    // place.
    inTurn([&] { return !element.isNull(); }, [&] { element->setVisible(false); },
           [&] { element->setTimeout(timeout); }, [&] { element->setText(text); },
           [&] { element->setEnabled(true); }, [&] { element->setVisible(true); });
}

CVideoOverlayText* ZelVideoOverlayElementAccessor::textElement(const QString& key) const
{
    return qobject_cast<CVideoOverlayText*>(m_registry.value(key).element);
}

} // namespace Tolvar::Varundo
