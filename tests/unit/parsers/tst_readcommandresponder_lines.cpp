#include "ReadBench.h"

#include <QtTest>

#include <limits>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

struct StatusLineRow
{
    int line;
    void (DataManager::*setText)(QString);
    void (DataManager::*setVisible)(bool);
    void (DataManager::*setColorPair)(const ColorPair&);
};

constexpr StatusLineRow StatusLineRows[] = {
    {1, &DataManager::setStatusLine1Text, &DataManager::setStatusLine1Visible,
     &DataManager::setStatusLine1ColorPair},
    {2, &DataManager::setStatusLine2Text, &DataManager::setStatusLine2Visible,
     &DataManager::setStatusLine2ColorPair},
    {3, &DataManager::setStatusLine3Text, &DataManager::setStatusLine3Visible,
     &DataManager::setStatusLine3ColorPair},
    {4, &DataManager::setStatusLine4Text, &DataManager::setStatusLine4Visible,
     &DataManager::setStatusLine4ColorPair},
};

const QColor Colors[] = {
    QColor(0, 0, 0, 0),    QColor(255, 255, 255), QColor(128, 0, 0),   QColor(0, 128, 0),
    QColor(128, 128, 0),   QColor(0, 0, 128),     QColor(128, 0, 128), QColor(0, 128, 128),
    QColor(160, 160, 164), QColor(192, 192, 192), QColor(255, 0, 0),   QColor(0, 255, 0),
    QColor(255, 255, 0),   QColor(0, 0, 255),     QColor(255, 0, 255), QColor(0, 0, 0),
};

/// Bytes of a state answer: line, colours, visible, and two that are always zero.
QStringList stateAnswer(int line, int colors, int visible)
{
    QByteArray payload;
    payload.append(char(line)).append(char(colors)).append(char(visible)).append(2, '\0');
    return answer(0x92, payload);
}

} // namespace

/// Answers that concern a numbered line: the status lines and the free text lines.
class ReadCommandResponderLinesTest : public QObject
{
    Q_OBJECT

private slots:
    void statusTextFollowsTheNumberOfItsLine();
    void statusTextOfAnyOtherLineIsTheNumberAlone_data();
    void statusTextOfAnyOtherLineIsTheNumberAlone();
    void statusTextIsEncodedByTheCodecOfTheMoment();
    void stateOfANeverWrittenLineIsWhiteOnWhite();
    void statePacksEveryPairOfColors();
    void stateIsOfItsLineAlone();
    void stateOfAColorWithoutANumberIsWhite();
    void stateOfAnyOtherLineIsZeros_data();
    void stateOfAnyOtherLineIsZeros();
    void freeLineIsCountedFromZero();
    void freeLineBeyondTheListIsTheNumberAlone_data();
    void freeLineBeyondTheListIsTheNumberAlone();
    void freeLineNumberIsCutToAByteOnlyWhenItIsSent();
};

void ReadCommandResponderLinesTest::statusTextFollowsTheNumberOfItsLine()
{
    ReadBench bench;
    for (const StatusLineRow& row : StatusLineRows) {
        QCOMPARE(bench.answersOf(&Responder::onReadStatusLineText, row.line),
                 answer(0x90, QByteArray(1, char(row.line))));
        (bench.model.*row.setText)(QStringLiteral(" line %1 ").arg(row.line));
    }
    for (const StatusLineRow& row : StatusLineRows) {
        const QByteArray number(1, char(row.line));
        QCOMPARE(bench.answersOf(&Responder::onReadStatusLineText, row.line),
                 answer(0x90, number + " line " + QByteArray::number(row.line) + ' '));
    }
}

void ReadCommandResponderLinesTest::statusTextOfAnyOtherLineIsTheNumberAlone_data()
{
    QTest::addColumn<int>("line");
    QTest::addColumn<int>("number");
    QTest::newRow("0") << 0 << 0;
    QTest::newRow("5") << 5 << 5;
    QTest::newRow("99") << 99 << 99;
    QTest::newRow("255") << 255 << 255;
    QTest::newRow("257, not 1") << 257 << 1;
    QTest::newRow("-1") << -1 << 255;
    QTest::newRow("-255, not 1") << -255 << 1;
    QTest::newRow("largest") << std::numeric_limits<int>::max() << 255;
    QTest::newRow("smallest") << std::numeric_limits<int>::min() << 0;
}

void ReadCommandResponderLinesTest::statusTextOfAnyOtherLineIsTheNumberAlone()
{
    QFETCH(int, line);
    QFETCH(int, number);
    ReadBench bench;
    fillModel(bench.model, true);
    QCOMPARE(bench.answersOf(&Responder::onReadStatusLineText, line),
             answer(0x90, QByteArray(1, char(number))));
}

void ReadCommandResponderLinesTest::statusTextIsEncodedByTheCodecOfTheMoment()
{
    ReadBench bench;
    bench.model.setStatusLine3Text(QStringLiteral("\u20AC"));
    QCOMPARE(bench.answersOf(&Responder::onReadStatusLineText, 3), answerHex(0x90, "03 a4"));
    bench.model.setTextCodec(DataManager::Utf8);
    QCOMPARE(bench.answersOf(&Responder::onReadStatusLineText, 3), answerHex(0x90, "03 e2 82 ac"));
    if (QSysInfo::ByteOrder == QSysInfo::LittleEndian) {
        bench.model.setTextCodec(DataManager::Utf16);
        QCOMPARE(bench.answersOf(&Responder::onReadStatusLineText, 3), answerHex(0x90, "03 fffe ac20"));
    }
}

