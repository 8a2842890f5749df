#ifndef VARUNDO_PLATFORM_TEST_OVERLAYEVENTS_H
#define VARUNDO_PLATFORM_TEST_OVERLAYEVENTS_H

#include "RecordingAccessor.h"

#include <Mavril/VideoOverlay/CVideoOverlayManager.h>

#include <QObject>
#include <QStringList>

/// What a manager tells its listeners and its accessor, in the order in which it does. A text without
/// a caption or any other identity is "custom".
class OverlayEvents
{
public:
    using Manager = Mavril::VideoOverlay::CVideoOverlayManager;
    using Element = Mavril::VideoOverlay::CVideoOverlayElement;

    OverlayEvents(Manager& manager, RecordingAccessor& accessor)
    {
        QObject::connect(&manager, &Manager::beforeRemoveElements, &m_context,
                         [this] { events.append(QStringLiteral("beforeRemoveElements")); });
        QObject::connect(&manager, &Manager::beforeRemoveElement, &m_context,
                         [this, &accessor](Element* element) {
                             const QString key = accessor.generateElementKey(element->getParamObject());
                             events.append(QStringLiteral("beforeRemoveElement ") +
                                           (key.isEmpty() ? QStringLiteral("custom") : key));
                         });
        QObject::connect(&manager, &Manager::profileLoaded, &m_context,
                         [this] { events.append(QStringLiteral("profileLoaded")); });
        accessor.onCall = [this](const QString& call) {
            events.append(call);
        };
    }

    QStringList take()
    {
        QStringList taken;
        taken.swap(events);
        return taken;
    }

    QStringList events;

private:
    QObject m_context;
};

#endif
