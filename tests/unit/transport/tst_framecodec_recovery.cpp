#include <Tolvar/Varundo/FrameCodec.h>

#include "RecordingSink.h"

#include <QtTest>

using namespace Tolvar::Varundo;
using Tolvar::Varundo::Test::RecordingSink;

namespace {

using State = FrameDecoder::State;

QByteArray hex(const char* digits)
{
    return QByteArray::fromHex(digits);
}

QStringList told(const char* words)
{
    return QString::fromLatin1(words).split(QLatin1Char(','), Qt::SkipEmptyParts);
}

/// Everything that a decoder can answer, one outcome after the other, in one read.
const char* const OneOfEach = "41 020501000003 0D"           // typed, accepted, thrown away
                              "02 00 01 03 00 414243 03"     // dropped: leaves three bytes
                              "02 06 02 01 00 44 03"         // announces fewer: refused
                              "02 07 00 02 00 4546 03 42"    // back in step
                              "02 08 03 43 020901000003 44"; // wrong group: the rest is lost
const char* const OneOfEachTold = "char 41,ACK 5/1 0:,drop 0d,NACK,ACK 7/0 2:4546,char 42";

/// Decodes a read with stops, as a transport does that takes a rest while from time to time.
QStringList decodeWithStops(FrameDecoder& decoder, RecordingSink& sink, const QByteArray& read)
{
    qsizetype used = decoder.decode(read.constData(), read.size(), sink);
    while (used < read.size()) {
        used += decoder.resume(read.constData() + used, read.size() - used, sink);
    }
    return used == read.size() ? sink.take() : QStringList{QStringLiteral("used too much: %1").arg(used)};
}

} // namespace

/// How the decoder gets back in step, what it counts, and how it stops and goes on.
class TestFrameCodecRecovery : public QObject
{
    Q_OBJECT

private slots:
    void aLeftoverBeyondTheAnnouncedLengthIsGivenUp_data();
    void aLeftoverBeyondTheAnnouncedLengthIsGivenUp();
    void noFrameIsLostAfterASurplusIsGivenUp();
    void surplusAndWrongGroupInOneReadAreAnsweredByOneNack();
    void aHeldFrameStaysHeldWhateverTheNumberOfReads();
    void countersCountEveryOutcome();
    void thrownAwayBytesAreCounted_data();
    void thrownAwayBytesAreCounted();
    void theSinkIsAskedAfterEveryCompleteFrameAndPrintableByte();
    void stoppingReturnsWhatWasUsedUp();
    void stoppingAfterAnyFrameChangesNoOutcome();
    void stoppingAfterEveryFrameChangesNoOutcome();
    void aRestIsStillTheSameRead();
    void theDecoderIsReadyForUseWhileAFrameIsActedUpon();
};

void TestFrameCodecRecovery::aLeftoverBeyondTheAnnouncedLengthIsGivenUp_data()
{
    QTest::addColumn<QList<QByteArray>>("reads"); // after a dropped frame that leaves 41 42 43
    QTest::addColumn<QList<QByteArray>>("outcomes");
    QTest::addColumn<int>("next");
    using Rows = QList<QByteArray>;

    QTest::newRow("it is read to its end and rejected there")
        << Rows{"020501010058", "03"} << Rows{"", "NACK"} << 0;
    QTest::newRow("nothing announced") << Rows{"0205010000", "03"} << Rows{"", "NACK"} << 0;
    QTest::newRow("its own payload may be split")
        << Rows{"0205010200", "02", "03", "03"} << Rows{"", "", "", "NACK"} << 0;
    QTest::newRow("the read goes on behind it") << Rows{"02050101005803"
                                                        "41"
                                                        "020602010059"
                                                        "03"}
                                                << Rows{"NACK,char 41,ACK 6/2 1:59"} << 0;
    QTest::newRow("its wrong end throws the read away") << Rows{"02050101005804"
                                                                "41"
                                                                "020602010059"
                                                                "03"}
                                                        << Rows{"NACK"} << 0;
    QTest::newRow("its wrong end is no held frame") << Rows{"02050101005804", "03",
                                                            "020602010059"
                                                            "03"}
                                                    << Rows{"NACK", "drop 03", "ACK 6/2 1:59"} << 0;
    QTest::newRow("the record is empty behind it")
        << Rows{"02050101005803", "0206020200595A03"} << Rows{"NACK", "ACK 6/2 2:595a"} << 0;
    QTest::newRow("the record is empty behind its wrong end")
        << Rows{"02050101005804", "0206020200595A03"} << Rows{"NACK", "ACK 6/2 2:595a"} << 0;
    QTest::newRow("another leftover may follow") << Rows{"02050101005803", "02000101005903",
                                                         "0206020200"
                                                         "5A"
                                                         "03"}
                                                 << Rows{"NACK", "", "ACK 6/2 2:595a"} << 0;
    QTest::newRow("just the announced length is no surplus") << Rows{"0205010300"
                                                                     "03"}
                                                             << Rows{"ACK 5/1 3:414243"} << 0;
    QTest::newRow("its end may be awaited") << Rows{"020501010058"} << Rows{""} << 6;
}

