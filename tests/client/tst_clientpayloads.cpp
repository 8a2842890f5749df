#include <Tolvar/Varundo/Client/PayloadBuilder.h>
#include <Tolvar/Varundo/Client/PayloadDecoder.h>

#include <QtTest>

using namespace Tolvar::Varundo::Client;
namespace Build = PayloadBuilder;
namespace Decode = PayloadDecoder;

namespace {

QByteArray hex(const char* digits)
{
    return QByteArray::fromHex(digits);
}

QStringList lines(const char* separatedByCommas)
{
    return QString::fromLatin1(separatedByCommas).split(QLatin1Char(','));
}

} // namespace

Q_DECLARE_METATYPE(TextCodec)

class tst_ClientPayloads : public QObject
{
    Q_OBJECT

private slots:
    void builtPayloadHasTheProtocolsBytes_data();
    void builtPayloadHasTheProtocolsBytes();
    void packedNumberIsReadAsTheUnitReadsIt_data();
    void packedNumberIsReadAsTheUnitReadsIt();
    void textIsEncodedUnderEachCodec_data();
    void textIsEncodedUnderEachCodec();
    void characterThatTheCodecLacksIsNamed_data();
    void characterThatTheCodecLacksIsNamed();
    void unknownCodecNumberIsLatin9();
    void freeTextRefusesASixthLine();
    void freeTextRefusesZeroBytesInsideALine_data();
    void freeTextRefusesZeroBytesInsideALine();
    void twoByteColorsLeakTheHighNibbleAsTheUnitDoes();
    void answersAreTakenApart();
    void impossibleDateIsInvalidNotMissing();
    void payloadOfAnyOtherSizeYieldsNothing_data();
    void payloadOfAnyOtherSizeYieldsNothing();
};

void tst_ClientPayloads::builtPayloadHasTheProtocolsBytes_data()
{
    QTest::addColumn<QByteArray>("built");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("codec") << Build::codec(TextCodec::Utf16) << hex("02");
    QTest::newRow("position") << Build::position(10, 255) << hex("0AFF");
    QTest::newRow("single 10") << Build::single(10.0F) << hex("41200000");
    QTest::newRow("single -12.5") << Build::single(-12.5F) << hex("C1480000");
    QTest::newRow("point") << Build::point3D(1.0, -2.0, 0.5)
                           << hex("3FF0000000000000C0000000000000003FE0000000000000");
    QTest::newRow("orientation") << Build::orientation(1.0F, 2.0F) << hex("3F80000040000000");
    QTest::newRow("date") << Build::date(QDate(2026, 3, 15)) << hex("0F03141A");
    QTest::newRow("date of another century") << Build::date(QDate(1999, 12, 1)) << hex("010C1363");
    QTest::newRow("time") << Build::time(QTime(9, 5, 0)) << hex("090500");
    QTest::newRow("video counter") << Build::videoCounter(1, 59, 200) << hex("013BC8");
    QTest::newRow("colours, white on blue") << Build::colors(1, 13) << hex("1D");
    QTest::newRow("colours keep to their nibbles") << Build::colors(0x1A, 0x2F) << hex("AF");
    QTest::newRow("numbered colours") << Build::numberedColors(21, 10, 15) << hex("15AF");
    QTest::newRow("line text") << Build::lineText(2, "hi") << hex("026869");
    QTest::newRow("free text") << *Build::freeText(30, lines("AB,,C"), TextCodec::Latin9)
                               << hex("001E0041420000"
                                      "43");
    QTest::newRow("free text without lines") << *Build::freeText(0, {}, TextCodec::Latin9) << hex("000000");
    QTest::newRow("packed 3") << Build::packedNumber(3) << hex("03");
    QTest::newRow("packed 12") << Build::packedNumber(12) << hex("12");
    QTest::newRow("packed 102") << Build::packedNumber(102) << hex("0102");
}

void tst_ClientPayloads::builtPayloadHasTheProtocolsBytes()
{
    QFETCH(QByteArray, built);
    QFETCH(QByteArray, expected);
    QCOMPARE(built.toHex(), expected.toHex());
}

void tst_ClientPayloads::packedNumberIsReadAsTheUnitReadsIt_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<int>("number");
    QTest::newRow("one digit") << hex("04") << 4;
    QTest::newRow("two digits") << hex("12") << 12;
    QTest::newRow("two bytes") << hex("0102") << 102;
    QTest::newRow("not decimal") << hex("0A") << 0;
    QTest::newRow("empty") << QByteArray() << 0;
}

void tst_ClientPayloads::packedNumberIsReadAsTheUnitReadsIt()
{
    QFETCH(QByteArray, payload);
    QFETCH(int, number);
    QCOMPARE(Decode::packedNumber(payload), number);
}

