#include "ElementTexts.h"
#include "OverlayPainter.h"
#include "SimulatedClock.h"
#include "SimulatedDevices.h"
#include "VideoCounter.h"

#include <Mavril/VideoOverlay/CVideoOverlayManager.h>
#include <Mavril/VideoOverlay/CVideoOverlayText.h>
#include <Tolvar/Varundo/DataManager.h>

#include <QImage>
#include <QPainter>
#include <QTest>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Simulator;
using Mavril::VideoOverlay::CVideoOverlayElement;
using Mavril::VideoOverlay::CVideoOverlayManager;
using Mavril::VideoOverlay::CVideoOverlayText;
using Mavril::VideoOverlay::ElementParam;

namespace {

const QColor picture(0, 255, 255); // no colour number stands for it
constexpr int cellWidth = 12;
constexpr int cellHeight = 24;

/// The smallest rectangle around all that is not the picture's own colour.
QRect drawnArea(const QImage& frame)
{
    QRect area;
    for (int y = 0; y < frame.height(); ++y) {
        for (int x = 0; x < frame.width(); ++x) {
            if (frame.pixelColor(x, y) != picture) {
                area |= QRect(x, y, 1, 1);
            }
        }
    }
    return area;
}

QRect cells(int column, int row, int columns, int rows = 1)
{
    return {column * cellWidth, row * cellHeight, columns * cellWidth, rows * cellHeight};
}

} // namespace

/// What the overlay looks like, pixel by pixel.
class tst_OverlayPainter : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void boxFillsTheCellsOfTheText();
    void textIsDrawnInItsColourWithinItsCells();
    void gridScalesWithThePicture();
    void hiddenOrDisabledElementIsNotDrawn_data();
    void hiddenOrDisabledElementIsNotDrawn();
    void emptyTextHasNoBox();
    void transparentColourLetsThePictureThrough();
    void halfTransparentBackgroundBlends();
    void coloursThatWereNeverSetAreWhiteOnNothing();
    void transparentTextOnAColourIsABox();
    void unitIsPartOfTheText();
    void changeOfTheUnitChangesTheDrawnValue();
    void eachLineOfATextStandsBelowTheOneBefore();
    void laterElementCoversAnEarlierOne();
    void whatReachesBeyondThePictureIsCutOff_data();
    void whatReachesBeyondThePictureIsCutOff();
    void controlCharactersTakeNoRoom();
    void lettersOutsideOfAsciiAreDrawnAsThemselves_data();
    void lettersOutsideOfAsciiAreDrawnAsThemselves();
    void fontOfItsOwnIsTakenAndScaled();
    void elementWithoutAnyTextIsLeftAlone();
    void hugeTextIsDrawnQuickly();

private:
    CVideoOverlayText& add(int column, int row, const QString& text, const QColor& textColor = Qt::white,
                           const QColor& background = Qt::blue);
    QImage drawn(const QSize& size = {720, 576}) const;

    SimulatedDevices m_devices;
    SimulatedClock m_clock{QDateTime({2026, 3, 5}, {9, 8, 7})};
    VideoCounter m_counter;
    DataManager m_data;
    ElementTexts m_texts{m_devices, m_clock, m_counter, m_data};
    std::unique_ptr<CVideoOverlayManager> m_overlay;
};

void tst_OverlayPainter::init()
{
    m_overlay = std::make_unique<CVideoOverlayManager>();
}

CVideoOverlayText& tst_OverlayPainter::add(int column, int row, const QString& text, const QColor& textColor,
                                           const QColor& background)
{
    CVideoOverlayText& element = *m_overlay->createText();
    element.setColumn(column);
    element.setRow(row);
    element.setText(text);
    element.setTextColor(textColor);
    element.setBackgroundColor(background);
    element.setEnabled(true);
    element.setVisible(true);
    return element;
}

