#include "WriteBench.h"

#include <QtTest>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

QByteArray bytes(const char* hex)
{
    return QByteArray::fromHex(hex);
}

} // namespace

/// The commands that carry text: which bytes are text, and what is removed from it, before or after decoding.
class WriteCommandParserTextTest : public QObject
{
    Q_OBJECT

private slots:
    void statusTextGoesToItsLineAlone_data();
    void statusTextGoesToItsLineAlone();
    void statusTextOfAnyOtherLineIsDropped();
    void statusTextLosesItsNulsAndKeepsItsBlanks_data();
    void statusTextLosesItsNulsAndKeepsItsBlanks();
    void writtenLineLosesItsNulsThenItsOuterBlanks_data();
    void writtenLineLosesItsNulsThenItsOuterBlanks();
    void writtenLineNumberIsPassedOnAsItIs();
    void textAtTheCursorIsKeptWhole_data();
    void textAtTheCursorIsKeptWhole();
    void freeTextIsFiveTrimmedLines_data();
    void freeTextIsFiveTrimmedLines();
    void freeTextOfThreeBytesOrFewerIsFiveEmptyLines_data();
    void freeTextOfThreeBytesOrFewerIsFiveEmptyLines();
    void freeTextIgnoresItsFirstAndThirdByte();
    void freeTextDurationIsUnsigned();
    void freeTextIsSplitBeforeItIsDecoded();
    void codecOfTheMomentIsUsed();
};

void WriteCommandParserTextTest::statusTextGoesToItsLineAlone_data()
{
    QTest::addColumn<int>("line");
    QTest::addColumn<QString>("property");
    QTest::addColumn<QString>("element");
    QTest::newRow("line 1") << 1 << "statusLine1Text" << Name::NAME_STATUS_TEXT_1;
    QTest::newRow("line 2") << 2 << "statusLine2Text" << Name::NAME_STATUS_TEXT_2;
    QTest::newRow("line 3") << 3 << "statusLine3Text" << Name::NAME_STATUS_TEXT_3;
    QTest::newRow("line 4") << 4 << "statusLine4Text" << Name::NAME_STATUS_TEXT_4;
}

void WriteCommandParserTextTest::statusTextGoesToItsLineAlone()
{
    QFETCH(int, line);
    QFETCH(QString, property);
    QFETCH(QString, element);
    WriteBench bench;
    bench.fill();
    QCOMPARE(bench.effectOf(0x90, QByteArray(1, char(line)) + "Pipe 7"),
             (QStringList{property + " = \"Pipe 7\""_s,
                          QStringLiteral("%1Changed(\"%2\", \"Pipe 7\")").arg(property, element)}));
    QCOMPARE(bench.effectOf(0x90, QByteArray(1, char(line))).value(0), property + " = \"\""_s);
}

void WriteCommandParserTextTest::statusTextOfAnyOtherLineIsDropped()
{
    WriteBench bench;
    bench.fill();
    QCOMPARE(bench.effectOf(0x90, QByteArray()), QStringList());
    QCOMPARE(bench.effectOf(0x90, QByteArray("\0Pipe", 5)), QStringList());
    for (int line = 5; line <= 255; ++line) {
        QCOMPARE(bench.effectOf(0x90, QByteArray(1, char(line)) + "Pipe"), QStringList());
    }
}

void WriteCommandParserTextTest::statusTextLosesItsNulsAndKeepsItsBlanks_data()
{
    QTest::addColumn<int>("codec");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("stored");
    QTest::newRow("blanks and a NUL") << 0 << QByteArray(" A\0B ", 5) << " AB ";
    QTest::newRow("NULs at both ends") << 0 << QByteArray("\0\0A\0", 4) << "A";
    QTest::newRow("other white space") << 0 << QByteArray("\t\nA\r\xA0") << QStringLiteral("\t\nA\r\u00A0");
    QTest::newRow("NULs only") << 0 << QByteArray(3, '\0') << "";
    QTest::newRow("euro sign") << 0 << QByteArray("\xA4") << QStringLiteral("\u20AC");
    QTest::newRow("UTF-8") << 1 << QByteArray("\xE2\x82\xAC\0\xC3\xA4", 6) << QStringLiteral("\u20AC\u00E4");
    // In UTF-16 half of the bytes are zero: NULs go after decoding, or nothing would be left of the text.
    QTest::newRow("UTF-16") << 2 << bytes("FEFF 0041 0000 0042 20AC") << QStringLiteral("AB\u20AC");
}

void WriteCommandParserTextTest::statusTextLosesItsNulsAndKeepsItsBlanks()
{
    QFETCH(int, codec);
    QFETCH(QByteArray, text);
    QFETCH(QString, stored);
    WriteBench bench;
    bench.model.setStatusLine1Text(QStringLiteral("before"));
    bench.model.setTextCodec(static_cast<DataManager::TextCodec>(codec));
    static_cast<void>(bench.emittedBy(0x90, QByteArray(1, '\x01') + text));
    QCOMPARE(bench.model.statusLine1Text(), stored);
}

