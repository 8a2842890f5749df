#include "SimulatedUnit.h"
#include "StateReport.h"
#include "TcpDoor.h"
#include "TextGrid.h"

#include <CApplicationSettings.h>
#include <CTolvarLibrary.h>
#include <Mavril/SystemDateTime.h>
#include <Mavril/VideoOverlay/CVideoOverlayText.h>
#include <Tolvar/Varundo/DataManager.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Simulator;
using Mavril::VideoOverlay::CVideoOverlayText;

namespace {

QString interfaceKey()
{
    return QStringLiteral("ZEL_INTERFACE");
}

QJsonObject elementOf(const QJsonObject& state, const QString& key)
{
    const QJsonArray elements = state.value(QStringLiteral("elements")).toArray();
    for (const QJsonValue& element : elements) {
        if (element.toObject().value(QStringLiteral("key")) == key) {
            return element.toObject();
        }
    }
    return {};
}

QJsonValue at(const QJsonObject& object, const QStringList& path)
{
    QJsonValue value = object;
    for (const QString& name : path) {
        value = value.toObject().value(name);
    }
    return value;
}

QJsonValue at(const QJsonObject& object, const char* path)
{
    return at(object, QString::fromLatin1(path).split(QLatin1Char('.')));
}

} // namespace

/// The unit as a whole, in this process; and what it tells of itself.
class tst_SimulatedUnit : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void freshUnitServesTcpAndKeepsThat();
    void storedInterfaceIsTakenUp();
    void chosenInterfaceWinsAndIsKept();
    void portIsTheOneAskedForAndOnlyThisProcessIsTakenForIt();
    void builtInProfileShowsEveryElement();
    void builtInProfileHasNoCollisions();
    void readingsReachTheLibraryAtOnce();
    void writtenCounterIsTheReelsCounter();
    void writtenVideoCounterIsShownWhileTheLibrarysStaysAsItWas();
    void writtenMeasurementGoesToThePositionSensor();
    void measurementWithoutASensorIsOnlyRecorded();
    void clockSetOverTheLibraryIsTheDrawnOne();
    void stateNamesEverything();
    void stateOfAnElementIsWhatIsDrawn();
    void stateTellsCustomElementsFromTheProfiles();
    void unknownStoredInterfaceIsReportedAsNull();
    void hostSignalsAreKeptInOrderWithTheirArguments();
    void hostSignalsAreBounded();
    void stateOfAnElementThatIsNoTextHasNone();
    void badProfileIsExplained();
    void devicesAndClockAreTakenBackAtTheEnd();

private:
    void startUnit(const std::optional<Runner::SelectedInterface>& interface = {});
    QJsonObject state() const { return StateReport(*m_unit).toJson(); }

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<SimulatedUnit> m_unit;
};

void tst_SimulatedUnit::init()
{
    m_unit.reset();
    m_dir = std::make_unique<QTemporaryDir>();
    CApplicationSettings::instance()->setFileName(m_dir->filePath(QStringLiteral("settings")));
}

void tst_SimulatedUnit::startUnit(const std::optional<Runner::SelectedInterface>& interface)
{
    m_unit.reset();
    m_unit = std::make_unique<SimulatedUnit>(SimulatedUnit::Configuration{
        interface, TcpDoor::freePort(), QDateTime({2026, 3, 15}, {12, 0, 0}), QString()});
    QString error;
    QVERIFY2(m_unit->start(&error), qPrintable(error));
}

void tst_SimulatedUnit::freshUnitServesTcpAndKeepsThat()
{
    startUnit();
    QCOMPARE(m_unit->runner().interface(), Runner::Tcp);
    QCOMPARE(CApplicationSettings::instance()->getCustomSetting(interfaceKey(), QString()),
             QStringLiteral("Tcp"));
}

void tst_SimulatedUnit::storedInterfaceIsTakenUp()
{
    CApplicationSettings::instance()->setCustomSetting(interfaceKey(), QStringLiteral("Udp"));
    startUnit();
    QCOMPARE(m_unit->runner().interface(), Runner::Udp);
}

