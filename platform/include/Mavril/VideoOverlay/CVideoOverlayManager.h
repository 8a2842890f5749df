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

/// Owns the overlay's elements. Lives in the GUI thread.
class VARUNDO_PLATFORM_EXPORT CVideoOverlayManager : public QObject
{
    Q_OBJECT

public:
    explicit CVideoOverlayManager(QObject* parent = nullptr);
    ~CVideoOverlayManager() override;

    virtual CVideoOverlayProfile* currentProfile() const; ///< null before a profile is loaded
    /// Guards the element list; not recursive; may be null. Nothing that an element does may take it.
    virtual QMutex* mutex() const;
    /// Takes no lock: whoever needs the list to stand still holds the mutex.
    virtual QList<CVideoOverlayElement*> getElementList() const;
    /// A new text, owned by the manager, in the element list, registered under no key.
    virtual CVideoOverlayText* createText();
    /// Emits beforeRemoveElement() synchronously; then the element is gone.
    virtual void deleteElementFromModel(CVideoOverlayElement* element);

    /// Who registers elements from now on. Not owned.
    void setElementAccessor(IVideoOverlayElementAccessor* accessor);
    /// Emits beforeRemoveElements() first and profileLoaded() last. A bad file changes nothing; what is wrong
    /// with it, and where, is put into error.
    bool loadProfile(const QString& jsonFile, QString* error = nullptr);
    /// The same from memory; the source's name stands in messages.
    bool loadProfileData(const QByteArray& json, const QString& sourceName, QString* error = nullptr);

signals:
    void profileLoaded();
    void beforeRemoveElements();
    void beforeRemoveElement(Mavril::VideoOverlay::CVideoOverlayElement* element);

private:
    class Private;

    bool useProfile(const ProfileReader& reader, const std::optional<ProfileDescription>& profile,
                    const QString& sourceName, QString* error);
    void addElement(CVideoOverlayElement* element);
    void forgetElement(CVideoOverlayElement* element);

    std::unique_ptr<Private> d;
};

} // namespace Mavril::VideoOverlay

#endif
