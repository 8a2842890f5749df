#include <Mavril/VideoOverlay/CVideoOverlayManager.h>

#include "PlatformLog.h"
#include "ProfileReader.h"

#include <Mavril/VideoOverlay/CVideoOverlayProfile.h>
#include <Mavril/VideoOverlay/CVideoOverlayText.h>
#include <Mavril/VideoOverlay/IVideoOverlayElementAccessor.h>

#include <QMutex>
#include <QMutexLocker>
#include <QSet>

namespace Mavril::VideoOverlay {

class CVideoOverlayManager::Private
{
public:
    QMutex mutex; // guards elements
    QList<CVideoOverlayElement*> elements;
    QSet<CVideoOverlayElement*> beingRemoved;
    std::unique_ptr<CVideoOverlayProfile> profile;
    IVideoOverlayElementAccessor* accessor = nullptr;
};

namespace {

void apply(const ElementDescription& description, CVideoOverlayText& text)
{
    ElementParam& params = text.getParamObject();
    if (!description.binding.isEmpty()) {
        params.insert(ElementParam::NAME_COLUMNBOUND, description.binding);
    }
    if (description.staticId != 0) {
        params.insert(ElementParam::NAME_STATIC_ID, description.staticId);
    }
    if (!description.caption.isEmpty()) {
        params.insert(ElementParam::NAME_COLUMNCAPTION, description.caption);
    }
    text.setRow(description.row);
    text.setColumn(description.column);
    text.setType(description.type);
    text.setTextColor(description.textColor);
    text.setBackgroundColor(description.backgroundColor);
    text.setUnit(description.unit);
    text.setTimeout(description.timeout);
    text.setText(description.text);
    text.setEnabled(description.enabled);
    text.setVisible(description.visible);
}

} // namespace

CVideoOverlayManager::CVideoOverlayManager(QObject* parent)
    : QObject(parent)
    , d(std::make_unique<Private>())
{}

CVideoOverlayManager::~CVideoOverlayManager() = default;

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
    return d->elements;
}

CVideoOverlayText* CVideoOverlayManager::createText()
{
    auto* const text = new CVideoOverlayText(this);
    addElement(text);
    return text;
}

/// The object itself goes with the next turn of the event loop, so that an element may be deleted from within
/// a signal of its own; to everybody else it is gone at once.
void CVideoOverlayManager::deleteElementFromModel(CVideoOverlayElement* element)
{
    if (!element || !d->elements.contains(element) || d->beingRemoved.contains(element)) {
        return;
    }
    d->beingRemoved.insert(element);
    emit beforeRemoveElement(element);
    d->beingRemoved.remove(element);

    disconnect(element, &QObject::destroyed, this, nullptr);
    forgetElement(element);
    element->deleteLater();
}

void CVideoOverlayManager::setElementAccessor(IVideoOverlayElementAccessor* accessor)
{
    d->accessor = accessor;
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

bool CVideoOverlayManager::useProfile(const ProfileReader& reader,
                                      const std::optional<ProfileDescription>& profile,
                                      const QString& sourceName, QString* error)
{
    if (!profile) {
        if (error) {
            *error = reader.error();
        }
        return false;
    }
    emit beforeRemoveElements();
    const auto old = d->elements;
    for (CVideoOverlayElement* const element : old) {
        deleteElementFromModel(element);
    }
    for (const ElementDescription& description : profile->elements) {
        auto* const text = new CVideoOverlayText(this);
        apply(description, *text);
        addElement(text);
        if (d->accessor) {
            d->accessor->registerElement(d->accessor->generateElementKey(text->getParamObject()), text);
        }
    }
    d->profile = std::make_unique<CVideoOverlayProfile>(profile->name, sourceName);
    emit profileLoaded();
    return true;
}

void CVideoOverlayManager::addElement(CVideoOverlayElement* element)
{
    // An element that the host deletes without a word must not stay on the list, nor under its key.
    connect(element, &QObject::destroyed, this, [this, element] { forgetElement(element); });
    const QMutexLocker locker(&d->mutex);
    d->elements.append(element);
}

/// The element may be half destroyed already; it is only compared with.
void CVideoOverlayManager::forgetElement(CVideoOverlayElement* element)
{
    if (d->accessor) {
        d->accessor->unregisterElement(element);
    }
    const QMutexLocker locker(&d->mutex);
    d->elements.removeOne(element);
}

} // namespace Mavril::VideoOverlay
