// Characters typed outside of frames, written into the text at the cursor.

#include "HostedUnit.h"

#include <QtTest>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;
using Mavril::VideoOverlay::ElementParam;

class TestCharEntry : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void charactersMakeOneTextAtTheCursor();
    void textIsMadeStepByStep();
    void textTakesTheLineColours();
    void characterIsALatin1Code_data();
    void characterIsALatin1Code();
    void textGrowsWithoutLimit();
    void appendingTouchesTheTextAlone();

    void movedCursorEndsTheEntry();
    void cursorSetWhereItIsEndsTheEntryToo();
    void newCellStartsANewText();
    void firstCharacterReplacesAWrittenLineAndTheNextOnesAreAppended();
    void entryGoesOnAfterATextWrittenAtTheCursor();
    void textWrittenAtTheCursorDoesNotBeginAnEntry();
    void characterThatMadeNoTextDoesNotBeginAnEntry();
    void entryGoesOnThoughItsTextWasDeleted();
    void firstOfTwoTextsThereTakesTheCharacters();
    void profilesTextTakesNoCharacters();
    void cursorStillEndsTheEntryAfterManyProfiles();

    void typedBlankIsDeletedWithin200Ms();
    void blankBehindALetterStays();

private:
    static void type(HostedUnit& unit, const char* characters)
    {
        for (; *characters; ++characters) {
            unit.runner->onPrintableCharReceived(*characters);
        }
    }
};

void TestCharEntry::initTestCase()
{
    if (!hasOwn("net")) {
        QSKIP(NeedsOwnNetwork);
    }
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
}

void TestCharEntry::charactersMakeOneTextAtTheCursor()
{
    HostedUnit unit;
    unit.model().setCursorPosition(3, 4);
    type(unit, "xyz");
    QCOMPARE(unit.manager.createdTexts(), inOrder("xyz"));
    QCOMPARE(unit.manager.created.first()->column(), 3);
    QCOMPARE(unit.manager.created.first()->row(), 4);
    QCOMPARE(unit.model().cursorPosition(), QPoint(3, 4)); // it does not advance
}

// Type 3, and neither width nor height: deliberately unlike the written texts.
void TestCharEntry::textIsMadeStepByStep()
{
    HostedUnit unit;
    unit.model().setCursorPosition(3, 4);
    type(unit, "x");
    QCOMPARE(unit.log.take(),
             inOrder("custom1.setRow(4)", "custom1.setColumn(3)", "custom1.setVisible(true)",
                     "custom1.setTextColor(#ffffffff)", "custom1.setBackgroundColor(#ff0000ff)",
                     "custom1.setEnabled(true)", "custom1.setText(x)", "custom1.setType(3)"));
}

void TestCharEntry::textTakesTheLineColours()
{
    HostedUnit unit;
    unit.command(Protocol::Write, 0x92, QByteArray::fromHex("AF"));
    type(unit, "x");
    QCOMPARE(unit.manager.created.first()->textColor(), QColor(Qt::red));
    QCOMPARE(unit.manager.created.first()->backgroundColor(), QColor(Qt::black));
}

void TestCharEntry::characterIsALatin1Code_data()
{
    QTest::addColumn<int>("byte");
    QTest::newRow("letter") << int('A');
    QTest::newRow("delete") << 0x7F;
    QTest::newRow("0x80") << 0x80;
    QTest::newRow("0xA4 is the currency sign, not the euro") << 0xA4;
    QTest::newRow("0xE9") << 0xE9;
    QTest::newRow("0xFF") << 0xFF;
    QTest::newRow("line feed has no meaning") << 0x0A;
    QTest::newRow("back-space has no meaning") << 0x08;
}

void TestCharEntry::characterIsALatin1Code()
{
    QFETCH(int, byte);
    HostedUnit unit;
    unit.model().setTextCodec(DataManager::Utf8); // for framed texts, not for these
    unit.runner->onPrintableCharReceived(static_cast<char>(byte));
    QCOMPARE(unit.manager.createdTexts(), QStringList(QString(QChar(byte))));
    unit.runner->onPrintableCharReceived('b');
    unit.runner->onPrintableCharReceived(static_cast<char>(byte));
    QCOMPARE(unit.manager.createdTexts(), QStringList(QString(QChar(byte)) + QLatin1Char('b') + QChar(byte)));
}

void TestCharEntry::textGrowsWithoutLimit()
{
    HostedUnit unit;
    const QByteArray many(3000, 'm');
    type(unit, many.constData());
    QCOMPARE(unit.manager.createdTexts(), QStringList(QString::fromLatin1(many)));
}

void TestCharEntry::appendingTouchesTheTextAlone()
{
    HostedUnit unit;
    type(unit, "x");
    unit.discardCalls();
    unit.model().setLineColorPair({QColor(Qt::red), QColor(Qt::black)});
    type(unit, "y");
    QCOMPARE(unit.log.take(), inOrder("custom1.setText(xy)"));
}