QImage tst_OverlayPainter::drawn(const QSize& size) const
{
    QImage frame(size, QImage::Format_RGB32);
    frame.fill(picture);
    QPainter painter(&frame);
    OverlayPainter(m_texts, size).paint(painter, *m_overlay);
    return frame;
}

void tst_OverlayPainter::boxFillsTheCellsOfTheText()
{
    add(10, 5, QStringLiteral("abc"));
    QCOMPARE(drawnArea(drawn()), cells(10, 5, 3));
}

void tst_OverlayPainter::textIsDrawnInItsColourWithinItsCells()
{
    add(10, 5, QStringLiteral("HHH"), Qt::red, Qt::transparent);
    const QImage frame = drawn();
    const QRect area = drawnArea(frame);
    QVERIFY2(cells(10, 5, 3).contains(area), qPrintable(QStringLiteral("drawn from %1,%2 to %3,%4")
                                                            .arg(area.left())
                                                            .arg(area.top())
                                                            .arg(area.right())
                                                            .arg(area.bottom())));
    // Three letters, each in its own cell, at least half as high as the cell.
    QVERIFY(area.height() >= cellHeight / 2 && area.width() >= 2 * cellWidth);
    int reds = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            reds += frame.pixelColor(x, y) == QColor(Qt::red) ? 1 : 0;
        }
    }
    QVERIFY2(reds > 50, qPrintable(QString::number(reds)));
}

void tst_OverlayPainter::gridScalesWithThePicture()
{
    add(30, 12, QStringLiteral("ab"));
    QCOMPARE(drawnArea(drawn({1440, 1152})), QRect(720, 576, 48, 48));
    QCOMPARE(drawnArea(drawn({360, 288})), QRect(180, 144, 12, 12));
}

void tst_OverlayPainter::hiddenOrDisabledElementIsNotDrawn_data()
{
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<bool>("visible");
    QTest::addColumn<bool>("isDrawn");
    QTest::newRow("enabled and visible") << true << true << true;
    QTest::newRow("switched off by a controller") << false << true << false;
    QTest::newRow("hidden by the host") << true << false << false;
    QTest::newRow("both") << false << false << false;
}

void tst_OverlayPainter::hiddenOrDisabledElementIsNotDrawn()
{
    QFETCH(bool, enabled);
    QFETCH(bool, visible);
    QFETCH(bool, isDrawn);
    CVideoOverlayText& element = add(0, 0, QStringLiteral("x"));
    element.setEnabled(enabled);
    element.setVisible(visible);
    QCOMPARE(drawnArea(drawn()).isValid(), isDrawn);
}

void tst_OverlayPainter::emptyTextHasNoBox()
{
    CVideoOverlayText& element = add(3, 3, QString());
    QVERIFY(!drawnArea(drawn()).isValid());
    element.setUnit(QStringLiteral("m"));
    QVERIFY(!drawnArea(drawn()).isValid());
    element.setText(QStringLiteral("\n"));
    element.setUnit(QString());
    QVERIFY(!drawnArea(drawn()).isValid());
}

void tst_OverlayPainter::transparentColourLetsThePictureThrough()
{
    add(3, 3, QStringLiteral("."), Qt::white, Qt::transparent);
    QCOMPARE(drawn().pixelColor(3 * cellWidth + 1, 3 * cellHeight + 1), picture);
}

void tst_OverlayPainter::halfTransparentBackgroundBlends()
{
    add(3, 3, QStringLiteral("."), Qt::white, QColor(255, 0, 0, 128));
    const QColor blended = drawn().pixelColor(3 * cellWidth + 1, 3 * cellHeight + 1);
    QVERIFY(qAbs(blended.red() - 128) <= 1);
    QVERIFY(qAbs(blended.green() - 127) <= 1);
    QVERIFY(qAbs(blended.blue() - 127) <= 1);
}

void tst_OverlayPainter::coloursThatWereNeverSetAreWhiteOnNothing()
{
    add(3, 3, QStringLiteral("H"), QColor(), QColor());
    const QImage unset = drawn();
    init();
    add(3, 3, QStringLiteral("H"), Qt::white, Qt::transparent);
    QVERIFY(drawnArea(unset).isValid());
    QCOMPARE(unset, drawn());
}

