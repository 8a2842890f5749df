#include <Tolvar/Varundo/FrameCodec.h>

#include "RecordingSink.h"

#include <QtTest>

#include <type_traits>

using namespace Tolvar::Varundo;
using Tolvar::Varundo::Test::RecordingSink;

static_assert(!std::is_polymorphic_v<FrameDecoder>, "the decoder is a plain class");
static_assert(!std::is_polymorphic_v<CommandMessage>, "the record is a plain value");
static_assert(std::is_same_v<decltype(CommandMessage::cmdId), quint8>);
static_assert(std::is_same_v<decltype(CommandMessage::grpId), quint8>);
static_assert(std::is_same_v<decltype(CommandMessage::length), quint16>);
static_assert(std::is_same_v<decltype(CommandMessage::data), QByteArray>);

Q_DECLARE_METATYPE(Tolvar::Varundo::FrameDecoder::State)

namespace {

using State = FrameDecoder::State;

QByteArray hex(const char* digits)
{
    return QByteArray::fromHex(digits);
}

/// A decoder and what it told, fed one read at a time.
struct Line
{
    FrameDecoder decoder;
    RecordingSink sink;

    QStringList read(const QByteArray& bytes)
    {
        const qsizetype used = decoder.decode(bytes.constData(), bytes.size(), sink);
        return used == bytes.size() ? sink.take() : QStringList{QStringLiteral("used only %1").arg(used)};
    }
    QStringList read(const char* digits) { return read(hex(digits)); }
};

QStringList told(const char* words)
{
    return QString::fromLatin1(words).split(QLatin1Char(','), Qt::SkipEmptyParts);
}

/// "%" in an expected outcome stands for the byte under test.
QStringList toldAbout(const QByteArray& words, int byte)
{
    QByteArray filled = words;
    return told(filled.replace('%', QByteArray::number(byte, 16).rightJustified(2, '0')).constData());
}

} // namespace

class TestFrameCodec : public QObject
{
    Q_OBJECT

private slots:
    void everyByteInEveryStateDoesWhatTheTableSays_data();
    void everyByteInEveryStateDoesWhatTheTableSays();
    void aNewDecoderWaitsForAStartWithAnEmptyRecord();
    void aReadIsDecodedAsTheProtocolShows_data();
    void aReadIsDecodedAsTheProtocolShows();
    void aSequenceOfReadsIsDecodedAsTheProtocolShows_data();
    void aSequenceOfReadsIsDecodedAsTheProtocolShows();
    void framesMayBeSplitAtAnyTwoBytes();
    void everyCommandButZeroIsAcceptedInEveryGroup();
    void everyPayloadByteIsCarriedUnchanged();
    void everyLengthIsAccepted();
    void theLongestPayloadIsAccepted();
    void statesHaveTheirNumbers();
    void aNewRecordHoldsNothing();
    void theEncoderWritesTheFrameLayout_data();
    void theEncoderWritesTheFrameLayout();
    void whatIsEncodedIsDecoded();
};

void TestFrameCodec::everyByteInEveryStateDoesWhatTheTableSays_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    QTest::addColumn<QByteArray>("outcome");
    QTest::addColumn<State>("next");

    QTest::newRow("WaitStart 02") << hex("") << 0x02 << 0x02 << QByteArray("") << State::WaitCmdId;
    QTest::newRow("WaitStart 00-01") << hex("") << 0x00 << 0x01 << QByteArray("drop %") << State::WaitStart;
    QTest::newRow("WaitStart 03-1F") << hex("") << 0x03 << 0x1F << QByteArray("drop %") << State::WaitStart;
    QTest::newRow("WaitStart 20-FF") << hex("") << 0x20 << 0xFF << QByteArray("char %") << State::WaitStart;
    QTest::newRow("WaitCmdId any") << hex("02") << 0x00 << 0xFF << QByteArray("") << State::WaitGrpId;
    QTest::newRow("WaitGrpId 00-02") << hex("0205") << 0x00 << 0x02 << QByteArray("") << State::WaitLengthLow;
    QTest::newRow("WaitGrpId 03-FF") << hex("0205") << 0x03 << 0xFF << QByteArray("NACK") << State::WaitGrpId;
    QTest::newRow("WaitLengthLow any")
        << hex("020501") << 0x00 << 0xFF << QByteArray("") << State::WaitLengthHigh;
    QTest::newRow("WaitLengthHigh, nothing announced")
        << hex("02050100") << 0x00 << 0x00 << QByteArray("") << State::WaitEnd;
    QTest::newRow("WaitLengthHigh, 256 or more announced")
        << hex("02050100") << 0x01 << 0xFF << QByteArray("") << State::ReadPayload;
    QTest::newRow("WaitLengthHigh, low byte 1")
        << hex("02050101") << 0x00 << 0xFF << QByteArray("") << State::ReadPayload;
    QTest::newRow("ReadPayload, more missing")
        << hex("0205010200") << 0x00 << 0xFF << QByteArray("") << State::ReadPayload;
    QTest::newRow("ReadPayload, last byte")
        << hex("0205010100") << 0x00 << 0xFF << QByteArray("") << State::WaitEnd;
    QTest::newRow("WaitEnd 03") << hex("0205010000") << 0x03 << 0x03 << QByteArray("ACK 5/1 0:")
                                << State::WaitStart;
    QTest::newRow("WaitEnd 00-02") << hex("0205010000") << 0x00 << 0x02 << QByteArray("NACK")
                                   << State::WaitEnd;
    QTest::newRow("WaitEnd 04-FF") << hex("0205010000") << 0x04 << 0xFF << QByteArray("NACK")
                                   << State::WaitEnd;
}