void TestCharEntry::movedCursorEndsTheEntry()
{
    HostedUnit unit;
    unit.model().setCursorPosition(3, 4);
    type(unit, "xyz");
    unit.command(Protocol::Write, 0x62, QByteArray::fromHex("0101"));
    unit.command(Protocol::Write, 0x62, QByteArray::fromHex("0304"));
    type(unit, "q");
    QCOMPARE(unit.manager.createdTexts(), inOrder("q"));
    type(unit, "r");
    QCOMPARE(unit.manager.createdTexts(), inOrder("qr"));
}

void TestCharEntry::cursorSetWhereItIsEndsTheEntryToo()
{
    HostedUnit unit;
    type(unit, "xyz");
    unit.model().setCursorPosition(0, 0);
    type(unit, "q");
    QCOMPARE(unit.manager.createdTexts(), inOrder("q"));
}

void TestCharEntry::newCellStartsANewText()
{
    HostedUnit unit;
    type(unit, "ab");
    unit.model().setCursorPosition(0, 1);
    type(unit, "cd");
    unit.model().setCursorPosition(1, 0);
    type(unit, "ef");
    QCOMPARE(unit.manager.createdTexts(), inOrder("ab", "cd", "ef"));
}

void TestCharEntry::firstCharacterReplacesAWrittenLineAndTheNextOnesAreAppended()
{
    HostedUnit unit;
    unit.command(Protocol::Write, 0x98, QByteArray("\x04line"));
    unit.model().setCursorPosition(0, 4);
    type(unit, "a");
    QCOMPARE(unit.manager.createdTexts(), inOrder("a"));
    type(unit, "bc");
    QCOMPARE(unit.manager.createdTexts(), inOrder("abc"));
    QCOMPARE(unit.manager.created.first()->type(), 1); // as it was made
}

void TestCharEntry::entryGoesOnAfterATextWrittenAtTheCursor()
{
    HostedUnit unit;
    type(unit, "x");
    unit.command(Protocol::Write, 0x95, QByteArray("hello"));
    type(unit, "!");
    QCOMPARE(unit.manager.createdTexts(), inOrder("hello!"));
}

void TestCharEntry::textWrittenAtTheCursorDoesNotBeginAnEntry()
{
    HostedUnit unit;
    unit.command(Protocol::Write, 0x95, QByteArray("hello"));
    type(unit, "!");
    QCOMPARE(unit.manager.createdTexts(), inOrder("!"));
}

void TestCharEntry::characterThatMadeNoTextDoesNotBeginAnEntry()
{
    HostedUnit unit;
    unit.manager.makesTexts = false;
    type(unit, "x");
    unit.manager.makesTexts = true;
    unit.command(Protocol::Write, 0x95, QByteArray("hello"));
    type(unit, "!");
    QCOMPARE(unit.manager.createdTexts(), inOrder("!"));
}

void TestCharEntry::entryGoesOnThoughItsTextWasDeleted()
{
    HostedUnit unit;
    type(unit, "xyz");
    unit.command(Protocol::Execute, 0x88);
    type(unit, "a");
    QCOMPARE(unit.manager.createdTexts(), inOrder("a"));
    type(unit, "b");
    QCOMPARE(unit.manager.createdTexts(), inOrder("ab"));
    // Only the cursor ends an entry: a line written where it stands meanwhile is extended, not replaced.
    unit.command(Protocol::Execute, 0x88);
    unit.command(Protocol::Write, 0x98, QByteArray("\0line", 5));
    type(unit, "!");
    QCOMPARE(unit.manager.createdTexts(), inOrder("line!"));
}

void TestCharEntry::firstOfTwoTextsThereTakesTheCharacters()
{
    HostedUnit unit;
    unit.command(Protocol::Write, 0x98, QByteArray("\0one", 4));
    unit.command(Protocol::Write, 0x98, QByteArray("\0two", 4));
    type(unit, "ab");
    QCOMPARE(unit.manager.createdTexts(), inOrder("ab", "two"));
}

void TestCharEntry::profilesTextTakesNoCharacters()
{
    HostedUnit unit;
    RecordingText* const speed = unit.addBoundText(ElementParam::NAME_SPEED); // at (0, 0) like the cursor
    unit.loadProfile();
    type(unit, "a");
    QCOMPARE(speed->text(), QString());
    QCOMPARE(unit.manager.createdTexts(), inOrder("a"));
}

void TestCharEntry::cursorStillEndsTheEntryAfterManyProfiles()
{
    HostedUnit unit;
    for (int i = 0; i < 5; ++i) {
        unit.loadProfile();
    }
    type(unit, "ab");
    unit.model().setCursorPosition(0, 0);
    type(unit, "c");
    QCOMPARE(unit.manager.createdTexts(), inOrder("c"));
}

void TestCharEntry::typedBlankIsDeletedWithin200Ms()
{
    HostedUnit unit;
    type(unit, " ");
    QCOMPARE(unit.manager.createdTexts(), inOrder(" "));
    QVERIFY(QTest::qWaitFor([&] { return unit.manager.created.isEmpty(); }, 400));
}

void TestCharEntry::blankBehindALetterStays()
{
    HostedUnit unit;
    type(unit, "a ");
    unit.runner->clearEmptyTexts();
    type(unit, "b");
    QCOMPARE(unit.manager.createdTexts(), inOrder("a b"));
}

QTEST_MAIN(TestCharEntry)
#include "tst_charentry.moc"