void TestFrameCodecRecovery::aLeftoverBeyondTheAnnouncedLengthIsGivenUp()
{
    QFETCH(QList<QByteArray>, reads);
    QFETCH(QList<QByteArray>, outcomes);
    QFETCH(int, next);
    QCOMPARE(reads.size(), outcomes.size());

    FrameDecoder decoder;
    RecordingSink sink;
    QCOMPARE(decodeWithStops(decoder, sink, hex("02 00 01 03 00 41 42 43 03")), QStringList());
    for (int i = 0; i < reads.size(); ++i) {
        QCOMPARE(decodeWithStops(decoder, sink, hex(reads.at(i).constData())),
                 told(outcomes.at(i).constData()));
    }
    QCOMPARE(int(decoder.state()), next);
}

void TestFrameCodecRecovery::noFrameIsLostAfterASurplusIsGivenUp()
{
    for (int leftover = 1; leftover <= 300; leftover += 23) {
        for (int announced = 0; announced < leftover; announced += 7) {
            FrameDecoder decoder;
            RecordingSink sink;
            const CommandMessage dropped{0, 1, static_cast<quint16>(leftover), QByteArray(leftover, 'x')};
            const CommandMessage refused{5, 1, static_cast<quint16>(announced), QByteArray(announced, 'y')};
            const CommandMessage good{6, 2, 3, QByteArrayLiteral("abc")};
            QCOMPARE(decodeWithStops(decoder, sink, encodeFrame(dropped)), QStringList());
            QCOMPARE(decodeWithStops(decoder, sink, encodeFrame(refused)), told("NACK"));
            QCOMPARE(decodeWithStops(decoder, sink, encodeFrame(good)), told("ACK 6/2 3:616263"));
        }
    }
}

void TestFrameCodecRecovery::surplusAndWrongGroupInOneReadAreAnsweredByOneNack()
{
    FrameDecoder decoder;
    RecordingSink sink;
    QCOMPARE(decodeWithStops(decoder, sink,
                             hex("02 00 01 01 00 41 03  02 05 01 00 00 03  02 06 01 00 00 03  02 07 03 41")),
             told("NACK,ACK 6/1 0:"));
    QCOMPARE(decoder.state(), State::WaitGrpId);
    QCOMPARE(decoder.counters().rejected, 1U);
    QCOMPARE(decodeWithStops(decoder, sink, hex("03")), told("NACK"));
}

void TestFrameCodecRecovery::aHeldFrameStaysHeldWhateverTheNumberOfReads()
{
    FrameDecoder decoder;
    RecordingSink sink;
    QCOMPARE(decodeWithStops(decoder, sink, hex("02 05 01 01 00 41 04")), told("NACK"));
    for (int i = 0; i < 1000; ++i) {
        QCOMPARE(decodeWithStops(decoder, sink, hex("02 06 01 00 00 03 03")), told("NACK"));
        QCOMPARE(decoder.state(), State::WaitEnd);
    }
    QCOMPARE(decodeWithStops(decoder, sink, hex("03 02 06 01 00 00 03")), told("ACK 5/1 1:41,ACK 6/1 0:"));
}

