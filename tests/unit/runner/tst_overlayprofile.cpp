// What a loaded profile and the removal of one do, and the lock that is held meanwhile.

#include "BoundItem.h"
#include "FakeDevices.h"
#include "HostedUnit.h"

#include <QSignalSpy>
#include <QtTest>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;
using Mavril::VideoOverlay::ElementParam;

class TestOverlayProfile : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void nothingIsBoundBeforeAProfileIsLoaded();
    void nothingHappensWithoutACurrentProfile();
    void loadingSetsTheStartValuesAgain();
    void loadingLeavesTheRestOfTheModel();
    void startValuesComeBeforeTheElements();
    void loadingAgainWithoutRemovalTurnsFahrenheitIntoCelsius();
    void removalUnbindsEverything();
    void removalBreaksTheHostsOwnConnectionsToo();
    void removalLeavesTheDevicesConnected();
    void removalAndLoadingBindOnce();
    void cursorStopsEndingTheEntryBetweenRemovalAndLoading();
    void profileThatComesDuringAnElementTakesItsPlace();
    void profileThatComesDuringAStatusLineTakesItsPlace();
    void profileThatComesAtTheEndOfAStatusLineIsBoundOnce();
    void profileThatComesDuringTheStartValuesTakesItsPlace();

    void lockIsHeldDuringTheWalkAndReleasedAfter();
    void lockIsTakenBeforeTheListIs();
    void lockIsReleasedWhenTheListIsEmpty();
    void managerWithoutLockIsWalkedAllTheSame();
    void bindingWithoutAProfileNeedsOnlyTheList();
    void nothingElseTakesTheLock();
};

void TestOverlayProfile::initTestCase()
{
    if (!hasOwn("net")) {
        QSKIP(NeedsOwnNetwork);
    }
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
}

void TestOverlayProfile::nothingIsBoundBeforeAProfileIsLoaded()
{
    HostedUnit unit;
    unit.addBoundText(ElementParam::NAME_SPEED)->setColumn(5);
    unit.discardCalls();
    unit.runner = std::make_unique<Runner>(&unit.backend, &unit.manager, &unit.accessor);
    QCOMPARE(unit.model().cableSpeedPosition(), QPoint());
    unit.model().setCableSpeedPosition(QPoint(1, 1));
    QCOMPARE(unit.log.take(), QStringList());
}

void TestOverlayProfile::nothingHappensWithoutACurrentProfile()
{
    HostedUnit unit;
    unit.addBoundText(ElementParam::NAME_SPEED)->setColumn(5);
    unit.manager.hasProfile = false;
    unit.model().setVideoCounterHours(1);
    unit.loadProfile();
    QCOMPARE(unit.model().cableSpeedPosition(), QPoint());
    QCOMPARE(unit.model().videoCounterHours(), 1);
    unit.model().setCableSpeedPosition(QPoint(1, 1));
    QCOMPARE(unit.log.take(), QStringList());
}

void TestOverlayProfile::loadingSetsTheStartValuesAgain()
{
    HostedUnit unit;
    DataManager& m = unit.model();
    void (DataManager::*const setters[])(int) = {&DataManager::setMeterCounter1Format,
                                                 &DataManager::setMeterCounter2Format,
                                                 &DataManager::setMeterCounter3Format,
                                                 &DataManager::setDateFormat,
                                                 &DataManager::setTimeFormat,
                                                 &DataManager::setVideoCounterHours,
                                                 &DataManager::setVideoCounterMinutes,
                                                 &DataManager::setVideoCounterSeconds,
                                                 &DataManager::setVideoCounterFrames,
                                                 &DataManager::setVideoCounterFormat,
                                                 &DataManager::setCrawlerTemperatureFormat,
                                                 &DataManager::setCrawlerPressureFormat,
                                                 &DataManager::setCrawlerRollFormat,
                                                 &DataManager::setTiltFormat,
                                                 &DataManager::setExtTemperatureFormat,
                                                 &DataManager::setCameraTemperatureFormat,
                                                 &DataManager::setPressureFormat,
                                                 &DataManager::setInclinationFormat,
                                                 &DataManager::setPanPositionFormat,
                                                 &DataManager::setCableSpeedFormat};
    for (const auto setter : setters) {
        (m.*setter)(7);
    }
    m.setTextCodec(DataManager::Utf16);
    m.setSoftwareID(QStringLiteral("another"));
    QCoreApplication::setApplicationVersion(QStringLiteral("8.1"));
    unit.loadProfile();

    const QList<int> formats{m.meterCounter1Format(),
                             m.meterCounter2Format(),
                             m.meterCounter3Format(),
                             m.dateFormat(),
                             m.timeFormat(),
                             m.videoCounterFormat(),
                             m.crawlerTemperatureFormat(),
                             m.crawlerPressureFormat(),
                             m.crawlerRollFormat(),
                             m.extTemperatureFormat(),
                             m.cameraTemperatureFormat(),
                             m.pressureFormat(),
                             m.inclinationFormat(),
                             m.panPositionFormat()};
    QCOMPARE(formats, QVector<int>(14, 0).toList());
    QCOMPARE(m.tiltPositionFormat(), 1);
    QCOMPARE(m.cableSpeedFormat(), 1);
    QCOMPARE(QList<int>({m.videoCounterHours(), m.videoCounterMinutes(), m.videoCounterSeconds(),
                         m.videoCounterFrames()}),
             QList<int>({10, 20, 30, 40}));
    QCOMPARE(m.textCodec(), DataManager::Latin9);
    QCOMPARE(m.softwareID(), QStringLiteral("Tolvar QR740 ZEL-interface: V8.1 - 20180828 - 12:00"));
}