void TestFrameCodec::everyByteInEveryStateDoesWhatTheTableSays()
{
    QFETCH(QByteArray, before);
    QFETCH(int, first);
    QFETCH(int, last);
    QFETCH(QByteArray, outcome);
    QFETCH(State, next);

    for (int byte = first; byte <= last; ++byte) {
        const QByteArray tested(1, static_cast<char>(byte));
        Line apart;
        QCOMPARE(apart.read(before), QStringList());
        QCOMPARE(apart.read(tested), toldAbout(outcome, byte));
        QCOMPARE(apart.decoder.state(), next);

        Line together;
        QCOMPARE(together.read(before + tested), toldAbout(outcome, byte));
        QCOMPARE(together.decoder.state(), next);
    }
}

void TestFrameCodec::aNewDecoderWaitsForAStartWithAnEmptyRecord()
{
    Line line;
    QCOMPARE(line.decoder.state(), State::WaitStart);
    QCOMPARE(line.read(""), QStringList());
    QCOMPARE(line.decoder.state(), State::WaitStart);
    // Were anything in the payload buffer, this frame would wait for less than two bytes.
    QCOMPARE(line.read("02 05 01 02 00 41 42 03"), told("ACK 5/1 2:4142"));
}

void TestFrameCodec::aReadIsDecodedAsTheProtocolShows_data()
{
    QTest::addColumn<QByteArray>("read");
    QTest::addColumn<QByteArray>("outcome");
    QTest::addColumn<State>("next");

    const auto row = [](const char* name, const char* read, const char* outcome, State next) {
        QTest::newRow(name) << hex(read) << QByteArray(outcome) << next;
    };
    row("empty payload", "02 05 01 00 00 03", "ACK 5/1 0:", State::WaitStart);
    row("three letters", "02 07 02 03 00 41 42 43 03", "ACK 7/2 3:414243", State::WaitStart);
    row("highest command", "02 FF 00 00 00 03", "ACK 255/0 0:", State::WaitStart);
    row("wrong group, rest lost", "02 01 03 41 02 05 01 00 00 03 42", "NACK", State::WaitGrpId);
    row("group FF", "02 01 FF 00 00 03", "NACK", State::WaitGrpId);
    row("command 0 has no reply", "02 00 01 00 00 03", "", State::WaitStart);
    row("command 0, then a good one", "02 00 01 00 00 03 02 05 01 00 00 03", "ACK 5/1 0:", State::WaitStart);
    row("wrong end byte", "02 05 01 01 00 41 04", "NACK", State::WaitEnd);
    row("wrong end byte, rest lost", "02 05 01 01 00 41 04 03 02 05 01 00 00 03 41", "NACK", State::WaitEnd);
    row("typed text, line end dropped", "41 42 0D 0A", "char 41,char 42,drop 0d,drop 0a", State::WaitStart);
    row("DEL and high bytes are typed text", "7E 7F 80 FF", "char 7e,char 7f,char 80,char ff",
        State::WaitStart);
    row("stray replies", "06 15", "drop 06,drop 15", State::WaitStart);
    row("text around a frame", "41 02 05 01 00 00 03 42", "char 41,ACK 5/1 0:,char 42", State::WaitStart);
    row("two frames", "02 05 01 00 00 03 02 06 02 01 00 41 03", "ACK 5/1 0:,ACK 6/2 1:41", State::WaitStart);
    row("a good frame, then a wrong one", "02 05 01 00 00 03 02 06 03", "ACK 5/1 0:,NACK", State::WaitGrpId);
    row("payload of control bytes", "02 05 02 06 00 02 03 06 15 00 03 03", "ACK 5/2 6:020306150003",
        State::WaitStart);
    row("a payload that looks like a frame", "02 05 02 06 00 02 05 01 00 00 03 03", "ACK 5/2 6:020501000003",
        State::WaitStart);
    row("one NACK for many wrong bytes", "02 01 03 03 03 02 01 03 02 01 03", "NACK", State::WaitGrpId);
    row("a start byte as command", "02 02 01 00 00 03", "ACK 2/1 0:", State::WaitStart);
    row("an end byte as command", "02 03 00 00 00 03", "ACK 3/0 0:", State::WaitStart);
}

