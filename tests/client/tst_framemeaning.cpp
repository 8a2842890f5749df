#include <Tolvar/Varundo/Client/FrameMeaning.h>
#include <Tolvar/Varundo/Client/PayloadBuilder.h>
#include <Tolvar/Varundo/Client/PayloadMeaning.h>

#include <QJsonDocument>
#include <QtTest>

#include <cmath>
#include <limits>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Client;
namespace Build = PayloadBuilder;

namespace {

CommandMessage message(int group, int id, const QByteArray& payload = QByteArray())
{
    return {static_cast<quint8>(id), static_cast<quint8>(group), static_cast<quint16>(payload.size()),
            payload};
}

} // namespace

class tst_FrameMeaning : public QObject
{
    Q_OBJECT

private slots:
    void framesOfTheControllerReadAsCommandLines_data();
    void framesOfTheControllerReadAsCommandLines();
    void answersReadAsValues_data();
    void answersReadAsValues();
    void everyCommandHasAMeaning();
    void payloadsBecomeFields_data();
    void payloadsBecomeFields();
    void senderOfAReadIsToldByItsPayload();
    void numbersHaveNoMoreDigitsThanTheyNeed();
};

void tst_FrameMeaning::framesOfTheControllerReadAsCommandLines_data()
{
    QTest::addColumn<int>("group");
    QTest::addColumn<int>("id");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("expected");
    const auto row = [](int group, int id, const QByteArray& payload, const char* expected) {
        QTest::newRow(expected) << group << id << payload << QString::fromUtf8(expected);
    };
    row(0, 0x30, {}, "show meter-counter-1");
    row(0, 0x92, {}, "toggle status-line-1");
    row(0, 0x88, {}, "overlay clear");
    row(0, 0xD4, {}, "measurement-3d main-pipe");
    row(1, 0x30, {}, "read meter-counter-1 value");
    row(1, 0xF8, {}, "read external-temperature state");
    row(1, 0x90, Build::packedNumber(3), "read status-line-3 text");
    row(1, 0x98, Build::packedNumber(12), "read line-12 text");
    row(1, 0xFD, Build::number(2), "read laser-calibration-2 value");
    row(2, 0x01, Build::codec(TextCodec::Utf8), "write text-codec value utf8");
    row(2, 0x30, Build::single(12.5F), "write meter-counter-1 value 12.5");
    row(2, 0x40, Build::date(QDate(2026, 3, 15)), "write date value 2026-03-15");
    row(2, 0x50, Build::time(QTime(9, 5)), "write time value 09:05:00");
    row(2, 0x62, Build::position(3, 4), "write cursor position 3 4");
    row(2, 0x70, Build::videoCounter(1, 2, 3), "write video-counter value 1 2 3");
    row(2, 0x90, Build::lineText(2, "say \"hi\""), R"(write status-line-2 text "say """hi"""")");
    row(2, 0x95, "a\nb\r\x85\x02", "write cursor text \"a\u240Ab\u240D\uFFFD\x02\"");
    row(2, 0x92, Build::colors(1, 13), "write free-text colour white blue");
    row(2, 0x95, "A b", "write cursor text \"A b\"");
    row(2, 0x99, Build::numberedColors(4, 10, 0), "write status-line-4 colour red transparent");
    row(2, 0xD4, Build::point3D(1, -2.5, 0), "write measurement-3d position 1 -2.5 0");
    row(2, 0xD5, Build::orientation(0.1F, 90), "write measurement-3d orientation 0.1 90");
    row(2, 0xD7, *Build::freeText(30, {QStringLiteral("A"), QStringLiteral("b c")}, TextCodec::Latin9),
        "write free-text text 30 \"A\" \"b c\"");
    row(2, 0xE5, Build::numberedColors(21, 12, 15), "write meter-counter-3 colour yellow black");
    row(2, 0xF5, Build::number(1), "write external-temperature format 1");
    row(2, 0x32, QByteArray(1, '\x01'), "write meter-counter-1 position (payload of 1 bytes does not fit)");
    row(2, 0x02, QByteArray(3, 'x'), "unknown write command 0x02, 3 payload bytes");
    row(9, 0x02, {}, "unknown group 9 command 0x02, 0 payload bytes");
}

void tst_FrameMeaning::framesOfTheControllerReadAsCommandLines()
{
    QFETCH(int, group);
    QFETCH(int, id);
    QFETCH(QByteArray, payload);
    QFETCH(QString, expected);
    QCOMPARE(frameMeaning(message(group, id, payload), Sender::Controller, TextCodec::Latin9), expected);
}

void tst_FrameMeaning::answersReadAsValues_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("expected");
    const auto row = [](int id, const char* payload, const char* expected) {
        QTest::newRow(expected) << id << QByteArray::fromHex(payload) << QString::fromUtf8(expected);
    };
    row(0x30, "41480000", "answer: meter-counter-1 value 12.5");
    row(0x30, "3DCCCCCD", "answer: meter-counter-1 value 0.1");
    row(0x31, "00010A02", "answer: meter-counter-1 state format 0, visible yes, position 10 2");
    row(0x01, "02", "answer: text-codec value utf16");
    row(0x40, "1F0C141A", "answer: date value 2026-12-31");
    row(0x40, "1F0D141A", "answer: date value invalid");
    row(0x50, "09050000", "answer: time value 09:05:00");
    row(0x70, "01020304", "answer: video-counter value 01:02:03.04");
    row(0x90, "02C3A9", "answer: status-line-2 text \"\u00E9\"");
    row(0x92, "02AF000000", "answer: status-line-2 state colour red black, visible no");
    row(0xFD, "03", "answer: laser-calibration-3 value none");
    row(0x02, "03", "answer: unknown read command 0x02, 1 payload bytes");
    row(0x30, "4148", "answer: meter-counter-1 value (payload of 2 bytes does not fit)");
}