void tst_SimulatedUnit::chosenInterfaceWinsAndIsKept()
{
    CApplicationSettings::instance()->setCustomSetting(interfaceKey(), QStringLiteral("Udp"));
    startUnit(Runner::Serial);
    QCOMPARE(m_unit->runner().interface(), Runner::Serial);
    startUnit();
    QCOMPARE(m_unit->runner().interface(), Runner::Serial);
}

void tst_SimulatedUnit::portIsTheOneAskedForAndOnlyThisProcessIsTakenForIt()
{
    startUnit();
    const int port = m_unit->runner().zelTcpPort();
    QVERIFY(TcpDoor::isOpen(port));
    QVERIFY(!TcpDoor::whyClosed(port).isEmpty());
    const int other = TcpDoor::freePort();
    QVERIFY(other > 0 && other != port);
    QVERIFY(!TcpDoor::isOpen(other));
    QCOMPARE(TcpDoor::whyClosed(other), QString());
}

void tst_SimulatedUnit::builtInProfileShowsEveryElement()
{
    startUnit();
    QSet<QString> keys;
    const QJsonArray elements = state().value(QStringLiteral("elements")).toArray();
    for (const QJsonValue& value : elements) {
        const QJsonObject element = value.toObject();
        keys.insert(element.value(QStringLiteral("key")).toString());
        QVERIFY(element.value(QStringLiteral("enabled")).toBool());
        QVERIFY(element.value(QStringLiteral("visible")).toBool());
    }
    using Name = Mavril::VideoOverlay::ElementParam;
    const QSet<QString> all{Name::NAME_SECTION_DISTANCE_COUNTER,
                            Name::NAME_SAT_DISTANCE_COUNTER,
                            Name::NAME_TOTAL_DISTANCE_COUNTER,
                            Name::NAME_DATE,
                            Name::NAME_TIME,
                            Name::NAME_VIDEO_TIME_COUNTER,
                            Name::NAME_STATUS_TEXT_1,
                            Name::NAME_STATUS_TEXT_2,
                            Name::NAME_STATUS_TEXT_3,
                            Name::NAME_STATUS_TEXT_4,
                            Name::NAME_CRAWLER_TEMPERATURE,
                            Name::NAME_CRAWLER_PRESSURE,
                            Name::NAME_CRAWLER_ROLL,
                            Name::NAME_CRAWLER_PITCH,
                            Name::NAME_CAMERA_TILT,
                            Name::NAME_CAMERA_PAN,
                            Name::NAME_CAMERA_TEMPERATURE,
                            Name::NAME_CAMERA_PRESSURE,
                            Name::NAME_OBJECT_TEMPERATURE,
                            Name::NAME_SPEED,
                            Name::NAME_OSD_FREE_TEXT_BOX};
    QCOMPARE(keys, all);
    QCOMPARE(elements.size(), 21);
}

/// With readings as wide as they get, no two elements share a cell and none is cut off.
void tst_SimulatedUnit::builtInProfileHasNoCollisions()
{
    startUnit();
    m_unit->devices().reel().setSectionDistance(-1234.56F);
    m_unit->devices().reel().setSatDistance(-1234.56F);
    m_unit->devices().reel().setTotalDistance(-12345.67F);
    m_unit->devices().reel().setSpeed(-100.5F);
    m_unit->devices().rts().setTemperature(-20.5F);
    m_unit->devices().crawler().setPressure(10000);
    m_unit->devices().crawler().setRoll(-180.0F);
    m_unit->devices().crawler().setPitch(-60.0F);
    m_unit->devices().camera().setPan(-180);
    m_unit->devices().camera().setTilt(-180);
    m_unit->devices().camera().setPressure(10000);
    QSet<QPair<int, int>> taken;
    const auto elements = m_unit->overlay().getElementList();
    for (auto* const element : elements) {
        auto* const text = qobject_cast<CVideoOverlayText*>(element);
        QVERIFY(text);
        const int width = m_unit->elementTexts().of(*text).inWhole().size();
        const QString where = QStringLiteral("row %1, column %2").arg(text->row()).arg(text->column());
        QVERIFY2(text->column() + width <= TextGrid::Columns && text->row() < TextGrid::Rows,
                 qPrintable(where));
        for (int column = text->column(); column < text->column() + width; ++column) {
            QVERIFY2(!taken.contains({column, text->row()}), qPrintable(where));
            taken.insert({column, text->row()});
        }
    }
}

