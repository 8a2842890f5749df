// The sixteen columns that an element can be bound to, both ways: the element's state into the data model,
// and the data model's changes onto the element.

#include "BoundItem.h"
#include "HostedUnit.h"

#include <QtTest>

#include <algorithm>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;
using Mavril::VideoOverlay::ElementParam;

namespace {

const ColorPair RedOnTransparent{QColor(Qt::red), QColor(Qt::transparent)};
const ColorPair YellowOnBlack{QColor(Qt::yellow), QColor(Qt::black)};
constexpr int FirstColumn = 40;
constexpr int FirstRow = 80;

} // namespace

class TestOverlayBindings : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void elementStateIsTakenOver_data() { everyItem(); }
    void elementStateIsTakenOver();
    void takingOverDoesNotEcho();
    void positionMovesTheElement_data() { everyItem(); }
    void positionMovesTheElement();
    void visibilityEnablesTheElement_data() { everyItem(); }
    void visibilityEnablesTheElement();
    void coloursReachTheElement_data() { everyItem(); }
    void coloursReachTheElement();
    void unchangedValueDoesNotTouchTheElement_data() { everyItem(); }
    void unchangedValueDoesNotTouchTheElement();
    void bindingOneElementAloneDoesTheSame_data() { everyItem(); }
    void bindingOneElementAloneDoesTheSame();
    void elementBoundTwiceIsUpdatedTwice_data() { everyItem(); }
    void elementBoundTwiceIsUpdatedTwice();
    void valuesAndFormatsTouchNoElement();

    void totalDistanceIsMeterCounter3();
    void columnMustEqualExactly_data();
    void columnMustEqualExactly();
    void columnOfAnotherTypeIsReadAsText();
    void elementsThatAreNoTextsAreLeftUnbound();
    void lastOfTwoElementsUnderOneColumnIsTheOne();

    void unitSelectsTheTemperatureFormat_data();
    void unitSelectsTheTemperatureFormat();
    void temperatureFormatSelectsTheUnit_data();
    void temperatureFormatSelectsTheUnit();

private:
    static void everyItem();
    static const BoundItem& item();
    /// An element of every column, each where no other is, bound.
    static QList<RecordingText*> loadEveryItem(HostedUnit& unit);
    static QStringList prefixed(const QString& name, QStringList calls);
};

void TestOverlayBindings::initTestCase()
{
    if (!hasOwn("net")) {
        QSKIP(NeedsOwnNetwork);
    }
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
}

void TestOverlayBindings::everyItem()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < int(boundItems().size()); ++i) {
        QTest::newRow(boundItems()[size_t(i)].item) << i;
    }
}

const BoundItem& TestOverlayBindings::item()
{
    QFETCH(int, index);
    return boundItems()[static_cast<size_t>(index)];
}

QList<RecordingText*> TestOverlayBindings::loadEveryItem(HostedUnit& unit)
{
    QList<RecordingText*> texts;
    for (const BoundItem& bound : boundItems()) {
        RecordingText* const text = unit.addBoundText(bound.column);
        text->setColumn(FirstColumn + texts.size());
        text->setRow(FirstRow + texts.size());
        text->setEnabled(true);
        text->setTextColor(RedOnTransparent.first);
        text->setBackgroundColor(RedOnTransparent.second);
        texts.append(text);
    }
    unit.loadProfile();
    return texts;
}

QStringList TestOverlayBindings::prefixed(const QString& name, QStringList calls)
{
    std::transform(calls.begin(), calls.end(), calls.begin(),
                   [&](const QString& call) { return name + QLatin1Char('.') + call; });
    return calls;
}

void TestOverlayBindings::elementStateIsTakenOver()
{
    QFETCH(int, index);
    HostedUnit unit;
    loadEveryItem(unit);
    const DataManager& model = unit.model();
    QCOMPARE((model.*item().position)(), QPoint(FirstColumn + index, FirstRow + index));
    QCOMPARE((model.*item().visible)(), true);
    QCOMPARE((model.*item().colours)(), RedOnTransparent);
}

