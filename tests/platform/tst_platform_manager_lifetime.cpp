#include "RecordingAccessor.h"

#include <Mavril/VideoOverlay/CVideoOverlayManager.h>
#include <Mavril/VideoOverlay/CVideoOverlayText.h>

#include <QtTest>

#include <memory>

using Mavril::VideoOverlay::CVideoOverlayElement;
using Mavril::VideoOverlay::CVideoOverlayManager;
using Mavril::VideoOverlay::CVideoOverlayText;
using Mavril::VideoOverlay::ElementParam;

namespace {

const QByteArray justADate = R"({"elements": [{"kind": "bound", "binding": "Date"}]})";

/// As the library's own accessor is one.
class ObjectAccessor : public QObject, public RecordingAccessor
{};

} // namespace

/// Who goes first; to be run under the address sanitizer.
class TestPlatformManagerLifetime : public QObject
{
    Q_OBJECT

private slots:
    void theManagersEndDeletesItsElements();
    void theManagersEndDeletesWhatWasRemovedBefore();
    void theManagersEndUnregistersFromAnAccessorThatIsAnObject();
    void theManagersEndCallsNoOtherAccessor();
    void theManagersEndIsNotAnnounced();
    void anAccessorObjectMayGoBeforeTheManager();
    void anElementThatTheHostDeletesIsForgotten();
    void aTextWithARunningTimeoutMayGo();
};

void TestPlatformManagerLifetime::theManagersEndDeletesItsElements()
{
    auto manager = std::make_unique<CVideoOverlayManager>();
    QVERIFY(manager->loadProfileData(justADate, QStringLiteral("profile")));
    const QPointer<CVideoOverlayElement> bound = manager->getElementList().constFirst();
    const QPointer<CVideoOverlayText> custom = manager->createText();
    manager.reset();
    QVERIFY(!bound);
    QVERIFY(!custom);
}

/// No event loop need ever run again.
void TestPlatformManagerLifetime::theManagersEndDeletesWhatWasRemovedBefore()
{
    auto manager = std::make_unique<CVideoOverlayManager>();
    const QPointer<CVideoOverlayText> text = manager->createText();
    manager->deleteElementFromModel(text);
    QVERIFY(text);
    manager.reset();
    QVERIFY(!text);
}

void TestPlatformManagerLifetime::theManagersEndUnregistersFromAnAccessorThatIsAnObject()
{
    ObjectAccessor accessor;
    {
        CVideoOverlayManager manager;
        manager.setElementAccessor(&accessor);
        QVERIFY(manager.loadProfileData(justADate, QStringLiteral("profile")));
        QCOMPARE(accessor.keys.size(), 1);
    }
    QVERIFY(accessor.keys.isEmpty());
}

/// The manager cannot know whether it is still there.
void TestPlatformManagerLifetime::theManagersEndCallsNoOtherAccessor()
{
    RecordingAccessor accessor;
    {
        CVideoOverlayManager manager;
        manager.setElementAccessor(&accessor);
        QVERIFY(manager.loadProfileData(justADate, QStringLiteral("profile")));
        accessor.calls.clear();
    }
    QVERIFY(accessor.calls.isEmpty());
}

void TestPlatformManagerLifetime::theManagersEndIsNotAnnounced()
{
    auto manager = std::make_unique<CVideoOverlayManager>();
    QVERIFY(manager->loadProfileData(justADate, QStringLiteral("profile")));
    QSignalSpy all(manager.get(), &CVideoOverlayManager::beforeRemoveElements);
    QSignalSpy one(manager.get(), &CVideoOverlayManager::beforeRemoveElement);
    manager.reset();
    QVERIFY(all.isEmpty() && one.isEmpty());
}

void TestPlatformManagerLifetime::anAccessorObjectMayGoBeforeTheManager()
{
    CVideoOverlayManager manager;
    auto accessor = std::make_unique<ObjectAccessor>();
    manager.setElementAccessor(accessor.get());
    QVERIFY(manager.loadProfileData(justADate, QStringLiteral("first")));
    accessor.reset();
    manager.deleteElementFromModel(manager.getElementList().constFirst());
    QVERIFY(manager.loadProfileData(justADate, QStringLiteral("second")));
    ObjectAccessor next;
    manager.setElementAccessor(&next);
    QCOMPARE(next.keys.size(), 1);
}

void TestPlatformManagerLifetime::anElementThatTheHostDeletesIsForgotten()
{
    RecordingAccessor accessor;
    CVideoOverlayManager manager;
    manager.setElementAccessor(&accessor);
    QVERIFY(manager.loadProfileData(justADate, QStringLiteral("first")));
    CVideoOverlayText* const custom = manager.createText();
    delete manager.getElementList().constFirst();
    QVERIFY(accessor.keys.isEmpty());
    QCOMPARE(manager.getElementList(), QList<CVideoOverlayElement*>{custom});
    delete custom;
    QVERIFY(manager.getElementList().isEmpty());
    QVERIFY(manager.loadProfileData(justADate, QStringLiteral("second")));
    QCOMPARE(manager.getElementList().size(), 1);
}

void TestPlatformManagerLifetime::aTextWithARunningTimeoutMayGo()
{
    CVideoOverlayManager manager;
    const QPointer<CVideoOverlayText> text = manager.createText();
    text->setTimeout(1);
    text->setVisible(true);
    manager.deleteElementFromModel(text);
    QTRY_VERIFY(!text);
}

QTEST_GUILESS_MAIN(TestPlatformManagerLifetime)
#include "tst_platform_manager_lifetime.moc"