void tst_SimulatedUnit::readingsReachTheLibraryAtOnce()
{
    startUnit();
    const DataManager& data = *m_unit->runner().getDataManager();
    const SimulatedDevices& devices = m_unit->devices();
    QVERIFY(!qFuzzyIsNull(data.crawlerTemperature()));
    QCOMPARE(data.crawlerTemperature(), static_cast<float>(devices.crawler().temperature()));
    QCOMPARE(data.crawlerPressure(), static_cast<float>(devices.crawler().pressure()));
    QCOMPARE(data.crawlerRollValue(), devices.crawler().roll());
    QCOMPARE(data.inclinationValue(), devices.crawler().crawlerPitch());
    QCOMPARE(data.tiltPositionValue(), static_cast<float>(devices.camera().tilt()));
    QCOMPARE(data.panPositionValue(), static_cast<float>(devices.camera().pan()));
    QCOMPARE(data.cameraTemperatureValue(), static_cast<float>(devices.camera().temperature()));
    QCOMPARE(data.pressureValue(), static_cast<float>(devices.camera().pressure()));
    QCOMPARE(data.extTemperatureValue(), devices.rts().temperature());
    // Those that are 0 at first, as they are in a library that was told nothing.
    m_unit->devices().reel().setSpeed(3.5F);
    QCOMPARE(data.cableSpeedValue(), 3.5F);
    m_unit->devices().camera().setPan(-12);
    QCOMPARE(data.panPositionValue(), -12.0F);
}

void tst_SimulatedUnit::writtenCounterIsTheReelsCounter()
{
    startUnit();
    emit m_unit->runner().setDistanceCounterSection(1.5F);
    emit m_unit->runner().setDistanceCounterSat(2.5F);
    emit m_unit->runner().setDistanceCounterTotal(3.5F);
    QCOMPARE(CTolvarLibrary::getReel()->sectionDistance(), 1.5F);
    QCOMPARE(CTolvarLibrary::getReel()->satDistance(), 2.5F);
    QCOMPARE(CTolvarLibrary::getReel()->totalDistance(), 3.5F);
    QCOMPARE(at(state(), "devices.reel.section").toDouble(), 1.5);
    QCOMPARE(elementOf(state(), QStringLiteral("SectionDistanceCounter")).value(QStringLiteral("text")),
             QJsonValue(QStringLiteral("1.50")));
}

void tst_SimulatedUnit::writtenVideoCounterIsShownWhileTheLibrarysStaysAsItWas()
{
    startUnit();
    const auto shown = [this] {
        return elementOf(state(), QStringLiteral("VideoTimeCounter"))
            .value(QStringLiteral("text"))
            .toString();
    };
    QCOMPARE(shown(), QStringLiteral("10:20:30")); // what the library reads out of a fresh unit
    emit m_unit->runner().writeVideoCounter(1, 2, 3);
    QCOMPARE(shown(), QStringLiteral("01:02:03"));
    QCOMPARE(m_unit->runner().getDataManager()->videoCounterHours(), 10);
}