void TestOverlayProfile::loadingLeavesTheRestOfTheModel()
{
    HostedUnit unit;
    DataManager& m = unit.model();
    const ColorPair colours{QColor(Qt::red), QColor(Qt::black)};
    m.setLineColorPair(colours);
    m.setCursorPosition(3, 4);
    m.setLineText({QStringLiteral("a")}, 0);
    m.setDatePosition(QPoint(1, 2));
    m.setDateVisible(true);
    m.setTiltValue(1.5F);
    m.setStatusLine1Text(QStringLiteral("text"));
    unit.loadProfile();
    QCOMPARE(m.lineColorPair(), colours);
    QCOMPARE(m.cursorPosition(), QPoint(3, 4));
    QCOMPARE(m.lineText(), inOrder("a"));
    QCOMPARE(m.datePosition(), QPoint(1, 2));
    QCOMPARE(m.dateVisible(), true);
    QCOMPARE(m.tiltPositionValue(), 1.5F);
    QCOMPARE(m.statusLine1Text(), QStringLiteral("text"));
}

void TestOverlayProfile::startValuesComeBeforeTheElements()
{
    HostedUnit unit;
    unit.addBoundText(ElementParam::NAME_OBJECT_TEMPERATURE)->setUnit(QStringLiteral("°F"));
    unit.loadProfile();
    QCOMPARE(unit.model().extTemperatureFormat(), 1); // the element's unit has the last word
}

// The start values go out over the bindings that still stand: the format 0 makes the element's unit Celsius,
// and that is then taken over.
void TestOverlayProfile::loadingAgainWithoutRemovalTurnsFahrenheitIntoCelsius()
{
    HostedUnit unit;
    RecordingText* const text = unit.addBoundText(ElementParam::NAME_OBJECT_TEMPERATURE);
    text->setUnit(QStringLiteral("°F"));
    unit.loadProfile();
    unit.loadProfile();
    QCOMPARE(text->unit(), QStringLiteral("°C"));
    QCOMPARE(unit.model().extTemperatureFormat(), 0);
}

void TestOverlayProfile::removalUnbindsEverything()
{
    HostedUnit unit;
    for (const BoundItem& item : boundItems()) {
        unit.addBoundText(item.column);
    }
    for (int id = 1; id <= 4; ++id) {
        unit.addText(QString::number(id), ElementParam::NAME_STATIC_ID, id);
    }
    unit.addText(QStringLiteral("free"), ElementParam::NAME_COLUMNCAPTION,
                 ElementParam::NAME_OSD_FREE_TEXT_BOX);
    unit.loadProfile();
    emit unit.manager.beforeRemoveElements();

    DataManager& model = unit.model();
    for (const BoundItem& item : boundItems()) {
        (model.*item.setPosition)(QPoint(3, 9));
        (model.*item.setVisible)(true);
        (model.*item.setColours)({QColor(Qt::red), QColor(Qt::red)});
    }
    model.setExtTemperatureFormat(1);
    model.setStatusLine1Text(QStringLiteral("text"));
    model.setStatusLine4Visible(true);
    model.setLineText({QStringLiteral("free")}, 5);
    QCOMPARE(unit.log.take(), QStringList());
}

void TestOverlayProfile::removalBreaksTheHostsOwnConnectionsToo()
{
    HostedUnit unit;
    const QSignalSpy moved(&unit.model(), &DataManager::datePositionChanged);
    unit.model().setDatePosition(QPoint(1, 1));
    QCOMPARE(moved.count(), 1);
    emit unit.manager.beforeRemoveElements();
    unit.model().setDatePosition(QPoint(2, 2));
    QCOMPARE(moved.count(), 1);
}

