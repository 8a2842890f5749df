#include "WriteBench.h"

#include <QtTest>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

const QColor Colors[] = {
    QColor(0, 0, 0, 0),    QColor(255, 255, 255), QColor(128, 0, 0),   QColor(0, 128, 0),
    QColor(128, 128, 0),   QColor(0, 0, 128),     QColor(128, 0, 128), QColor(0, 128, 128),
    QColor(160, 160, 164), QColor(192, 192, 192), QColor(255, 0, 0),   QColor(0, 255, 0),
    QColor(255, 255, 0),   QColor(0, 0, 255),     QColor(255, 0, 255), QColor(0, 0, 0),
};

QString pairText(int textNumber, int backgroundNumber)
{
    return asText(ColorPair(Colors[textNumber], Colors[backgroundNumber]));
}

QByteArray bytes(std::initializer_list<int> values)
{
    QByteArray result;
    for (const int value : values) {
        result.append(static_cast<char>(value));
    }
    return result;
}

struct ElementColors
{
    int element;
    const char* property;
    const char* signal;
    const QString* name;
};

constexpr ElementColors ElementTable[] = {
    {0, "meterCounter1ColorPair", "meterCounter1ColorPairChanged", &Name::NAME_SECTION_DISTANCE_COUNTER},
    {1, "meterCounter2ColorPair", "meterCounter2ColorPairChanged", &Name::NAME_SAT_DISTANCE_COUNTER},
    {2, "timeColorPair", "timeColorPairChanged", &Name::NAME_TIME},
    {3, "dateColorPair", "dateColorPairChanged", &Name::NAME_DATE},
    {10, "panPositionColorPair", "panPositionColorPairChanged", &Name::NAME_CAMERA_PAN},
    {11, "tiltColorPair", "tiltColorPairChanged", &Name::NAME_CAMERA_TILT},
    {12, "videoCounterColorPair", "videoCounterColorPairChanged", &Name::NAME_VIDEO_TIME_COUNTER},
    {13, "cameraTemperatureColorPair", "cameraTemperatureColorPairChanged", &Name::NAME_CAMERA_TEMPERATURE},
    {14, "inclinationColorPair", "inclinationColorPairChanged", &Name::NAME_CRAWLER_PITCH},
    {15, "pressureColorPair", "pressureColorPairChanged", &Name::NAME_CAMERA_PRESSURE},
    {16, "extTemperatureColorPair", "extTemperatureColorPairChanged", &Name::NAME_OBJECT_TEMPERATURE},
    {17, "crawlerTemperatureColorPair", "crawlerTemperatureColorPairChanged",
     &Name::NAME_CRAWLER_TEMPERATURE},
    {18, "crawlerPressureColorPair", "crawlerPressureColorPairChanged", &Name::NAME_CRAWLER_PRESSURE},
    {19, "crawlerRollColorPair", "crawlerRollColorPairChanged", &Name::NAME_CRAWLER_ROLL},
    {20, "cableSpeedColorPair", "cableSpeedColorPairChanged", &Name::NAME_SPEED},
    {21, "meterCounter3ColorPair", "meterCounter3ColorPairChanged", &Name::NAME_TOTAL_DISTANCE_COUNTER},
};

} // namespace

class WriteCommandParserColorsTest : public QObject
{
    Q_OBJECT

private slots:
    void examplePairs_data();
    void examplePairs();
    void oneByteHoldsTextHighAndBackgroundLow();
    void twoBytesAreBackgroundThenTextWithTheOverlapKept();
    void bytesAfterThePairAreIgnored();
    void pairIsCodedAlikeWhereverItStands_data();
    void pairIsCodedAlikeWhereverItStands();
    void freeLineColorsAreStoredWithoutASignal();
    void elementNumberSelectsItsElementAlone_data();
    void elementNumberSelectsItsElementAlone();
    void statusLineNumberSelectsItsLineAlone();
    void missingElementNumberMeansMeterCounter1();
    void missingStatusLineNumberMeansNone();
};

void WriteCommandParserColorsTest::examplePairs_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<int>("text");
    QTest::addColumn<int>("background");
    QTest::newRow("one byte") << bytes({0x1D}) << 1 << 13;
    QTest::newRow("two bytes") << bytes({0x0D, 0x01}) << 1 << 13;
    QTest::newRow("overlap") << bytes({0x3D, 0x01}) << 3 << 13;
    QTest::newRow("high half of the second byte is lost") << bytes({0x0D, 0xF1}) << 1 << 13;
    QTest::newRow("nothing") << bytes({}) << 0 << 0;
}

void WriteCommandParserColorsTest::examplePairs()
{
    QFETCH(QByteArray, payload);
    QFETCH(int, text);
    QFETCH(int, background);
    WriteBench bench;
    bench.fill();
    QCOMPARE(bench.effectOf(0x92, payload), QStringList{"lineColorPair = "_s + pairText(text, background)});
}

void WriteCommandParserColorsTest::oneByteHoldsTextHighAndBackgroundLow()
{
    WriteBench bench;
    for (int text = 0; text < 16; ++text) {
        for (int background = 0; background < 16; ++background) {
            static_cast<void>(bench.emittedBy(0x92, bytes({text * 16 + background})));
            QCOMPARE(asText(bench.model.lineColorPair()), pairText(text, background));
        }
    }
}

