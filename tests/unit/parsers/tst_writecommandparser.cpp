#include "WriteBench.h"

#include <QtTest>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

// Long enough for every command, and no two bytes that any of them reads are alike.
const QByteArray CommonPayload("\x01\x0C\x14\x1A"
                               "ABCDEFGHIJKLMNOPQRST");

/// Colour numbers 4 and 12: 0x0C in the low half; 0x0C OR (0x14 shifted left by four), kept to a byte, is
/// 0x4C.
const ColorPair CommonColors(QColor(128, 128, 0), QColor(255, 255, 0));

using Effect = QStringList;

Effect becomes(const char* property, const QString& value, const QString& announcement)
{
    return {QStringLiteral("%1 = %2").arg(QLatin1String(property), value), announcement};
}

Effect position(const char* property, const char* signal, const QString& element)
{
    return becomes(property, QStringLiteral("(1, 12)"),
                   QStringLiteral("%1(\"%2\", (1, 12))").arg(QLatin1String(signal), element));
}

Effect colors(const char* property, const char* signal, const QString& element)
{
    return becomes(
        property, asText(CommonColors),
        QStringLiteral("%1(\"%2\", %3)").arg(QLatin1String(signal), element, asText(CommonColors)));
}

/// What every assigned command does with the common payload.
QMap<int, Effect> writeTable()
{
    const QString tail = QStringLiteral("\x1A") + QStringLiteral("ABCDEFGHIJKLMNOPQRST");
    const QString statusText = asText(QStringLiteral("\x0C\x14") + tail);
    const QString lines = asText(QStringList{tail, {}, {}, {}, {}});
    return {
        {0x01, {"textCodec = 1"_s}},
        {0x30, {"setDistanceCounterSection(float 010c141a)"_s}},
        {0x32, position("meterCounter1Position", "meterCounter1PositionChanged",
                        Name::NAME_SECTION_DISTANCE_COUNTER)},
        {0x36, {"setDistanceCounterSat(float 010c141a)"_s}},
        {0x38,
         position("meterCounter2Position", "meterCounter2PositionChanged", Name::NAME_SAT_DISTANCE_COUNTER)},
        {0x3C, {"setDistanceCounterTotal(float 010c141a)"_s}},
        {0x3E, position("meterCounter3Position", "meterCounter3PositionChanged",
                        Name::NAME_TOTAL_DISTANCE_COUNTER)},
        {0x40, {"writeDateValue(2026-12-01)"_s}},
        {0x42, position("datePosition", "datePositionChanged", Name::NAME_DATE)},
        {0x50, {"writeTimeValue(01:12:20.000)"_s}},
        {0x52, position("timePosition", "timePositionChanged", Name::NAME_TIME)},
        {0x62, {"cursorPosition = (1, 12)"_s, "cursorPositionChanged((1, 12))"_s}},
        {0x70, {"writeVideoCounter(1, 12, 20)"_s}},
        {0x72,
         position("videoCounterPosition", "videoCounterPositionChanged", Name::NAME_VIDEO_TIME_COUNTER)},
        {0x90,
         becomes(
             "statusLine1Text", statusText,
             QStringLiteral("statusLine1TextChanged(\"%1\", %2)").arg(Name::NAME_STATUS_TEXT_1, statusText))},
        {0x92, {}}, // below: its colours stand at another place of the payload
        {0x95, {QStringLiteral("writeTextOnCursorPosition(\"\x01\x0C\x14") + tail + QStringLiteral("\")")}},
        {0x98, {QStringLiteral("writeLine(1, \"\x14") + tail + QStringLiteral("\")")}}, // form feed: trimmed
        {0x99, colors("statusLine1ColorPair", "statusLine1ColorPairChanged", Name::NAME_STATUS_TEXT_1)},
        {0xC0, position("crawlerTemperaturePosition", "crawlerTemperaturePositionChanged",
                        Name::NAME_CRAWLER_TEMPERATURE)},
        {0xC2,
         position("crawlerPressurePosition", "crawlerPressurePositionChanged", Name::NAME_CRAWLER_PRESSURE)},
        {0xC4, position("crawlerRollPosition", "crawlerRollPositionChanged", Name::NAME_CRAWLER_ROLL)},
        {0xC6, position("cableSpeedPosition", "cableSpeedPositionChanged", Name::NAME_SPEED)},
        {0xD4,
         {"writeMeasurement3DPosition(double 010c141a41424344, double 45464748494a4b4c, "
          "double 4d4e4f5051525354)"_s}},
        {0xD5, {"writeMeasurement3DOrientation(float 010c141a, float 51525354)"_s}},
        {0xD7,
         becomes("lineText", lines,
                 QStringLiteral("lineTextChanged(\"%1\", %2, 12)").arg(Name::NAME_OSD_FREE_TEXT_BOX, lines))},
        {0xE5,
         colors("meterCounter2ColorPair", "meterCounter2ColorPairChanged", Name::NAME_SAT_DISTANCE_COUNTER)},
        {0xF0, position("panPosition", "panPositionChanged", Name::NAME_CAMERA_PAN)},
        {0xF3, position("tiltPosition", "tiltPositionChanged", Name::NAME_CAMERA_TILT)},
        {0xF5,
         becomes(
             "extTemperatureFormat", QStringLiteral("1"),
             QStringLiteral("extTemperatureFormatChanged(\"%1\", 1)").arg(Name::NAME_OBJECT_TEMPERATURE))},
        {0xF6, position("cameraTemperaturePosition", "cameraTemperaturePositionChanged",
                        Name::NAME_CAMERA_TEMPERATURE)},
        {0xF9, position("pressurePosition", "pressurePositionChanged", Name::NAME_CAMERA_PRESSURE)},
        {0xFB,
         position("extTemperaturePosition", "extTemperaturePositionChanged", Name::NAME_OBJECT_TEMPERATURE)},
        {0xFC, position("inclinationPosition", "inclinationPositionChanged", Name::NAME_CRAWLER_PITCH)},
        {0xFD,
         becomes("inclinationFormat", QStringLiteral("1"), QStringLiteral("inclinationFormatChanged(1)"))},
    };
}

} // namespace

