#include <Tolvar/Varundo/DataManager.h>

#include <QtTest>

using namespace Tolvar::Varundo;

namespace {

DataManager::TextCodec codecNumber(int number)
{
    return static_cast<DataManager::TextCodec>(number);
}

/// The code units of a text as the platform keeps them in memory.
QByteArray inPlatformOrder(const QString& text)
{
    return QByteArray(reinterpret_cast<const char*>(text.utf16()), text.size() * int(sizeof(QChar)));
}

const QString ByteOrderMark(QChar(0xFEFF));

} // namespace

class TextCodecTest : public QObject
{
    Q_OBJECT

private slots:
    void latin9ByteIsItsCharacter_data();
    void latin9ByteIsItsCharacter();
    void otherLatin9BytesAreTheirCodePoint();
    void unknownCodecBehavesLikeTheDefault();
    void characterOutsideLatin9BecomesASubstituteByte();
    void utf8IsEncodedAndDecoded_data();
    void utf8IsEncodedAndDecoded();
    void undecodableUtf8BecomesReplacementCharacters_data();
    void undecodableUtf8BecomesReplacementCharacters();
    void utf16IsEncodedWithAMarkInPlatformOrder_data();
    void utf16IsEncodedWithAMarkInPlatformOrder();
    void utf16IsDecodedByItsMark_data();
    void utf16IsDecodedByItsMark();
    void utf16WithoutAMarkIsInPlatformOrder();
    void nothingIsEmptyText_data();
    void nothingIsEmptyText();
    void nulIsACharacterLikeAnyOther();
    void codecIsReadAtEveryCall();
    void cutOffCharacterDoesNotReachTheNextText();
    void longTextIsConvertedWhole();
};

void TextCodecTest::latin9ByteIsItsCharacter_data()
{
    QTest::addColumn<int>("byte");
    QTest::addColumn<int>("codePoint");
    QTest::newRow("euro sign") << 0xA4 << 0x20AC;
    QTest::newRow("capital S with caron") << 0xA6 << 0x0160;
    QTest::newRow("small s with caron") << 0xA8 << 0x0161;
    QTest::newRow("capital Z with caron") << 0xB4 << 0x017D;
    QTest::newRow("small z with caron") << 0xB8 << 0x017E;
    QTest::newRow("capital ligature OE") << 0xBC << 0x0152;
    QTest::newRow("small ligature oe") << 0xBD << 0x0153;
    QTest::newRow("capital Y with diaeresis") << 0xBE << 0x0178;
}

void TextCodecTest::latin9ByteIsItsCharacter()
{
    QFETCH(int, byte);
    QFETCH(int, codePoint);
    DataManager model;
    const QByteArray encoded(1, static_cast<char>(byte));
    const QString text(QChar(static_cast<ushort>(codePoint)));
    QCOMPARE(model.convertTextToCodec(encoded), text);
    QCOMPARE(model.convertByteArrayFromText(text), encoded);
}

void TextCodecTest::otherLatin9BytesAreTheirCodePoint()
{
    const QList<int> exceptions{0xA4, 0xA6, 0xA8, 0xB4, 0xB8, 0xBC, 0xBD, 0xBE};
    DataManager model;
    for (int byte = 0; byte <= 0xFF; ++byte) {
        if (!exceptions.contains(byte)) {
            const QByteArray encoded(1, static_cast<char>(byte));
            const QString text(QChar(static_cast<ushort>(byte)));
            QCOMPARE(model.convertTextToCodec(encoded), text);
            QCOMPARE(model.convertByteArrayFromText(text), encoded);
        }
    }
}

void TextCodecTest::unknownCodecBehavesLikeTheDefault()
{
    QByteArray allBytes;
    for (int byte = 0; byte <= 0xFF; ++byte) {
        allBytes.append(static_cast<char>(byte));
    }
    const DataManager fresh;
    const QString text = fresh.convertTextToCodec(allBytes);
    QCOMPARE(text.size(), 256);
    for (int number = 3; number <= 255; ++number) {
        DataManager model;
        model.setTextCodec(codecNumber(number));
        QCOMPARE(model.convertTextToCodec(allBytes), text);
        QCOMPARE(model.convertByteArrayFromText(text), allBytes);
    }
}

