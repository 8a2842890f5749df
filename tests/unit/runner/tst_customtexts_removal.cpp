// How the texts that a controller made go again: cleared up, cleared, removed by the host, or just gone.

#include "HeapInUse.h"
#include "HostedUnit.h"
#include "ReferenceUnit.h"

#include <QtTest>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;
using Mavril::VideoOverlay::ElementParam;

class TestCustomTextsRemoval : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void blankTextsAreDeletedWithin200Ms();
    void onlyBlankTextsAreCleared_data();
    void onlyBlankTextsAreCleared();
    void blankTextsAreClearedInOrderOfCreation();
    void profilesBlankTextsAreNotCleared();
    void clearEditDeletesAllInOrderOfCreation();
    void clearEditLeavesTheProfileAlone();
    void managerThatAnnouncesNoRemovalKeepsTheTextsListed();
    void textThatTheHostRemovesIsForgotten();
    void textThatTheHostRemovesWhileItIsMadeIsForgotten();
    void removalOfOtherElementsIsIgnored();
    void textThatVanishedIsPassedOver();
    void textsThatAllVanishedArePassedOver();
    void textsThatVanishedLeaveNothingBehind();
    void textsThatVanishDuringClearEditArePassedOver();
    void textsThatVanishDuringTheCleanUpArePassedOver();
    void textsSurviveTheRunner();
    void eachOfManyTextsCostsAsLittleAsEachOfFew_data();
    void eachOfManyTextsCostsAsLittleAsEachOfFew();

private:
    static void writeLine(HostedUnit& unit, int line, const QByteArray& text)
    {
        unit.command(Protocol::Write, 0x98, QByteArray(1, static_cast<char>(line)) + text);
    }
    static void writeAtCursor(HostedUnit& unit, const QByteArray& text)
    {
        unit.command(Protocol::Write, 0x95, text);
    }
    static void clearEdit(HostedUnit& unit) { unit.command(Protocol::Execute, 0x88); }
};

void TestCustomTextsRemoval::initTestCase()
{
    if (!hasOwn("net")) {
        QSKIP(NeedsOwnNetwork);
    }
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
}

void TestCustomTextsRemoval::blankTextsAreDeletedWithin200Ms()
{
    HostedUnit unit;
    writeLine(unit, 2, "   ");
    writeLine(unit, 3, "text");
    QCOMPARE(unit.manager.created.size(), 2); // not at once
    QVERIFY(QTest::qWaitFor([&] { return unit.manager.created.size() == 1; }));
    QCOMPARE(unit.manager.createdTexts(), inOrder("text"));
}

void TestCustomTextsRemoval::onlyBlankTextsAreCleared_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("cleared");
    QTest::newRow("empty") << "" << true;
    QTest::newRow("blanks") << "   " << true;
    QTest::newRow("white space") << "\t\r\n " << true;
    QTest::newRow("no-break space") << QString(QChar(0x00A0)) << true;
    QTest::newRow("a letter among blanks") << "  a " << false;
    QTest::newRow("NUL") << QString(QChar(0)) << false;
}

void TestCustomTextsRemoval::onlyBlankTextsAreCleared()
{
    QFETCH(QString, text);
    HostedUnit unit;
    writeLine(unit, 2, "before");
    unit.manager.created.first()->setText(text);
    unit.runner->clearEmptyTexts();
    QTEST(unit.manager.created.isEmpty(), "cleared");
}

void TestCustomTextsRemoval::blankTextsAreClearedInOrderOfCreation()
{
    HostedUnit unit;
    for (int line = 1; line <= 6; ++line) {
        writeLine(unit, line, line % 3 == 0 ? "text" : "");
    }
    unit.discardCalls();
    unit.runner->clearEmptyTexts();
    QCOMPARE(unit.log.take(),
             inOrder("delete(custom1)", "delete(custom2)", "delete(custom4)", "delete(custom5)"));
    unit.runner->clearEmptyTexts();
    QCOMPARE(unit.log.take(), QStringList());
}

void TestCustomTextsRemoval::profilesBlankTextsAreNotCleared()
{
    HostedUnit unit;
    unit.addBoundText(ElementParam::NAME_SPEED);
    unit.loadProfile();
    unit.runner->clearEmptyTexts();
    QCOMPARE(unit.log.take(), QStringList());
}

