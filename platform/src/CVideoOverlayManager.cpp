#include <Mavril/VideoOverlay/CVideoOverlayManager.h>

#include "PlatformLog.h"
#include "ProfileReader.h"

#include <Mavril/VideoOverlay/CVideoOverlayProfile.h>
#include <Mavril/VideoOverlay/CVideoOverlayText.h>
#include <Mavril/VideoOverlay/IVideoOverlayElementAccessor.h>

#include <QHash>
#include <QMap>
#include <QMutex>
#include <QMutexLocker>
#include <QPointer>
#include <QScopedValueRollback>
#include <QSet>

namespace Mavril::VideoOverlay {

/// Elements have no parent: in a QObject's list of children, and in a list of elements, each removal would be
/// a walk, and a controller can have very many texts made.
class CVideoOverlayManager::Private
{
public:
    struct Entry
    {
        CVideoOverlayElement* element;
        bool custom;
    };

    IVideoOverlayElementAccessor* livingAccessor() const
    {
        return accessorIsObject && !accessorObject ? nullptr : accessor;
    }

    QMutex mutex;                        // guards elements
    QMap<quint64, Entry> elements;       // by number, which is the order of creation
    QHash<const void*, quint64> numbers; // where an element stands among them
    quint64 lastNumber = 0;
    QSet<const void*> announced;          // being removed at this moment
    QSet<CVideoOverlayElement*> departed; // off the list, not deleted yet
    bool replacing = false;
    std::unique_ptr<CVideoOverlayProfile> profile;
    IVideoOverlayElementAccessor* accessor = nullptr;
    QPointer<QObject> accessorObject;
    bool accessorIsObject = false;
};

CVideoOverlayManager::CVideoOverlayManager(QObject* parent)
    : QObject(parent)
    , d(std::make_unique<Private>())
{}

/// An accessor that may be gone already is left alone.
CVideoOverlayManager::~CVideoOverlayManager()
{
    const auto entries = d->elements;
    auto objects = d->departed;
    for (const Private::Entry& entry : entries) {
        if (d->accessorObject) {
            d->accessor->unregisterElement(entry.element);
        }
        entry.element->disconnect(this);
        objects.insert(entry.element);
    }
    {
        const QMutexLocker locker(&d->mutex);
        d->elements.clear();
        d->numbers.clear();
    }
    d->departed.clear();
    qDeleteAll(objects);
}

CVideoOverlayProfile* CVideoOverlayManager::currentProfile() const
{
    return d->profile.get();
}

QMutex* CVideoOverlayManager::mutex() const
{
    return &d->mutex;
}

QList<CVideoOverlayElement*> CVideoOverlayManager::getElementList() const
{
    QList<CVideoOverlayElement*> list;
    list.reserve(d->elements.size());
    for (const Private::Entry& entry : qAsConst(d->elements)) {
        list.append(entry.element);
    }
    return list;
}

CVideoOverlayText* CVideoOverlayManager::createText()
{
    auto element = std::make_unique<CVideoOverlayText>();
    CVideoOverlayText* const text = element.get();
    addElement(std::move(element), true);
    return text;
}

void CVideoOverlayManager::deleteElementFromModel(CVideoOverlayElement* element)
{
    if (element && !d->numbers.contains(element)) {
        qCWarning(platformLog) << "not an element of this overlay, and not deleted:"
                               << static_cast<const void*>(element);
        return;
    }
    removeElement(element);
}

void CVideoOverlayManager::setElementAccessor(IVideoOverlayElementAccessor* accessor)
{
    IVideoOverlayElementAccessor* const former = d->livingAccessor();
    d->accessor = accessor;
    d->accessorObject = dynamic_cast<QObject*>(accessor);
    d->accessorIsObject = d->accessorObject;
    if (former == accessor) {
        return;
    }
    for (const Private::Entry& entry : qAsConst(d->elements)) {
        if (former) {
            former->unregisterElement(entry.element);
        }
        if (accessor && !entry.custom) {
            accessor->registerElement(accessor->generateElementKey(entry.element->getParamObject()),
                                      entry.element);
        }
    }
}

bool CVideoOverlayManager::loadProfile(const QString& jsonFile, QString* error)
{
    ProfileReader reader(jsonFile);
    return useProfile(reader, reader.readFile(jsonFile), jsonFile, error);
}

bool CVideoOverlayManager::loadProfileData(const QByteArray& json, const QString& sourceName, QString* error)
{
    ProfileReader reader(sourceName);
    return useProfile(reader, reader.read(json), sourceName, error);
}

void CVideoOverlayManager::removeProfile()
{
    if (d->replacing) {
        return; // who replaces removes
    }
    const QScopedValueRollback<bool> replacing(d->replacing, true);
    removeAllElements();
    d->profile.reset();
}

bool CVideoOverlayManager::useProfile(const ProfileReader& reader,
                                      const std::optional<ProfileDescription>& profile,
                                      const QString& sourceName, QString* error)
{
    if (!profile || d->replacing) {
        if (error) {
            *error = profile ? QStringLiteral("%1: another profile is being loaded").arg(sourceName)
                             : reader.error();
        }
        return false;
    }
    {
        const QScopedValueRollback<bool> replacing(d->replacing, true);
        removeAllElements();
        for (const ElementDescription& description : profile->elements) {
            addElement(description.makeElement(), false);
        }
        d->profile = std::make_unique<CVideoOverlayProfile>(profile->name, sourceName,
                                                            static_cast<int>(profile->elements.size()));
    }
    emit profileLoaded();
    return true;
}

void CVideoOverlayManager::addElement(std::unique_ptr<CVideoOverlayElement> owned, bool custom)
{
    CVideoOverlayElement* const element = owned.release(); // deleted by removal, or with the manager
    // An element that the host deletes without a word must not stay on the list, nor under its key.
    connect(element, &QObject::destroyed, this, [this, element] { forgetElement(element); });
    d->numbers.insert(element, ++d->lastNumber);
    {
        const QMutexLocker locker(mutex());
        d->elements.insert(d->lastNumber, {element, custom});
    }
    if (IVideoOverlayElementAccessor* const accessor = custom ? nullptr : d->livingAccessor()) {
        accessor->registerElement(accessor->generateElementKey(element->getParamObject()), element);
    }
}

void CVideoOverlayManager::removeElement(CVideoOverlayElement* element)
{
    if (!d->numbers.contains(element) || d->announced.contains(element)) {
        return;
    }
    d->announced.insert(element);
    const QPointer<CVideoOverlayElement> remaining(element);
    emit beforeRemoveElement(element);
    if (!remaining) {
        return; // a listener has deleted it, and so it is forgotten already
    }
    forgetElement(element);
    d->departed.insert(element);
    element->deleteLater();
}

/// What listeners have made meanwhile stays: it is nothing old.
void CVideoOverlayManager::removeAllElements()
{
    emit beforeRemoveElements();
    const auto numbers = d->elements.keys();
    for (const quint64 number : numbers) {
        removeElement(d->elements.value(number, {nullptr, false}).element);
    }
}

/// The element may be half destroyed already; it is only compared with.
void CVideoOverlayManager::forgetElement(CVideoOverlayElement* element)
{
    d->announced.remove(element);
    d->departed.remove(element);
    const auto number = d->numbers.find(element);
    if (number == d->numbers.end()) {
        return;
    }
    if (IVideoOverlayElementAccessor* const accessor = d->livingAccessor()) {
        accessor->unregisterElement(element);
    }
    const QMutexLocker locker(mutex());
    d->elements.remove(*number);
    d->numbers.erase(number);
}

} // namespace Mavril::VideoOverlay
