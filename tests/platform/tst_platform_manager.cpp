#include "OverlayEvents.h"
#include "RecordingAccessor.h"

#include <Mavril/VideoOverlay/CVideoOverlayManager.h>
#include <Mavril/VideoOverlay/CVideoOverlayProfile.h>
#include <Mavril/VideoOverlay/CVideoOverlayText.h>

#include <QMutex>
#include <QSemaphore>
#include <QThread>
#include <QtTest>

#include <atomic>
#include <memory>

using Mavril::VideoOverlay::CVideoOverlayElement;
using Mavril::VideoOverlay::CVideoOverlayManager;
using Mavril::VideoOverlay::CVideoOverlayText;
using Mavril::VideoOverlay::ElementParam;

namespace {

const QByteArray dateAndLine = R"({"elements": [{"kind": "bound", "binding": "Date"},
                                                {"kind": "static", "id": 1}]})";

} // namespace

class TestPlatformManager : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void thereIsNoProfileAndNoElementAtFirst();
    void aCreatedTextIsListedAndNotRegistered();
    void elementsAreListedInTheOrderOfCreation();
    void theListMayBeTakenWhileTheMutexIsHeld();
    void theMutexIsNotRecursive();
    void nobodyIsCalledUnderTheMutex();
    void theListChangesUnderTheMutexOnly();

    void removalIsAnnouncedThenUnregisteredThenDone();
    void aRemovedElementIsDeletedByTheEventLoop();
    void anElementMayBeRemovedFromASignalOfItsOwn();
    void removingTheSameTwiceRemovesOnce();
    void removingFromTheAnnouncementRemovesOnce();
    void aListenerMayDeleteTheElementItself();
    void nullIsNoElement();
    void aForeignElementIsLeftAlone();

    void anAccessorGetsTheElementsThatAreThere();
    void anotherAccessorTakesTheElementsOver();
    void withoutAnAccessorProfilesLoadAsWell();

private:
    std::unique_ptr<RecordingAccessor> m_accessor;
    std::unique_ptr<CVideoOverlayManager> m_manager;
    std::unique_ptr<OverlayEvents> m_events;
};

void TestPlatformManager::init()
{
    m_accessor = std::make_unique<RecordingAccessor>();
    m_manager = std::make_unique<CVideoOverlayManager>();
    m_manager->setElementAccessor(m_accessor.get());
    m_events = std::make_unique<OverlayEvents>(*m_manager, *m_accessor);
}

void TestPlatformManager::cleanup()
{
    m_manager.reset();
    m_events.reset();
    m_accessor.reset();
}

void TestPlatformManager::thereIsNoProfileAndNoElementAtFirst()
{
    QVERIFY(!m_manager->currentProfile());
    QVERIFY(m_manager->getElementList().isEmpty());
    QVERIFY(m_manager->mutex());
}

void TestPlatformManager::aCreatedTextIsListedAndNotRegistered()
{
    CVideoOverlayText* const text = m_manager->createText();
    QCOMPARE(m_manager->getElementList(), QList<CVideoOverlayElement*>{text});
    QVERIFY(m_events->events.isEmpty());
    QVERIFY(!m_manager->currentProfile());
}

void TestPlatformManager::elementsAreListedInTheOrderOfCreation()
{
    QList<CVideoOverlayElement*> expected;
    for (int i = 0; i < 20; ++i) {
        expected.append(m_manager->createText());
    }
    for (const int gone : {19, 7, 0}) {
        m_manager->deleteElementFromModel(expected.takeAt(gone));
    }
    expected.append(m_manager->createText());
    QCOMPARE(m_manager->getElementList(), expected);
}

void TestPlatformManager::theListMayBeTakenWhileTheMutexIsHeld()
{
    m_manager->createText();
    const QMutexLocker locker(m_manager->mutex());
    QCOMPARE(m_manager->getElementList().size(), 1);
}

void TestPlatformManager::theMutexIsNotRecursive()
{
    const QMutexLocker locker(m_manager->mutex());
    QVERIFY(!m_manager->mutex()->tryLock());
}

void TestPlatformManager::nobodyIsCalledUnderTheMutex()
{
    int calls = 0;
    bool wasFree = true;
    const auto look = [&] {
        ++calls;
        const bool free = m_manager->mutex()->tryLock();
        wasFree = wasFree && free;
        if (free) {
            m_manager->mutex()->unlock();
        }
    };
    m_accessor->onCall = [&look](const QString&) {
        look();
    };
    connect(m_manager.get(), &CVideoOverlayManager::beforeRemoveElements, this, look);
    connect(m_manager.get(), &CVideoOverlayManager::beforeRemoveElement, this, look);
    connect(m_manager.get(), &CVideoOverlayManager::profileLoaded, this, look);
    QVERIFY(m_manager->loadProfileData(dateAndLine, QStringLiteral("first")));
    m_manager->createText();
    QVERIFY(m_manager->loadProfileData(dateAndLine, QStringLiteral("second")));
    QVERIFY(wasFree);
    // Two signals and two registrations a load; three removals, each announced and unregistered.
    QCOMPARE(calls, 2 * (2 + 2) + 3 * 2);
}

void TestPlatformManager::theListChangesUnderTheMutexOnly()
{
    QSemaphore locked;
    std::atomic<bool> released{false};
    std::unique_ptr<QThread> reader(QThread::create([&] {
        const QMutexLocker locker(m_manager->mutex());
        locked.release();
        QThread::msleep(50);
        released = true;
    }));
    reader->start();
    locked.acquire();
    m_manager->createText();
    const bool waited = released;
    reader->wait();
    QVERIFY(waited);
}