void tst_SimulatedUnit::writtenMeasurementGoesToThePositionSensor()
{
    startUnit();
    emit m_unit->runner().writeMeasurement3DPosition(1.5, -2.5, 3.5);
    emit m_unit->runner().writeMeasurement3DOrientation(45.0F, 10.0F);
    QCOMPARE(CTolvarLibrary::getCameraPositionSensor()->position().y, -2.5);
    QCOMPARE(CTolvarLibrary::getCameraPositionSensor()->angle(), 45.0F);
    QCOMPARE(at(state(), "devices.positionSensor.position").toArray(), QJsonArray({1.5, -2.5, 3.5}));
    QCOMPARE(at(state(), "devices.positionSensor.angle").toDouble(), 45.0);
}

void tst_SimulatedUnit::measurementWithoutASensorIsOnlyRecorded()
{
    startUnit();
    m_unit->devices().setPositionSensorPresent(false);
    QVERIFY(!CTolvarLibrary::getCameraPositionSensor());
    QVERIFY(at(state(), "devices.positionSensor").isNull());
    emit m_unit->runner().writeMeasurement3DPosition(1.5, -2.5, 3.5);
    emit m_unit->runner().writeMeasurement3DOrientation(45.0F, 10.0F);
    QCOMPARE(m_unit->hostSignals().entries().size(), 2);
    m_unit->devices().setPositionSensorPresent(true);
    QCOMPARE(at(state(), "devices.positionSensor.position").toArray(), QJsonArray({0.0, 0.0, 0.0}));
}

void tst_SimulatedUnit::clockSetOverTheLibraryIsTheDrawnOne()
{
    startUnit();
    QCOMPARE(elementOf(state(), QStringLiteral("Date")).value(QStringLiteral("text")),
             QJsonValue(QStringLiteral("15.03.2026")));
    QVERIFY(at(state(), "clock.dateTime").isNull());
    QVERIFY(at(state(), "clock.time").isNull());

    Mavril::SystemDateTime().setDateTime(QDateTime({2030, 1, 2}, {3, 4, 5}));
    Mavril::SystemDateTime().setTime({6, 7, 8});
    QCOMPARE(at(state(), "clock.dateTime").toString(), QStringLiteral("2030-01-02T03:04:05"));
    QCOMPARE(at(state(), "clock.time").toString(), QStringLiteral("06:07:08"));
    QVERIFY(at(state(), "clock.drawn").toString().startsWith(QStringLiteral("2030-01-02T06:07:")));
    QCOMPARE(elementOf(state(), QStringLiteral("Date")).value(QStringLiteral("text")),
             QJsonValue(QStringLiteral("02.01.2030")));

    Mavril::SystemDateTime().setTime(QTime());
    QCOMPARE(at(state(), "clock.time").toString(), QStringLiteral("invalid"));
}

void tst_SimulatedUnit::stateNamesEverything()
{
    startUnit();
    const QJsonObject now = state();
    const QSet<QString> expected{
        QStringLiteral("interface"), QStringLiteral("tcpPort"),        QStringLiteral("baudrate"),
        QStringLiteral("serial"),    QStringLiteral("overlayVisible"), QStringLiteral("elements"),
        QStringLiteral("devices"),   QStringLiteral("signals"),        QStringLiteral("clock")};
    const QStringList names = now.keys();
    QCOMPARE(QSet<QString>(names.begin(), names.end()), expected);
    QCOMPARE(now.value(QStringLiteral("interface")).toString(), QStringLiteral("Tcp"));
    QCOMPARE(now.value(QStringLiteral("tcpPort")).toInt(), m_unit->runner().zelTcpPort());
    QCOMPARE(now.value(QStringLiteral("baudrate")).toInt(), 9600);
    QVERIFY(now.value(QStringLiteral("serial")).isNull());
    QCOMPARE(now.value(QStringLiteral("signals")).toArray(), QJsonArray());
    for (const char* const path :
         {"devices.reel.speed", "devices.reel.section", "devices.reel.sat", "devices.reel.total",
          "devices.rts.temperature", "devices.crawler.temperature", "devices.crawler.pressure",
          "devices.crawler.roll", "devices.crawler.pitch", "devices.camera.pan", "devices.camera.tilt",
          "devices.camera.temperature", "devices.camera.pressure", "devices.positionSensor.angle"}) {
        QVERIFY2(at(now, path).isDouble(), path);
    }
    QCOMPARE(at(now, "devices.camera.laser").toArray().size(), 2);
}