void tst_ClientPayloads::textIsEncodedUnderEachCodec_data()
{
    QTest::addColumn<TextCodec>("codec");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("latin9 euro") << TextCodec::Latin9 << QStringLiteral("5 \u20AC") << hex("3520A4");
    QTest::newRow("latin9 empty") << TextCodec::Latin9 << QString() << QByteArray();
    QTest::newRow("utf8 euro") << TextCodec::Utf8 << QStringLiteral("5 \u20AC") << hex("3520E282AC");
    QTest::newRow("utf8 beyond the basic plane")
        << TextCodec::Utf8 << QString::fromUcs4(U"\U0001F600") << hex("F09F9880");
    QTest::newRow("utf16 begins with a mark") << TextCodec::Utf16 << QStringLiteral("A") << hex("FFFE4100");
}

void tst_ClientPayloads::textIsEncodedUnderEachCodec()
{
#if Q_BYTE_ORDER == Q_BIG_ENDIAN
    QSKIP("UTF-16 is sent in the machine's byte order");
#endif
    QFETCH(TextCodec, codec);
    QFETCH(QString, text);
    QFETCH(QByteArray, bytes);
    const auto encoded = encodeText(text, codec);
    QVERIFY(encoded);
    QCOMPARE(encoded->toHex(), bytes.toHex());
    QCOMPARE(decodeText(bytes, codec), text);
}

void tst_ClientPayloads::characterThatTheCodecLacksIsNamed_data()
{
    QTest::addColumn<TextCodec>("codec");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("character");
    QTest::newRow("latin9, Greek") << TextCodec::Latin9 << QStringLiteral("ab\u03A9\u03B1")
                                   << QStringLiteral("\u03A9");
    QTest::newRow("utf8, half a pair") << TextCodec::Utf8 << QString(QChar(0xD800)) << QString(QChar(0xD800));
    QTest::newRow("latin9, currency sign of Latin-1")
        << TextCodec::Latin9 << QStringLiteral("\u00A4") << QStringLiteral("\u00A4");
    QTest::newRow("latin9, beyond the basic plane")
        << TextCodec::Latin9 << QString::fromUcs4(U"a\U0001F600") << QString::fromUcs4(U"\U0001F600");
}

void tst_ClientPayloads::characterThatTheCodecLacksIsNamed()
{
    QFETCH(TextCodec, codec);
    QFETCH(QString, text);
    QFETCH(QString, character);
    QString error;
    QVERIFY(!encodeText(text, codec, &error));
    QVERIFY2(error.contains(character), qPrintable(error));
    QVERIFY2(error.contains(textCodecName(codec)), qPrintable(error));
}

void tst_ClientPayloads::unknownCodecNumberIsLatin9()
{
    QCOMPARE(textCodecFromNumber(1), TextCodec::Utf8);
    QCOMPARE(textCodecFromNumber(7), TextCodec::Latin9);
    QCOMPARE(textCodecFromName(u"UTF-16"), std::optional(TextCodec::Utf16));
    QVERIFY(!textCodecFromName(u"ebcdic"));
}

void tst_ClientPayloads::freeTextRefusesASixthLine()
{
    QString error;
    QVERIFY(Build::freeText(0, lines("1,2,3,4,5"), TextCodec::Utf8, &error));
    QVERIFY(!Build::freeText(0, lines("1,2,3,4,5,6"), TextCodec::Utf8, &error));
    QVERIFY2(error.contains(QLatin1String("6 lines")), qPrintable(error));
}

void tst_ClientPayloads::freeTextRefusesZeroBytesInsideALine_data()
{
    QTest::addColumn<TextCodec>("codec");
    QTest::addColumn<QString>("line");
    QTest::newRow("any plain text under UTF-16") << TextCodec::Utf16 << QStringLiteral("A");
    QTest::newRow("a NUL under UTF-8") << TextCodec::Utf8 << QString(QChar(0));
}

void tst_ClientPayloads::freeTextRefusesZeroBytesInsideALine()
{
    QFETCH(TextCodec, codec);
    QFETCH(QString, line);
    QString error;
    QVERIFY(!Build::freeText(0, {QString(), line}, codec, &error));
    QVERIFY2(error.contains(QLatin1String("line 2")), qPrintable(error));
}

void tst_ClientPayloads::twoByteColorsLeakTheHighNibbleAsTheUnitDoes()
{
    const auto plain = Decode::colors(hex("0D01"));
    QVERIFY(plain);
    QCOMPARE(plain->text, quint8(1));
    QCOMPARE(plain->background, quint8(13));
    const auto leaking = Decode::colors(hex("3D01"));
    QVERIFY(leaking);
    QCOMPARE(leaking->text, quint8(3));
    QCOMPARE(leaking->background, quint8(13));
}