void WriteCommandParserColorsTest::twoBytesAreBackgroundThenTextWithTheOverlapKept()
{
    WriteBench bench;
    for (int first = 0; first < 256; ++first) {
        for (int second = 0; second < 256; ++second) {
            static_cast<void>(bench.emittedBy(0x92, bytes({first, second})));
            QCOMPARE(asText(bench.model.lineColorPair()), pairText((second % 16) | (first / 16), first % 16));
        }
    }
}

void WriteCommandParserColorsTest::bytesAfterThePairAreIgnored()
{
    WriteBench bench;
    static_cast<void>(bench.emittedBy(0x92, bytes({0x0D, 0x01, 0xFF, 0xFF})));
    QCOMPARE(asText(bench.model.lineColorPair()), pairText(1, 13));
    static_cast<void>(bench.emittedBy(0x99, bytes({1, 0x0D, 0x01, 0xFF})));
    QCOMPARE(asText(bench.model.statusLine1ColorPair()), pairText(1, 13));
    static_cast<void>(bench.emittedBy(0xE5, bytes({3, 0x0D, 0x01, 0xFF})));
    QCOMPARE(asText(bench.model.dateColorPair()), pairText(1, 13));
}

void WriteCommandParserColorsTest::pairIsCodedAlikeWhereverItStands_data()
{
    examplePairs_data();
}

void WriteCommandParserColorsTest::pairIsCodedAlikeWhereverItStands()
{
    QFETCH(QByteArray, payload);
    QFETCH(int, text);
    QFETCH(int, background);
    WriteBench bench;
    static_cast<void>(bench.emittedBy(0x99, bytes({2}) + payload));
    QCOMPARE(asText(bench.model.statusLine2ColorPair()), pairText(text, background));
    static_cast<void>(bench.emittedBy(0xE5, bytes({3}) + payload));
    QCOMPARE(asText(bench.model.dateColorPair()), pairText(text, background));
}

void WriteCommandParserColorsTest::freeLineColorsAreStoredWithoutASignal()
{
    WriteBench bench;
    QCOMPARE(bench.emittedBy(0x92, bytes({0xAF})), QStringList());
    QCOMPARE(asText(bench.model.lineColorPair()), pairText(10, 15));
}

void WriteCommandParserColorsTest::elementNumberSelectsItsElementAlone_data()
{
    QTest::addColumn<int>("element");
    QTest::addColumn<QStringList>("effect");
    for (int element = 0; element <= 255; ++element) {
        QStringList effect;
        for (const ElementColors& row : ElementTable) {
            if (row.element == element) {
                effect =
                    QStringList{QStringLiteral("%1 = %2").arg(QLatin1String(row.property), pairText(10, 15)),
                                QStringLiteral("%1(\"%2\", %3)")
                                    .arg(QLatin1String(row.signal), *row.name, pairText(10, 15))};
            }
        }
        QTest::newRow(QByteArray::number(element)) << element << effect;
    }
}

void WriteCommandParserColorsTest::elementNumberSelectsItsElementAlone()
{
    QFETCH(int, element);
    QFETCH(QStringList, effect);
    for (const QByteArray& colors : {bytes({0xAF}), bytes({0x0F, 0x0A})}) {
        WriteBench bench;
        QCOMPARE(bench.effectOf(0xE5, bytes({element}) + colors), effect);
        bench.fill();
        QCOMPARE(bench.effectOf(0xE5, bytes({element}) + colors), effect);
    }
}

void WriteCommandParserColorsTest::statusLineNumberSelectsItsLineAlone()
{
    const QString names[] = {Name::NAME_STATUS_TEXT_1, Name::NAME_STATUS_TEXT_2, Name::NAME_STATUS_TEXT_3,
                             Name::NAME_STATUS_TEXT_4};
    for (int line = 0; line <= 255; ++line) {
        QStringList effect;
        if (line >= 1 && line <= 4) {
            const QString property = QStringLiteral("statusLine%1ColorPair").arg(line);
            effect = QStringList{
                QStringLiteral("%1 = %2").arg(property, pairText(2, 9)),
                QStringLiteral("%1Changed(\"%2\", %3)").arg(property, names[line - 1], pairText(2, 9))};
        }
        WriteBench bench;
        bench.fill();
        QCOMPARE(bench.effectOf(0x99, bytes({line, 0x29})), effect);
    }
}

void WriteCommandParserColorsTest::missingElementNumberMeansMeterCounter1()
{
    WriteBench bench;
    bench.fill();
    QCOMPARE(bench.effectOf(0xE5, bytes({})).value(0), "meterCounter1ColorPair = "_s + pairText(0, 0));
    QCOMPARE(bench.effectOf(0xE5, bytes({0x03})).value(0), "dateColorPair = "_s + pairText(0, 0));
    QCOMPARE(bench.effectOf(0xE5, bytes({5})), QStringList());
    QCOMPARE(bench.effectOf(0xE5, bytes({22})), QStringList());
}

void WriteCommandParserColorsTest::missingStatusLineNumberMeansNone()
{
    WriteBench bench;
    bench.fill();
    QCOMPARE(bench.effectOf(0x99, bytes({})), QStringList());
    QCOMPARE(bench.effectOf(0x99, bytes({0x02})).value(0), "statusLine2ColorPair = "_s + pairText(0, 0));
}

QTEST_GUILESS_MAIN(WriteCommandParserColorsTest)

#include "tst_writecommandparser_colors.moc"
