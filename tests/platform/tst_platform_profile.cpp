#include "OverlayEvents.h"
#include "RecordingAccessor.h"

#include <Mavril/VideoOverlay/CVideoOverlayManager.h>
#include <Mavril/VideoOverlay/CVideoOverlayProfile.h>
#include <Mavril/VideoOverlay/CVideoOverlayText.h>

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using Mavril::VideoOverlay::CVideoOverlayElement;
using Mavril::VideoOverlay::CVideoOverlayManager;
using Mavril::VideoOverlay::CVideoOverlayText;
using Mavril::VideoOverlay::ElementParam;

namespace {

const QByteArray oneDate = R"({"name": "dates", "elements": [{"kind": "bound", "binding": "Date"}]})";
const QByteArray oneTime = R"({"elements": [{"kind": "bound", "binding": "Time"}]})";

} // namespace

class TestPlatformProfile : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void aLoadedProfileTellsItsNameSourceAndSize();
    void signalsComeInOrder();
    void theProfileIsThereWhenItIsAnnounced();
    void everyElementOfTheOldProfileAndEveryCustomTextGoes();
    void aBadFileChangesNothing();
    void anErrorNeedNotBeAskedFor();
    void aProfileIsNotReplacedWhileItIsBeingReplaced();
    void aProfileMayBeReplacedFromItsAnnouncement();
    void aTextMadeDuringTheReplacementStays();
    void removingTheProfileRemovesEverything();

    void everyFieldOfATextIsTaken();
    void aTextThatSaysNothingHasItsDefaults();
    void aStaticTextIsKnownByItsId();
    void aFreeTextIsTheFreeTextBoxUnlessItHasACaption();
    void aPlainElementIsNoText();
    void coloursMayBeNumbersOrNames_data();
    void coloursMayBeNumbersOrNames();
    void everyBindingOfTheProtocolIsKnown();
    void anEmptyProfileIsAProfile();
    void aFileMayStartWithAByteOrderMark();

private:
    CVideoOverlayText* loadText(const QByteArray& element);

    std::unique_ptr<RecordingAccessor> m_accessor;
    std::unique_ptr<CVideoOverlayManager> m_manager;
    std::unique_ptr<OverlayEvents> m_events;
};

void TestPlatformProfile::init()
{
    m_accessor = std::make_unique<RecordingAccessor>();
    m_manager = std::make_unique<CVideoOverlayManager>();
    m_manager->setElementAccessor(m_accessor.get());
    m_events = std::make_unique<OverlayEvents>(*m_manager, *m_accessor);
}

void TestPlatformProfile::cleanup()
{
    m_manager.reset();
    m_events.reset();
    m_accessor.reset();
}

/// Null if the element is not taken, or is no text.
CVideoOverlayText* TestPlatformProfile::loadText(const QByteArray& element)
{
    QString error;
    const bool loaded =
        m_manager->loadProfileData("{\"elements\": [" + element + "]}", QStringLiteral("profile"), &error);
    if (!loaded) {
        qWarning("%s", qPrintable(error));
        return nullptr;
    }
    return qobject_cast<CVideoOverlayText*>(m_manager->getElementList().value(0));
}