void TextCodecTest::characterOutsideLatin9BecomesASubstituteByte()
{
    DataManager model;
    const QByteArray encoded = model.convertByteArrayFromText(QStringLiteral("a\u03A9b\u00A4c"));
    QCOMPARE(encoded.size(), 5);
    QCOMPARE(encoded.at(0), 'a');
    QCOMPARE(encoded.at(2), 'b');
    QCOMPARE(encoded.at(4), 'c');
    QCOMPARE(encoded.at(1), encoded.at(3));
    QVERIFY(QByteArray("?\x1A").contains(encoded.at(1)));
}

void TextCodecTest::utf8IsEncodedAndDecoded_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("encoded");
    QTest::newRow("one byte") << "A" << QByteArray("A");
    QTest::newRow("two bytes") << QStringLiteral("\u00E4") << QByteArray("\xC3\xA4");
    QTest::newRow("three bytes") << QStringLiteral("\u20AC") << QByteArray("\xE2\x82\xAC");
    QTest::newRow("four bytes") << QString::fromUcs4(U"\U0001F600") << QByteArray("\xF0\x9F\x98\x80");
    QTest::newRow("mixed") << QStringLiteral("a\u20ACb")
                           << QByteArray("a\xE2\x82\xAC"
                                         "b");
}

void TextCodecTest::utf8IsEncodedAndDecoded()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, encoded);
    DataManager model;
    model.setTextCodec(DataManager::Utf8);
    QCOMPARE(model.convertByteArrayFromText(text), encoded);
    QCOMPARE(model.convertTextToCodec(encoded), text);
}

void TextCodecTest::undecodableUtf8BecomesReplacementCharacters_data()
{
    QTest::addColumn<QByteArray>("encoded");
    QTest::newRow("lone continuation byte") << QByteArray("a\x80z");
    QTest::newRow("byte that never occurs") << QByteArray("a\xFFz");
    QTest::newRow("overlong slash") << QByteArray("a\xC0\xAFz");
    QTest::newRow("surrogate") << QByteArray("a\xED\xA0\x80z");
    QTest::newRow("sequence broken off") << QByteArray("a\xE2\x82z");
}

void TextCodecTest::undecodableUtf8BecomesReplacementCharacters()
{
    QFETCH(QByteArray, encoded);
    DataManager model;
    model.setTextCodec(DataManager::Utf8);
    const QString text = model.convertTextToCodec(encoded);
    QVERIFY(text.size() >= 3);
    QCOMPARE(text.front(), QChar(u'a'));
    QCOMPARE(text.back(), QChar(u'z'));
    QCOMPARE(text.count(QChar(QChar::ReplacementCharacter)), text.size() - 2);
}

void TextCodecTest::utf16IsEncodedWithAMarkInPlatformOrder_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("one letter") << "A";
    QTest::newRow("euro sign") << QStringLiteral("\u20AC");
    QTest::newRow("beyond the first plane") << QString::fromUcs4(U"\U0001F600");
    QTest::newRow("several letters, one mark") << "ABC";
    QTest::newRow("nothing but the mark") << QString();
}

void TextCodecTest::utf16IsEncodedWithAMarkInPlatformOrder()
{
    QFETCH(QString, text);
    DataManager model;
    model.setTextCodec(DataManager::Utf16);
    QCOMPARE(model.convertByteArrayFromText(text).toHex(), inPlatformOrder(ByteOrderMark + text).toHex());
    if (QSysInfo::ByteOrder == QSysInfo::LittleEndian && text == QLatin1String("A")) {
        QCOMPARE(model.convertByteArrayFromText(text).toHex(), QByteArray("fffe4100"));
    }
}