void WriteCommandParserTextTest::writtenLineLosesItsNulsThenItsOuterBlanks_data()
{
    QTest::addColumn<int>("codec");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("written");
    QTest::newRow("outer blanks") << 0 << QByteArray("  hi  ") << "hi";
    QTest::newRow("inner blanks") << 0 << QByteArray(" h  i ") << "h  i";
    QTest::newRow("other white space") << 0 << QByteArray("\t\r\nhi\x0B\x0C\xA0") << "hi";
    QTest::newRow("inner NUL") << 0 << QByteArray("h\0i", 3) << "hi";
    QTest::newRow("NULs outside of the blanks") << 0 << QByteArray("\0 \0 hi \0 \0", 10) << "hi";
    QTest::newRow("nothing but blanks and NULs") << 0 << QByteArray(" \0 ", 3) << "";
    QTest::newRow("nothing") << 0 << QByteArray() << "";
    QTest::newRow("UTF-8") << 1 << QByteArray(" \xE2\x82\xAC ") << QStringLiteral("\u20AC");
    QTest::newRow("UTF-16") << 2 << bytes("FEFF 0020 0041 0000 0042 0020 0000") << "AB";
}

void WriteCommandParserTextTest::writtenLineLosesItsNulsThenItsOuterBlanks()
{
    QFETCH(int, codec);
    QFETCH(QByteArray, text);
    QFETCH(QString, written);
    WriteBench bench;
    bench.model.setTextCodec(static_cast<DataManager::TextCodec>(codec));
    QCOMPARE(bench.effectOf(0x98, QByteArray(1, '\x02') + text),
             QStringList{QStringLiteral("writeLine(2, \"%1\")").arg(written)});
}

void WriteCommandParserTextTest::writtenLineNumberIsPassedOnAsItIs()
{
    WriteBench bench;
    QCOMPARE(bench.effectOf(0x98, QByteArray()), QStringList{"writeLine(0, \"\")"_s});
    for (int line = 0; line <= 255; ++line) {
        QCOMPARE(bench.effectOf(0x98, QByteArray(1, char(line)) + "x"),
                 QStringList{QStringLiteral("writeLine(%1, \"x\")").arg(line)});
    }
}

void WriteCommandParserTextTest::textAtTheCursorIsKeptWhole_data()
{
    QTest::addColumn<int>("codec");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("text");
    QTest::newRow("nothing") << 0 << QByteArray() << "";
    QTest::newRow("the first byte is text") << 0 << QByteArray("1st") << "1st";
    QTest::newRow("blanks") << 0 << QByteArray("  hi ") << "  hi ";
    QTest::newRow("NULs") << 0 << QByteArray("\0h\0i\0", 5) << QString::fromLatin1("\0h\0i\0", 5);
    QTest::newRow("UTF-8") << 1 << QByteArray(" \xE2\x82\xAC") << QStringLiteral(" \u20AC");
    QTest::newRow("UTF-16") << 2 << bytes("FEFF 0041 0000 0020") << QString::fromLatin1("A\0 ", 3);
}

void WriteCommandParserTextTest::textAtTheCursorIsKeptWhole()
{
    QFETCH(int, codec);
    QFETCH(QByteArray, payload);
    QFETCH(QString, text);
    WriteBench bench;
    bench.model.setTextCodec(static_cast<DataManager::TextCodec>(codec));
    QCOMPARE(bench.effectOf(0x95, payload),
             QStringList{QStringLiteral("writeTextOnCursorPosition(\"") + text + QStringLiteral("\")")});
}

void WriteCommandParserTextTest::freeTextIsFiveTrimmedLines_data()
{
    QTest::addColumn<int>("codec");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("the sixth piece is dropped")
        << 0 << QByteArray("AB\0  C \0\0D\0E\0F", 14) << QStringList{"AB"_s, "C"_s, ""_s, "D"_s, "E"_s};
    QTest::newRow("one piece") << 0 << QByteArray("A") << QStringList{"A"_s, ""_s, ""_s, ""_s, ""_s};
    QTest::newRow("ends with a separator")
        << 0 << QByteArray("A\0B\0", 4) << QStringList{"A"_s, "B"_s, ""_s, ""_s, ""_s};
    QTest::newRow("separators only") << 0 << QByteArray(9, '\0') << QStringList{""_s, ""_s, ""_s, ""_s, ""_s};
    QTest::newRow("begins with a separator")
        << 0 << QByteArray("\0A", 2) << QStringList{""_s, "A"_s, ""_s, ""_s, ""_s};
    QTest::newRow("inner blanks") << 0 << QByteArray("\tA  B\r\n")
                                  << QStringList{"A  B"_s, ""_s, ""_s, ""_s, ""_s};
    QTest::newRow("euro sign") << 0 << QByteArray("\xA4\0\xA4", 3)
                               << QStringList{QStringLiteral("\u20AC"), QStringLiteral("\u20AC"), ""_s, ""_s,
                                              ""_s};
    QTest::newRow("UTF-8") << 1 << QByteArray("\xE2\x82\xAC\0\xC3\xA4", 6)
                           << QStringList{QStringLiteral("\u20AC"), QStringLiteral("\u00E4"), ""_s, ""_s,
                                          ""_s};
}