void TestOverlayBindings::takingOverDoesNotEcho()
{
    HostedUnit unit;
    for (const BoundItem& bound : boundItems()) {
        RecordingText* const text = unit.addBoundText(bound.column);
        text->setColumn(7);
        text->setEnabled(true);
        text->setTextColor(Qt::red);
        text->setUnit(QStringLiteral("°F"));
    }
    unit.discardCalls();
    emit unit.manager.profileLoaded();
    QCOMPARE(unit.log.take(), QStringList());
}

void TestOverlayBindings::positionMovesTheElement()
{
    HostedUnit unit;
    loadEveryItem(unit);
    (unit.model().*item().setPosition)(QPoint(3, 9));
    QCOMPARE(unit.log.take(), prefixed(item().column, inOrder("setColumn(3)", "setRow(9)")));
}

void TestOverlayBindings::visibilityEnablesTheElement()
{
    HostedUnit unit;
    loadEveryItem(unit);
    (unit.model().*item().setVisible)(false);
    QCOMPARE(unit.log.take(), prefixed(item().column, inOrder("setEnabled(false)")));
    (unit.model().*item().setVisible)(true);
    QCOMPARE(unit.log.take(), prefixed(item().column, inOrder("setEnabled(true)")));
}

void TestOverlayBindings::coloursReachTheElement()
{
    HostedUnit unit;
    loadEveryItem(unit);
    (unit.model().*item().setColours)(YellowOnBlack);
    QCOMPARE(unit.log.take(),
             prefixed(item().column, inOrder("setTextColor(#ffffff00)", "setBackgroundColor(#ff000000)")));
}

void TestOverlayBindings::unchangedValueDoesNotTouchTheElement()
{
    QFETCH(int, index);
    HostedUnit unit;
    loadEveryItem(unit);
    (unit.model().*item().setPosition)(QPoint(FirstColumn + index, FirstRow + index));
    (unit.model().*item().setVisible)(true);
    (unit.model().*item().setColours)(RedOnTransparent);
    QCOMPARE(unit.log.take(), QStringList());
}

void TestOverlayBindings::bindingOneElementAloneDoesTheSame()
{
    HostedUnit unit;
    // Under the item's name, but without a column: only the caller says what it is.
    auto* const text = unit.add<RecordingText>(QStringLiteral("element"));
    unit.accessor.registerElement(item().column, text);
    text->setColumn(4);
    text->setRow(6);
    text->setEnabled(true);
    text->setTextColor(RedOnTransparent.first);
    text->setBackgroundColor(RedOnTransparent.second);
    unit.discardCalls();

    (unit.runner.get()->*item().bind)(text);
    DataManager& model = unit.model();
    QCOMPARE((model.*item().position)(), QPoint(4, 6));
    QCOMPARE((model.*item().visible)(), true);
    QCOMPARE((model.*item().colours)(), RedOnTransparent);
    QCOMPARE(unit.log.take(), QStringList());

    (model.*item().setColours)(YellowOnBlack);
    (model.*item().setPosition)(QPoint(3, 9));
    (model.*item().setVisible)(false);
    QCOMPARE(unit.log.take(), prefixed(QStringLiteral("element"),
                                       inOrder("setTextColor(#ffffff00)", "setBackgroundColor(#ff000000)",
                                               "setColumn(3)", "setRow(9)", "setEnabled(false)")));
}

void TestOverlayBindings::elementBoundTwiceIsUpdatedTwice()
{
    HostedUnit unit;
    loadEveryItem(unit);
    unit.loadProfile(); // with no removal in between
    DataManager& model = unit.model();
    (model.*item().setPosition)(QPoint(3, 9));
    QCOMPARE(unit.log.take(),
             prefixed(item().column, inOrder("setColumn(3)", "setRow(9)", "setColumn(3)", "setRow(9)")));
    (model.*item().setVisible)(false);
    QCOMPARE(unit.log.take(), prefixed(item().column, inOrder("setEnabled(false)", "setEnabled(false)")));
    (model.*item().setColours)(YellowOnBlack);
    QCOMPARE(unit.log.take(),
             prefixed(item().column, inOrder("setTextColor(#ffffff00)", "setBackgroundColor(#ff000000)",
                                             "setTextColor(#ffffff00)", "setBackgroundColor(#ff000000)")));
}