void TestPlatformProfile::aLoadedProfileTellsItsNameSourceAndSize()
{
    const QTemporaryDir directory;
    QFile file(directory.filePath(QStringLiteral("dates.json")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(oneDate), static_cast<qint64>(oneDate.size()));
    file.close();
    QVERIFY(m_manager->loadProfile(file.fileName()));
    QVERIFY(m_manager->currentProfile());
    QCOMPARE(m_manager->currentProfile()->name(), QStringLiteral("dates"));
    QCOMPARE(m_manager->currentProfile()->sourceName(), file.fileName());
    QCOMPARE(m_manager->currentProfile()->elementCount(), 1);
}

void TestPlatformProfile::signalsComeInOrder()
{
    QVERIFY(m_manager->loadProfileData(oneDate, QStringLiteral("first")));
    QCOMPARE(m_events->take(),
             (QStringList{QStringLiteral("beforeRemoveElements"), QStringLiteral("register Date"),
                          QStringLiteral("profileLoaded")}));
    m_manager->createText();
    QVERIFY(m_manager->loadProfileData(oneTime, QStringLiteral("second")));
    QCOMPARE(m_events->take(),
             (QStringList{QStringLiteral("beforeRemoveElements"), QStringLiteral("beforeRemoveElement Date"),
                          QStringLiteral("unregister Date"), QStringLiteral("beforeRemoveElement custom"),
                          QStringLiteral("unregister unknown"), QStringLiteral("register Time"),
                          QStringLiteral("profileLoaded")}));
}

void TestPlatformProfile::theProfileIsThereWhenItIsAnnounced()
{
    QString announced;
    int elements = 0;
    connect(m_manager.get(), &CVideoOverlayManager::profileLoaded, this, [&] {
        announced = m_manager->currentProfile()->name();
        elements = m_manager->getElementList().size();
    });
    QVERIFY(m_manager->loadProfileData(oneDate, QStringLiteral("profile")));
    QCOMPARE(announced, QStringLiteral("dates"));
    QCOMPARE(elements, 1);
}

void TestPlatformProfile::everyElementOfTheOldProfileAndEveryCustomTextGoes()
{
    QVERIFY(m_manager->loadProfileData(oneDate, QStringLiteral("first")));
    const QPointer<CVideoOverlayElement> date = m_manager->getElementList().value(0);
    const QPointer<CVideoOverlayText> custom = m_manager->createText();
    QVERIFY(m_manager->loadProfileData(oneTime, QStringLiteral("second")));
    QTRY_VERIFY(!date && !custom);
    QCOMPARE(m_manager->getElementList().size(), 1);
    QCOMPARE(m_accessor->keys.values(), QStringList{ElementParam::NAME_TIME});
}

void TestPlatformProfile::aBadFileChangesNothing()
{
    QVERIFY(m_manager->loadProfileData(oneDate, QStringLiteral("first")));
    m_manager->createText();
    m_events->take();
    const auto elements = m_manager->getElementList();
    const auto* const profile = m_manager->currentProfile();
    // The fault stands at the very end.
    QVERIFY(!m_manager->loadProfileData(
        R"({"elements": [{"kind": "bound", "binding": "Time"}, {"kind": "static", "id": 0}]})",
        QStringLiteral("second")));
    QVERIFY(m_events->events.isEmpty());
    QCOMPARE(m_manager->getElementList(), elements);
    QCOMPARE(m_manager->currentProfile(), profile);
}

void TestPlatformProfile::anErrorNeedNotBeAskedFor()
{
    QVERIFY(!m_manager->loadProfile(QStringLiteral("/nowhere/profile.json")));
    QVERIFY(!m_manager->loadProfileData("{}", QStringLiteral("profile"), nullptr));
    QVERIFY(!m_manager->currentProfile());
}

void TestPlatformProfile::aProfileIsNotReplacedWhileItIsBeingReplaced()
{
    QString error;
    bool loaded = true;
    connect(m_manager.get(), &CVideoOverlayManager::beforeRemoveElements, this, [&] {
        loaded = m_manager->loadProfileData(oneTime, QStringLiteral("inner"), &error);
        m_manager->removeProfile();
    });
    QVERIFY(m_manager->loadProfileData(oneDate, QStringLiteral("outer")));
    QVERIFY(!loaded);
    QCOMPARE(error, QStringLiteral("inner: another profile is being loaded"));
    QCOMPARE(m_manager->currentProfile()->sourceName(), QStringLiteral("outer"));
}

void TestPlatformProfile::aProfileMayBeReplacedFromItsAnnouncement()
{
    bool done = false;
    connect(m_manager.get(), &CVideoOverlayManager::profileLoaded, this, [&] {
        if (!done) {
            done = true;
            QVERIFY(m_manager->loadProfileData(oneTime, QStringLiteral("second")));
        }
    });
    QVERIFY(m_manager->loadProfileData(oneDate, QStringLiteral("first")));
    QCOMPARE(m_accessor->keys.values(), QStringList{ElementParam::NAME_TIME});
}

void TestPlatformProfile::aTextMadeDuringTheReplacementStays()
{
    QVERIFY(m_manager->loadProfileData(oneDate, QStringLiteral("first")));
    QPointer<CVideoOverlayText> made;
    connect(m_manager.get(), &CVideoOverlayManager::beforeRemoveElement, this,
            [&] { made = m_manager->createText(); });
    QVERIFY(m_manager->loadProfileData(oneTime, QStringLiteral("second")));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(made);
    QVERIFY(m_manager->getElementList().contains(made));
    QCOMPARE(m_manager->getElementList().size(), 2);
}

void TestPlatformProfile::removingTheProfileRemovesEverything()
{
    QVERIFY(m_manager->loadProfileData(oneDate, QStringLiteral("profile")));
    m_manager->createText();
    m_events->take();
    m_manager->removeProfile();
    QVERIFY(!m_manager->currentProfile());
    QVERIFY(m_manager->getElementList().isEmpty());
    QVERIFY(m_accessor->keys.isEmpty());
    QCOMPARE(m_events->take(),
             (QStringList{QStringLiteral("beforeRemoveElements"), QStringLiteral("beforeRemoveElement Date"),
                          QStringLiteral("unregister Date"), QStringLiteral("beforeRemoveElement custom"),
                          QStringLiteral("unregister unknown")}));
}

void TestPlatformProfile::everyFieldOfATextIsTaken()
{
    const CVideoOverlayText* const text = loadText(R"({
        "kind": "bound", "binding": "ObjectTemperature", "row": 255, "column": 7, "type": 2, "enabled": false,
        "visible": false, "text": "Au\u00dfen", "unit": "\u00b0F", "timeout": 86400, "textColor": "#80FF0000",
        "backgroundColor": "#00FF00", "font": {"family": "DejaVu Sans", "size": 18}})");
    QVERIFY(text);
    QCOMPARE(text->row(), 255);
    QCOMPARE(text->column(), 7);
    QCOMPARE(text->type(), 2);
    QVERIFY(!text->enabled());
    QVERIFY(!text->visible());
    QCOMPARE(text->text(), QStringLiteral("Au\u00dfen"));
    QCOMPARE(text->unit(), QStringLiteral("\u00b0F"));
    QCOMPARE(text->timeout(), 86400);
    QCOMPARE(text->textColor(), QColor(255, 0, 0, 128));
    QCOMPARE(text->backgroundColor(), QColor(0, 255, 0));
    QCOMPARE(text->font().family(), QStringLiteral("DejaVu Sans"));
    QCOMPARE(text->font().pointSize(), 18);
    QVERIFY(m_accessor->element(ElementParam::NAME_OBJECT_TEMPERATURE));
}