void tst_ClientPayloads::answersAreTakenApart()
{
    QCOMPARE(Decode::single(hex("41480000")), std::optional(12.5F));
    QCOMPARE(Decode::codec(hex("01")), std::optional(TextCodec::Utf8));

    const auto state = Decode::elementState(hex("03012C09"));
    QVERIFY(state);
    QCOMPARE(state->format, 3);
    QVERIFY(state->visible);
    QCOMPARE(state->position.column, 44);
    QCOMPARE(state->position.row, 9);

    QCOMPARE(Decode::date(hex("1F0C141A")), std::optional(QDate(2026, 12, 31)));
    QCOMPARE(Decode::time(hex("09050700")), std::optional(QTime(9, 5, 7)));
    QCOMPARE(Decode::time(hex("090507")), std::optional(QTime(9, 5, 7)));

    const auto counter = Decode::videoCounter(hex("01020304"));
    QVERIFY(counter);
    QCOMPARE(counter->seconds, 3);
    QCOMPARE(counter->frames, std::optional(4));
    QCOMPARE(Decode::videoCounter(hex("010203"))->frames, std::optional<int>());

    const auto line = Decode::statusLineState(hex("02AF010000"));
    QVERIFY(line);
    QCOMPARE(line->line, 2);
    QCOMPARE(line->colors.text, quint8(10));
    QCOMPARE(line->colors.background, quint8(15));
    QVERIFY(line->visible);

    const auto text = Decode::lineText(hex("0341A4"), TextCodec::Latin9);
    QVERIFY(text);
    QCOMPARE(text->line, 3);
    QCOMPARE(text->text, QStringLiteral("A\u20AC"));

    const auto laser = Decode::laserCalibration(hex("013FE0000000000000"));
    QVERIFY(laser);
    QCOMPARE(laser->index, 1);
    QCOMPARE(laser->value, std::optional(0.5));
    QVERIFY(!Decode::laserCalibration(hex("03"))->value);

    const auto measured = Decode::measurement3D(Build::point3D(1.5, -2.25, 1e9) + Build::single(45.5F));
    QVERIFY(measured);
    QCOMPARE(measured->point.x, 1.5);
    QCOMPARE(measured->point.y, -2.25);
    QCOMPARE(measured->point.z, 1e9);
    QCOMPARE(measured->angle, 45.5F);

    const auto freeText = Decode::freeText(hex("001E00414200"
                                               "0043"),
                                           TextCodec::Latin9);
    QVERIFY(freeText);
    QCOMPARE(freeText->durationSeconds, 30);
    QCOMPARE(freeText->lines, lines("AB,,C"));
}

void tst_ClientPayloads::impossibleDateIsInvalidNotMissing()
{
    const auto date = Decode::date(hex("010D141A"));
    QVERIFY(date);
    QVERIFY(!date->isValid());
    const auto time = Decode::time(hex("180000"));
    QVERIFY(time);
    QVERIFY(!time->isValid());
}

void tst_ClientPayloads::payloadOfAnyOtherSizeYieldsNothing_data()
{
    QTest::addColumn<int>("size");
    for (int size = 0; size <= 40; ++size) {
        QTest::addRow("%d bytes", size) << size;
    }
}

void tst_ClientPayloads::payloadOfAnyOtherSizeYieldsNothing()
{
    QFETCH(int, size);
    const QByteArray payload(size, '\x01');
    QCOMPARE(Decode::number(payload).has_value(), size == 1);
    QCOMPARE(Decode::codec(payload).has_value(), size == 1);
    QCOMPARE(Decode::single(payload).has_value(), size == 4);
    QCOMPARE(Decode::position(payload).has_value(), size == 2);
    QCOMPARE(Decode::elementState(payload).has_value(), size == 4);
    QCOMPARE(Decode::date(payload).has_value(), size == 4);
    QCOMPARE(Decode::time(payload).has_value(), size == 3 || size == 4);
    QCOMPARE(Decode::videoCounter(payload).has_value(), size == 3 || size == 4);
    QCOMPARE(Decode::colors(payload).has_value(), size == 1 || size == 2);
    QCOMPARE(Decode::numberedColors(payload).has_value(), size == 2 || size == 3);
    QCOMPARE(Decode::statusLineState(payload).has_value(), size == 5);
    QCOMPARE(Decode::lineText(payload, TextCodec::Utf8).has_value(), size >= 1);
    QCOMPARE(Decode::freeText(payload, TextCodec::Utf8).has_value(), size >= 3);
    QCOMPARE(Decode::point3D(payload).has_value(), size == 24);
    QCOMPARE(Decode::orientation(payload).has_value(), size == 8);
    QCOMPARE(Decode::measurement3D(payload).has_value(), size == 28);
    QCOMPARE(Decode::laserCalibration(payload).has_value(), size == 1 || size == 9);
}

QTEST_GUILESS_MAIN(tst_ClientPayloads)
#include "tst_clientpayloads.moc"
