// The texts that a controller writes, as lines and at the cursor.

#include "HostedUnit.h"

#include <QFontMetrics>
#include <QtTest>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;
using Mavril::VideoOverlay::ElementParam;

class TestCustomTexts : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void writtenLineIsMadeStepByStep();
    void writtenLineKeepsItsFixedColours();
    void writtenLineIsMeasuredInItsElementsFont();
    void everyWrittenLineIsATextOfItsOwn();
    void lineNumberIsTheRowWhateverItIs_data();
    void lineNumberIsTheRowWhateverItIs();

    void textAtCursorIsMadeStepByStep();
    void textAtCursorTakesTheLineColours();
    void textAtCursorIsReplacedWhole();
    void textAtCursorLosesItsNulsOnlyWhenItIsMade();
    void textAtCursorIsMeasuredWithoutItsNuls();
    void textAtCursorReplacesTheFirstTextThere();
    void textAtCursorFindsATextThatTheHostMoved();
    void textAtCursorLeavesTheProfilesTextsAlone();
    void cursorCommandMovesTheNextText();
    void managerThatMakesNoTextIsDoneWithout();

private:
    static void writeLine(HostedUnit& unit, int line, const QByteArray& text)
    {
        unit.command(Protocol::Write, 0x98, QByteArray(1, static_cast<char>(line)) + text);
    }
    static void writeAtCursor(HostedUnit& unit, const QByteArray& text)
    {
        unit.command(Protocol::Write, 0x95, text);
    }
};

void TestCustomTexts::initTestCase()
{
    if (!hasOwn("net")) {
        QSKIP(NeedsOwnNetwork);
    }
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
}

void TestCustomTexts::writtenLineIsMadeStepByStep()
{
    HostedUnit unit;
    writeLine(unit, 2, "  hi  ");
    QCOMPARE(unit.manager.created.size(), 1);
    const QFontMetrics metrics(unit.manager.created.first()->font());
    QCOMPARE(
        unit.log.take(),
        inOrder("custom1.setRow(2)", "custom1.setColumn(0)", "custom1.setVisible(true)",
                "custom1.setTextColor(#ffffffff)", "custom1.setBackgroundColor(#ff0000ff)",
                "custom1.setEnabled(true)", "custom1.setText(hi)", "custom1.setType(1)",
                QStringLiteral("custom1.setHeight(%1)").arg(metrics.height()),
                QStringLiteral("custom1.setWidth(%1)").arg(metrics.horizontalAdvance(QStringLiteral("hi")))));
}

void TestCustomTexts::writtenLineKeepsItsFixedColours()
{
    HostedUnit unit;
    unit.command(Protocol::Write, 0x92, QByteArray::fromHex("AF")); // red on black for the text at the cursor
    writeLine(unit, 2, "hi");
    QCOMPARE(unit.manager.created.first()->textColor(), QColor(Qt::white));
    QCOMPARE(unit.manager.created.first()->backgroundColor(), QColor(Qt::blue));
}

void TestCustomTexts::writtenLineIsMeasuredInItsElementsFont()
{
    HostedUnit unit;
    QFont large(QStringLiteral("Sans"));
    large.setPixelSize(61);
    unit.manager.createdFont = large;
    writeLine(unit, 2, "measured");
    const RecordingText* const text = unit.manager.created.first();
    const QFontMetrics metrics(text->font());
    QCOMPARE(text->height(), qreal(metrics.height()));
    QCOMPARE(text->width(), qreal(metrics.horizontalAdvance(QStringLiteral("measured"))));
    QVERIFY(metrics.height() > QFontMetrics(QFont()).height()); // else it would not show
}

void TestCustomTexts::everyWrittenLineIsATextOfItsOwn()
{
    HostedUnit unit;
    writeLine(unit, 2, "one");
    writeLine(unit, 2, "two");
    QCOMPARE(unit.manager.createdTexts(), inOrder("one", "two"));
}

void TestCustomTexts::lineNumberIsTheRowWhateverItIs_data()
{
    QTest::addColumn<int>("line");
    QTest::newRow("0") << 0;
    QTest::newRow("5") << 5;
    QTest::newRow("128") << 128;
    QTest::newRow("255") << 255;
}

void TestCustomTexts::lineNumberIsTheRowWhateverItIs()
{
    QFETCH(int, line);
    HostedUnit unit;
    writeLine(unit, line, "text");
    QCOMPARE(unit.manager.created.first()->row(), line);
    QCOMPARE(unit.manager.created.first()->column(), 0);
}

void TestCustomTexts::textAtCursorIsMadeStepByStep()
{
    HostedUnit unit;
    unit.model().setCursorPosition(3, 4);
    writeAtCursor(unit, " hi ");
    const QFontMetrics metrics(unit.manager.created.first()->font());
    QCOMPARE(
        unit.log.take(),
        inOrder(
            "custom1.setRow(4)", "custom1.setColumn(3)", "custom1.setVisible(true)",
            "custom1.setTextColor(#ffffffff)", "custom1.setBackgroundColor(#ff0000ff)",
            "custom1.setEnabled(true)", "custom1.setText( hi )", "custom1.setType(1)",
            QStringLiteral("custom1.setHeight(%1)").arg(metrics.height()),
            QStringLiteral("custom1.setWidth(%1)").arg(metrics.horizontalAdvance(QStringLiteral(" hi ")))));
}