void TextCodecTest::utf16IsDecodedByItsMark_data()
{
    QTest::addColumn<QByteArray>("hex");
    QTest::addColumn<QString>("text");
    QTest::newRow("low byte first") << QByteArray("fffe 4100 ac20") << QStringLiteral("A\u20AC");
    QTest::newRow("high byte first") << QByteArray("feff 0041 20ac") << QStringLiteral("A\u20AC");
    QTest::newRow("surrogates") << QByteArray("feff d83d de00") << QString::fromUcs4(U"\U0001F600");
    QTest::newRow("mark alone") << QByteArray("feff") << QString();
}

void TextCodecTest::utf16IsDecodedByItsMark()
{
    QFETCH(QByteArray, hex);
    QFETCH(QString, text);
    DataManager model;
    model.setTextCodec(DataManager::Utf16);
    QCOMPARE(model.convertTextToCodec(QByteArray::fromHex(hex)), text);
}

void TextCodecTest::utf16WithoutAMarkIsInPlatformOrder()
{
    DataManager model;
    model.setTextCodec(DataManager::Utf16);
    const QString text = QStringLiteral("A\u20AC\u0141");
    QCOMPARE(model.convertTextToCodec(inPlatformOrder(text)), text);
}

void TextCodecTest::nothingIsEmptyText_data()
{
    QTest::addColumn<int>("codec");
    for (const int codec : {0, 1, 2, 3, 7, 255}) {
        QTest::newRow(QByteArray::number(codec)) << codec;
    }
}

void TextCodecTest::nothingIsEmptyText()
{
    QFETCH(int, codec);
    DataManager model;
    model.setTextCodec(codecNumber(codec));
    QCOMPARE(model.convertTextToCodec(QByteArray()), QString());
    if (codec != 2) {
        QCOMPARE(model.convertByteArrayFromText(QString()), QByteArray());
    }
}

void TextCodecTest::nulIsACharacterLikeAnyOther()
{
    const QByteArray encoded("a\0b\0", 4);
    const QString text = QString::fromLatin1(encoded.constData(), encoded.size());
    for (const int codec : {0, 1}) {
        DataManager model;
        model.setTextCodec(codecNumber(codec));
        QCOMPARE(model.convertTextToCodec(encoded), text);
        QCOMPARE(model.convertByteArrayFromText(text), encoded);
    }
}

void TextCodecTest::codecIsReadAtEveryCall()
{
    DataManager model;
    const QByteArray encoded("\xC3\xA4");
    for (int round = 0; round < 2; ++round) {
        model.setTextCodec(DataManager::Latin9);
        QCOMPARE(model.convertTextToCodec(encoded), QStringLiteral("\u00C3\u20AC"));
        model.setTextCodec(DataManager::Utf8);
        QCOMPARE(model.convertTextToCodec(encoded), QStringLiteral("\u00E4"));
        QCOMPARE(model.convertByteArrayFromText(QStringLiteral("\u00E4")), encoded);
    }
}

void TextCodecTest::cutOffCharacterDoesNotReachTheNextText()
{
    DataManager model;
    model.setTextCodec(DataManager::Utf8);
    static_cast<void>(model.convertTextToCodec("\xE2\x82"));
    QCOMPARE(model
                 .convertTextToCodec("\xAC"
                                     "A")
                 .right(1),
             QStringLiteral("A"));
    QVERIFY(!model.convertTextToCodec("\xAC").contains(QChar(0x20AC)));
    model.setTextCodec(DataManager::Utf16);
    static_cast<void>(model.convertTextToCodec(QByteArray::fromHex("feff 00")));
    QCOMPARE(model.convertTextToCodec(inPlatformOrder(QStringLiteral("A"))), QStringLiteral("A"));
}

void TextCodecTest::longTextIsConvertedWhole()
{
    DataManager model;
    const QString text(65535, QChar(0x20AC));
    QCOMPARE(model.convertByteArrayFromText(text), QByteArray(65535, '\xA4'));
    QCOMPARE(model.convertTextToCodec(QByteArray(65535, '\xA4')), text);
}

QTEST_GUILESS_MAIN(TextCodecTest)

#include "tst_textcodec.moc"
