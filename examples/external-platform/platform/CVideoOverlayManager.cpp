#include <Mavril/VideoOverlay/CVideoOverlayManager.h>

#include <Mavril/VideoOverlay/CVideoOverlayProfile.h>
#include <Mavril/VideoOverlay/CVideoOverlayText.h>
#include <Mavril/VideoOverlay/IVideoOverlayElementAccessor.h>

#include <QFile>
#include <QMutex>
#include <QMutexLocker>
#include <QPointer>
#include <QStringList>

#include <vector>

namespace Mavril::VideoOverlay {

/// This unit deletes elements by deleteElementFromModel() alone. It sets its accessor before the first
/// profile, and keeps it longer than the manager.
class CVideoOverlayManager::Private
{
public:
    QMutex mutex; // guards the list
    QList<CVideoOverlayElement*> elements;
    IVideoOverlayElementAccessor* accessor = nullptr;
    std::unique_ptr<CVideoOverlayProfile> profile;
};

namespace {

/// One line of a layout: kind, key, row, column and text. Null, and an error, if it makes no sense.
std::unique_ptr<CVideoOverlayText> readElement(const QString& line, QString& error)
{
    const QStringList words = line.simplified().split(QLatin1Char(' '));
    const QStringList kinds{ElementParam::NAME_COLUMNBOUND, ElementParam::NAME_STATIC_ID,
                            ElementParam::NAME_COLUMNCAPTION};
    bool rowIsNumber = false;
    bool columnIsNumber = false;
    const int row = words.value(2).toInt(&rowIsNumber);
    const int column = words.value(3).toInt(&columnIsNumber);
    if (!kinds.contains(words.first()) || !rowIsNumber || !columnIsNumber) {
        error = QStringLiteral("expected bound, static or free, a key, row and column, not '%1'").arg(line);
        return nullptr;
    }
    auto element = std::make_unique<CVideoOverlayText>();
    element->getParamObject().insert(words.first(), words.at(1));
    element->setRow(row);
    element->setColumn(column);
    element->setText(words.mid(4).join(QLatin1Char(' ')));
    element->setEnabled(true);
    element->setVisible(true);
    return element;
}

} // namespace

CVideoOverlayManager::CVideoOverlayManager(QObject* parent)
    : QObject(parent)
    , d(std::make_unique<Private>())
{}

CVideoOverlayManager::~CVideoOverlayManager()
{
    for (CVideoOverlayElement* const element : qAsConst(d->elements)) {
        if (d->accessor) {
            d->accessor->unregisterElement(element);
        }
    }
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
    return d->elements;
}

CVideoOverlayText* CVideoOverlayManager::createText()
{
    auto* const text = new CVideoOverlayText(this);
    const QMutexLocker locker(mutex());
    d->elements.append(text);
    return text;
}

void CVideoOverlayManager::deleteElementFromModel(CVideoOverlayElement* element)
{
    const QPointer<CVideoOverlayElement> remaining(element);
    if (!d->elements.contains(element)) {
        return;
    }
    emit beforeRemoveElement(element);
    if (!remaining || !d->elements.contains(element)) {
        return; // a listener was faster
    }
    if (d->accessor) {
        d->accessor->unregisterElement(element);
    }
    {
        const QMutexLocker locker(mutex());
        d->elements.removeOne(element);
    }
    element->deleteLater();
}

void CVideoOverlayManager::setElementAccessor(IVideoOverlayElementAccessor* accessor)
{
    d->accessor = accessor;
}

bool CVideoOverlayManager::loadProfile(const QString& layoutFile, QString* error)
{
    QFile file(layoutFile);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error) {
            *error = QStringLiteral("%1: %2").arg(layoutFile, file.errorString());
        }
        return false;
    }
    return loadProfileData(file.readAll(), layoutFile, error);
}

bool CVideoOverlayManager::loadProfileData(const QByteArray& layout, const QString& sourceName,
                                           QString* error)
{
    std::vector<std::unique_ptr<CVideoOverlayText>> elements;
    const QStringList lines = QString::fromUtf8(layout).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString& line : lines) {
        if (line.startsWith(QLatin1Char('#'))) {
            continue;
        }
        QString fault;
        elements.push_back(readElement(line, fault));
        if (!elements.back()) {
            if (error) {
                *error = QStringLiteral("%1: %2").arg(sourceName, fault);
            }
            return false;
        }
    }
    removeProfile();
    for (auto& element : elements) {
        addElement(std::move(element), false);
    }
    d->profile =
        std::make_unique<CVideoOverlayProfile>(QString(), sourceName, static_cast<int>(elements.size()));
    emit profileLoaded();
    return true;
}

void CVideoOverlayManager::removeProfile()
{
    emit beforeRemoveElements();
    const QList<CVideoOverlayElement*> elements = d->elements;
    for (CVideoOverlayElement* const element : elements) {
        deleteElementFromModel(element);
    }
    d->profile.reset();
}

void CVideoOverlayManager::addElement(std::unique_ptr<CVideoOverlayElement> owned, bool /*custom*/)
{
    CVideoOverlayElement* const element = owned.release();
    element->setParent(this);
    {
        const QMutexLocker locker(mutex());
        d->elements.append(element);
    }
    if (d->accessor) {
        d->accessor->registerElement(d->accessor->generateElementKey(element->getParamObject()), element);
    }
}

} // namespace Mavril::VideoOverlay