void tst_OverlayPainter::transparentTextOnAColourIsABox()
{
    add(3, 3, QStringLiteral("HHH"), Qt::transparent, Qt::blue);
    QCOMPARE(drawn().copy(cells(3, 3, 3)), [] {
        QImage box(3 * cellWidth, cellHeight, QImage::Format_RGB32);
        box.fill(Qt::blue);
        return box;
    }());
}

void tst_OverlayPainter::unitIsPartOfTheText()
{
    add(10, 5, QStringLiteral("3")).setUnit(QStringLiteral("mm"));
    QCOMPARE(drawnArea(drawn()), cells(10, 5, 4)); // "3 mm"
}

void tst_OverlayPainter::changeOfTheUnitChangesTheDrawnValue()
{
    CVideoOverlayText& element = add(10, 5, QString());
    element.getParamObject().insert(ElementParam::NAME_COLUMNBOUND, ElementParam::NAME_OBJECT_TEMPERATURE);
    m_devices.rts().setTemperature(50.0F);
    element.setUnit(QStringLiteral("°C"));
    QCOMPARE(drawnArea(drawn()), cells(10, 5, 7)); // "50.0 °C"
    element.setUnit(QStringLiteral("°F"));
    QCOMPARE(drawnArea(drawn()), cells(10, 5, 8)); // "122.0 °F"
}

void tst_OverlayPainter::eachLineOfATextStandsBelowTheOneBefore()
{
    add(10, 5, QStringLiteral("one\n\nthree"));
    const QImage frame = drawn();
    QCOMPARE(drawnArea(frame), cells(10, 5, 5, 3)); // one box, as wide as the longest line
    const auto hasLetters = [&frame](int row) {
        const QRect line = cells(10, row, 5);
        for (int x = line.left(); x <= line.right(); ++x) {
            if (frame.pixelColor(x, line.center().y()) != QColor(Qt::blue)) {
                return true;
            }
        }
        return false;
    };
    QVERIFY(hasLetters(5));
    QVERIFY(!hasLetters(6));
    QVERIFY(hasLetters(7));
}

void tst_OverlayPainter::laterElementCoversAnEarlierOne()
{
    add(10, 5, QStringLiteral("below"), Qt::white, Qt::blue);
    add(10, 5, QStringLiteral("."), Qt::white, Qt::red);
    const QImage frame = drawn();
    QCOMPARE(frame.pixelColor(10 * cellWidth + 1, 5 * cellHeight + 1), QColor(Qt::red));
    QCOMPARE(frame.pixelColor(14 * cellWidth + 11, 5 * cellHeight + 1), QColor(Qt::blue));
}

void tst_OverlayPainter::whatReachesBeyondThePictureIsCutOff_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<int>("row");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QRect>("expected");
    QTest::newRow("last cell") << 59 << 23 << QStringLiteral("x") << cells(59, 23, 1);
    QTest::newRow("too long") << 58 << 2 << QStringLiteral("too long") << cells(58, 2, 2);
    QTest::newRow("too many lines") << 2 << 22 << QStringLiteral("a\nb\nc\nd") << cells(2, 22, 1, 2);
    QTest::newRow("column beyond") << 60 << 2 << QStringLiteral("x") << QRect();
    QTest::newRow("row beyond") << 2 << 24 << QStringLiteral("x") << QRect();
    QTest::newRow("farthest on the wire") << 255 << 255 << QStringLiteral("x") << QRect();
    QTest::newRow("negative") << -1 << -1 << QStringLiteral("xxx\nxxx") << QRect();
}

void tst_OverlayPainter::whatReachesBeyondThePictureIsCutOff()
{
    QFETCH(int, column);
    QFETCH(int, row);
    QFETCH(QString, text);
    QFETCH(QRect, expected);
    add(column, row, text);
    QCOMPARE(drawnArea(drawn()), expected);
}

