#include "ElementTexts.h"
#include "SimulatedClock.h"
#include "SimulatedDevices.h"
#include "VideoCounter.h"

#include <Mavril/VideoOverlay/CVideoOverlayText.h>
#include <Tolvar/Varundo/DataManager.h>

#include <QTest>

#include <limits>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Simulator;
using Mavril::VideoOverlay::CVideoOverlayText;
using Mavril::VideoOverlay::ElementParam;

/// What bound elements show, for readings that are easy to check by hand.
class tst_ElementTexts : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void boundElementShowsItsReadingAndUnit_data();
    void boundElementShowsItsReadingAndUnit();
    void inclinationIsAGradientInFormatZeroAndAnAngleInAnyOther_data();
    void inclinationIsAGradientInFormatZeroAndAnAngleInAnyOther();
    void readingThatRoundsToNothingHasNoSign();
    void numbersBeyondAllBoundsAreShownSomehow();
    void textOfABoundElementIsItsLabel();
    void otherElementsShowTheirOwnTextAndUnit();
    void drawnClockRunsOnFromWhereItWasSet();
    void impossibleTimeLeavesTheClockAloneButIsRemembered();

private:
    QString shown(const QString& binding, const QString& unit, const QString& label = {});

    std::unique_ptr<SimulatedDevices> m_devices;
    std::unique_ptr<SimulatedClock> m_clock;
    VideoCounter m_counter;
    std::unique_ptr<DataManager> m_data;
    std::unique_ptr<ElementTexts> m_texts;
};

void tst_ElementTexts::init()
{
    m_devices = std::make_unique<SimulatedDevices>();
    m_clock = std::make_unique<SimulatedClock>(QDateTime({2026, 3, 5}, {9, 8, 7}));
    m_counter = {1, 2, 3};
    m_data = std::make_unique<DataManager>();
    m_texts = std::make_unique<ElementTexts>(*m_devices, *m_clock, m_counter, *m_data);

    m_devices->reel().setSectionDistance(12.5F);
    m_devices->reel().setSatDistance(-3.0F);
    m_devices->reel().setTotalDistance(1234.567F);
    m_devices->reel().setSpeed(4.2F);
    m_devices->rts().setTemperature(14.5F);
    m_devices->crawler().setTemperature(31);
    m_devices->crawler().setPressure(1180);
    m_devices->crawler().setRoll(-2.4F);
    m_devices->crawler().setPitch(45.0F);
    m_devices->camera().setPan(-170);
    m_devices->camera().setTilt(95);
    m_devices->camera().setTemperature(-5);
    m_devices->camera().setPressure(1240);
}

QString tst_ElementTexts::shown(const QString& binding, const QString& unit, const QString& label)
{
    CVideoOverlayText element;
    element.getParamObject().insert(ElementParam::NAME_COLUMNBOUND, binding);
    element.setUnit(unit);
    element.setText(label);
    return m_texts->of(element).inWhole();
}

void tst_ElementTexts::boundElementShowsItsReadingAndUnit_data()
{
    QTest::addColumn<QString>("binding");
    QTest::addColumn<QString>("unit");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* title, const QString& binding, const char* unit, const char* expected) {
        QTest::newRow(title) << binding << QString::fromUtf8(unit) << QString::fromUtf8(expected);
    };
    using Name = ElementParam;
    row("section", Name::NAME_SECTION_DISTANCE_COUNTER, "m", "12.50 m");
    row("sat", Name::NAME_SAT_DISTANCE_COUNTER, "m", "-3.00 m");
    row("total", Name::NAME_TOTAL_DISTANCE_COUNTER, "m", "1234.57 m");
    row("no unit", Name::NAME_SECTION_DISTANCE_COUNTER, "", "12.50");
    row("speed", Name::NAME_SPEED, "m/min", "4.2 m/min");
    row("date", Name::NAME_DATE, "", "05.03.2026");
    row("time", Name::NAME_TIME, "", "09:08:07");
    row("video counter", Name::NAME_VIDEO_TIME_COUNTER, "", "01:02:03");
    row("crawler, Celsius", Name::NAME_CRAWLER_TEMPERATURE, "°C", "31 °C");
    row("crawler, Fahrenheit", Name::NAME_CRAWLER_TEMPERATURE, "°F", "88 °F");
    row("crawler pressure", Name::NAME_CRAWLER_PRESSURE, "mbar", "1180 mbar");
    row("roll", Name::NAME_CRAWLER_ROLL, "°", "-2.4°");
    row("tilt", Name::NAME_CAMERA_TILT, "°", "95°");
    row("pan", Name::NAME_CAMERA_PAN, "°", "-170°");
    row("camera, Celsius", Name::NAME_CAMERA_TEMPERATURE, "°C", "-5 °C");
    row("camera, Fahrenheit", Name::NAME_CAMERA_TEMPERATURE, "°F", "23 °F");
    row("camera pressure", Name::NAME_CAMERA_PRESSURE, "mbar", "1240 mbar");
    row("outside, Celsius", Name::NAME_OBJECT_TEMPERATURE, "°C", "14.5 °C");
    row("outside, Fahrenheit", Name::NAME_OBJECT_TEMPERATURE, "°F", "58.1 °F");
    row("outside, some other unit", Name::NAME_OBJECT_TEMPERATURE, "K", "14.5 K");
}

