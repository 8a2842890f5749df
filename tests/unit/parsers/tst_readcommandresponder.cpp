#include "ReadBench.h"

#include <QtTest>

#include <cmath>
#include <cstring>
#include <iterator>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

struct StateRow
{
    const char* name;
    int cmdId;
    void (Responder::*slot)();
    void (DataManager::*setFormat)(int);
    void (DataManager::*setVisible)(bool);
    void (DataManager::*setPosition)(const QPoint&);
};

constexpr StateRow StateRows[] = {
    {"meter counter 1", 0x31, &Responder::onReadMeterCounter1State, &DataManager::setMeterCounter1Format,
     &DataManager::setMeterCounter1Visible, &DataManager::setMeterCounter1Position},
    {"meter counter 2", 0x37, &Responder::onReadMeterCounter2State, &DataManager::setMeterCounter2Format,
     &DataManager::setMeterCounter2Visible, &DataManager::setMeterCounter2Position},
    {"meter counter 3", 0x3C, &Responder::onReadMeterCounter3State, &DataManager::setMeterCounter3Format,
     &DataManager::setMeterCounter3Visible, &DataManager::setMeterCounter3Position},
    {"date", 0x41, &Responder::onReadDateState, &DataManager::setDateFormat, &DataManager::setDateVisible,
     &DataManager::setDatePosition},
    {"time", 0x51, &Responder::onReadTimeState, &DataManager::setTimeFormat, &DataManager::setTimeVisible,
     &DataManager::setTimePosition},
    {"video counter", 0x71, &Responder::onReadVideoCounterState, &DataManager::setVideoCounterFormat,
     &DataManager::setVideoCounterVisible, &DataManager::setVideoCounterPosition},
    {"crawler temperature", 0xC1, &Responder::onReadCrawlerTemperatureState,
     &DataManager::setCrawlerTemperatureFormat, &DataManager::setCrawlerTemperatureVisible,
     &DataManager::setCrawlerTemperaturePosition},
    {"crawler pressure", 0xC3, &Responder::onReadCrawlerPressureState, &DataManager::setCrawlerPressureFormat,
     &DataManager::setCrawlerPressureVisible, &DataManager::setCrawlerPressurePosition},
    {"crawler roll", 0xC5, &Responder::onReadCrawlerRollState, &DataManager::setCrawlerRollFormat,
     &DataManager::setCrawlerRollVisible, &DataManager::setCrawlerRollPosition},
    {"cable speed", 0xC7, &Responder::onReadCableSpeedState, &DataManager::setCableSpeedFormat,
     &DataManager::setCableSpeedVisible, &DataManager::setCableSpeedPosition},
    {"camera pan", 0xF1, &Responder::onReadPanPositionState, &DataManager::setPanPositionFormat,
     &DataManager::setPanVisible, &DataManager::setPanPosition},
    {"camera tilt", 0xF4, &Responder::onReadTiltPositionState, &DataManager::setTiltFormat,
     &DataManager::setTiltVisible, &DataManager::setTiltPosition},
    {"camera temperature", 0xF7, &Responder::onReadCameraTemperatureState,
     &DataManager::setCameraTemperatureFormat, &DataManager::setCameraTemperatureVisible,
     &DataManager::setCameraTemperaturePosition},
    {"external temperature", 0xF8, &Responder::onReadExtTemperatureState,
     &DataManager::setExtTemperatureFormat, &DataManager::setExtTemperatureVisible,
     &DataManager::setExtTemperaturePosition},
    {"pressure", 0xFA, &Responder::onReadPressureState, &DataManager::setPressureFormat,
     &DataManager::setPressureVisible, &DataManager::setPressurePosition},
    {"inclination", 0xFC, &Responder::onReadInclinationState, &DataManager::setInclinationFormat,
     &DataManager::setInclinationVisible, &DataManager::setInclinationPosition},
};

struct ValueAnswerRow
{
    const char* name;
    int cmdId;
    void (Responder::*slot)();
    void (DataManager::*set)(float);
};

constexpr ValueAnswerRow ValueAnswerRows[] = {
    {"crawler temperature", 0xC0, &Responder::onReadCrawlerTemperatureValue,
     &DataManager::setCrawlerTemperature},
    {"crawler pressure", 0xC2, &Responder::onReadCrawlerPressureValue, &DataManager::setCrawlerPressure},
    {"crawler roll", 0xC4, &Responder::onReadCrawlerRollValue, &DataManager::setCrawlerRollValue},
    {"cable speed", 0xC6, &Responder::onReadCableSpeedValue, &DataManager::setCableSpeedValue},
    {"camera pan", 0xF0, &Responder::onReadPanPositionValue, &DataManager::setPanPositionValue},
    {"camera tilt", 0xF3, &Responder::onReadTiltPositionValue, &DataManager::setTiltValue},
    {"external temperature", 0xF5, &Responder::onReadExtTemperatureValue,
     &DataManager::setExtTemperatureValue},
    {"camera temperature", 0xF6, &Responder::onReadCameraTemperatureValue,
     &DataManager::setCameraTemperatureValue},
    {"pressure", 0xF9, &Responder::onReadPressureValue, &DataManager::setPressureValue},
};