void TestFrameCodecRecovery::countersCountEveryOutcome()
{
    FrameDecoder decoder;
    RecordingSink sink;
    QCOMPARE(decoder.counters().accepted, 0U);
    QCOMPARE(decoder.counters().rejected, 0U);
    QCOMPARE(decoder.counters().dropped, 0U);
    QCOMPARE(decoder.counters().discardedBytes, 0U);

    for (quint64 round = 1; round <= 3; ++round) {
        QCOMPARE(decodeWithStops(decoder, sink, hex(OneOfEach)), told(OneOfEachTold));
        QCOMPARE(decodeWithStops(decoder, sink, hex("01 00 00 03")), told("ACK 8/1 0:"));
        QCOMPARE(decoder.counters().accepted, 3 * round);
        QCOMPARE(decoder.counters().rejected, round);
        QCOMPARE(decoder.counters().dropped, round);
        // CR, and from the wrong group byte to the end of the read.
        QCOMPARE(decoder.counters().discardedBytes, 10 * round);
    }
}

void TestFrameCodecRecovery::thrownAwayBytesAreCounted_data()
{
    QTest::addColumn<QByteArray>("read");
    QTest::addColumn<int>("thrownAway");
    QTest::newRow("typed text is none") << hex("41 7F FF") << 0;
    QTest::newRow("an accepted frame is none") << hex("02 05 01 01 00 41 03") << 0;
    QTest::newRow("a frame with command 0 is none") << hex("02 00 01 01 00 41 03") << 0;
    QTest::newRow("control bytes outside frames") << hex("00 01 03 1F 06 15") << 6;
    QTest::newRow("a wrong group byte alone") << hex("02 05 03") << 1;
    QTest::newRow("a wrong group byte and what follows") << hex("02 05 03 01 02 03") << 4;
    QTest::newRow("a wrong end byte alone") << hex("02 05 01 00 00 04") << 1;
    QTest::newRow("a wrong end byte and what follows") << hex("02 05 01 00 00 04 03 41") << 3;
}

void TestFrameCodecRecovery::thrownAwayBytesAreCounted()
{
    QFETCH(QByteArray, read);
    QFETCH(int, thrownAway);
    FrameDecoder decoder;
    RecordingSink sink;
    decoder.decode(read.constData(), read.size(), sink);
    QCOMPARE(decoder.counters().discardedBytes, quint64(thrownAway));
}

void TestFrameCodecRecovery::theSinkIsAskedAfterEveryCompleteFrameAndPrintableByte()
{
    FrameDecoder decoder;
    RecordingSink sink;
    // Typed text, an accepted frame, a dropped one, a refused one, and one that is not complete.
    const QByteArray read = hex("41 0D 020501000003 02000101004103 020601000003 0205");
    QCOMPARE(decoder.decode(read.constData(), read.size(), sink), qsizetype(read.size()));
    QCOMPARE(sink.timesAsked(), 4);
    // With nothing behind them there is nothing to ask: most reads are one frame.
    decoder = FrameDecoder();
    for (const char* const whole : {"020501000003", "41"}) {
        decoder.decode(hex(whole).constData(), hex(whole).size(), sink);
    }
    QCOMPARE(sink.timesAsked(), 4);
}