class WriteCommandParserTest : public QObject
{
    Q_OBJECT

private slots:
    void everyIdDoesItsRowAndNothingElse_data();
    void everyIdDoesItsRowAndNothingElse();
    void unknownIdDoesNothingWhateverItsPayload();
    void unchangedValueIsNotAnnouncedAgain();
    void missingPositionByteCountsAsZero_data();
    void missingPositionByteCountsAsZero();
    void positionBytesAreUnsigned();
    void cursorPositionIsAnnouncedEvenIfUnchanged();
    void formatNumberIsNotValidated_data();
    void formatNumberIsNotValidated();
    void codecNumberIsNotValidated();
    void emptyCodecCommandSelectsTheDefault();
    void videoCounterBytesAreUnsignedAndDefaultToZero();
    void signalsAreDeclaredInTheProtocolsOrder();
};

void WriteCommandParserTest::everyIdDoesItsRowAndNothingElse_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<QStringList>("effect");
    const QMap<int, Effect> table = writeTable();
    QCOMPARE(table.size(), 35);
    for (int id = 0; id <= 255; ++id) {
        Effect effect = table.value(id);
        if (id == 0x92) { // two bytes: 0x01 and 0x0C make 0xC1
            effect = Effect{QStringLiteral("lineColorPair = ") +
                            asText(ColorPair(QColor(255, 255, 0), QColor(255, 255, 255)))};
        }
        const QByteArray name = "0x" + QByteArray::number(id, 16).rightJustified(2, '0').toUpper();
        QTest::newRow(name) << id << effect;
    }
}

void WriteCommandParserTest::everyIdDoesItsRowAndNothingElse()
{
    QFETCH(int, id);
    QFETCH(QStringList, effect);
    WriteBench fresh;
    QCOMPARE(fresh.effectOf(id, CommonPayload), effect);
    WriteBench filled;
    filled.fill();
    QCOMPARE(filled.effectOf(id, CommonPayload), effect);
}

void WriteCommandParserTest::unknownIdDoesNothingWhateverItsPayload()
{
    const QMap<int, Effect> table = writeTable();
    WriteBench bench;
    bench.fill();
    for (int id = 0; id <= 255; ++id) {
        if (table.contains(id)) {
            continue;
        }
        for (int first = 0; first <= 32; ++first) {
            QCOMPARE(bench.effectOf(id, QByteArray(1, static_cast<char>(first)) + CommonPayload),
                     QStringList());
        }
        QCOMPARE(bench.effectOf(id, {}), QStringList());
        QCOMPARE(bench.effectOf(id, QByteArray(300, '\xFF')), QStringList());
    }
}

void WriteCommandParserTest::unchangedValueIsNotAnnouncedAgain()
{
    WriteBench bench;
    QCOMPARE(bench.emittedBy(0x42, QByteArray("\x03\x04")).size(), 1);
    QCOMPARE(bench.emittedBy(0x42, QByteArray("\x03\x04")).size(), 0);
    QCOMPARE(bench.emittedBy(0xFD, QByteArray("\x02")).size(), 1);
    QCOMPARE(bench.emittedBy(0xFD, QByteArray("\x02")).size(), 0);
}