void TestPlatformManager::removalIsAnnouncedThenUnregisteredThenDone()
{
    QVERIFY(m_manager->loadProfileData(dateAndLine, QStringLiteral("profile")));
    m_events->take();
    bool wasListed = false;
    connect(
        m_manager.get(), &CVideoOverlayManager::beforeRemoveElement, this,
        [&](CVideoOverlayElement* element) { wasListed = m_manager->getElementList().contains(element); });
    CVideoOverlayElement* const date = m_accessor->element(ElementParam::NAME_DATE);
    m_manager->deleteElementFromModel(date);
    QCOMPARE(m_events->take(),
             (QStringList{QStringLiteral("beforeRemoveElement Date"), QStringLiteral("unregister Date")}));
    QVERIFY(wasListed);
    QVERIFY(!m_manager->getElementList().contains(date));
    QCOMPARE(m_manager->getElementList().size(), 1);
}

void TestPlatformManager::aRemovedElementIsDeletedByTheEventLoop()
{
    const QPointer<CVideoOverlayText> text = m_manager->createText();
    m_manager->deleteElementFromModel(text);
    QVERIFY(text);
    QTRY_VERIFY(!text);
}

void TestPlatformManager::anElementMayBeRemovedFromASignalOfItsOwn()
{
    const QPointer<CVideoOverlayText> text = m_manager->createText();
    connect(text, &QObject::objectNameChanged, this, [&] { m_manager->deleteElementFromModel(text); });
    text->setObjectName(QStringLiteral("last"));
    QCOMPARE(text->objectName(), QStringLiteral("last"));
    QVERIFY(m_manager->getElementList().isEmpty());
    QTRY_VERIFY(!text);
}

void TestPlatformManager::removingTheSameTwiceRemovesOnce()
{
    CVideoOverlayText* const text = m_manager->createText();
    m_manager->deleteElementFromModel(text);
    m_events->take();
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("^not an element of this overlay")));
    m_manager->deleteElementFromModel(text);
    QVERIFY(m_events->events.isEmpty());
}

void TestPlatformManager::removingFromTheAnnouncementRemovesOnce()
{
    const QPointer<CVideoOverlayText> text = m_manager->createText();
    int announcements = 0;
    connect(m_manager.get(), &CVideoOverlayManager::beforeRemoveElement, this,
            [&](CVideoOverlayElement* element) {
                ++announcements;
                m_manager->deleteElementFromModel(element);
            });
    m_manager->deleteElementFromModel(text);
    QCOMPARE(announcements, 1);
    QVERIFY(m_manager->getElementList().isEmpty());
    QTRY_VERIFY(!text);
}

void TestPlatformManager::aListenerMayDeleteTheElementItself()
{
    const QPointer<CVideoOverlayText> text = m_manager->createText();
    connect(m_manager.get(), &CVideoOverlayManager::beforeRemoveElement, this,
            [](CVideoOverlayElement* element) { delete element; });
    m_manager->deleteElementFromModel(text);
    QVERIFY(!text);
    QVERIFY(m_manager->getElementList().isEmpty());
}

void TestPlatformManager::nullIsNoElement()
{
    m_manager->createText();
    m_manager->deleteElementFromModel(nullptr);
    QVERIFY(m_events->events.isEmpty());
    QCOMPARE(m_manager->getElementList().size(), 1);
}

void TestPlatformManager::aForeignElementIsLeftAlone()
{
    const QPointer<CVideoOverlayText> foreign = new CVideoOverlayText(this);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("^not an element of this overlay")));
    m_manager->deleteElementFromModel(foreign);
    QVERIFY(m_events->events.isEmpty());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(foreign);
    delete foreign;
}

void TestPlatformManager::anAccessorGetsTheElementsThatAreThere()
{
    m_manager->setElementAccessor(nullptr);
    QVERIFY(m_manager->loadProfileData(dateAndLine, QStringLiteral("profile")));
    m_manager->createText();
    m_events->take();
    m_manager->setElementAccessor(m_accessor.get());
    QCOMPARE(m_events->take(), (QStringList{QStringLiteral("register Date"), QStringLiteral("register 1")}));
    m_manager->setElementAccessor(m_accessor.get());
    QVERIFY2(m_events->events.isEmpty(), "the same accessor again is no change");
}

void TestPlatformManager::anotherAccessorTakesTheElementsOver()
{
    QVERIFY(m_manager->loadProfileData(dateAndLine, QStringLiteral("profile")));
    RecordingAccessor other;
    m_manager->setElementAccessor(&other);
    QVERIFY(m_accessor->keys.isEmpty());
    QCOMPARE(other.keys.size(), 2);
    m_manager->setElementAccessor(nullptr);
    QVERIFY(other.keys.isEmpty());
}

void TestPlatformManager::withoutAnAccessorProfilesLoadAsWell()
{
    m_manager->setElementAccessor(nullptr);
    QVERIFY(m_manager->loadProfileData(dateAndLine, QStringLiteral("first")));
    QVERIFY(m_manager->loadProfileData(dateAndLine, QStringLiteral("second")));
    QCOMPARE(m_manager->getElementList().size(), 2);
    QVERIFY(m_accessor->calls.isEmpty());
}

QTEST_GUILESS_MAIN(TestPlatformManager)
#include "tst_platform_manager.moc"