void TestOverlayProfile::removalLeavesTheDevicesConnected()
{
    FakeDevices devices;
    HostedUnit unit(QStringLiteral("Tcp"), HostedUnit::Devices::OfTheTest);
    emit unit.manager.beforeRemoveElements();
    emit devices.reel.calculatedReelSpeedChanged(1.5F);
    emit devices.camera.tiltPositionChanged(-90);
    emit devices.camera.panPositionChanged(45);
    emit devices.camera.cameraTemperatureChanged(30);
    QCOMPARE(unit.model().cableSpeedValue(), 1.5F);
    QCOMPARE(unit.model().tiltPositionValue(), -90.0F);
    QCOMPARE(unit.model().panPositionValue(), 45.0F);
    QCOMPARE(unit.model().cameraTemperatureValue(), 30.0F);
}

void TestOverlayProfile::removalAndLoadingBindOnce()
{
    HostedUnit unit;
    unit.addBoundText(ElementParam::NAME_SPEED);
    unit.loadProfile();
    emit unit.manager.beforeRemoveElements();
    unit.loadProfile();
    unit.model().setCableSpeedVisible(true);
    QCOMPARE(unit.log.take(), inOrder(ElementParam::NAME_SPEED + QLatin1String(".setEnabled(true)")));
}

void TestOverlayProfile::cursorStopsEndingTheEntryBetweenRemovalAndLoading()
{
    HostedUnit unit;
    const auto type = [&](char character) {
        unit.runner->onPrintableCharReceived(character);
    };
    const auto shown = [&] {
        return unit.manager.created.first()->text();
    };
    type('a');
    unit.model().setCursorPosition(0, 0);
    type('b');
    QCOMPARE(shown(), QStringLiteral("b")); // the cursor was set: a new text
    emit unit.manager.beforeRemoveElements();
    unit.model().setCursorPosition(0, 0);
    type('c');
    QCOMPARE(shown(), QStringLiteral("bc")); // nobody heard of the cursor
    unit.loadProfile();
    unit.model().setCursorPosition(0, 0);
    type('d');
    QCOMPARE(shown(), QStringLiteral("d"));
}

/// A host may load another profile when it hears of what the first one has set. Nothing of the first one is
/// to arrive after that, neither the rest of the element nor the elements behind it.
void TestOverlayProfile::profileThatComesDuringAnElementTakesItsPlace()
{
    HostedUnit unit;
    RecordingText* const speed = unit.addBoundText(ElementParam::NAME_SPEED);
    speed->setColumn(5);
    speed->setEnabled(false);
    RecordingText* const date = unit.addBoundText(ElementParam::NAME_DATE);
    date->setColumn(7);
    const QPoint dateBefore = unit.model().datePosition();
    connect(&unit.model(), &DataManager::cableSpeedPositionChanged, this,
            [&](const QString&, const QPoint& position) {
                if (position.x() != 5) {
                    return;
                }
                emit unit.manager.beforeRemoveElements();
                unit.manager.elements.removeAll(date);
                speed->setColumn(9);
                speed->setEnabled(true);
                emit unit.manager.profileLoaded();
            });
    unit.loadProfile();
    QCOMPARE(unit.model().cableSpeedPosition(), QPoint(9, 0));
    QCOMPARE(unit.model().cableSpeedVisible(), true);
    QCOMPARE(unit.model().datePosition(), dateBefore);
    unit.discardCalls();
    unit.model().setCableSpeedPosition(QPoint(1, 0));
    QCOMPARE(unit.log.take().filter(QStringLiteral("setColumn(1)")).size(), 1); // bound once
}

void TestOverlayProfile::profileThatComesDuringAStatusLineTakesItsPlace()
{
    HostedUnit unit;
    RecordingText* const line = unit.addText(QStringLiteral("1"), ElementParam::NAME_STATIC_ID, 1);
    line->setText(QStringLiteral("first"));
    line->setEnabled(false);
    connect(&unit.model(), &DataManager::statusLine1TextChanged, this,
            [&](const QString&, const QString& text) {
                if (text != QStringLiteral("first")) {
                    return;
                }
                emit unit.manager.beforeRemoveElements();
                line->setText(QStringLiteral("second"));
                line->setEnabled(true);
                emit unit.manager.profileLoaded();
            });
    unit.loadProfile();
    QCOMPARE(unit.model().statusLine1Text(), QStringLiteral("second"));
    QCOMPARE(unit.model().statusLine1Visible(), true);
}

void TestOverlayProfile::profileThatComesAtTheEndOfAStatusLineIsBoundOnce()
{
    HostedUnit unit;
    RecordingText* const line = unit.addText(QStringLiteral("1"), ElementParam::NAME_STATIC_ID, 1);
    line->setTextColor(Qt::red);
    connect(&unit.model(), &DataManager::statusLine1ColorPairChanged, this,
            [&](const QString&, const ColorPair& colors) {
                if (colors.first == QColor(Qt::red)) {
                    emit unit.manager.beforeRemoveElements();
                    line->setTextColor(Qt::green);
                    emit unit.manager.profileLoaded();
                }
            });
    unit.loadProfile();
    unit.model().setStatusLine1Text(QStringLiteral("text"));
    QCOMPARE(unit.log.take(), inOrder("1.setText(text)"));
}

