#include <Tolvar/Varundo/Client/ResponseDecoder.h>

#include <QtTest>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Client;

namespace {

/// The responses in short: A, N, F(id:payload), and what is noise.
QString shortForm(const QVector<Response>& responses)
{
    QStringList words;
    for (const Response& response : responses) {
        switch (response.kind) {
        case Response::Kind::Ack:
            words << QStringLiteral("A");
            break;
        case Response::Kind::Nack:
            words << QStringLiteral("N");
            break;
        case Response::Kind::Frame:
            words << QStringLiteral("F%1:%2")
                         .arg(response.frame.cmdId, 2, 16, QLatin1Char('0'))
                         .arg(QString::fromLatin1(response.frame.data.toHex()));
            break;
        case Response::Kind::Noise:
            words << QStringLiteral("~%1").arg(QString::fromLatin1(response.bytes.toHex()));
            break;
        }
    }
    return words.join(QLatin1Char(' '));
}

/// Noise may be told in as many pieces as it was read in.
QString withoutNoise(const QVector<Response>& responses)
{
    QVector<Response> kept;
    for (const Response& response : responses) {
        if (response.kind != Response::Kind::Noise) {
            kept.append(response);
        }
    }
    return shortForm(kept);
}

} // namespace

class tst_ResponseDecoder : public QObject
{
    Q_OBJECT

private slots:
    void streamIsTakenApart_data();
    void streamIsTakenApart();
    void streamCutAnywhereGivesTheSame_data();
    void streamCutAnywhereGivesTheSame();
    void bytesOfTheWireStayWithTheirResponse();
    void resetGivesAnIncompleteFrameUp();
    void largestFrameIsTaken();
};

void tst_ResponseDecoder::streamIsTakenApart_data()
{
    QTest::addColumn<QByteArray>("stream");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, const char* stream, const char* expected) {
        QTest::newRow(name) << QByteArray::fromHex(stream) << QString::fromLatin1(expected);
    };
    row("acknowledgement", "06", "A");
    row("rejection", "15", "N");
    row("acknowledgement, then answer", "06 02300104004148000003", "A F30:41480000");
    row("answer whose payload looks like control bytes", "02310104000602150303 15", "F31:06021503 N");
    row("several in a row", "06 06 020101010000 03 15 06", "A A F01:00 N A");
    row("noise in front", "414206", "~4142 A");
    row("control bytes that mean nothing", "00010306", "~000103 A");
    row("empty answer", "02ff01000003", "Fff:");
    row("wrong end byte, the acknowledgement behind it is kept", "023001010041 0606", "~023001010041 A A");
    row("wrong group, the frame behind it is kept", "0230ff 0230010000 03 06", "~0230ff F30: A");
    row("wrong group byte is itself an acknowledgement", "023006", "~0230 A");
    row("command 0 does not spoil the next frame", "02000101004103 02300101005A03", "~02000101004103 F30:5a");
}

void tst_ResponseDecoder::streamIsTakenApart()
{
    QFETCH(QByteArray, stream);
    QFETCH(QString, expected);
    ResponseDecoder decoder;
    QCOMPARE(shortForm(decoder.decode(stream)), expected);
    QVERIFY(!decoder.isInsideFrame());
}

void tst_ResponseDecoder::streamCutAnywhereGivesTheSame_data()
{
    streamIsTakenApart_data();
    QTest::newRow("all sorts") << QByteArray::fromHex(
                                      "06023001040041480000034142150206060201010100010302900103000102030306")
                               << QString();
}

void tst_ResponseDecoder::streamCutAnywhereGivesTheSame()
{
    QFETCH(QByteArray, stream);
    ResponseDecoder whole;
    const QString expected = withoutNoise(whole.decode(stream));
    for (int first = 0; first <= stream.size(); ++first) {
        for (int second = first; second <= stream.size(); ++second) {
            ResponseDecoder decoder;
            QVector<Response> responses = decoder.decode(stream.left(first));
            responses += decoder.decode(stream.mid(first, second - first));
            responses += decoder.decode(stream.mid(second));
            QCOMPARE(withoutNoise(responses), expected);
        }
    }
}

void tst_ResponseDecoder::bytesOfTheWireStayWithTheirResponse()
{
    const QByteArray stream = QByteArray::fromHex("0602300104004148000003 41 15");
    ResponseDecoder decoder;
    QByteArray all;
    for (const Response& response : decoder.decode(stream)) {
        all.append(response.bytes);
    }
    QCOMPARE(all, stream);
}

void tst_ResponseDecoder::resetGivesAnIncompleteFrameUp()
{
    ResponseDecoder decoder;
    QVERIFY(decoder.decode(QByteArray::fromHex("0230010400AABB")).isEmpty());
    QVERIFY(decoder.isInsideFrame());
    QCOMPARE(decoder.incompleteFrame().toHex(), QByteArray("0230010400aabb"));
    decoder.reset();
    QVERIFY(!decoder.isInsideFrame());
    QCOMPARE(shortForm(decoder.decode(QByteArray::fromHex("06 02310101000103"))), QStringLiteral("A F31:01"));
}

void tst_ResponseDecoder::largestFrameIsTaken()
{
    const QByteArray payload(Protocol::MaxPayloadSize, '\x02');
    ResponseDecoder decoder;
    const auto responses =
        decoder.decode(encodeFrame({0x90, Protocol::Read, Protocol::MaxPayloadSize, payload}));
    QCOMPARE(responses.size(), 1);
    QCOMPARE(responses.first().frame.data, payload);
}

QTEST_GUILESS_MAIN(tst_ResponseDecoder)
#include "tst_responsedecoder.moc"
