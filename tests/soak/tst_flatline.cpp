#include "FlatLine.h"

#include <QTest>

using Tolvar::Varundo::Test::FlatLine;

/// The verdict on a long run is only as good as its arithmetic.
class tst_FlatLine : public QObject
{
    Q_OBJECT

private slots:
    void slopeOfALineIsItsOwn();
    void onlyTheLastHalfCounts();
    void noiseAroundALevelIsFlat();
    void tooFewSamplesAreFlat();
    void shortLineIsBoundByTheNoiseAndALongOneByWhatIsWanted();
};

void tst_FlatLine::slopeOfALineIsItsOwn()
{
    FlatLine line;
    for (int second = 0; second < 100; ++second) {
        line.add(second, 5000 + 2.5 * second);
    }
    QCOMPARE(line.slope(), 2.5);
    QCOMPARE(line.span(), 99.0);
    QCOMPARE(line.highestOfFirstHalf(), 5000 + 2.5 * 49);
    QCOMPARE(line.highestOfLastHalf(), 5000 + 2.5 * 99);
}

void tst_FlatLine::onlyTheLastHalfCounts()
{
    FlatLine line;
    for (int second = 0; second < 100; ++second) {
        line.add(second, second < 50 ? 100 * second : 5000);
    }
    QCOMPARE(line.slope(), 0.0);
}

void tst_FlatLine::noiseAroundALevelIsFlat()
{
    FlatLine line;
    for (int second = 0; second < 1000; ++second) {
        line.add(second, second % 2 == 0 ? 4990 : 5010);
    }
    QVERIFY(qAbs(line.slope()) < 0.01);
}

void tst_FlatLine::tooFewSamplesAreFlat()
{
    FlatLine line;
    QCOMPARE(line.slope(), 0.0);
    line.add(1, 7);
    QCOMPARE(line.slope(), 0.0);
}

void tst_FlatLine::shortLineIsBoundByTheNoiseAndALongOneByWhatIsWanted()
{
    QCOMPARE(FlatLine::decidingSeconds(1.0, 1000), 2000.0);
    FlatLine line;
    line.add(0, 5000);
    line.add(500, 5000);
    QCOMPARE(line.bound(1.0, 1000), 4.0);
    line.add(2000, 5000);
    QCOMPARE(line.bound(1.0, 1000), 1.0);
    line.add(9000, 5000);
    QCOMPARE(line.bound(1.0, 1000), 1.0);
}

QTEST_GUILESS_MAIN(tst_FlatLine)
#include "tst_flatline.moc"