void TestOverlayBindings::valuesAndFormatsTouchNoElement()
{
    HostedUnit unit;
    loadEveryItem(unit);
    DataManager& model = unit.model();
    model.setCableSpeedValue(1.5F);
    model.setTiltValue(1.5F);
    model.setPanPositionValue(1.5F);
    model.setInclinationValue(1.5F);
    model.setCrawlerRollValue(1.5F);
    model.setCrawlerTemperature(1.5F);
    model.setCrawlerPressure(1.5F);
    model.setCameraTemperatureValue(1.5F);
    model.setPressureValue(1.5F);
    model.setExtTemperatureValue(1.5F);
    model.setVideoCounterHours(1);
    model.setMeterCounter1Format(5);
    model.setDateFormat(5);
    model.setTimeFormat(5);
    model.setCameraTemperatureFormat(1); // unlike the external temperature's, no unit hangs on it
    model.setCrawlerTemperatureFormat(1);
    model.setInclinationFormat(5);
    QCOMPARE(unit.log.take(), QStringList());
}

void TestOverlayBindings::totalDistanceIsMeterCounter3()
{
    HostedUnit unit;
    RecordingText* const total = unit.addBoundText(ElementParam::NAME_TOTAL_DISTANCE_COUNTER);
    total->setColumn(5);
    total->setRow(2);
    unit.loadProfile();
    QCOMPARE(unit.model().meterCounter3Position(), QPoint(5, 2));
    unit.command(Protocol::Write, 0x3E, QByteArray::fromHex("0B0C"));
    QCOMPARE(total->column(), 11);
    QCOMPARE(total->row(), 12);
}

void TestOverlayBindings::columnMustEqualExactly_data()
{
    QTest::addColumn<QString>("column");
    QTest::newRow("blank behind") << ElementParam::NAME_SPEED + QLatin1Char(' ');
    QTest::newRow("blank before") << QLatin1Char(' ') + ElementParam::NAME_SPEED;
    QTest::newRow("beginning") << ElementParam::NAME_SPEED.chopped(1);
    QTest::newRow("other case") << (ElementParam::NAME_SPEED == ElementParam::NAME_SPEED.toLower()
                                        ? ElementParam::NAME_SPEED.toUpper()
                                        : ElementParam::NAME_SPEED.toLower());
    QTest::newRow("status line's name") << ElementParam::NAME_STATUS_TEXT_1;
    QTest::newRow("free text box's name") << ElementParam::NAME_OSD_FREE_TEXT_BOX;
}

void TestOverlayBindings::columnMustEqualExactly()
{
    QFETCH(QString, column);
    HostedUnit unit;
    RecordingText* const text = unit.addBoundText(column);
    text->setColumn(5);
    text->setEnabled(true);
    text->setText(QStringLiteral("text"));
    unit.accessor.registerElement(ElementParam::NAME_SPEED, text);
    unit.loadProfile();
    QCOMPARE(unit.model().cableSpeedPosition(), QPoint());
    QCOMPARE(unit.model().statusLine1Text(), QString());
    unit.model().setCableSpeedPosition(QPoint(1, 1));
    unit.model().setStatusLine1Text(QStringLiteral("line"));
    unit.model().setLineText({QStringLiteral("free")}, 0);
    QCOMPARE(unit.log.take(), QStringList());
}

void TestOverlayBindings::columnOfAnotherTypeIsReadAsText()
{
    HostedUnit unit;
    RecordingText* const text = unit.addText(QStringLiteral("speed"), ElementParam::NAME_COLUMNBOUND,
                                             ElementParam::NAME_SPEED.toUtf8());
    text->setColumn(5);
    unit.loadProfile();
    QCOMPARE(unit.model().cableSpeedPosition(), QPoint(5, 0));
    unit.model().setCableSpeedPosition(QPoint(1, 1));
    QCOMPARE(unit.log.take(), inOrder("speed.setColumn(1)", "speed.setRow(1)"));
}