void TestFrameCodecRecovery::stoppingReturnsWhatWasUsedUp()
{
    FrameDecoder decoder;
    RecordingSink sink;
    sink.answerWantsMore([] { return false; });
    const QByteArray read = hex("41 020501000003 42 020601000003");
    qsizetype used = decoder.decode(read.constData(), read.size(), sink);
    QCOMPARE(used, qsizetype(1));
    QCOMPARE(sink.take(), told("char 41"));
    for (const auto& [size, outcome] :
         {std::pair{6, "ACK 5/1 0:"}, std::pair{1, "char 42"}, std::pair{6, "ACK 6/1 0:"}}) {
        QCOMPARE(decoder.resume(read.constData() + used, read.size() - used, sink), qsizetype(size));
        QCOMPARE(sink.take(), told(outcome));
        used += size;
    }
    QCOMPARE(decoder.resume(read.constData() + used, 0, sink), qsizetype(0));
    // A rejected read is used up whole, however much of it there is.
    const QByteArray wrong = hex("02 05 03 41 42 43 44");
    QCOMPARE(decoder.decode(wrong.constData(), wrong.size(), sink), qsizetype(7));
}

void TestFrameCodecRecovery::stoppingAfterAnyFrameChangesNoOutcome()
{
    const QByteArray read = hex(OneOfEach);
    for (int stop = 1; stop <= 6; ++stop) {
        FrameDecoder decoder;
        RecordingSink sink;
        int asked = 0;
        sink.answerWantsMore([&] { return ++asked != stop; });
        QCOMPARE(decodeWithStops(decoder, sink, read), told(OneOfEachTold));
        QCOMPARE(decoder.state(), State::WaitGrpId);
        QCOMPARE(decoder.counters().discardedBytes, 10U);
    }
}

void TestFrameCodecRecovery::stoppingAfterEveryFrameChangesNoOutcome()
{
    const QByteArray read = hex(OneOfEach);
    for (int cut = 0; cut <= read.size(); ++cut) {
        FrameDecoder straight;
        RecordingSink straightSink;
        QStringList expected = decodeWithStops(straight, straightSink, read.left(cut));
        expected += decodeWithStops(straight, straightSink, read.mid(cut));
        FrameDecoder stopping;
        RecordingSink stoppingSink;
        stoppingSink.answerWantsMore([] { return false; });
        QStringList actual = decodeWithStops(stopping, stoppingSink, read.left(cut));
        actual += decodeWithStops(stopping, stoppingSink, read.mid(cut));
        QCOMPARE(actual, expected);
        QCOMPARE(stopping.state(), straight.state());
    }
}

void TestFrameCodecRecovery::aRestIsStillTheSameRead()
{
    FrameDecoder decoder;
    RecordingSink sink;
    sink.answerWantsMore([] { return false; });
    const QByteArray read = hex("02000101004103 020501000003 020603");
    QCOMPARE(decoder.decode(read.constData(), read.size(), sink), qsizetype(7));
    QCOMPARE(decoder.resume(read.constData() + 7, read.size() - 7, sink), qsizetype(6));
    QCOMPARE(sink.take(), told("NACK"));
    // The one NACK of this read is spent; the wrong group only throws the rest away.
    QCOMPARE(decoder.resume(read.constData() + 13, read.size() - 13, sink), qsizetype(3));
    QCOMPARE(sink.take(), QStringList());
    QCOMPARE(decoder.decode("\x03", 1, sink), qsizetype(1));
    QCOMPARE(sink.take(), told("NACK"));
}

void TestFrameCodecRecovery::theDecoderIsReadyForUseWhileAFrameIsActedUpon()
{
    /// Looks at the decoder from where a transport acts upon a frame.
    struct LookingSink : RecordingSink
    {
        FrameDecoder* decoder = nullptr;
        QList<int> states;
        QList<quint64> accepted;
        void frameAccepted(const CommandMessage& record)
        {
            RecordingSink::frameAccepted(record);
            states.append(int(decoder->state()));
            accepted.append(decoder->counters().accepted);
        }
    } sink;
    FrameDecoder decoder;
    sink.decoder = &decoder;
    const QByteArray read = hex("020501000003 02060101004103");
    decoder.decode(read.constData(), read.size(), sink);
    QCOMPARE(sink.states, (QList<int>{0, 0}));
    QCOMPARE(sink.accepted, (QList<quint64>{1, 2}));
}

QTEST_APPLESS_MAIN(TestFrameCodecRecovery)

#include "tst_framecodec_recovery.moc"