void ReadCommandResponderLinesTest::stateOfANeverWrittenLineIsWhiteOnWhite()
{
    ReadBench bench;
    for (const StatusLineRow& row : StatusLineRows) {
        QCOMPARE(bench.answersOf(&Responder::onReadStatusLineState, row.line),
                 stateAnswer(row.line, 0x11, 0));
    }
}

void ReadCommandResponderLinesTest::statePacksEveryPairOfColors()
{
    ReadBench bench;
    for (const StatusLineRow& row : StatusLineRows) {
        for (int text = 0; text < 16; ++text) {
            for (int background = 0; background < 16; ++background) {
                (bench.model.*row.setColorPair)(ColorPair(Colors[text], Colors[background]));
                QCOMPARE(bench.answersOf(&Responder::onReadStatusLineState, row.line),
                         stateAnswer(row.line, text * 16 + background, 0));
            }
        }
    }
    bench.model.setStatusLine2ColorPair(ColorPair(Qt::red, Qt::black));
    QCOMPARE(bench.answersOf(&Responder::onReadStatusLineState, 2), answerHex(0x92, "02 af 00 00 00"));
}

void ReadCommandResponderLinesTest::stateIsOfItsLineAlone()
{
    for (const StatusLineRow& row : StatusLineRows) {
        ReadBench bench;
        (bench.model.*row.setVisible)(true);
        (bench.model.*row.setColorPair)(ColorPair(Qt::yellow, Qt::gray));
        for (int line = 1; line <= 4; ++line) {
            QCOMPARE(bench.answersOf(&Responder::onReadStatusLineState, line),
                     line == row.line ? stateAnswer(line, 0xC8, 1) : stateAnswer(line, 0x11, 0));
        }
    }
}

void ReadCommandResponderLinesTest::stateOfAColorWithoutANumberIsWhite()
{
    ReadBench bench;
    bench.model.setStatusLine1ColorPair(ColorPair(QColor(0, 255, 255), Qt::black));
    QCOMPARE(bench.answersOf(&Responder::onReadStatusLineState, 1), stateAnswer(1, 0x1F, 0));
    bench.model.setStatusLine1ColorPair(ColorPair(Qt::black, QColor(1, 2, 3)));
    QCOMPARE(bench.answersOf(&Responder::onReadStatusLineState, 1), stateAnswer(1, 0xF1, 0));
    bench.model.setStatusLine1ColorPair(ColorPair(QColor(), Qt::transparent));
    QCOMPARE(bench.answersOf(&Responder::onReadStatusLineState, 1), stateAnswer(1, 0x10, 0));
}

void ReadCommandResponderLinesTest::stateOfAnyOtherLineIsZeros_data()
{
    statusTextOfAnyOtherLineIsTheNumberAlone_data();
}

void ReadCommandResponderLinesTest::stateOfAnyOtherLineIsZeros()
{
    QFETCH(int, line);
    QFETCH(int, number);
    ReadBench bench;
    fillModel(bench.model, true);
    QCOMPARE(bench.answersOf(&Responder::onReadStatusLineState, line), stateAnswer(number, 0, 0));
}

void ReadCommandResponderLinesTest::freeLineIsCountedFromZero()
{
    ReadBench bench;
    QCOMPARE(bench.answersOf(&Responder::onReadLine, 0), answerHex(0x98, "00"));
    bench.model.setLineText({"A"_s, ""_s, QStringLiteral("\u20AC")}, 0);
    QCOMPARE(bench.answersOf(&Responder::onReadLine, 0), answerHex(0x98, "00 41"));
    QCOMPARE(bench.answersOf(&Responder::onReadLine, 1), answerHex(0x98, "01"));
    QCOMPARE(bench.answersOf(&Responder::onReadLine, 2), answerHex(0x98, "02 a4"));
    QCOMPARE(bench.answersOf(&Responder::onReadLine, 3), answerHex(0x98, "03"));
    bench.model.setTextCodec(DataManager::Utf8);
    QCOMPARE(bench.answersOf(&Responder::onReadLine, 2), answerHex(0x98, "02 e2 82 ac"));
}

void ReadCommandResponderLinesTest::freeLineBeyondTheListIsTheNumberAlone_data()
{
    QTest::addColumn<int>("line");
    QTest::addColumn<int>("number");
    QTest::newRow("one too many") << 2 << 2;
    QTest::newRow("255") << 255 << 255;
    QTest::newRow("256, not 0") << 256 << 0;
    QTest::newRow("-1, which is less than the number of lines") << -1 << 255;
    QTest::newRow("largest") << std::numeric_limits<int>::max() << 255;
    QTest::newRow("smallest") << std::numeric_limits<int>::min() << 0;
}

void ReadCommandResponderLinesTest::freeLineBeyondTheListIsTheNumberAlone()
{
    QFETCH(int, line);
    QFETCH(int, number);
    ReadBench bench;
    bench.model.setLineText({"A"_s, "B"_s}, 0);
    QCOMPARE(bench.answersOf(&Responder::onReadLine, line), answer(0x98, QByteArray(1, char(number))));
}

void ReadCommandResponderLinesTest::freeLineNumberIsCutToAByteOnlyWhenItIsSent()
{
    ReadBench bench;
    QStringList lines;
    for (int i = 0; i < 300; ++i) {
        lines.append(QString::number(i));
    }
    bench.model.setLineText(lines, 0);
    QCOMPARE(bench.answersOf(&Responder::onReadLine, 258), answer(0x98, "\x02"
                                                                        "258"));
}

QTEST_GUILESS_MAIN(ReadCommandResponderLinesTest)

#include "tst_readcommandresponder_lines.moc"
