#include "PipeScene.h"

#include <QTest>

#include <limits>

using namespace Tolvar::Varundo::Simulator;

namespace {

const QSize small(180, 144);

double meanBrightness(const QImage& image, const QRect& area)
{
    double sum = 0.0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            sum += qGray(image.pixel(x, y));
        }
    }
    return sum / (area.width() * area.height());
}

int differingPixels(const QImage& a, const QImage& b, const QRect& area)
{
    int count = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            count += a.pixel(x, y) != b.pixel(x, y) ? 1 : 0;
        }
    }
    return count;
}

} // namespace

/// The test picture.
class tst_PipeScene : public QObject
{
    Q_OBJECT

private slots:
    void pictureHasTheSizeThatWasAskedFor_data();
    void pictureHasTheSizeThatWasAskedFor();
    void sameMomentAndPlaceGiveTheSamePicture();
    void pictureMovesWithThePlace();
    void waterFlowsWhileTheCameraStands();
    void pipeIsLitNearbyAndDarkInTheDistance();
    void pictureIsNeitherFlatNorColourless();
    void placesOutOfReachAreDrawnSomehow_data();
    void placesOutOfReachAreDrawnSomehow();
};

void tst_PipeScene::pictureHasTheSizeThatWasAskedFor_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("smallest") << QSize(160, 120);
    QTest::newRow("usual") << QSize(720, 576);
    QTest::newRow("odd and upright") << QSize(161, 333);
}

void tst_PipeScene::pictureHasTheSizeThatWasAskedFor()
{
    QFETCH(QSize, size);
    QCOMPARE(PipeScene(size).render(0.0, 0.0).size(), size);
}

void tst_PipeScene::sameMomentAndPlaceGiveTheSamePicture()
{
    const PipeScene scene(small);
    const QImage first = scene.render(12.25, 7.5);
    QVERIFY(scene.render(99.0, 3.0) != first);
    QCOMPARE(scene.render(12.25, 7.5), first);
    QCOMPARE(PipeScene(small).render(12.25, 7.5), first);
}

void tst_PipeScene::pictureMovesWithThePlace()
{
    const PipeScene scene(small);
    const QRect upperHalf(0, 0, 180, 60);
    const int moved = differingPixels(scene.render(1.0, 5.0), scene.render(1.0, 5.2), upperHalf);
    QVERIFY2(moved > upperHalf.width() * upperHalf.height() / 2, qPrintable(QString::number(moved)));
}

void tst_PipeScene::waterFlowsWhileTheCameraStands()
{
    const PipeScene scene(small);
    const QImage before = scene.render(1.0, 5.0);
    const QImage after = scene.render(1.3, 5.0);
    const QRect ground(80, 110, 20, 34);
    QVERIFY(differingPixels(before, after, ground) > ground.width() * ground.height() / 2);
    QCOMPARE(differingPixels(before, after, QRect(0, 0, 180, 70)), 0); // concrete does not
}

void tst_PipeScene::pipeIsLitNearbyAndDarkInTheDistance()
{
    const QImage image = PipeScene(small).render(0.0, 5.3);
    const double vanishingPoint = meanBrightness(image, QRect(88, 74, 4, 4));
    const double wall = meanBrightness(image, QRect(40, 20, 100, 30));
    QVERIFY2(vanishingPoint < 25.0, qPrintable(QString::number(vanishingPoint)));
    QVERIFY2(wall > 60.0 && wall < 200.0, qPrintable(QString::number(wall)));
}

void tst_PipeScene::pictureIsNeitherFlatNorColourless()
{
    const QImage image = PipeScene(small).render(0.0, 5.3);
    QSet<QRgb> colours;
    int warm = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            colours.insert(pixel);
            warm += qRed(pixel) > qBlue(pixel) ? 1 : 0;
        }
    }
    QVERIFY(colours.size() > 500);
    QVERIFY(warm > image.width() * image.height() / 2);
}

void tst_PipeScene::placesOutOfReachAreDrawnSomehow_data()
{
    QTest::addColumn<double>("metres");
    QTest::newRow("behind the start") << -12.5;
    QTest::newRow("very far") << 3.4e38;
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity();
}

void tst_PipeScene::placesOutOfReachAreDrawnSomehow()
{
    QFETCH(double, metres);
    const QImage image = PipeScene(small).render(0.0, metres);
    const double wall = meanBrightness(image, QRect(40, 20, 100, 30));
    QVERIFY2(wall > 40.0 && wall < 200.0, qPrintable(QString::number(wall)));
}

QTEST_GUILESS_MAIN(tst_PipeScene)
#include "tst_pipescene.moc"