void tst_FrameMeaning::answersReadAsValues()
{
    QFETCH(int, id);
    QFETCH(QByteArray, payload);
    QFETCH(QString, expected);
    QCOMPARE(frameMeaning(message(1, id, payload), Sender::Unit, TextCodec::Utf8), expected);
}

void tst_FrameMeaning::everyCommandHasAMeaning()
{
    for (const CommandInfo& info : allCommands()) {
        for (const auto sender : {Sender::Controller, Sender::Unit}) {
            for (const int size : {0, 1, 4, 28, 300}) {
                const QString meaning = frameMeaning(message(info.group, info.id, QByteArray(size, '\xFF')),
                                                     sender, TextCodec::Utf8);
                const bool isKnown = sender == Sender::Controller || info.group == Protocol::Read;
                QCOMPARE(!meaning.contains(QLatin1String("unknown")), isKnown);
            }
        }
    }
}

void tst_FrameMeaning::payloadsBecomeFields_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QByteArray>("json");
    const auto row = [](const char* name, PayloadKind kind, const QByteArray& payload, const char* json) {
        QTest::newRow(name) << static_cast<int>(kind) << payload << QByteArray(json);
    };
    row("single", PayloadKind::Single, Build::single(0.1F), R"({"value":0.1})");
    row("not a number", PayloadKind::Single, Build::single(std::numeric_limits<float>::quiet_NaN()),
        R"({"value":null})");
    row("state", PayloadKind::State, QByteArray::fromHex("00010A02"),
        R"({"column":10,"format":0,"row":2,"visible":true})");
    row("status line", PayloadKind::StatusLineState, QByteArray::fromHex("0211000000"),
        R"({"backgroundColor":"white","line":2,"textColor":"white","visible":false})");
    row("text", PayloadKind::Text, "V1", R"({"text":"V1"})");
    row("line", PayloadKind::LineText, QByteArray::fromHex("0241"), R"({"line":2,"text":"A"})");
    row("date", PayloadKind::Date, QByteArray::fromHex("1F0C141A"), R"({"value":"2026-12-31"})");
    row("video counter", PayloadKind::VideoCounter, QByteArray::fromHex("01020304"),
        R"({"frames":4,"hours":1,"minutes":2,"seconds":3})");
    row("measurement", PayloadKind::Measurement3D, Build::point3D(1, 2, 3) + Build::single(0.5F),
        R"({"angle":0.5,"x":1,"y":2,"z":3})");
    row("laser", PayloadKind::Laser, QByteArray::fromHex("013FE0000000000000"), R"({"index":1,"value":0.5})");
    row("free text", PayloadKind::FreeText,
        *Build::freeText(5, {QStringLiteral("a"), QStringLiteral("b")}, TextCodec::Utf8),
        R"({"duration":5,"lines":["a","b"]})");
}

void tst_FrameMeaning::payloadsBecomeFields()
{
    QFETCH(int, kind);
    QFETCH(QByteArray, payload);
    QFETCH(QByteArray, json);
    const PayloadMeaning meaning = payloadMeaning(static_cast<PayloadKind>(kind), payload, TextCodec::Utf8);
    QVERIFY(meaning.valid);
    QCOMPARE(QJsonDocument(meaning.fields).toJson(QJsonDocument::Compact), json);
}

void tst_FrameMeaning::senderOfAReadIsToldByItsPayload()
{
    QCOMPARE(likelySender(message(1, 0x30)), Sender::Controller);
    QCOMPARE(likelySender(message(1, 0x30, QByteArray(4, 'x'))), Sender::Unit);
    QCOMPARE(likelySender(message(1, 0x90, QByteArray(1, '\x01'))), Sender::Controller);
    QCOMPARE(likelySender(message(1, 0x90, QByteArray(5, '\x01'))), Sender::Unit);
    QCOMPARE(likelySender(message(2, 0x30, QByteArray(4, 'x'))), Sender::Controller);
}

void tst_FrameMeaning::numbersHaveNoMoreDigitsThanTheyNeed()
{
    QCOMPARE(plainNumber(0.1F), QStringLiteral("0.1"));
    QCOMPARE(plainNumber(16777216.0F), QStringLiteral("16777216"));
    QCOMPARE(plainNumber(1.0F / 3.0F).toFloat(), 1.0F / 3.0F);
    QCOMPARE(plainNumber(0.1), QStringLiteral("0.1"));
    QCOMPARE(plainNumber(0.0F), QStringLiteral("0"));
    QCOMPARE(plainNumber(std::numeric_limits<float>::quiet_NaN()), QStringLiteral("nan"));
    QVERIFY(plainNumber(std::numeric_limits<double>::max()).toDouble() == std::numeric_limits<double>::max());
}

QTEST_GUILESS_MAIN(tst_FrameMeaning)
#include "tst_framemeaning.moc"