void tst_OverlayPainter::controlCharactersTakeNoRoom()
{
    add(10, 5, QStringLiteral("a") + QChar(0) + QChar(0x1B) + QStringLiteral("b") + QChar(0));
    QCOMPARE(drawnArea(drawn()), cells(10, 5, 2));
}

void tst_OverlayPainter::lettersOutsideOfAsciiAreDrawnAsThemselves_data()
{
    QTest::addColumn<QChar>("letter");
    QTest::addColumn<QChar>("similar");
    QTest::newRow("A umlaut") << QChar(0x00C4) << QChar(u'A');
    QTest::newRow("o umlaut") << QChar(0x00F6) << QChar(u'o');
    QTest::newRow("sharp s") << QChar(0x00DF) << QChar(u's');
    QTest::newRow("euro sign") << QChar(0x20AC) << QChar(u'?');
    QTest::newRow("S caron") << QChar(0x0160) << QChar(u'S');
    QTest::newRow("Greek omega") << QChar(0x03A9) << QChar(u'O');
    QTest::newRow("Cyrillic zhe") << QChar(0x0416) << QChar(u'?');
}

void tst_OverlayPainter::lettersOutsideOfAsciiAreDrawnAsThemselves()
{
    QFETCH(QChar, letter);
    QFETCH(QChar, similar);
    CVideoOverlayText& element = add(10, 5, QString(letter));
    const QImage itself = drawn();
    QVERIFY(itself.copy(cells(10, 5, 1)) != drawn({720, 576}).copy(cells(20, 5, 1)));
    element.setText(QString(similar));
    QVERIFY(itself != drawn());
    element.setText(QString(QChar(0xE123))); // a private character, which no font of text has
    QVERIFY(itself != drawn());
}

void tst_OverlayPainter::fontOfItsOwnIsTakenAndScaled()
{
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPointSize(36);
    CVideoOverlayText& element = add(10, 5, QStringLiteral("ii\nii"));
    element.setFont(font);
    const QRect usual = drawnArea(drawn());
    QCOMPARE(usual.topLeft(), cells(10, 5, 1).topLeft());
    // 36 points are 48 lines; two lines of text, with the usual room between them.
    QVERIFY2(usual.height() > 96 && usual.height() < 130, qPrintable(QString::number(usual.height())));
    QVERIFY2(usual.width() < 40, qPrintable(QString::number(usual.width()))); // two narrow letters
    const QRect doubled = drawnArea(drawn({1440, 1152}));
    QVERIFY(qAbs(doubled.height() - 2 * usual.height()) <= 4);

    font = QFont(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(300); // as a family alone comes: no size in points
    element.setFont(font);
    QVERIFY(drawnArea(drawn()).height() < 60);
}

void tst_OverlayPainter::elementWithoutAnyTextIsLeftAlone()
{
    // An overlay whose list holds something that is no text, as a logo would be.
    class WithLogo final : public CVideoOverlayManager
    {
    public:
        QList<CVideoOverlayElement*> getElementList() const override { return {m_logo.get()}; }

    private:
        std::unique_ptr<CVideoOverlayElement> m_logo = [] {
            auto logo = std::make_unique<CVideoOverlayElement>();
            logo->setEnabled(true);
            logo->setVisible(true);
            return logo;
        }();
    };
    m_overlay = std::make_unique<WithLogo>();
    QVERIFY(!drawnArea(drawn()).isValid());
}

void tst_OverlayPainter::hugeTextIsDrawnQuickly()
{
    add(0, 0, QString(20'000'000, QLatin1Char('x')) + QString(100'000, QLatin1Char('\n')));
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(drawnArea(drawn()), QRect(0, 0, 720, 576));
    QVERIFY2(timer.elapsed() < 5000, "what nobody sees is drawn all the same");
}

QTEST_MAIN(tst_OverlayPainter)
#include "tst_overlaypainter.moc"