void TestCustomTextsRemoval::clearEditDeletesAllInOrderOfCreation()
{
    HostedUnit unit;
    writeLine(unit, 2, "line");
    writeAtCursor(unit, "text");
    unit.model().setCursorPosition(9, 9);
    unit.runner->onPrintableCharReceived('x');
    unit.discardCalls();
    clearEdit(unit);
    QCOMPARE(unit.log.take(), inOrder("delete(custom1)", "delete(custom2)", "delete(custom3)"));
    clearEdit(unit);
    QCOMPARE(unit.log.take(), QStringList());
}

void TestCustomTextsRemoval::clearEditLeavesTheProfileAlone()
{
    HostedUnit unit;
    unit.addBoundText(ElementParam::NAME_SPEED);
    unit.loadProfile();
    writeLine(unit, 2, "line");
    unit.discardCalls();
    clearEdit(unit);
    QCOMPARE(unit.log.take(), inOrder("delete(custom1)"));
}

// The manager's word that an element goes is what takes it off the list, not the request to delete it.
void TestCustomTextsRemoval::managerThatAnnouncesNoRemovalKeepsTheTextsListed()
{
    HostedUnit unit;
    writeLine(unit, 2, "line");
    unit.manager.announcesRemoval = false;
    unit.manager.deletes = false;
    clearEdit(unit);
    unit.discardCalls();
    clearEdit(unit);
    QCOMPARE(unit.log.take(), inOrder("delete(custom1)"));
    emit unit.manager.beforeRemoveElement(unit.manager.created.first());
    clearEdit(unit);
    QCOMPARE(unit.log.take(), QStringList());
}

void TestCustomTextsRemoval::textThatTheHostRemovesIsForgotten()
{
    HostedUnit unit;
    writeLine(unit, 2, "one");
    writeLine(unit, 3, "two");
    emit unit.manager.beforeRemoveElement(unit.manager.created.first());
    unit.discardCalls();
    unit.model().setCursorPosition(0, 2);
    writeAtCursor(unit, "new"); // the text that is going is not written to any more
    QCOMPARE(unit.manager.createdTexts(), inOrder("one", "two", "new"));
    unit.discardCalls();
    clearEdit(unit);
    QCOMPARE(unit.log.take(), inOrder("delete(custom2)", "delete(custom3)"));
}

/// Announced is as good as gone, even if the host deletes it later.
void TestCustomTextsRemoval::textThatTheHostRemovesWhileItIsMadeIsForgotten()
{
    HostedUnit unit;
    unit.manager.whenCreated = [&](RecordingText& text) {
        text.whenEnabled = [&] {
            emit unit.manager.beforeRemoveElement(&text);
        };
    };
    writeLine(unit, 2, "text");
    QCOMPARE(unit.manager.createdTexts(), inOrder("text"));
    unit.discardCalls();
    clearEdit(unit);
    QCOMPARE(unit.log.take().filter(QStringLiteral("delete")), QStringList());
}

void TestCustomTextsRemoval::removalOfOtherElementsIsIgnored()
{
    HostedUnit unit;
    auto* const picture = unit.add<RecordingElement>(QStringLiteral("picture"));
    RecordingText* const speed = unit.addBoundText(ElementParam::NAME_SPEED);
    writeLine(unit, 2, "line");
    emit unit.manager.beforeRemoveElement(picture);
    emit unit.manager.beforeRemoveElement(speed);
    emit unit.manager.beforeRemoveElement(nullptr);
    unit.discardCalls();
    clearEdit(unit);
    QCOMPARE(unit.log.take(), inOrder("delete(custom1)"));
}

void TestCustomTextsRemoval::textThatVanishedIsPassedOver()
{
    HostedUnit unit;
    writeLine(unit, 2, "one");
    writeLine(unit, 2, "two");
    unit.manager.drop(unit.manager.created.first());
    unit.model().setCursorPosition(0, 2);
    writeAtCursor(unit, "new");
    QCOMPARE(unit.manager.createdTexts(), inOrder("new"));
    unit.runner->onPrintableCharReceived('x');
    QCOMPARE(unit.manager.createdTexts(), inOrder("x"));
    unit.runner->clearEmptyTexts();
    unit.discardCalls();
    clearEdit(unit);
    QVERIFY(unit.log.take().contains(QStringLiteral("delete(custom2)")));
    QCOMPARE(unit.manager.created.size(), 0);
}