float singleFromHex(const QByteArray& hex)
{
    const quint32 bits = hex.toUInt(nullptr, 16);
    float value = 0.0F;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

template <class Rows>
void addRows(const Rows& rows)
{
    QTest::addColumn<int>("row");
    for (int i = 0; i < int(std::size(rows)); ++i) {
        QTest::newRow(rows[i].name) << i;
    }
}

} // namespace

/// Answers from the data model.
class ReadCommandResponderTest : public QObject
{
    Q_OBJECT

private slots:
    void createdCommandTakesItsLengthFromThePayload();
    void createdCommandKeepsOnlySixteenBitsOfItsLength();
    void stateIsFormatVisibleColumnRow_data() { addRows(StateRows); }
    void stateIsFormatVisibleColumnRow();
    void stateKeepsTheLowByteOfEachNumber_data() { addRows(StateRows); }
    void stateKeepsTheLowByteOfEachNumber();
    void valueIsABigEndianSingleBitForBit_data() { addRows(ValueAnswerRows); }
    void valueIsABigEndianSingleBitForBit();
    void inclinationOfFormat0IsAGradient_data();
    void inclinationOfFormat0IsAGradient();
    void inclinationOfAnyOtherFormatIsTheValueBitForBit();
    void videoCounterIsTheLowByteOfEachField();
    void textCodecIsOneByte();
    void softwareIdIsEncodedText();
    void readingChangesNothing();
};

void ReadCommandResponderTest::createdCommandTakesItsLengthFromThePayload()
{
    ReadBench bench;
    QCOMPARE(asText(bench.responder.createCommand('\xFD', QByteArray("\x01\x00\x02", 3), '\x01')),
             QStringLiteral("cmd fd grp 1 length 3 data 01 00 02"));
    QCOMPARE(asText(bench.responder.createCommand('\x31', {}, '\x02')),
             QStringLiteral("cmd 31 grp 2 length 0 data "));
}

void ReadCommandResponderTest::createdCommandKeepsOnlySixteenBitsOfItsLength()
{
    ReadBench bench;
    const CommandMessage message =
        bench.responder.createCommand('\x90', QByteArray(65536 + 258, 'x'), '\x01');
    QCOMPARE(int(message.length), 258);
    QCOMPARE(message.data.size(), 65536 + 258);
    QCOMPARE(int(bench.responder.createCommand('\x90', QByteArray(65535, 'x'), '\x01').length), 65535);
}

void ReadCommandResponderTest::stateIsFormatVisibleColumnRow()
{
    QFETCH(int, row);
    const StateRow& state = StateRows[row];
    ReadBench bench;
    QCOMPARE(bench.answersOf(state.slot), answerHex(state.cmdId, "00 00 00 00"));

    fillModel(bench.model, false); // whatever the others hold, the answer is this element's
    (bench.model.*state.setFormat)(5);
    (bench.model.*state.setVisible)(true);
    (bench.model.*state.setPosition)(QPoint(7, 11));
    QCOMPARE(bench.answersOf(state.slot), answerHex(state.cmdId, "05 01 07 0b"));

    fillModel(bench.model, true);
    (bench.model.*state.setFormat)(255);
    (bench.model.*state.setVisible)(false);
    (bench.model.*state.setPosition)(QPoint(128, 255));
    QCOMPARE(bench.answersOf(state.slot), answerHex(state.cmdId, "ff 00 80 ff"));
}

void ReadCommandResponderTest::stateKeepsTheLowByteOfEachNumber()
{
    QFETCH(int, row);
    const StateRow& state = StateRows[row];
    ReadBench bench;
    (bench.model.*state.setFormat)(0x1203);
    (bench.model.*state.setPosition)(QPoint(300, -1));
    QCOMPARE(bench.answersOf(state.slot), answerHex(state.cmdId, "03 00 2c ff"));
}

void ReadCommandResponderTest::valueIsABigEndianSingleBitForBit()
{
    QFETCH(int, row);
    const ValueAnswerRow& value = ValueAnswerRows[row];
    ReadBench bench;
    QCOMPARE(bench.answersOf(value.slot), answerHex(value.cmdId, "00 00 00 00"));
    fillModel(bench.model, true);
    for (const char* hex : {"41200000", "c2f6e979", "00000001", "807fffff", "7f7fffff", "7f800000",
                            "ff800000", "7fc00000", "7fdeadbf", "ffc0ffee", "3dcccccd"}) {
        (bench.model.*value.set)(1.0F); // so that the next one is a change, whatever was before
        (bench.model.*value.set)(singleFromHex(hex));
        QCOMPARE(bench.answersOf(value.slot), answerHex(value.cmdId, hex));
    }
    // A negative zero is no change after a zero, but it is after something else, and then it is kept.
    (bench.model.*value.set)(1.0F);
    (bench.model.*value.set)(-0.0F);
    QCOMPARE(bench.answersOf(value.slot), answerHex(value.cmdId, "80000000"));
}