void TestPlatformProfile::aTextThatSaysNothingHasItsDefaults()
{
    CVideoOverlayText* const text = loadText(R"({"kind": "bound", "binding": "Speed"})");
    QVERIFY(text);
    QCOMPARE(text->row(), 0);
    QCOMPARE(text->column(), 0);
    QCOMPARE(text->type(), 0);
    QVERIFY(text->enabled());
    QVERIFY(text->visible());
    QCOMPARE(text->text(), QString());
    QCOMPARE(text->unit(), QString());
    QCOMPARE(text->timeout(), 0);
    QCOMPARE(text->textColor(), QColor(Qt::white));
    QCOMPARE(text->backgroundColor(), QColor(Qt::transparent));
    QCOMPARE(text->font(), QFont());
    QCOMPARE(text->caption(), QString());
    QVERIFY(!text->getParamObject().contains(ElementParam::NAME_STATIC_ID));
}

void TestPlatformProfile::aStaticTextIsKnownByItsId()
{
    CVideoOverlayText* const text = loadText(R"({"kind": "static", "id": 3, "text": "third"})");
    QVERIFY(text);
    QCOMPARE(text->getParamObject().value(ElementParam::NAME_STATIC_ID).toInt(), 3);
    QVERIFY(!text->getParamObject().contains(ElementParam::NAME_COLUMNBOUND));
    QCOMPARE(m_accessor->element(ElementParam::NAME_STATUS_TEXT_3), static_cast<CVideoOverlayElement*>(text));
}