void TestFrameCodec::aReadIsDecodedAsTheProtocolShows()
{
    QFETCH(QByteArray, read);
    QFETCH(QByteArray, outcome);
    QFETCH(State, next);
    Line line;
    QCOMPARE(line.read(read), told(outcome.constData()));
    QCOMPARE(line.decoder.state(), next);
}

void TestFrameCodec::aSequenceOfReadsIsDecodedAsTheProtocolShows_data()
{
    QTest::addColumn<QList<QByteArray>>("reads");
    QTest::addColumn<QList<QByteArray>>("outcomes");
    using Rows = QList<QByteArray>;

    QTest::newRow("a frame over three reads") << Rows{"0205", "0100", "0003"} << Rows{"", "", "ACK 5/1 0:"};
    QTest::newRow("a held frame is completed by an end byte alone")
        << Rows{"02050101004104", "03"} << Rows{"NACK", "ACK 5/1 1:41"};
    QTest::newRow("a held frame is completed, and the read goes on")
        << Rows{"02050101004104", "034102060100000342"}
        << Rows{"NACK", "ACK 5/1 1:41,char 41,ACK 6/1 0:,char 42"};
    QTest::newRow("every read that does not complete a held frame is thrown away whole")
        << Rows{"02050101004104", "020601000003", "414243", "00", "0203", "03"}
        << Rows{"NACK", "NACK", "NACK", "NACK", "NACK", "ACK 5/1 1:41"};
    QTest::newRow("a wrong group is followed by another try for the group")
        << Rows{"020103", "01000003"} << Rows{"NACK", "ACK 1/1 0:"};
    QTest::newRow("another wrong group is rejected again")
        << Rows{"020103", "0302", "FF", "02000003"} << Rows{"NACK", "NACK", "NACK", "ACK 1/2 0:"};
    QTest::newRow("after a wrong group the next frame's start is group 2, its command the length")
        << Rows{"020103", "020100000103", "03"} << Rows{"NACK", "NACK", "ACK 1/2 1:00"};
    QTest::newRow("a held frame with command 0 is dropped by its end byte")
        << Rows{"02000101004104", "03", "020501000003"} << Rows{"NACK", "", "NACK"};
    QTest::newRow("the payload of a dropped frame counts towards the next")
        << Rows{"0200010200414203", "0205010300"
                                    "43"
                                    "03"}
        << Rows{"", "ACK 5/1 3:414243"};
    QTest::newRow("in the same read as well") << Rows{"0200010200414203"
                                                      "0205010300"
                                                      "43"
                                                      "03"}
                                              << Rows{"ACK 5/1 3:414243"};
    QTest::newRow("a leftover of just the announced length is the payload")
        << Rows{"0200010200414203", "020501020003"} << Rows{"", "ACK 5/1 2:4142"};
    QTest::newRow("leftovers of several dropped frames add up") << Rows{"02000101004103", "02000102004203",
                                                                        "0205010300"
                                                                        "43"
                                                                        "03"}
                                                                << Rows{"", "", "ACK 5/1 3:414243"};
    QTest::newRow("a leftover survives a wrong group") << Rows{"02000101004103", "020503",
                                                               "01020042"
                                                               "03"}
                                                       << Rows{"", "NACK", "ACK 5/1 2:4142"};
    QTest::newRow("a leftover survives typed text") << Rows{"02000101004103", "4E0D",
                                                            "020501020042"
                                                            "03"}
                                                    << Rows{"", "char 4e,drop 0d", "ACK 5/1 2:4142"};
    QTest::newRow("an accepted frame takes the leftover away") << Rows{"02000101004103",
                                                                       "020501020042"
                                                                       "03",
                                                                       "0205010100"
                                                                       "43"
                                                                       "03"}
                                                               << Rows{"", "ACK 5/1 2:4142", "ACK 5/1 1:43"};
    QTest::newRow("a full frame after a leftover ends too late")
        << Rows{"0200010200414203", "02050103004344450302"} << Rows{"", "NACK"};
    QTest::newRow("a short frame takes the next one's bytes")
        << Rows{"02050105004142", "020701000003"} << Rows{"", "NACK"};
    QTest::newRow("a short frame whose missing bytes end right")
        << Rows{"020502020041", "0203", "41"} << Rows{"", "ACK 5/2 2:4102", "char 41"};
    QTest::newRow("an empty read tells nothing in any state")
        << Rows{"", "02", "", "05", "", "03", "", "01", "", "01", "", "00", "", "41", "", "04", "", "03"}
        << Rows{"", "", "", "", "", "NACK", "", "", "", "", "", "", "", "", "", "NACK", "", "ACK 5/1 1:41"};
    QTest::newRow("one NACK per read, another in the next")
        << Rows{"0201034142", "034142", "0341"} << Rows{"NACK", "NACK", "NACK"};
}