void tst_SimulatedUnit::stateOfAnElementIsWhatIsDrawn()
{
    startUnit();
    DataManager& data = *m_unit->runner().getDataManager();
    data.setExtTemperatureFormat(1);
    data.setExtTemperaturePosition({7, 19});
    data.setExtTemperatureColorPair({QColor(Qt::red), QColor(Qt::transparent)});
    data.setExtTemperatureVisible(false);
    m_unit->devices().rts().setTemperature(100.0F);
    QJsonObject element = elementOf(state(), QStringLiteral("ObjectTemperature"));
    element.remove(QStringLiteral("label"));
    const QJsonObject expected{{QStringLiteral("key"), QStringLiteral("ObjectTemperature")},
                               {QStringLiteral("kind"), QStringLiteral("bound")},
                               {QStringLiteral("text"), QStringLiteral("212.0")},
                               {QStringLiteral("unit"), QStringLiteral("°F")},
                               {QStringLiteral("row"), 19},
                               {QStringLiteral("column"), 7},
                               {QStringLiteral("enabled"), false},
                               {QStringLiteral("visible"), true},
                               {QStringLiteral("type"), 0},
                               {QStringLiteral("timeout"), 0},
                               {QStringLiteral("textColor"), QStringLiteral("#FFFF0000")},
                               {QStringLiteral("backgroundColor"), QStringLiteral("#00000000")}};
    QCOMPARE(element, expected);
}

void tst_SimulatedUnit::stateTellsCustomElementsFromTheProfiles()
{
    startUnit();
    m_unit->runner().onPrintableCharReceived('x');
    m_unit->runner().setOsdFreeText(QStringLiteral("OsdFreeTextBox"), 30, QStringLiteral("a\nb"));
    const QJsonObject typed = elementOf(state(), QString());
    QCOMPARE(typed.value(QStringLiteral("kind")).toString(), QStringLiteral("custom"));
    QCOMPARE(typed.value(QStringLiteral("text")).toString(), QStringLiteral("x"));
    QCOMPARE(typed.value(QStringLiteral("type")).toInt(), 3);
    const QJsonObject freeText = elementOf(state(), QStringLiteral("OsdFreeTextBox"));
    QCOMPARE(freeText.value(QStringLiteral("kind")).toString(), QStringLiteral("free"));
    QCOMPARE(freeText.value(QStringLiteral("text")).toString(), QStringLiteral("a\nb"));
    QCOMPARE(freeText.value(QStringLiteral("timeout")).toInt(), 30);
    QCOMPARE(elementOf(state(), QStringLiteral("2")).value(QStringLiteral("kind")).toString(),
             QStringLiteral("static"));
}

void tst_SimulatedUnit::unknownStoredInterfaceIsReportedAsNull()
{
    CApplicationSettings::instance()->setCustomSetting(interfaceKey(), QStringLiteral("Pigeon"));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("Pigeon")));
    startUnit();
    QVERIFY(state().value(QStringLiteral("interface")).isNull());
}