void tst_ElementTexts::boundElementShowsItsReadingAndUnit()
{
    QFETCH(QString, binding);
    QFETCH(QString, unit);
    QFETCH(QString, expected);
    QCOMPARE(shown(binding, unit), expected);
}

void tst_ElementTexts::inclinationIsAGradientInFormatZeroAndAnAngleInAnyOther_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<QString>("expected");
    QTest::newRow("gradient") << 0 << QStringLiteral("100.0 %");
    QTest::newRow("angle") << 1 << QStringLiteral("45.0°");
    QTest::newRow("format that nobody knows") << 7 << QStringLiteral("45.0°");
}

void tst_ElementTexts::inclinationIsAGradientInFormatZeroAndAnAngleInAnyOther()
{
    QFETCH(int, format);
    QFETCH(QString, expected);
    m_data->setInclinationFormat(format);
    QCOMPARE(shown(ElementParam::NAME_CRAWLER_PITCH, QStringLiteral("whatever")), expected);
}

void tst_ElementTexts::readingThatRoundsToNothingHasNoSign()
{
    m_devices->crawler().setRoll(-0.04F);
    QCOMPARE(shown(ElementParam::NAME_CRAWLER_ROLL, {}), QStringLiteral("0.0"));
    m_devices->crawler().setRoll(-0.06F);
    QCOMPARE(shown(ElementParam::NAME_CRAWLER_ROLL, {}), QStringLiteral("-0.1"));
}

void tst_ElementTexts::numbersBeyondAllBoundsAreShownSomehow()
{
    m_devices->reel().setSectionDistance(std::numeric_limits<float>::quiet_NaN());
    QCOMPARE(shown(ElementParam::NAME_SECTION_DISTANCE_COUNTER, {}), QStringLiteral("nan"));
    m_devices->reel().setSectionDistance(-std::numeric_limits<float>::infinity());
    QCOMPARE(shown(ElementParam::NAME_SECTION_DISTANCE_COUNTER, {}), QStringLiteral("-inf"));
    m_counter = {255, 200, 99};
    QCOMPARE(shown(ElementParam::NAME_VIDEO_TIME_COUNTER, {}), QStringLiteral("255:200:99"));
}

void tst_ElementTexts::textOfABoundElementIsItsLabel()
{
    QCOMPARE(
        shown(ElementParam::NAME_SECTION_DISTANCE_COUNTER, QStringLiteral("m"), QStringLiteral("Section")),
        QStringLiteral("Section 12.50 m"));
}

void tst_ElementTexts::otherElementsShowTheirOwnTextAndUnit()
{
    CVideoOverlayText element;
    element.setUnit(QStringLiteral("mm"));
    QCOMPARE(m_texts->of(element).inWhole(), QString()); // no text: its unit alone says nothing
    element.setText(QStringLiteral("Crack 3"));
    QCOMPARE(m_texts->of(element).inWhole(), QStringLiteral("Crack 3 mm"));
}

void tst_ElementTexts::drawnClockRunsOnFromWhereItWasSet()
{
    m_clock->setDateTime(QDateTime({2031, 12, 31}, {23, 59, 59}));
    QTRY_COMPARE(shown(ElementParam::NAME_DATE, {}), QStringLiteral("01.01.2032"));
    m_clock->setTime({4, 5, 6});
    QCOMPARE(m_clock->now().date(), QDate(2032, 1, 1));
    QCOMPARE(shown(ElementParam::NAME_TIME, {}), QStringLiteral("04:05:06"));
}

void tst_ElementTexts::impossibleTimeLeavesTheClockAloneButIsRemembered()
{
    QVERIFY(!m_clock->toldTime().has_value());
    m_clock->setTime(QTime(24, 0, 0));
    m_clock->setDateTime(QDateTime(QDate(2026, 13, 1), QTime(1, 0, 0)));
    QCOMPARE(shown(ElementParam::NAME_DATE, {}), QStringLiteral("05.03.2026"));
    QCOMPARE(m_clock->now().time().hour(), 9);
    QVERIFY(m_clock->toldTime().has_value() && !m_clock->toldTime()->isValid());
    QVERIFY(m_clock->toldDateTime().has_value() && !m_clock->toldDateTime()->isValid());
}

QTEST_GUILESS_MAIN(tst_ElementTexts)
#include "tst_elementtexts.moc"
