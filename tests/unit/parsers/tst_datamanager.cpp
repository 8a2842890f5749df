#include "ModelSnapshot.h"

#include <QtTest>

#include <iterator>
#include <type_traits>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

// What came off the wire is stored as it is: any byte must be a value of the enumeration.
static_assert(std::is_convertible_v<DataManager::TextCodec, int>, "a plain enumeration, not a scoped one");
static_assert(DataManager::Latin9 == 0 && DataManager::Utf8 == 1 && DataManager::Utf16 == 2);

namespace {

template <class Row>
QString announcement(const Row& row, const QString& value)
{
    const QString name = QString::fromLatin1(QMetaMethod::fromSignal(row.changed).name());
    return row.element ? QStringLiteral("%1(\"%2\", %3)").arg(name, *row.element, value)
                       : QStringLiteral("%1(%2)").arg(name, value);
}

/// Sets one value, the same again, another, the same again: two announcements, and no other property moves.
template <class Row, class Value>
void checkProperty(const Row& row, const Value& first, const Value& second)
{
    DataManager model;
    fillModel(model, !std::is_same_v<Value, bool>);
    SignalLog log;
    watchModel(log, model);
    for (const Value& value : {first, second}) {
        const ModelSnapshot before(model);
        (model.*row.set)(value);
        QCOMPARE(log.take(), QStringList{announcement(row, asText(value))});
        QCOMPARE(asText((model.*row.get)()), asText(value));
        QCOMPARE(before.changesTo(ModelSnapshot(model)),
                 QStringList{QStringLiteral("%1 = %2").arg(QLatin1String(row.property), asText(value))});
        (model.*row.set)(value);
        QCOMPARE(log.take(), QStringList());
        QCOMPARE(asText((model.*row.get)()), asText(value));
    }
}

template <class Rows>
void addRows(const Rows& rows)
{
    QTest::addColumn<int>("row");
    for (int i = 0; i < int(std::size(rows)); ++i) {
        QTest::newRow(rows[i].property) << i;
    }
}

const ColorPair WhiteOnBlue(Qt::white, Qt::blue);
const ColorPair WhiteOnRed(Qt::white, Qt::red);

} // namespace

/// The accessors, one by one: defaults, names, what a setter changes and what its signal carries.
class DataManagerTest : public QObject
{
    Q_OBJECT

private slots:
    void freshModelHoldsTheDefaults();
    void elementNamesAreDistinct();
    void signalsAreExactlyThoseOfTheProtocol();
    void settersAreSlotsUnderTheirIrregularNames_data();
    void settersAreSlotsUnderTheirIrregularNames();
    void formatIsAnnouncedOnceWithoutTheElementName_data() { addRows(FormatRows); }
    void formatIsAnnouncedOnceWithoutTheElementName();
    void externalTemperatureFormatAloneCarriesTheElementName();
    void visibilityIsAnnouncedOnceWithTheElementName_data() { addRows(VisibleRows); }
    void visibilityIsAnnouncedOnceWithTheElementName();
    void positionIsAnnouncedOnceWithTheElementName_data() { addRows(PositionRows); }
    void positionIsAnnouncedOnceWithTheElementName();
    void colorPairIsAnnouncedOnceWithTheElementName_data() { addRows(ColorPairRows); }
    void colorPairIsAnnouncedOnceWithTheElementName();
    void valueIsAnnouncedOnceAsItWasGiven_data() { addRows(ValueRows); }
    void valueIsAnnouncedOnceAsItWasGiven();
    void counterFieldIsAnnouncedOnce_data() { addRows(CounterRows); }
    void counterFieldIsAnnouncedOnce();
    void statusTextIsAnnouncedOnceWithTheElementName_data() { addRows(StatusTextRows); }
    void statusTextIsAnnouncedOnceWithTheElementName();
    void softwareIdIsAnnouncedOnce();
    void listenerAlreadySeesTheNewValue();
    void defaultsAreSilentWhenSetAgain();
};

void DataManagerTest::freshModelHoldsTheDefaults()
{
    const DataManager model;
    forEachProperty([&](const auto& row) {
        using Value = decltype((model.*row.get)());
        QVERIFY2(asText((model.*row.get)()) == asText(Value()), row.property);
    });
    QCOMPARE(asText(model.meterCounter1ColorPair()), QStringLiteral("invalid on invalid"));
    QCOMPARE(asText(model.lineColorPair()), asText(WhiteOnBlue));
    QCOMPARE(model.lineText(), QStringList());
    QCOMPARE(model.cursorPosition(), QPoint(0, 0));
    QCOMPARE(model.textCodec(), DataManager::Latin9);
}