void ReadCommandResponderTest::inclinationOfFormat0IsAGradient_data()
{
    QTest::addColumn<float>("degrees");
    QTest::addColumn<float>("percent");
    QTest::newRow("level") << 0.0F << 0.0F;
    QTest::newRow("1 degree") << 1.0F << 1.7455065F;
    QTest::newRow("10 degrees") << 10.0F << 17.632698F;
    QTest::newRow("26.565 degrees") << 26.565052F << 50.0F;
    QTest::newRow("45 degrees") << 45.0F << 100.0F;
    QTest::newRow("60 degrees") << 60.0F << 173.20508F;
    QTest::newRow("45 degrees down") << -45.0F << -100.0F;
    QTest::newRow("a thousandth of a degree") << 0.001F << 0.0017453292F;
}

void ReadCommandResponderTest::inclinationOfFormat0IsAGradient()
{
    QFETCH(float, degrees);
    QFETCH(float, percent);
    ReadBench bench;
    bench.model.setInclinationValue(degrees);
    const QString text = bench.answersOf(&Responder::onReadInclinationValue).value(0);
    QVERIFY2(text.startsWith(QStringLiteral("cmd fb grp 1 length 4 data ")), qPrintable(text));
    const float sent = singleFromHex(text.right(11).remove(QLatin1Char(' ')).toLatin1());
    QVERIFY2(std::abs(sent - percent) <= std::abs(percent) * 5e-7F, QByteArray::number(double(sent), 'g', 9));
    // The steps are taken in single precision.
    QCOMPARE(asText(sent), asText(std::tan(degrees * 0.017453292F) * 100.0F));
}

void ReadCommandResponderTest::inclinationOfAnyOtherFormatIsTheValueBitForBit()
{
    ReadBench bench;
    for (const int format : {1, 2, 255, -1, 256}) {
        bench.model.setInclinationFormat(format);
        for (const char* hex : {"42340000", "c2340000", "00000001", "7fdeadbf", "ff800000"}) {
            bench.model.setInclinationValue(singleFromHex(hex));
            QCOMPARE(bench.answersOf(&Responder::onReadInclinationValue), answerHex(0xFB, hex));
        }
    }
}

void ReadCommandResponderTest::videoCounterIsTheLowByteOfEachField()
{
    ReadBench bench;
    QCOMPARE(bench.answersOf(&Responder::onReadVideoCounterValue), answerHex(0x70, "00 00 00 00"));
    bench.model.setVideoCounterHours(1);
    bench.model.setVideoCounterMinutes(59);
    bench.model.setVideoCounterSeconds(300);
    bench.model.setVideoCounterFrames(-1);
    QCOMPARE(bench.answersOf(&Responder::onReadVideoCounterValue), answerHex(0x70, "01 3b 2c ff"));
}

void ReadCommandResponderTest::textCodecIsOneByte()
{
    ReadBench bench;
    QCOMPARE(bench.answersOf(&Responder::onReadTextCodec), answerHex(0x01, "00"));
    for (int codec = 0; codec <= 255; ++codec) {
        bench.model.setTextCodec(static_cast<DataManager::TextCodec>(codec));
        QCOMPARE(bench.answersOf(&Responder::onReadTextCodec), answer(0x01, QByteArray(1, char(codec))));
    }
}

void ReadCommandResponderTest::softwareIdIsEncodedText()
{
    ReadBench bench;
    QCOMPARE(bench.answersOf(&Responder::onReadSoftwareID), answerHex(0xFF, ""));
    bench.model.setSoftwareID(QStringLiteral("V\u20AC 1"));
    QCOMPARE(bench.answersOf(&Responder::onReadSoftwareID), answerHex(0xFF, "56 a4 20 31"));
    bench.model.setTextCodec(DataManager::Utf8);
    QCOMPARE(bench.answersOf(&Responder::onReadSoftwareID), answerHex(0xFF, "56 e2 82 ac 20 31"));
    if (QSysInfo::ByteOrder == QSysInfo::LittleEndian) {
        bench.model.setTextCodec(DataManager::Utf16);
        QCOMPARE(bench.answersOf(&Responder::onReadSoftwareID), answerHex(0xFF, "fffe 5600 ac20 2000 3100"));
    }
}

void ReadCommandResponderTest::readingChangesNothing()
{
    ReadBench bench;
    fillModel(bench.model, true);
    SignalLog log;
    watchModel(log, bench.model);
    const ModelSnapshot before(bench.model);
    int answered = 0;
    for (const StateRow& row : StateRows) {
        answered += bench.answersOf(row.slot).size();
    }
    for (const ValueAnswerRow& row : ValueAnswerRows) {
        answered += bench.answersOf(row.slot).size();
    }
    answered += bench.answersOf(&Responder::onReadInclinationValue).size();
    answered += bench.answersOf(&Responder::onReadVideoCounterValue).size();
    QCOMPARE(answered, int(std::size(StateRows) + std::size(ValueAnswerRows)) + 2);
    QCOMPARE(before.changesTo(ModelSnapshot(bench.model)), QStringList());
    QCOMPARE(log.take(), QStringList());
}

QTEST_GUILESS_MAIN(ReadCommandResponderTest)

#include "tst_readcommandresponder.moc"