void TestFrameCodec::aSequenceOfReadsIsDecodedAsTheProtocolShows()
{
    QFETCH(QList<QByteArray>, reads);
    QFETCH(QList<QByteArray>, outcomes);
    QCOMPARE(reads.size(), outcomes.size());
    Line line;
    for (int i = 0; i < reads.size(); ++i) {
        QCOMPARE(line.read(reads.at(i).constData()), told(outcomes.at(i).constData()));
    }
}

void TestFrameCodec::framesMayBeSplitAtAnyTwoBytes()
{
    const QByteArray stream = hex("41 020501000003 0D 02070203004142FF03 020900040002030615 03 42");
    const QStringList expected =
        told("char 41,ACK 5/1 0:,drop 0d,ACK 7/2 3:4142ff,ACK 9/0 4:02030615,char 42");
    for (int first = 0; first <= stream.size(); ++first) {
        for (int second = first; second <= stream.size(); ++second) {
            Line line;
            QStringList whole = line.read(stream.left(first));
            whole += line.read(stream.mid(first, second - first));
            whole += line.read(stream.mid(second));
            QCOMPARE(whole, expected);
        }
    }
}

void TestFrameCodec::everyCommandButZeroIsAcceptedInEveryGroup()
{
    Line line;
    for (int group = 0; group <= 2; ++group) {
        for (int command = 0; command <= 255; ++command) {
            QByteArray frame = hex("02 00 00 00 00 03");
            frame[1] = static_cast<char>(command);
            frame[2] = static_cast<char>(group);
            const QStringList accepted{QStringLiteral("ACK %1/%2 0:").arg(command).arg(group)};
            QCOMPARE(line.read(frame), command == 0 ? QStringList() : accepted);
        }
    }
}

void TestFrameCodec::everyPayloadByteIsCarriedUnchanged()
{
    QByteArray payload;
    for (int byte = 0; byte < 256; ++byte) {
        payload.append(static_cast<char>(byte));
    }
    Line line;
    const QByteArray expected = "ACK 7/2 256:" + payload.toHex();
    QCOMPARE(line.read(hex("02 07 02 00 01") + payload + hex("03")), told(expected.constData()));
}

void TestFrameCodec::everyLengthIsAccepted()
{
    for (int length = 0; length <= 2000; ++length) {
        const QByteArray payload(length, 'x');
        // A command that looks like the end of a frame, in a read of its own.
        const QByteArray frame = encodeFrame({3, 1, static_cast<quint16>(length), payload});
        Line line;
        QCOMPARE(line.read(frame), told("ACK 3/1 " + QByteArray::number(length) + ':' + payload.toHex()));
    }
}

