#ifndef VARUNDO_PLATFORM_TEST_RECORDINGACCESSOR_H
#define VARUNDO_PLATFORM_TEST_RECORDINGACCESSOR_H

#include <Mavril/VideoOverlay/CVideoOverlayElement.h>
#include <Mavril/VideoOverlay/IVideoOverlayElementAccessor.h>

#include <QHash>
#include <QStringList>

#include <functional>

/// An accessor that holds the elements it is told of, and tells what it is told. Keys are made as the
/// library makes them: column binding, static id, caption.
class RecordingAccessor : public Mavril::VideoOverlay::IVideoOverlayElementAccessor
{
public:
    using Element = Mavril::VideoOverlay::CVideoOverlayElement;
    using Param = Mavril::VideoOverlay::ElementParam;

    QString generateElementKey(Param& params) override
    {
        for (const QString& name :
             {Param::NAME_COLUMNBOUND, Param::NAME_STATIC_ID, Param::NAME_COLUMNCAPTION}) {
            if (!params.value(name).toString().isEmpty()) {
                return params.value(name).toString();
            }
        }
        return {};
    }
    void registerElement(QString key, Element* element) override
    {
        keys.insert(element, key);
        tell(QStringLiteral("register ") + key);
    }
    void unregisterElement(Element* element) override
    {
        const QString key = keys.take(element);
        tell(QStringLiteral("unregister ") + (key.isEmpty() ? QStringLiteral("unknown") : key));
    }

    Element* element(const QString& key) const { return keys.key(key); }

    QHash<Element*, QString> keys;
    QStringList calls;
    std::function<void(const QString& call)> onCall;

private:
    // The manager registers; it changes no element.
    void setElementPosition(const QString&, QPoint) override { tell(QStringLiteral("position")); }
    void setElementVisibility(const QString&, bool) override { tell(QStringLiteral("visibility")); }
    void setElementText(const QString&, const QString&) override { tell(QStringLiteral("text")); }
    void setElementTextColor(const QString&, QColor&) override { tell(QStringLiteral("text colour")); }
    void setElementBackgroundColor(const QString&, QColor&) override { tell(QStringLiteral("background")); }
    void setElementUnit(const QString&, const QString&) override { tell(QStringLiteral("unit")); }
    void setElementFreeTextEnabled(const QString&, int, const QString&) override
    {
        tell(QStringLiteral("free text"));
    }

    void tell(const QString& call)
    {
        calls.append(call);
        if (onCall) {
            onCall(call);
        }
    }
};

#endif