void TestPlatformProfile::aFreeTextIsTheFreeTextBoxUnlessItHasACaption()
{
    QVERIFY(loadText(R"({"kind": "free"})"));
    QVERIFY(m_accessor->element(ElementParam::NAME_OSD_FREE_TEXT_BOX));
    const CVideoOverlayText* const other = loadText(R"({"kind": "free", "caption": "Operator"})");
    QVERIFY(other);
    QCOMPARE(other->caption(), QStringLiteral("Operator"));
    QVERIFY(m_accessor->element(QStringLiteral("Operator")));
    QVERIFY(!m_accessor->element(ElementParam::NAME_OSD_FREE_TEXT_BOX));
}

void TestPlatformProfile::aPlainElementIsNoText()
{
    QVERIFY(!loadText(R"({"kind": "plain", "caption": "Logo", "row": 3, "column": 4, "type": 5,
                          "enabled": false, "width": 120, "height": 40})"));
    CVideoOverlayElement* const logo = m_accessor->element(QStringLiteral("Logo"));
    QVERIFY(logo);
    QCOMPARE(logo->row(), 3);
    QCOMPARE(logo->column(), 4);
    QCOMPARE(logo->type(), 5);
    QVERIFY(!logo->enabled());
    QVERIFY(logo->visible());
    QCOMPARE(logo->width(), 120.0);
    QCOMPARE(logo->height(), 40.0);
}

void TestPlatformProfile::coloursMayBeNumbersOrNames_data()
{
    QTest::addColumn<QByteArray>("written");
    QTest::addColumn<QColor>("expected");
    QTest::newRow("opaque") << QByteArray("#0000ff") << QColor(0, 0, 255, 255);
    QTest::newRow("with transparency in front") << QByteArray("#400000FF") << QColor(0, 0, 255, 64);
    QTest::newRow("name") << QByteArray("Yellow") << QColor(255, 255, 0);
    QTest::newRow("transparent") << QByteArray("transparent") << QColor(0, 0, 0, 0);
}

void TestPlatformProfile::coloursMayBeNumbersOrNames()
{
    QFETCH(QByteArray, written);
    QFETCH(QColor, expected);
    const CVideoOverlayText* const text = loadText(R"({"kind": "free", "textColor": ")" + written + "\"}");
    QVERIFY(text);
    QCOMPARE(text->textColor().rgba(), expected.rgba());
}

void TestPlatformProfile::everyBindingOfTheProtocolIsKnown()
{
    const QStringList bindings{ElementParam::NAME_SECTION_DISTANCE_COUNTER,
                               ElementParam::NAME_SAT_DISTANCE_COUNTER,
                               ElementParam::NAME_TOTAL_DISTANCE_COUNTER,
                               ElementParam::NAME_DATE,
                               ElementParam::NAME_TIME,
                               ElementParam::NAME_VIDEO_TIME_COUNTER,
                               ElementParam::NAME_CRAWLER_TEMPERATURE,
                               ElementParam::NAME_CRAWLER_PRESSURE,
                               ElementParam::NAME_CRAWLER_ROLL,
                               ElementParam::NAME_CRAWLER_PITCH,
                               ElementParam::NAME_CAMERA_TILT,
                               ElementParam::NAME_CAMERA_PAN,
                               ElementParam::NAME_CAMERA_TEMPERATURE,
                               ElementParam::NAME_CAMERA_PRESSURE,
                               ElementParam::NAME_OBJECT_TEMPERATURE,
                               ElementParam::NAME_SPEED};
    for (const QString& binding : bindings) {
        CVideoOverlayText* const text =
            loadText(R"({"kind": "bound", "binding": ")" + binding.toUtf8() + "\"}");
        QVERIFY2(text, qPrintable(binding));
        QCOMPARE(text->getParamObject().value(ElementParam::NAME_COLUMNBOUND).toString(), binding);
    }
}

void TestPlatformProfile::anEmptyProfileIsAProfile()
{
    QVERIFY(m_manager->loadProfileData(R"({"elements": []})", QStringLiteral("profile")));
    QVERIFY(m_manager->currentProfile());
    QVERIFY(m_manager->getElementList().isEmpty());
}

void TestPlatformProfile::aFileMayStartWithAByteOrderMark()
{
    QVERIFY(m_manager->loadProfileData("\xef\xbb\xbf" + oneDate, QStringLiteral("profile")));
    QCOMPARE(m_manager->getElementList().size(), 1);
}

QTEST_GUILESS_MAIN(TestPlatformProfile)
#include "tst_platform_profile.moc"
