#ifndef TOLVAR_VARUNDO_ZELVIDEOOVERLAYELEMENTACCESSOR_H
#define TOLVAR_VARUNDO_ZELVIDEOOVERLAYELEMENTACCESSOR_H

#include <Mavril/VideoOverlay/IVideoOverlayElementAccessor.h>
#include <Tolvar/Varundo/Export.h>

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QString>

namespace Mavril::VideoOverlay {
class CVideoOverlayElement;
class CVideoOverlayText;
} // namespace Mavril::VideoOverlay

namespace Tolvar::Varundo {

/// Reaches the host's overlay elements by key. The host makes one, gives it to its overlay manager, which
/// registers and unregisters elements, and to the Runner, which changes them.
///
/// Takes no lock; everything is called in the host's event-loop thread. Elements are not owned. An unknown
/// key, a null element, and an element that is no text where a text is needed make a call do nothing.
class VARUNDO_EXPORT ZelVideoOverlayElementAccessor
    : public QObject,
      public Mavril::VideoOverlay::IVideoOverlayElementAccessor
{
    Q_OBJECT

public:
    explicit ZelVideoOverlayElementAccessor(QObject* parent = nullptr);
    ~ZelVideoOverlayElementAccessor() override;

    /// The first of column binding, static id and column caption that is not empty; empty if all are.
    QString generateElementKey(Mavril::VideoOverlay::ElementParam& params) override;
    /// An empty key is ignored; a key that is in use already goes over to the new element.
    void registerElement(QString key, Mavril::VideoOverlay::CVideoOverlayElement* element) override;
    void unregisterElement(Mavril::VideoOverlay::CVideoOverlayElement* element) override;

    void setElementPosition(const QString& key, QPoint position) override;
    /// Switches the element's enabled flag. Its visible flag is the host's and deliberately left alone.
    void setElementVisibility(const QString& key, bool visible) override;
    void setElementText(const QString& key, const QString& text) override;
    void setElementTextColor(const QString& key, QColor& colour) override;
    void setElementBackgroundColor(const QString& key, QColor& colour) override;
    void setElementUnit(const QString& key, const QString& unit) override;
    /// Shows a text for so many seconds; 0 leaves it there.
    void setElementFreeTextEnabled(const QString& key, int timeout, const QString& text) override;

private:
    struct Entry
    {
        QPointer<Mavril::VideoOverlay::CVideoOverlayElement> element;
        const Mavril::VideoOverlay::CVideoOverlayElement* address = nullptr; // its, also when it is gone
    };

    Mavril::VideoOverlay::CVideoOverlayText* textElement(const QString& key) const;

    QHash<QString, Entry> m_registry;
    // Each element's latest key, so that one of very many is found without a walk; of elements that may be
    // gone.
    QHash<const Mavril::VideoOverlay::CVideoOverlayElement*, QString> m_keys;
};

} // namespace Tolvar::Varundo

#endif