void TestOverlayProfile::profileThatComesDuringTheStartValuesTakesItsPlace()
{
    HostedUnit unit;
    RecordingText* const temperature = unit.addBoundText(ElementParam::NAME_OBJECT_TEMPERATURE);
    unit.loadProfile();
    const int celsius = unit.model().extTemperatureFormat();
    unit.model().setMeterCounter1Format(3); // so that its start value is news
    bool isFirst = true;
    connect(&unit.model(), &DataManager::meterCounter1FormatChanged, this, [&] {
        if (std::exchange(isFirst, false)) {
            temperature->setUnit(QStringLiteral("\u00B0F"));
            emit unit.manager.profileLoaded();
        }
    });
    unit.loadProfile();
    QVERIFY(!isFirst);
    QVERIFY(unit.model().extTemperatureFormat() != celsius);
}

void TestOverlayProfile::lockIsHeldDuringTheWalkAndReleasedAfter()
{
    HostedUnit unit;
    QMutex& mutex = *unit.manager.mutex();
    QStringList walk;
    const auto watch = [&](const QString& name, RecordingText* text) {
        text->whenAsked = [&, name] {
            const bool free = mutex.tryLock();
            if (free) {
                mutex.unlock();
            }
            walk.append(name + QLatin1String(free ? " unlocked" : " locked"));
        };
    };
    watch(QStringLiteral("speed"), unit.addBoundText(ElementParam::NAME_SPEED));
    watch(QStringLiteral("date"), unit.addBoundText(ElementParam::NAME_DATE));
    watch(QStringLiteral("static"), unit.addText(QStringLiteral("static"), ElementParam::NAME_STATIC_ID, 1));
    walk.clear(); // registering asks, too
    unit.loadProfile();
    walk.removeDuplicates(); // how often an element is asked is nobody's business
    QCOMPARE(walk, inOrder("speed locked", "date locked", "static locked"));
    QVERIFY(mutex.tryLock());
    mutex.unlock();
}

void TestOverlayProfile::lockIsTakenBeforeTheListIs()
{
    HostedUnit unit;
    QMutex& mutex = *unit.manager.mutex();
    int listed = 0;
    bool free = false;
    unit.manager.whenListed = [&] {
        ++listed;
        free = mutex.tryLock();
        if (free) {
            mutex.unlock();
        }
    };
    unit.loadProfile();
    QCOMPARE(listed, 1);
    QVERIFY(!free);
}

void TestOverlayProfile::lockIsReleasedWhenTheListIsEmpty()
{
    HostedUnit unit;
    unit.loadProfile();
    QVERIFY(unit.manager.mutex()->tryLock());
    unit.manager.mutex()->unlock();
}

void TestOverlayProfile::managerWithoutLockIsWalkedAllTheSame()
{
    HostedUnit unit;
    unit.manager.hasMutex = false;
    unit.addBoundText(ElementParam::NAME_SPEED)->setColumn(5);
    unit.loadProfile();
    QCOMPARE(unit.model().cableSpeedPosition(), QPoint(5, 0));
}

void TestOverlayProfile::bindingWithoutAProfileNeedsOnlyTheList()
{
    HostedUnit unit;
    unit.manager.hasProfile = false;
    unit.addBoundText(ElementParam::NAME_SPEED)->setColumn(5);
    unit.runner->connectVarundo();
    QCOMPARE(unit.model().cableSpeedPosition(), QPoint(5, 0));
}

// Were it taken anywhere here, this test would stand still.
void TestOverlayProfile::nothingElseTakesTheLock()
{
    HostedUnit unit;
    RecordingText* const speed = unit.addBoundText(ElementParam::NAME_SPEED);
    unit.loadProfile();
    QMutexLocker held(unit.manager.mutex());
    unit.model().setCableSpeedPosition(QPoint(3, 9));
    QCOMPARE(speed->column(), 3);
    unit.command(Protocol::Write, 0x98, QByteArray("\x02line", 5));
    unit.command(Protocol::Write, 0x95, QByteArray("text"));
    unit.runner->onPrintableCharReceived('x');
    QCOMPARE(unit.manager.created.size(), 2);
    unit.command(Protocol::Write, 0x98, QByteArray("\x03", 1));
    unit.runner->clearEmptyTexts();
    QCOMPARE(unit.manager.created.size(), 2);
    unit.command(Protocol::Execute, 0x88);
    QCOMPARE(unit.manager.created.size(), 0);
    emit unit.manager.beforeRemoveElements();
}

QTEST_MAIN(TestOverlayProfile)
#include "tst_overlayprofile.moc"