void DataManagerTest::elementNamesAreDistinct()
{
    QStringList names;
    for (const VisibleRow& row : VisibleRows) {
        names.append(*row.element);
    }
    names.append(Name::NAME_OSD_FREE_TEXT_BOX);
    QCOMPARE(names.size(), 21);
    QVERIFY(!names.contains(QString()));
    QCOMPARE(names.removeDuplicates(), 0);
}

void DataManagerTest::signalsAreExactlyThoseOfTheProtocol()
{
    QStringList expected;
    for (const char* format : {"meterCounter1", "meterCounter2", "meterCounter3", "date", "time",
                               "videoCounter", "crawlerTemperature", "crawlerPressure", "crawlerRoll", "tilt",
                               "cameraTemperature", "pressure", "inclination", "panPosition", "cableSpeed"}) {
        expected << QLatin1String(format) + QStringLiteral("FormatChanged(int)");
    }
    expected << "extTemperatureFormatChanged(QString,int)"_s;
    const QStringList placed{
        "meterCounter1"_s,  "meterCounter2"_s,      "meterCounter3"_s,   "date"_s,        "time"_s,
        "videoCounter"_s,   "crawlerTemperature"_s, "crawlerPressure"_s, "crawlerRoll"_s, "tilt"_s,
        "extTemperature"_s, "cameraTemperature"_s,  "pressure"_s,        "inclination"_s, "cableSpeed"_s};
    for (const QString& element : placed) {
        expected << element + "PositionChanged(QString,QPoint)"_s;
    }
    expected << "panPositionChanged(QString,QPoint)"_s;
    const QStringList pan{"panPosition"_s};
    const QStringList statusLines{"statusLine1"_s, "statusLine2"_s, "statusLine3"_s, "statusLine4"_s};
    for (const QString& element : placed + pan + statusLines) {
        expected << element + "VisibleChanged(QString,bool)"_s
                 << element + "ColorPairChanged(QString,Tolvar::Varundo::ColorPair)"_s;
    }
    for (const QString& element : statusLines) {
        expected << element + "TextChanged(QString,QString)"_s;
    }
    expected << "crawlerTemperatureChanged(float)"_s
             << "crawlerPressureChanged(float)"_s
             << "crawlerRollValueChanged(float)"_s
             << "tiltValueChanged(float)"_s
             << "extTemperatureValueChanged(float)"_s
             << "cameraTemperatureValueChanged(float)"_s
             << "pressureValueChanged(float)"_s
             << "inclinationValueChanged(float)"_s
             << "panPositionVvalueChanged(float)"_s
             << "cableSpeedValueChanged(float)"_s;
    expected << "videoCounterHoursChanged(int)"_s
             << "videoCounterMinutesChanged(int)"_s
             << "videoCounterSecondsChanged(int)"_s
             << "videoCounterFramesChanged(int)"_s;
    expected << "softwareIDChanged(QString)"_s
             << "lineTextChanged(QString,QStringList,int)"_s
             << "cursorPositionChanged(QPoint)"_s;

    QStringList declared = declaredSignals(DataManager::staticMetaObject);
    declared.sort();
    expected.sort();
    QCOMPARE(declared, expected);
}

void DataManagerTest::settersAreSlotsUnderTheirIrregularNames_data()
{
    QTest::addColumn<QByteArray>("signature");
    for (const char* signature :
         {"setTiltValue(float)", "setTiltFormat(int)", "setTiltVisible(bool)", "setTiltPosition(QPoint)",
          "setPanPositionValue(float)", "setPanPositionFormat(int)", "setPanVisible(bool)",
          "setPanPosition(QPoint)", "setCrawlerTemperature(float)", "setCrawlerPressure(float)",
          "setLineText(QStringList,int)", "setSoftwareID(QString)", "setCursorPosition(int,int)",
          "setStatusLine1Text(QString)", "setVideoCounterFrames(int)", "setCableSpeedValue(float)"}) {
        QTest::newRow(signature) << QByteArray(signature);
    }
}

void DataManagerTest::settersAreSlotsUnderTheirIrregularNames()
{
    QFETCH(QByteArray, signature);
    const int index = DataManager::staticMetaObject.indexOfSlot(signature);
    QVERIFY(index >= 0);
    QCOMPARE(DataManager::staticMetaObject.method(index).access(), QMetaMethod::Public);
}

