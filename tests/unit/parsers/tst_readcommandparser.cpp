#include "FakeDevices.h"
#include "ReadBench.h"
#include "SettableClock.h"

#include <QtTest>

#include <algorithm>
#include <iterator>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

struct ReadRow
{
    int cmdId;
    void (Responder::*slot)();
};

// All commands without an argument.
constexpr ReadRow ReadRows[] = {
    {0x01, &Responder::onReadTextCodec},
    {0x30, &Responder::onReadMeterCounter1Value},
    {0x31, &Responder::onReadMeterCounter1State},
    {0x36, &Responder::onReadMeterCounter2Value},
    {0x37, &Responder::onReadMeterCounter2State},
    {0x3B, &Responder::onReadMeterCounter3Value},
    {0x3C, &Responder::onReadMeterCounter3State},
    {0x40, &Responder::onReadDateValue},
    {0x41, &Responder::onReadDateState},
    {0x50, &Responder::onReadTimeValue},
    {0x51, &Responder::onReadTimeState},
    {0x70, &Responder::onReadVideoCounterValue},
    {0x71, &Responder::onReadVideoCounterState},
    {0xC0, &Responder::onReadCrawlerTemperatureValue},
    {0xC1, &Responder::onReadCrawlerTemperatureState},
    {0xC2, &Responder::onReadCrawlerPressureValue},
    {0xC3, &Responder::onReadCrawlerPressureState},
    {0xC4, &Responder::onReadCrawlerRollValue},
    {0xC5, &Responder::onReadCrawlerRollState},
    {0xC6, &Responder::onReadCableSpeedValue},
    {0xC7, &Responder::onReadCableSpeedState},
    {0xD4, &Responder::onRead3DMeasurementValues},
    {0xF0, &Responder::onReadPanPositionValue},
    {0xF1, &Responder::onReadPanPositionState},
    {0xF3, &Responder::onReadTiltPositionValue},
    {0xF4, &Responder::onReadTiltPositionState},
    {0xF5, &Responder::onReadExtTemperatureValue},
    {0xF6, &Responder::onReadCameraTemperatureValue},
    {0xF7, &Responder::onReadCameraTemperatureState},
    {0xF8, &Responder::onReadExtTemperatureState},
    {0xF9, &Responder::onReadPressureValue},
    {0xFA, &Responder::onReadPressureState},
    {0xFB, &Responder::onReadInclinationValue},
    {0xFC, &Responder::onReadInclinationState},
    {0xFF, &Responder::onReadSoftwareID},
};

constexpr int WithArgument[] = {0x90, 0x92, 0x98, 0xFD};

bool isAssigned(int cmdId)
{
    return std::any_of(std::begin(ReadRows), std::end(ReadRows),
                       [cmdId](const ReadRow& row) { return row.cmdId == cmdId; }) ||
           std::find(std::begin(WithArgument), std::end(WithArgument), cmdId) != std::end(WithArgument);
}

QByteArray idText(int id)
{
    return "0x" + QByteArray::number(id, 16).rightJustified(2, '0').toUpper();
}

} // namespace

class ReadCommandParserTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void requestIsAnsweredByItsSlotOnce_data();
    void requestIsAnsweredByItsSlotOnce();
    void everyIdAnswersUnderItsOwnIdOrNotAtAll_data();
    void everyIdAnswersUnderItsOwnIdOrNotAtAll();
    void payloadIsIgnoredWhereThereIsNoArgument();
    void temperatureStatesAreInTheProtocolsOrder();
    void lineNumberIsReadAsPackedDecimals_data();
    void lineNumberIsReadAsPackedDecimals();
    void everyByteIsAPackedDecimalOrZero();
    void laserIndexIsTheFirstByte();
    void answerIsOutWhenTheSlotReturns();
    void requestChangesNothing();

private:
    FakeDevices m_devices;
};

void ReadCommandParserTest::initTestCase()
{
    m_devices.reel.section = 1.0F;
    m_devices.reel.sat = 2.0F;
    m_devices.reel.total = 3.0F;
    m_devices.positionSensor.x = 4.0;
    m_devices.positionSensor.turn = 5.0F;
    m_devices.camera.laserFirst = 250.0;
    m_devices.camera.laserSecond = 50000.0;
}

