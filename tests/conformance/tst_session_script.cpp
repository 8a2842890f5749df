#include "SessionPlayer.h"
#include "SessionScript.h"

#include <QTest>

using namespace Tolvar::Varundo::Tests;

/// The notation itself: a session that cannot be read, or that is not what happens, has to be reported with
/// its place; otherwise every other test here would prove nothing.
class TestSessionScript : public QObject
{
    Q_OBJECT

private slots:
    void badTextIsReportedWithItsPlace_data();
    void badTextIsReportedWithItsPlace();
    void linesAreCountedFromTheBlocksOwnFirstLine();
    void stepsOfOneLineKeepTheirOrder();
    void bytesCanBeQuotedAndRepeated();
    void remarksAndBlanksAreNoSteps();
    void untrueSessionIsReportedWithItsPlace_data();
    void untrueSessionIsReportedWithItsPlace();
    void trueSessionIsNotReported();
};

void TestSessionScript::badTextIsReportedWithItsPlace_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("error");
    QTest::newRow("empty") << ""
                           << "f:1: nothing is sent in this session";
    QTest::newRow("remarks only") << "# one\n\n# two"
                                  << "f:1: nothing is sent in this session";
    QTest::newRow("checks only") << "= codec 0"
                                 << "f:1: nothing is sent in this session";
    QTest::newRow("no mark") << "> 02\n02 03"
                             << "f:2: a line begins with >, <, =, !, connect, reset or #";
    QTest::newRow("unknown word") << "> 02\nrestart"
                                  << "f:2: a line begins with";
    QTest::newRow("quoted mark") << "\">\" 02"
                                 << "f:1: a line begins with";
    QTest::newRow("nothing sent") << "\n\n>"
                                  << "f:3: nothing stands after >";
    QTest::newRow("nothing expected") << "> 02 <"
                                      << "f:1: nothing stands after <";
    QTest::newRow("one digit") << "> 2"
                               << "f:1: \"2\" is no byte";
    QTest::newRow("three digits") << "> 002"
                                  << "f:1: \"002\" is no byte";
    QTest::newRow("no digits") << "> 0G"
                               << "f:1: \"0G\" is no byte";
    QTest::newRow("sign") << "> +2*3"
                          << "f:1: \"+2*3\" is no byte";
    QTest::newRow("no count") << "> 41*"
                              << "f:1: \"41*\" is no byte";
    QTest::newRow("count zero") << "> 41*0"
                                << "f:1: \"41*0\" is no byte";
    QTest::newRow("count too large") << "> 41*99999"
                                     << "f:1: \"41*99999\" is no byte";
    QTest::newRow("open quotation") << "> \"abc"
                                    << "f:1: a quotation mark is not closed";
    QTest::newRow("quoted beyond ASCII")
        << QStringLiteral("> \"\u00E4\"") << QStringLiteral("f:1: \"\u00E4\" is not ASCII");
    QTest::newRow("answer to nothing") << "< 06"
                                       << "f:1: an answer without bytes sent before it";
    QTest::newRow("answer behind a check") << "> 02\n= codec 0\n< 06"
                                           << "f:3: an answer without bytes";
    QTest::newRow("wildcard sent") << "> ??"
                                   << "f:1: ?? may stand only in";
    QTest::newRow("wildcard for a value") << "> 02 < 02 30 01 04 00 ?? 03"
                                          << "f:1: ?? may stand only in";
    QTest::newRow("wildcard in a header") << "> 02 < 02 40 01 ?? 00 01 03"
                                          << "f:1: ?? may stand only in";
    QTest::newRow("wildcard of another group") << "> 02 < 02 40 02 04 00 ?? 03"
                                               << "f:1: ?? may stand only in";
}

void TestSessionScript::badTextIsReportedWithItsPlace()
{
    QFETCH(QString, text);
    QFETCH(QString, error);
    const SessionScript script = SessionScript::parse(text, QStringLiteral("f"));
    QVERIFY2(script.error().startsWith(error), qPrintable(script.error()));
    QVERIFY(script.steps().isEmpty());
}

void TestSessionScript::linesAreCountedFromTheBlocksOwnFirstLine()
{
    const SessionScript script =
        SessionScript::parse(QStringLiteral("> 02\n> 0"), QStringLiteral("protocol.md"), 40);
    QVERIFY2(script.error().startsWith(QLatin1String("protocol.md:41: ")), qPrintable(script.error()));
}

void TestSessionScript::stepsOfOneLineKeepTheirOrder()
{
    const SessionScript script = SessionScript::parse(
        QStringLiteral("! camera pan 1\n> 02 03 < 06 15 = codec 0\nconnect\nreset"), QStringLiteral("f"));
    QCOMPARE(script.error(), QString());
    QVector<SessionScript::Action> actions;
    for (const SessionScript::Step& step : script.steps()) {
        actions.append(step.action);
    }
    using A = SessionScript::Action;
    const QVector<A> expected{A::Happen, A::Send, A::Expect, A::Check, A::Connect, A::Reset};
    QVERIFY(actions == expected);
    QCOMPARE(script.steps().at(1).bytes, QByteArray("\x02\x03"));
    QCOMPARE(script.steps().at(2).bytes, QByteArray("\x06\x15"));
    QCOMPARE(script.steps().at(3).words, QStringList({QStringLiteral("codec"), QStringLiteral("0")}));
    QCOMPARE(script.place(script.steps().at(3)), QStringLiteral("f:2: "));
}