void DataManagerTest::formatIsAnnouncedOnceWithoutTheElementName()
{
    QFETCH(int, row);
    checkProperty(FormatRows[row], 3, -1);
}

void DataManagerTest::externalTemperatureFormatAloneCarriesTheElementName()
{
    checkProperty(NamedFormatRows[0], 3, 0);

    DataManager model;
    SignalLog log;
    watchModel(log, model);
    model.setExtTemperatureFormat(3);
    model.setCameraTemperatureFormat(3);
    QCOMPARE(log.take(),
             (QStringList{
                 QStringLiteral("extTemperatureFormatChanged(\"%1\", 3)").arg(Name::NAME_OBJECT_TEMPERATURE),
                 QStringLiteral("cameraTemperatureFormatChanged(3)")}));
}

void DataManagerTest::visibilityIsAnnouncedOnceWithTheElementName()
{
    QFETCH(int, row);
    checkProperty(VisibleRows[row], true, false);
}

void DataManagerTest::positionIsAnnouncedOnceWithTheElementName()
{
    QFETCH(int, row);
    checkProperty(PositionRows[row], QPoint(7, 9), QPoint(-1, 300));
    checkProperty(PositionRows[row], QPoint(7, 9), QPoint(8, 9));
    checkProperty(PositionRows[row], QPoint(7, 9), QPoint(7, 8));
}

void DataManagerTest::colorPairIsAnnouncedOnceWithTheElementName()
{
    QFETCH(int, row);
    checkProperty(ColorPairRows[row], WhiteOnBlue, WhiteOnRed);
    checkProperty(ColorPairRows[row], WhiteOnBlue, ColorPair(Qt::yellow, Qt::blue));
    checkProperty(ColorPairRows[row], WhiteOnBlue, ColorPair(Qt::blue, Qt::white));
    checkProperty(ColorPairRows[row], ColorPair(Qt::black, Qt::black), ColorPair(Qt::transparent, Qt::black));
    checkProperty(ColorPairRows[row], WhiteOnBlue, ColorPair());
}

void DataManagerTest::valueIsAnnouncedOnceAsItWasGiven()
{
    QFETCH(int, row);
    checkProperty(ValueRows[row], 21.5F, -0.001F);
    checkProperty(ValueRows[row], 2000.0F, 2.0F); // no unit is converted, unlike a pressure's
}

void DataManagerTest::counterFieldIsAnnouncedOnce()
{
    QFETCH(int, row);
    checkProperty(CounterRows[row], 59, 0);
}

void DataManagerTest::statusTextIsAnnouncedOnceWithTheElementName()
{
    QFETCH(int, row);
    checkProperty(StatusTextRows[row], QStringLiteral(" pipe "), QString());
    checkProperty(StatusTextRows[row], QStringLiteral("pipe"), QStringLiteral("Pipe"));
}

void DataManagerTest::softwareIdIsAnnouncedOnce()
{
    checkProperty(TextRows[0], QStringLiteral("version 1"), QStringLiteral("version 2"));
}

void DataManagerTest::listenerAlreadySeesTheNewValue()
{
    DataManager model;
    int calls = 0;
    forEachProperty([&](const auto& row) {
        const auto fresh = asText((model.*row.get)());
        connect(&model, row.changed, this, [&model, &calls, row, fresh] {
            ++calls;
            QVERIFY2(asText((model.*row.get)()) != fresh, row.property);
        });
    });
    connect(&model, &DataManager::lineTextChanged, this, [&] {
        ++calls;
        QCOMPARE(model.lineText().size(), 2);
    });
    connect(&model, &DataManager::cursorPositionChanged, this, [&] {
        ++calls;
        QCOMPARE(model.cursorPosition(), QPoint(4000, 5000));
    });
    fillModel(model, true);
    int properties = 2;
    forEachProperty([&](const auto&) { ++properties; });
    QCOMPARE(calls, properties);
}

void DataManagerTest::defaultsAreSilentWhenSetAgain()
{
    DataManager model;
    SignalLog log;
    watchModel(log, model);
    forEachProperty([&](const auto& row) { (model.*row.set)((model.*row.get)()); });
    model.setLineText({}, 0);
    QCOMPARE(log.take(), QStringList());
}

QTEST_GUILESS_MAIN(DataManagerTest)

#include "tst_datamanager.moc"