void ReadCommandParserTest::requestIsAnsweredByItsSlotOnce_data()
{
    QTest::addColumn<int>("row");
    for (int i = 0; i < int(std::size(ReadRows)); ++i) {
        QTest::newRow(idText(ReadRows[i].cmdId)) << i;
    }
}

void ReadCommandParserTest::requestIsAnsweredByItsSlotOnce()
{
    QFETCH(int, row);
    const SettableClock clock(QDateTime(QDate(2026, 3, 15), QTime(9, 5, 7)));
    ReadBench bench;
    fillModel(bench.model, true);
    const QStringList answers = bench.answersTo(ReadRows[row].cmdId);
    QCOMPARE(answers.size(), 1);
    QCOMPARE(answers, bench.answersOf(ReadRows[row].slot));
}

void ReadCommandParserTest::everyIdAnswersUnderItsOwnIdOrNotAtAll_data()
{
    QTest::addColumn<int>("id");
    for (int id = 0; id <= 255; ++id) {
        QTest::newRow(idText(id)) << id;
    }
}

void ReadCommandParserTest::everyIdAnswersUnderItsOwnIdOrNotAtAll()
{
    QFETCH(int, id);
    for (const QByteArray& payload : {QByteArray(), QByteArray("\x01"), QByteArray(40, '\xFF')}) {
        ReadBench bench;
        fillModel(bench.model, true);
        const QStringList answers = bench.answersTo(id, payload);
        QCOMPARE(answers.size(), isAssigned(id) ? 1 : 0);
        if (!answers.isEmpty()) {
            const QString prefix = QStringLiteral("cmd %1 grp 1 length ").arg(id, 2, 16, QLatin1Char('0'));
            QVERIFY2(answers.front().startsWith(prefix), qPrintable(answers.front()));
        }
    }
}

void ReadCommandParserTest::payloadIsIgnoredWhereThereIsNoArgument()
{
    const SettableClock clock(QDateTime(QDate(2026, 3, 15), QTime(9, 5, 7)));
    ReadBench bench;
    fillModel(bench.model, true);
    for (const ReadRow& row : ReadRows) {
        const QStringList plain = bench.answersTo(row.cmdId);
        QCOMPARE(bench.answersTo(row.cmdId, QByteArray("\x02")), plain);
        QCOMPARE(bench.answersTo(row.cmdId, QByteArray(1000, '\xFF')), plain);
    }
}

void ReadCommandParserTest::temperatureStatesAreInTheProtocolsOrder()
{
    ReadBench bench;
    bench.model.setExtTemperatureValue(1.0F);
    bench.model.setCameraTemperatureValue(2.0F);
    bench.model.setExtTemperatureFormat(3);
    bench.model.setCameraTemperatureFormat(4);
    QCOMPARE(bench.answersTo(0xF5), answerHex(0xF5, "3f800000"));
    QCOMPARE(bench.answersTo(0xF6), answerHex(0xF6, "40000000"));
    QCOMPARE(bench.answersTo(0xF7), answerHex(0xF7, "04 00 00 00"));
    QCOMPARE(bench.answersTo(0xF8), answerHex(0xF8, "03 00 00 00"));
}

