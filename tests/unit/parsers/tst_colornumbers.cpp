#include <Tolvar/Varundo/ColorNumbers.h>

#include <QtTest>

using namespace Tolvar::Varundo;

class ColorNumbersTest : public QObject
{
    Q_OBJECT

private slots:
    void numberStandsForItsColor_data();
    void numberStandsForItsColor();
    void highHalfOfTheNumberIsIgnored();
    void anyOtherColorIsWhite_data();
    void anyOtherColorIsWhite();
    void noOtherOpaqueColorOfTheCubeHasANumber();
};

void ColorNumbersTest::numberStandsForItsColor_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QColor>("color");
    QTest::newRow("transparent") << 0 << QColor(0, 0, 0, 0);
    QTest::newRow("white") << 1 << QColor(255, 255, 255, 255);
    QTest::newRow("dark red") << 2 << QColor(128, 0, 0, 255);
    QTest::newRow("dark green") << 3 << QColor(0, 128, 0, 255);
    QTest::newRow("olive") << 4 << QColor(128, 128, 0, 255);
    QTest::newRow("dark blue") << 5 << QColor(0, 0, 128, 255);
    QTest::newRow("purple") << 6 << QColor(128, 0, 128, 255);
    QTest::newRow("teal") << 7 << QColor(0, 128, 128, 255);
    QTest::newRow("grey") << 8 << QColor(160, 160, 164, 255);
    QTest::newRow("light grey") << 9 << QColor(192, 192, 192, 255);
    QTest::newRow("red") << 10 << QColor(255, 0, 0, 255);
    QTest::newRow("green") << 11 << QColor(0, 255, 0, 255);
    QTest::newRow("yellow") << 12 << QColor(255, 255, 0, 255);
    QTest::newRow("blue") << 13 << QColor(0, 0, 255, 255);
    QTest::newRow("magenta") << 14 << QColor(255, 0, 255, 255);
    QTest::newRow("black") << 15 << QColor(0, 0, 0, 255);
}

void ColorNumbersTest::numberStandsForItsColor()
{
    QFETCH(int, number);
    QFETCH(QColor, color);
    QCOMPARE(colorFromNumber(static_cast<quint8>(number)), color);
    QCOMPARE(int(numberFromColor(color)), number);
}

void ColorNumbersTest::highHalfOfTheNumberIsIgnored()
{
    for (int number = 16; number <= 255; ++number) {
        QCOMPARE(colorFromNumber(static_cast<quint8>(number)),
                 colorFromNumber(static_cast<quint8>(number % 16)));
    }
}

void ColorNumbersTest::anyOtherColorIsWhite_data()
{
    QTest::addColumn<QColor>("color");
    QTest::newRow("never set") << QColor();
    QTest::newRow("cyan has no number") << QColor(0, 255, 255);
    QTest::newRow("nearly white") << QColor(254, 255, 255);
    QTest::newRow("Qt's other greys") << QColor(Qt::darkGray);
    QTest::newRow("half transparent red") << QColor(255, 0, 0, 128);
    QTest::newRow("transparent white") << QColor(255, 255, 255, 0);
    QTest::newRow("nearly opaque black") << QColor(0, 0, 0, 254);
    QTest::newRow("red by its hue") << QColor::fromHsv(0, 255, 255); // not equal to red by its components
    QTest::newRow("red, a little finer") << QColor::fromRgba64(0xFFFE, 0, 0);
}

void ColorNumbersTest::anyOtherColorIsWhite()
{
    QFETCH(QColor, color);
    QCOMPARE(int(numberFromColor(color)), 1);
}

void ColorNumbersTest::noOtherOpaqueColorOfTheCubeHasANumber()
{
    int withANumber = 0;
    for (int red = 0; red <= 256; red += 32) {
        for (int green = 0; green <= 256; green += 32) {
            for (int blue = 0; blue <= 256; blue += 32) {
                const QColor color(qMin(red, 255), qMin(green, 255), qMin(blue, 255));
                const quint8 number = numberFromColor(color);
                if (number != 1) {
                    ++withANumber;
                    QCOMPARE(colorFromNumber(number), color);
                }
            }
        }
    }
    QCOMPARE(withANumber, 13); // all but transparent, white, and the grey that is none of these steps
}

QTEST_GUILESS_MAIN(ColorNumbersTest)

#include "tst_colornumbers.moc"