void TestCustomTextsRemoval::textsThatAllVanishedArePassedOver()
{
    HostedUnit unit;
    writeLine(unit, 2, "one");
    writeLine(unit, 3, "");
    while (!unit.manager.created.isEmpty()) {
        unit.manager.drop(unit.manager.created.first());
    }
    unit.runner->clearEmptyTexts();
    unit.model().setCursorPosition(0, 2);
    unit.runner->onPrintableCharReceived('x');
    writeAtCursor(unit, "new");
    QCOMPARE(unit.manager.createdTexts(), inOrder("new"));
    clearEdit(unit);
    QCOMPARE(unit.manager.created.size(), 0);
}

void TestCustomTextsRemoval::textsThatVanishedLeaveNothingBehind()
{
    HostedUnit unit;
    const auto comeAndGo = [&](int times) {
        for (int i = 0; i < times; ++i) {
            writeLine(unit, 2, "text");
            unit.manager.drop(unit.manager.created.first());
            if (i % 100 == 99) {
                unit.runner->clearEmptyTexts();
                unit.discardCalls();
            }
        }
        return heapInUse();
    };
    const qint64 before = comeAndGo(1000);
    const qint64 grown = comeAndGo(20000) - before;
    QVERIFY2(grown < 64 * 1024, qPrintable(QString::number(grown)));
}

void TestCustomTextsRemoval::textsThatVanishDuringClearEditArePassedOver()
{
    HostedUnit unit;
    for (int line = 1; line <= 4; ++line) {
        writeLine(unit, line, "text");
    }
    // With the first text the host throws away the third one too.
    unit.manager.whenDeleting = [&] {
        unit.manager.whenDeleting = nullptr;
        unit.manager.drop(unit.manager.created.at(2));
    };
    unit.discardCalls();
    clearEdit(unit);
    QStringList calls = unit.log.take();
    calls.removeAll(QStringLiteral("delete(null)"));
    QCOMPARE(calls, inOrder("delete(custom1)", "delete(custom2)", "delete(custom4)"));
}

void TestCustomTextsRemoval::textsThatVanishDuringTheCleanUpArePassedOver()
{
    HostedUnit unit;
    for (int line = 1; line <= 4; ++line) {
        writeLine(unit, line, "");
    }
    unit.manager.whenDeleting = [&] {
        unit.manager.whenDeleting = nullptr;
        unit.manager.drop(unit.manager.created.at(2));
    };
    unit.discardCalls();
    unit.runner->clearEmptyTexts();
    QCOMPARE(unit.log.take(), inOrder("delete(custom1)", "delete(custom2)", "delete(custom4)"));
}

void TestCustomTextsRemoval::textsSurviveTheRunner()
{
    HostedUnit unit;
    writeLine(unit, 2, "line");
    unit.discardCalls();
    unit.runner.reset();
    QCOMPARE(unit.manager.createdTexts(), inOrder("line"));
    QCOMPARE(unit.log.take(), QStringList());
    emit unit.manager.beforeRemoveElement(unit.manager.created.first());
}

void TestCustomTextsRemoval::eachOfManyTextsCostsAsLittleAsEachOfFew_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("isClearEdit");
    QTest::newRow("clear edit") << QByteArray("text") << true;
    QTest::newRow("clean-up of blank texts") << QByteArray(" ") << false;
}

/// A hundred times the texts may cost a hundred times as much, not
/// ten thousand times.
void TestCustomTextsRemoval::eachOfManyTextsCostsAsLittleAsEachOfFew()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, isClearEdit);
    ReferenceUnit unit;
    const int before = unit.manager.getElementList().size();
    const auto processorTimeOf = [&](int count) {
        for (int i = 0; i < count; ++i) {
            unit.runner->findChild<CommandParser*>()->onCommandMessageReceived(
                {0x98, Protocol::Write, static_cast<quint16>(1 + text.size()), QByteArray(1, '\5') + text});
        }
        timespec begin{};
        timespec end{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &begin);
        isClearEdit ? unit.runner->clearCustomElements() : unit.runner->clearEmptyTexts();
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &end);
        return double(end.tv_sec - begin.tv_sec) * 1e9 + double(end.tv_nsec - begin.tv_nsec);
    };
    processorTimeOf(500); // what is only done once
    const double few = processorTimeOf(500);
    const double many = processorTimeOf(50000);
    QCOMPARE(unit.manager.getElementList().size(), before);
    // Searching the list anew for each would make it some thousands.
    QVERIFY2(many < few * 100 * 10, qPrintable(QStringLiteral("%1 times as much").arg(many / few)));
}

QTEST_MAIN(TestCustomTextsRemoval)
#include "tst_customtexts_removal.moc"