void ReadCommandParserTest::lineNumberIsReadAsPackedDecimals_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<int>("line");
    QTest::newRow("1") << QByteArray("\x01") << 1;
    QTest::newRow("4") << QByteArray("\x04") << 4;
    QTest::newRow("10") << QByteArray("\x10") << 10;
    QTest::newRow("12, not 18") << QByteArray("\x12") << 12;
    QTest::newRow("99") << QByteArray("\x99") << 99;
    QTest::newRow("two bytes") << QByteArray("\x01\x02") << 102;
    QTest::newRow("leading zeros") << QByteArray("\x00\x00\x00\x00\x00\x00\x03", 7) << 3;
    QTest::newRow("four bytes") << QByteArray("\x12\x34\x56\x78") << 12345678;
    QTest::newRow("largest number") << QByteArray("\x21\x47\x48\x36\x47") << 2147483647;
    QTest::newRow("no byte") << QByteArray() << 0;
    QTest::newRow("zero") << QByteArray("\x00", 1) << 0;
    QTest::newRow("no decimal digit, low half") << QByteArray("\x0A") << 0;
    QTest::newRow("no decimal digit, high half") << QByteArray("\xA0") << 0;
    QTest::newRow("not an exponent") << QByteArray("\x1E\x02") << 0;
    QTest::newRow("no decimal digit in the second byte") << QByteArray("\x01\x0F") << 0;
    QTest::newRow("too large for a number") << QByteArray("\x21\x47\x48\x36\x48") << 0;
    QTest::newRow("much too large") << QByteArray(32, '\x99') << 0;
}

void ReadCommandParserTest::lineNumberIsReadAsPackedDecimals()
{
    QFETCH(QByteArray, payload);
    QFETCH(int, line);
    ReadBench bench;
    fillModel(bench.model, true);
    QStringList lines;
    for (int i = 0; i < 200; ++i) {
        lines.append(QStringLiteral("line %1").arg(i));
    }
    bench.model.setLineText(lines, 0);
    QCOMPARE(bench.answersTo(0x90, payload), bench.answersOf(&Responder::onReadStatusLineText, line));
    QCOMPARE(bench.answersTo(0x92, payload), bench.answersOf(&Responder::onReadStatusLineState, line));
    QCOMPARE(bench.answersTo(0x98, payload), bench.answersOf(&Responder::onReadLine, line));
    if (line < lines.size()) {
        QCOMPARE(bench.answersTo(0x98, payload),
                 answer(0x98, QByteArray(1, char(line)) + lines.at(line).toLatin1()));
    }
}

void ReadCommandParserTest::everyByteIsAPackedDecimalOrZero()
{
    ReadBench bench;
    for (int byte = 0; byte <= 255; ++byte) {
        const int high = byte / 16;
        const int low = byte % 16;
        const int number = high > 9 || low > 9 ? 0 : high * 10 + low;
        QCOMPARE(bench.answersTo(0x98, QByteArray(1, char(byte))), answer(0x98, QByteArray(1, char(number))));
    }
}

void ReadCommandParserTest::laserIndexIsTheFirstByte()
{
    ReadBench bench;
    QCOMPARE(bench.answersTo(0xFD), answerHex(0xFD, "00"));
    QCOMPARE(bench.answersTo(0xFD, QByteArray("\x01")), answerHex(0xFD, "01 4004000000000000"));
    QCOMPARE(bench.answersTo(0xFD, QByteArray("\x02\x01")), answerHex(0xFD, "02 3fe0000000000000"));
    QCOMPARE(bench.answersTo(0xFD, QByteArray("\x03")), answerHex(0xFD, "03"));
    QCOMPARE(bench.answersTo(0xFD, QByteArray("\x12")), answerHex(0xFD, "12")); // a plain byte, no decimals
    QCOMPARE(bench.answersTo(0xFD, QByteArray("\xFF")), answerHex(0xFD, "ff"));
}

void ReadCommandParserTest::answerIsOutWhenTheSlotReturns()
{
    ReadBench bench;
    bool answered = false;
    connect(&bench.responder, &Responder::commandReady, this, [&answered] { answered = true; });
    bench.parser.parseCommandMessage({0x31, 1, 0, {}});
    QVERIFY(answered);
}

void ReadCommandParserTest::requestChangesNothing()
{
    ReadBench bench;
    fillModel(bench.model, true);
    SignalLog log;
    watchModel(log, bench.model);
    const ModelSnapshot before(bench.model);
    for (int id = 0; id <= 255; ++id) {
        static_cast<void>(bench.answersTo(id, QByteArray("\x01")));
    }
    QCOMPARE(before.changesTo(ModelSnapshot(bench.model)), QStringList());
    QCOMPARE(log.take(), QStringList());
}

QTEST_GUILESS_MAIN(ReadCommandParserTest)

#include "tst_readcommandparser.moc"