void tst_SimulatedUnit::hostSignalsAreKeptInOrderWithTheirArguments()
{
    startUnit();
    Runner& runner = m_unit->runner();
    emit runner.execute3dMeasurementMainPipeActivate();
    emit runner.execute3dMeasurementLateralActivate();
    emit runner.execute3dMeasurementDeactivate();
    emit runner.setDistanceCounterSection(1.5F);
    emit runner.setDistanceCounterTotal(2.5F);
    emit runner.setDistanceCounterSat(3.5F);
    runner.setInterface(Runner::Serial);
    emit runner.writeVideoCounter(1, 2, 3);
    emit runner.writeMeasurement3DPosition(0.5, 1.5, 2.5);
    emit runner.writeMeasurement3DOrientation(4.5F, 5.5F);
    const QByteArray expected =
        R"([["execute3dMeasurementMainPipeActivate",[]],["execute3dMeasurementLateralActivate",[]],)"
        R"(["execute3dMeasurementDeactivate",[]],["setDistanceCounterSection",[1.5]],)"
        R"(["setDistanceCounterTotal",[2.5]],["setDistanceCounterSat",[3.5]],["interfaceChanged",["Serial"]],)"
        R"(["writeVideoCounter",[1,2,3]],["writeMeasurement3DPosition",[0.5,1.5,2.5]],)"
        R"(["writeMeasurement3DOrientation",[4.5,5.5]]])";
    QJsonArray received;
    const QJsonArray entries = state().value(QStringLiteral("signals")).toArray();
    for (const QJsonValue& entry : entries) {
        received.append(QJsonArray{entry.toObject().value(QStringLiteral("name")),
                                   entry.toObject().value(QStringLiteral("arguments"))});
    }
    QCOMPARE(QJsonDocument(received).toJson(QJsonDocument::Compact), expected);
}

void tst_SimulatedUnit::hostSignalsAreBounded()
{
    startUnit();
    for (int i = 0; i < HostSignals::MaxEntries + 5; ++i) {
        emit m_unit->runner().writeVideoCounter(i, 0, 0);
    }
    QCOMPARE(m_unit->hostSignals().entries().size(), HostSignals::MaxEntries);
    QCOMPARE(m_unit->hostSignals().entries().constFirst().arguments.at(0).toInt(), 5);
    QCOMPARE(m_unit->hostSignals().entries().constLast().arguments.at(0).toInt(),
             HostSignals::MaxEntries + 4);
}

void tst_SimulatedUnit::stateOfAnElementThatIsNoTextHasNone()
{
    startUnit();
    QString error;
    QVERIFY2(m_unit->overlay().loadProfileData(
                 R"({"elements": [{"kind": "plain", "caption": "Logo", "row": 3, "column": 4}]})",
                 QStringLiteral("logo"), &error),
             qPrintable(error));
    const QJsonArray elements = state().value(QStringLiteral("elements")).toArray();
    QCOMPARE(elements.size(), 1);
    const QJsonObject logo = elements.at(0).toObject();
    QCOMPARE(logo.value(QStringLiteral("key")).toString(), QStringLiteral("Logo"));
    QCOMPARE(logo.value(QStringLiteral("kind")).toString(), QStringLiteral("plain"));
    QCOMPARE(logo.value(QStringLiteral("row")).toInt(), 3);
    QVERIFY(!logo.contains(QStringLiteral("text")));
}

void tst_SimulatedUnit::badProfileIsExplained()
{
    const QString file = m_dir->filePath(QStringLiteral("bad.json"));
    QFile profile(file);
    QVERIFY(profile.open(QIODevice::WriteOnly));
    profile.write(R"({"elements": [{"kind": "bound", "binding": "Date", "row": "top"}]})");
    profile.close();
    SimulatedUnit unit({Runner::Tcp, TcpDoor::freePort(), QDateTime(), file});
    QString error;
    QVERIFY(!unit.start(&error));
    QVERIFY2(error.contains(file) && error.contains(QStringLiteral("elements[0].row")), qPrintable(error));
}

void tst_SimulatedUnit::devicesAndClockAreTakenBackAtTheEnd()
{
    startUnit();
    QVERIFY(CTolvarLibrary::getReel() && CTolvarLibrary::getCameraPositionSensor());
    m_unit.reset();
    QVERIFY(!CTolvarLibrary::getReel() && !CTolvarLibrary::getRts() && !CTolvarLibrary::getCrawler());
    QVERIFY(!CTolvarLibrary::getCamera() && !CTolvarLibrary::getCameraPositionSensor());
    Mavril::SystemDateTime().setTime({1, 2, 3}); // reaches nothing that is gone
}

QTEST_MAIN(tst_SimulatedUnit)
#include "tst_simulatedunit.moc"