void WriteCommandParserTextTest::freeTextIsFiveTrimmedLines()
{
    QFETCH(int, codec);
    QFETCH(QByteArray, body);
    QFETCH(QStringList, lines);
    WriteBench bench;
    bench.model.setTextCodec(static_cast<DataManager::TextCodec>(codec));
    QCOMPARE(bench.effectOf(0xD7, QByteArray("\0\x1E\0", 3) + body),
             (QStringList{QStringLiteral("lineText = ") + asText(lines),
                          QStringLiteral("lineTextChanged(\"%1\", %2, 30)")
                              .arg(Name::NAME_OSD_FREE_TEXT_BOX, asText(lines))}));
}

void WriteCommandParserTextTest::freeTextOfThreeBytesOrFewerIsFiveEmptyLines_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<int>("duration");
    QTest::newRow("no byte") << QByteArray() << 0;
    QTest::newRow("one byte") << QByteArray("\x09") << 0;
    QTest::newRow("two bytes") << QByteArray("\x09\x1E") << 30;
    QTest::newRow("three bytes") << QByteArray("\x09\x1E\x41") << 30;
}

void WriteCommandParserTextTest::freeTextOfThreeBytesOrFewerIsFiveEmptyLines()
{
    QFETCH(QByteArray, payload);
    QFETCH(int, duration);
    WriteBench bench;
    bench.fill();
    QCOMPARE(bench.effectOf(0xD7, payload),
             (QStringList{"lineText = [5: ||||]"_s, QStringLiteral("lineTextChanged(\"%1\", [5: ||||], %2)")
                                                        .arg(Name::NAME_OSD_FREE_TEXT_BOX)
                                                        .arg(duration)}));
}

void WriteCommandParserTextTest::freeTextIgnoresItsFirstAndThirdByte()
{
    for (int byte = 0; byte <= 255; ++byte) {
        WriteBench bench;
        const QByteArray ignored(1, char(byte));
        QCOMPARE(bench.effectOf(0xD7, ignored + "\x07" + ignored + "A").value(1),
                 QStringLiteral("lineTextChanged(\"%1\", [5: A||||], 7)").arg(Name::NAME_OSD_FREE_TEXT_BOX));
    }
}

void WriteCommandParserTextTest::freeTextDurationIsUnsigned()
{
    WriteBench bench;
    QCOMPARE(
        bench.emittedBy(0xD7, QByteArray("\0\xFF\0A", 4)),
        QStringList{
            QStringLiteral("lineTextChanged(\"%1\", [5: A||||], 255)").arg(Name::NAME_OSD_FREE_TEXT_BOX)});
}

void WriteCommandParserTextTest::freeTextIsSplitBeforeItIsDecoded()
{
    // The zero byte separates under every codec, and each piece is decoded by itself, with a byte-order mark
    // of its own. Decoded first, this would be one text: U+0141 and then the halves of its neighbours.
    WriteBench bench;
    bench.model.setTextCodec(DataManager::Utf16);
    static_cast<void>(bench.emittedBy(0xD7, QByteArray("\0\x01\0", 3) + bytes("FEFF 0141 00 FEFF 0142")));
    QCOMPARE(bench.model.lineText(),
             (QStringList{QStringLiteral("\u0141"), QStringLiteral("\u0142"), ""_s, ""_s, ""_s}));
}

void WriteCommandParserTextTest::codecOfTheMomentIsUsed()
{
    WriteBench bench;
    const QByteArray euro("\x01\xE2\x82\xAC");
    static_cast<void>(bench.emittedBy(0x90, euro));
    QCOMPARE(bench.model.statusLine1Text(), QStringLiteral("\u00E2\u0082\u00AC"));
    static_cast<void>(bench.emittedBy(0x01, QByteArray("\x01")));
    static_cast<void>(bench.emittedBy(0x90, euro));
    QCOMPARE(bench.model.statusLine1Text(), QStringLiteral("\u20AC"));
    static_cast<void>(bench.emittedBy(0x01, QByteArray("\x07")));
    static_cast<void>(bench.emittedBy(0x90, euro));
    QCOMPARE(bench.model.statusLine1Text(), QStringLiteral("\u00E2\u0082\u00AC"));
}

QTEST_GUILESS_MAIN(WriteCommandParserTextTest)

#include "tst_writecommandparser_text.moc"