void TestSessionScript::bytesCanBeQuotedAndRepeated()
{
    const SessionScript script = SessionScript::parse(
        QStringLiteral("> ff \"a \\\" > # b\" 41*3\n= text 1,2 \"x  y\\nz\""), QStringLiteral("f"));
    QCOMPARE(script.error(), QString());
    QCOMPARE(script.steps().at(0).bytes, QByteArray("\xFF"
                                                    "a \" > # bAAA"));
    QCOMPARE(script.steps().at(1).words.last(), QStringLiteral("x  y\nz"));
}

void TestSessionScript::remarksAndBlanksAreNoSteps()
{
    const SessionScript script =
        SessionScript::parse(QStringLiteral("\n# > 01\n   \n> 02 # < 06\n"), QStringLiteral("f"));
    QCOMPARE(script.error(), QString());
    QCOMPARE(script.steps().size(), 1);
    QCOMPARE(script.steps().first().line, 4);
}

void TestSessionScript::untrueSessionIsReportedWithItsPlace_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("failure");
    QTest::newRow("other byte") << "> 02 33 00 00 00 03\n< 15"
                                << "f:1: expected 15, received 06 (in line 2";
    QTest::newRow("missing byte") << "> 02 33 00 00 00 03\n< 06 06"
                                  << "f:1: expected 06 06, received 06";
    QTest::newRow("nothing came") << "> 02\n< 06"
                                  << "f:1: expected 06, received nothing";
    QTest::newRow("not silent") << "# a\n> 02 33 00 00 00 03"
                                << "f:2: unexpected: 06";
    QTest::newRow("one byte more") << "> 02 33 00 00 00 03 02 33 00 00 00 03\n< 06"
                                   << "f:1: unexpected: 06";
    QTest::newRow("wildcard needs a byte") << "> 02 40 01 00 00 03\n< 06 02 40 01 04 00 ?? ?? 14 ?? 03 ??"
                                           << "f:1: expected 06 02 40 01 04 00";
    QTest::newRow("wrong position") << "> 02\n= date position 1,1"
                                    << "f:2: expected \"date position 1,1\", found: 2,4";
    QTest::newRow("wrong visibility") << "> 02\n= date hidden"
                                      << "f:2: expected \"date hidden\", found: shown";
    QTest::newRow("wrong colours") << "> 02\n= date colours 1,1"
                                   << "f:2: expected \"date colours 1,1\"";
    QTest::newRow("wrong format") << "> 02\n= tilt format 0"
                                  << "f:2: expected \"tilt format 0\", found: 1";
    QTest::newRow("wrong text") << "> 02\n= status-line-1 text \"x\""
                                << "f:2: expected \"status-line-1 text x\"";
    QTest::newRow("no such text") << "> 02\n= text 1,1 \"x\""
                                  << "f:2: expected \"text 1,1 x\", found: no text";
    QTest::newRow("text is there") << "> \"x\"\n= no text 0,0"
                                   << "f:2: expected \"no text 0,0\", found: \"x\"";
    QTest::newRow("not told") << "> 02\n= told 3d off"
                              << "f:2: expected \"told 3d off\", found: nothing";
    QTest::newRow("wrong codec") << "> 02\n= codec 1"
                                 << "f:2: expected \"codec 1\", found: 0";
    QTest::newRow("wrong switch") << "> 02\n= overlay off"
                                  << "f:2: expected \"overlay off\", found: on";
    QTest::newRow("wrong cursor") << "> 02\n= cursor 1,1"
                                  << "f:2: expected \"cursor 1,1\", found: 0,0";
    QTest::newRow("wrong count") << "> 02\n= texts 1"
                                 << "f:2: expected \"texts 1\", found: 0";
    QTest::newRow("wrong unit") << "> 02\n= external-temperature unit K"
                                << "f:2: expected";
    QTest::newRow("unknown fact") << "> 02\n= weather fine"
                                  << "f:2: \"weather fine\" says nothing about a unit";
    QTest::newRow("no value") << "> 02\n= codec"
                              << "f:2: \"codec\" says nothing about a unit";
    QTest::newRow("no position") << "> 02\n= status-line-1 position 1,1"
                                 << "f:2: \"status-line-1 position 1,1\" says";
    QTest::newRow("unknown event") << "> 02\n! camera breaks"
                                   << "f:2: \"camera breaks\" is nothing that happens";
    QTest::newRow("unknown interface") << "> 02\n! interface Radio"
                                       << "f:2: \"interface Radio\" is nothing";
}

void TestSessionScript::untrueSessionIsReportedWithItsPlace()
{
    if (!qEnvironmentVariable("VARUNDO_TEST_ISOLATION").contains(QLatin1String("net"))) {
        QSKIP("needs a network of its own: port 9998 is fixed");
    }
    QFETCH(QString, text);
    QFETCH(QString, failure);
    const SessionScript script = SessionScript::parse(text, QStringLiteral("f"));
    const QString found = SessionPlayer().play(script);
    QVERIFY2(found.startsWith(failure), qPrintable(found));
}

void TestSessionScript::trueSessionIsNotReported()
{
    if (!qEnvironmentVariable("VARUNDO_TEST_ISOLATION").contains(QLatin1String("net"))) {
        QSKIP("needs a network of its own: port 9998 is fixed");
    }
    const SessionScript script =
        SessionScript::parse(QStringLiteral("> 02 33 00 00 00 03\n< 06\n= codec 0"), QStringLiteral("f"));
    QCOMPARE(SessionPlayer().play(script), QString());
}

QTEST_MAIN(TestSessionScript)
#include "tst_session_script.moc"