void WriteCommandParserTest::missingPositionByteCountsAsZero_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<QString>("property");
    const QMap<int, Effect> table = writeTable();
    for (auto it = table.begin(); it != table.end(); ++it) {
        const QString property = it.value().value(0).section(QStringLiteral(" = "), 0, 0);
        if (it.value().value(0).endsWith(QStringLiteral(" = (1, 12)"))) {
            QTest::newRow(property.toLatin1()) << it.key() << property;
        }
    }
}

void WriteCommandParserTest::missingPositionByteCountsAsZero()
{
    QFETCH(int, id);
    QFETCH(QString, property);
    WriteBench bench;
    bench.fill();
    QCOMPARE(bench.effectOf(id, QByteArray("\x0A")).value(0), property + QStringLiteral(" = (10, 0)"));
    QCOMPARE(bench.effectOf(id, QByteArray()).value(0), property + QStringLiteral(" = (0, 0)"));
}

void WriteCommandParserTest::positionBytesAreUnsigned()
{
    WriteBench bench;
    QCOMPARE(bench.effectOf(0x32, QByteArray("\x80\xFF")).value(0),
             QStringLiteral("meterCounter1Position = (128, 255)"));
    QCOMPARE(bench.effectOf(0x62, QByteArray("\xFF\x80")).value(0),
             QStringLiteral("cursorPosition = (255, 128)"));
}

void WriteCommandParserTest::cursorPositionIsAnnouncedEvenIfUnchanged()
{
    WriteBench bench;
    QCOMPARE(bench.emittedBy(0x62, QByteArray()), QStringList{"cursorPositionChanged((0, 0))"_s});
    QCOMPARE(bench.emittedBy(0x62, QByteArray()), QStringList{"cursorPositionChanged((0, 0))"_s});
}

void WriteCommandParserTest::formatNumberIsNotValidated_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<QString>("property");
    QTest::newRow("external temperature") << 0xF5 << "extTemperatureFormat";
    QTest::newRow("inclination") << 0xFD << "inclinationFormat";
}

void WriteCommandParserTest::formatNumberIsNotValidated()
{
    QFETCH(int, id);
    QFETCH(QString, property);
    WriteBench bench;
    bench.fill();
    for (int format = 255; format >= 0; --format) {
        QCOMPARE(bench.effectOf(id, QByteArray(1, static_cast<char>(format))).value(0),
                 QStringLiteral("%1 = %2").arg(property).arg(format));
    }
    bench.fill();
    QCOMPARE(bench.effectOf(id, QByteArray()).value(0), property + QStringLiteral(" = 0"));
}

void WriteCommandParserTest::codecNumberIsNotValidated()
{
    WriteBench bench;
    for (int codec = 255; codec >= 0; --codec) {
        QCOMPARE(bench.effectOf(0x01, QByteArray(1, static_cast<char>(codec))),
                 QStringList{QStringLiteral("textCodec = %1").arg(codec)});
    }
}

void WriteCommandParserTest::emptyCodecCommandSelectsTheDefault()
{
    WriteBench bench;
    bench.model.setTextCodec(DataManager::Utf16);
    QCOMPARE(bench.effectOf(0x01, QByteArray()), QStringList{"textCodec = 0"_s});
}

void WriteCommandParserTest::videoCounterBytesAreUnsignedAndDefaultToZero()
{
    WriteBench bench;
    QCOMPARE(bench.effectOf(0x70, QByteArray("\xFF\x80\x3B\x09")),
             QStringList{"writeVideoCounter(255, 128, 59)"_s});
    QCOMPARE(bench.effectOf(0x70, QByteArray("\x17\x3B")), QStringList{"writeVideoCounter(23, 59, 0)"_s});
    QCOMPARE(bench.effectOf(0x70, QByteArray("\x17")), QStringList{"writeVideoCounter(23, 0, 0)"_s});
    QCOMPARE(bench.effectOf(0x70, QByteArray()), QStringList{"writeVideoCounter(0, 0, 0)"_s});
}

void WriteCommandParserTest::signalsAreDeclaredInTheProtocolsOrder()
{
    // Two of them are declared only; the table test shows that no command emits them.
    QCOMPARE(
        declaredSignals(WriteCommandParser::staticMetaObject),
        (QStringList{"writeDateValue(QDate)"_s, "writeTimeValue(QTime)"_s, "writeCursorPosition(int,int)"_s,
                     "writeLine(int,QString)"_s, "writeTextOnCursorPosition(QString)"_s,
                     "writeInclinationFormat(int)"_s, "setDistanceCounterSection(float)"_s,
                     "setDistanceCounterTotal(float)"_s, "setDistanceCounterSat(float)"_s,
                     "writeVideoCounter(int,int,int)"_s, "writeMeasurement3DPosition(double,double,double)"_s,
                     "writeMeasurement3DOrientation(float,float)"_s}));
}

QTEST_GUILESS_MAIN(WriteCommandParserTest)

#include "tst_writecommandparser.moc"