void TestCustomTexts::textAtCursorTakesTheLineColours()
{
    HostedUnit unit;
    unit.command(Protocol::Write, 0x92, QByteArray::fromHex("AF"));
    writeAtCursor(unit, "hi");
    QCOMPARE(unit.manager.created.first()->textColor(), QColor(Qt::red));
    QCOMPARE(unit.manager.created.first()->backgroundColor(), QColor(Qt::black));
}

void TestCustomTexts::textAtCursorIsReplacedWhole()
{
    HostedUnit unit;
    unit.model().setCursorPosition(3, 4);
    writeAtCursor(unit, "first");
    unit.discardCalls();
    unit.model().setLineColorPair({QColor(Qt::red), QColor(Qt::black)});
    writeAtCursor(unit, "second");
    // Nothing but the text: colours, size and type stay.
    QCOMPARE(unit.log.take(), inOrder("custom1.setText(second)"));
    QCOMPARE(unit.manager.created.size(), 1);
}

// Deliberately uneven: what is made loses its NUL characters, what is replaced keeps them.
void TestCustomTexts::textAtCursorLosesItsNulsOnlyWhenItIsMade()
{
    HostedUnit unit;
    const QByteArray bytes("a\0b\0\0", 5);
    writeAtCursor(unit, bytes);
    QCOMPARE(unit.manager.created.first()->text(), QStringLiteral("ab"));
    writeAtCursor(unit, bytes);
    QCOMPARE(unit.manager.created.first()->text(), QString::fromLatin1(bytes.constData(), bytes.size()));
    QCOMPARE(unit.manager.created.size(), 1);
}

void TestCustomTexts::textAtCursorIsMeasuredWithoutItsNuls()
{
    HostedUnit unit;
    writeAtCursor(unit, QByteArray("a\0b\0\0\0\0\0", 8));
    const RecordingText* const text = unit.manager.created.first();
    QCOMPARE(text->width(), qreal(QFontMetrics(text->font()).horizontalAdvance(QStringLiteral("ab"))));
}

void TestCustomTexts::textAtCursorReplacesTheFirstTextThere()
{
    HostedUnit unit;
    writeLine(unit, 2, "one");
    writeLine(unit, 2, "two");
    unit.model().setCursorPosition(0, 2);
    writeAtCursor(unit, "new");
    QCOMPARE(unit.manager.createdTexts(), inOrder("new", "two"));
}

void TestCustomTexts::textAtCursorFindsATextThatTheHostMoved()
{
    HostedUnit unit;
    writeLine(unit, 2, "one");
    unit.manager.created.first()->setColumn(7);
    unit.model().setCursorPosition(7, 2);
    writeAtCursor(unit, "new");
    QCOMPARE(unit.manager.createdTexts(), inOrder("new"));
    unit.model().setCursorPosition(0, 2);
    writeAtCursor(unit, "where it was");
    QCOMPARE(unit.manager.createdTexts(), inOrder("new", "where it was"));
}

void TestCustomTexts::textAtCursorLeavesTheProfilesTextsAlone()
{
    HostedUnit unit;
    unit.addBoundText(ElementParam::NAME_SPEED); // at (0, 0), where the cursor is
    writeAtCursor(unit, "new");
    QCOMPARE(unit.manager.createdTexts(), inOrder("new"));
}

void TestCustomTexts::cursorCommandMovesTheNextText()
{
    HostedUnit unit;
    unit.command(Protocol::Write, 0x62, QByteArray::fromHex("0304"));
    writeAtCursor(unit, "one");
    unit.command(Protocol::Write, 0x62, QByteArray::fromHex("0305"));
    writeAtCursor(unit, "two");
    QCOMPARE(unit.manager.createdTexts(), inOrder("one", "two"));
    QCOMPARE(unit.manager.created.last()->column(), 3);
    QCOMPARE(unit.manager.created.last()->row(), 5);
}

void TestCustomTexts::managerThatMakesNoTextIsDoneWithout()
{
    HostedUnit unit;
    unit.manager.makesTexts = false;
    writeLine(unit, 2, "line");
    writeAtCursor(unit, "text");
    unit.runner->onPrintableCharReceived('x');
    unit.runner->clearEmptyTexts();
    unit.runner->clearCustomElements();
    QCOMPARE(unit.log.take(), QStringList());
    unit.manager.makesTexts = true;
    writeAtCursor(unit, "text");
    QCOMPARE(unit.manager.createdTexts(), inOrder("text"));
}

QTEST_MAIN(TestCustomTexts)
#include "tst_customtexts.moc"
