#ifndef MAVRIL_VIDEOOVERLAY_CVIDEOOVERLAYMANAGER_H
#define MAVRIL_VIDEOOVERLAY_CVIDEOOVERLAYMANAGER_H

#include <VarundoPlatformExport.h>

#include <QList>
#include <QObject>
#include <QString>

#include <memory>
#include <optional>

class QMutex;

namespace Mavril::VideoOverlay {

class CVideoOverlayElement;
class CVideoOverlayProfile;
class CVideoOverlayText;
class IVideoOverlayElementAccessor;
class ProfileReader;
struct ProfileDescription;

/// Owns the overlay's elements: those of the loaded profile, and the texts that others had made. Made and
/// owned by the host; lives in the GUI thread, and all its methods are called there.
///
/// A thread that wants to look at the elements holds the mutex for as long as it looks. The manager changes
/// the list under the mutex, and calls nobody meanwhile. Its own end is not announced.
class VARUNDO_PLATFORM_EXPORT CVideoOverlayManager : public QObject
{
    Q_OBJECT

public:
    explicit CVideoOverlayManager(QObject* parent = nullptr);
    ~CVideoOverlayManager() override;

    virtual CVideoOverlayProfile* currentProfile() const; ///< null before a profile is loaded
    /// Guards the element list; not recursive; may be null. Nothing that an element does may take it, and no
    /// element is made or deleted by who holds it.
    virtual QMutex* mutex() const;
    /// In the order of creation. Takes no lock: whoever needs the list to stand still holds the mutex.
    virtual QList<CVideoOverlayElement*> getElementList() const;
    /// A new text, owned by the manager, in the element list, registered under no key.
    virtual CVideoOverlayText* createText();
    /// Emits beforeRemoveElement() synchronously; then the element is off the list and under no key. The
    /// object itself is deleted by the event loop, so that this may be called from a signal of its own. Null,
    /// an element that is being removed already and one that is not the manager's are left alone.
    virtual void deleteElementFromModel(CVideoOverlayElement* element);

    /// Who registers the profile's elements from now on, those that exist included. Not owned. An accessor
    /// that is a QObject may be destroyed at any time; any other is replaced, by null at least, while it
    /// lives, or outlives the manager's last change.
    void setElementAccessor(IVideoOverlayElementAccessor* accessor);
    /// Emits beforeRemoveElements() first and profileLoaded() last. In between every element is removed,
    /// those of createText() too, each with its beforeRemoveElement(), and the new ones are made and
    /// registered. A bad file changes nothing; what is wrong with it, and where, is put into error. Not to be
    /// called while elements are being replaced: that is refused.
    bool loadProfile(const QString& jsonFile, QString* error = nullptr);
    /// The same from memory; the source's name stands in messages.
    bool loadProfileData(const QByteArray& json, const QString& sourceName, QString* error = nullptr);
    /// Removes all elements in the same manner; afterwards there is no current profile.
    void removeProfile();

signals:
    void profileLoaded();
    void beforeRemoveElements();
    void beforeRemoveElement(Mavril::VideoOverlay::CVideoOverlayElement* element);

private:
    class Private;

    bool useProfile(const ProfileReader& reader, const std::optional<ProfileDescription>& profile,
                    const QString& sourceName, QString* error);
    void addElement(std::unique_ptr<CVideoOverlayElement> element, bool custom);
    void removeElement(CVideoOverlayElement* element);
    void removeAllElements();
    void forgetElement(CVideoOverlayElement* element);

    std::unique_ptr<Private> d;
};

} // namespace Mavril::VideoOverlay

#endif