void TestOverlayBindings::elementsThatAreNoTextsAreLeftUnbound()
{
    HostedUnit unit;
    auto* const element = unit.add<RecordingElement>(QStringLiteral("picture"));
    element->getParamObject().insert(ElementParam::NAME_COLUMNBOUND, ElementParam::NAME_SPEED);
    element->setColumn(5);
    unit.registerUnderItsKey(element);
    unit.manager.elements.append(nullptr);
    unit.loadProfile();
    QCOMPARE(unit.model().cableSpeedPosition(), QPoint());
    unit.model().setCableSpeedPosition(QPoint(1, 1));
    QCOMPARE(unit.log.take(), QStringList());
}

void TestOverlayBindings::lastOfTwoElementsUnderOneColumnIsTheOne()
{
    HostedUnit unit;
    unit.addBoundText(ElementParam::NAME_SPEED)->setColumn(5);
    RecordingText* const last =
        unit.addText(QStringLiteral("last"), ElementParam::NAME_COLUMNBOUND, ElementParam::NAME_SPEED);
    last->setColumn(6);
    emit unit.manager.profileLoaded();
    QCOMPARE(unit.model().cableSpeedPosition(), QPoint(6, 0));
    unit.discardCalls();
    unit.model().setCableSpeedVisible(true);
    QCOMPARE(unit.log.take(), inOrder("last.setEnabled(true)", "last.setEnabled(true)"));
}

void TestOverlayBindings::unitSelectsTheTemperatureFormat_data()
{
    QTest::addColumn<QString>("unitText");
    QTest::addColumn<int>("format");
    QTest::newRow("Fahrenheit") << QString(QChar(0x00B0)) + QLatin1Char('F') << 1;
    QTest::newRow("Celsius") << QString(QChar(0x00B0)) + QLatin1Char('C') << 0;
    QTest::newRow("none") << QString() << 0;
    QTest::newRow("no degree sign") << "F" << 0;
    QTest::newRow("small letter") << QString(QChar(0x00B0)) + QLatin1Char('f') << 0;
    QTest::newRow("blank before") << QStringLiteral(" °F") << 0;
    QTest::newRow("ordinal sign") << QString(QChar(0x00BA)) + QLatin1Char('F') << 0;
}

void TestOverlayBindings::unitSelectsTheTemperatureFormat()
{
    QFETCH(QString, unitText);
    HostedUnit unit;
    unit.addBoundText(ElementParam::NAME_OBJECT_TEMPERATURE)->setUnit(unitText);
    unit.model().setExtTemperatureFormat(7);
    unit.loadProfile();
    QTEST(unit.model().extTemperatureFormat(), "format");
}

void TestOverlayBindings::temperatureFormatSelectsTheUnit_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<QString>("call");
    const QString celsius = QStringLiteral("setUnit(%1C)").arg(QChar(0x00B0));
    QTest::newRow("1 alone") << 1 << QStringLiteral("setUnit(%1F)").arg(QChar(0x00B0));
    QTest::newRow("2") << 2 << celsius;
    QTest::newRow("255") << 255 << celsius;
    QTest::newRow("-1") << -1 << celsius;
}

void TestOverlayBindings::temperatureFormatSelectsTheUnit()
{
    QFETCH(int, format);
    QFETCH(QString, call);
    HostedUnit unit;
    loadEveryItem(unit);
    const QString element = ElementParam::NAME_OBJECT_TEMPERATURE;
    unit.model().setExtTemperatureFormat(format);
    QCOMPARE(unit.log.take(), prefixed(element, inOrder(call)));
    unit.model().setExtTemperatureFormat(0);
    QCOMPARE(unit.log.take(), prefixed(element, inOrder(QStringLiteral("setUnit(%1C)").arg(QChar(0x00B0)))));
}

QTEST_MAIN(TestOverlayBindings)
#include "tst_overlaybindings.moc"