void TestFrameCodec::statesHaveTheirNumbers()
{
    const QList<State> states{State::WaitStart,     State::WaitCmdId,      State::WaitGrpId,
                              State::WaitLengthLow, State::WaitLengthHigh, State::ReadPayload,
                              State::WaitEnd};
    for (int number = 0; number < states.size(); ++number) {
        QCOMPARE(static_cast<int>(states.at(number)), number);
    }
}

void TestFrameCodec::theLongestPayloadIsAccepted()
{
    const QByteArray payload(65535, '\x03');
    const QByteArray frame = hex("02 07 02 FF FF") + payload + hex("03");
    for (const int cut : {0, 4, 5, 6, 65535, 65540}) {
        Line line;
        QCOMPARE(line.read(frame.left(cut)), QStringList());
        line.decoder.decode(frame.constData() + cut, frame.size() - cut, line.sink);
        QCOMPARE(line.sink.outcomes().size(), std::size_t(1));
        const CommandMessage record = line.sink.outcomes().front().record;
        QCOMPARE(record.length, quint16(65535));
        QCOMPARE(record.data, payload);
    }
}

void TestFrameCodec::aNewRecordHoldsNothing()
{
    const CommandMessage record;
    QCOMPARE(record.cmdId, quint8(0));
    QCOMPARE(record.grpId, quint8(0));
    QCOMPARE(record.length, quint16(0));
    QVERIFY(record.data.isEmpty());
}

void TestFrameCodec::theEncoderWritesTheFrameLayout_data()
{
    QTest::addColumn<int>("command");
    QTest::addColumn<int>("group");
    QTest::addColumn<int>("length");
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QByteArray>("frame");

    QTest::newRow("xyz") << 0x10 << 1 << 3 << QByteArray("xyz") << hex("02 10 01 03 00 78 79 7A 03");
    QTest::newRow("empty") << 5 << 2 << 0 << QByteArray() << hex("02 05 02 00 00 03");
    QTest::newRow("low byte of the length first")
        << 7 << 1 << 0x0102 << QByteArray(0x0102, 'a')
        << hex("02 07 01 02 01") + QByteArray(0x0102, 'a') + hex("03");
    QTest::newRow("longest") << 255 << 0 << 65535 << QByteArray(65535, '\xFF')
                             << hex("02 FF 00 FF FF") + QByteArray(65535, '\xFF') + hex("03");
    QTest::newRow("payload is not escaped")
        << 5 << 1 << 4 << hex("02 03 06 15") << hex("02 05 01 04 00 02 03 06 15 03");
    // The record's own length goes out, right or wrong: answers beyond 65535 bytes have no right one.
    QTest::newRow("length too long for the data")
        << 5 << 1 << 0x1234 << QByteArray("ab") << hex("02 05 01 34 12 61 62 03");
    QTest::newRow("length too short for the data")
        << 5 << 1 << 1 << QByteArray("abc") << hex("02 05 01 01 00 61 62 63 03");
    QTest::newRow("length cut to 16 bits") << 5 << 1 << (70000 & 0xFFFF) << QByteArray(70000, 'z')
                                           << hex("02 05 01 70 11") + QByteArray(70000, 'z') + hex("03");
    // Nothing is checked on the way out.
    QTest::newRow("command 0, group 255") << 0 << 255 << 0 << QByteArray() << hex("02 00 FF 00 00 03");
}

void TestFrameCodec::theEncoderWritesTheFrameLayout()
{
    QFETCH(int, command);
    QFETCH(int, group);
    QFETCH(int, length);
    QFETCH(QByteArray, data);
    QFETCH(QByteArray, frame);
    const CommandMessage record{static_cast<quint8>(command), static_cast<quint8>(group),
                                static_cast<quint16>(length), data};
    QCOMPARE(encodeFrame(record), frame);
}

void TestFrameCodec::whatIsEncodedIsDecoded()
{
    Line line;
    for (const int size : {0, 1, 2, 255, 256, 257, 4096, 65535}) {
        const CommandMessage record{quint8(0xA5), quint8(1), static_cast<quint16>(size),
                                    QByteArray(size, '\x02')};
        const QByteArray expected = "ACK " + Test::describe(record).toLatin1();
        QCOMPARE(line.read(encodeFrame(record)), told(expected.constData()));
    }
}

QTEST_APPLESS_MAIN(TestFrameCodec)

#include "tst_framecodec.moc"
