#include "CaughtDebugLog.h"
#include "SignalLog.h"

#include <Tolvar/Varundo/CommandParser.h>
#include <Tolvar/Varundo/DataManager.h>
#include <Tolvar/Varundo/ExecuteCommandParser.h>
#include <Tolvar/Varundo/ReadCommandParser.h>
#include <Tolvar/Varundo/ReadCommandResponder.h>
#include <Tolvar/Varundo/WriteCommandParser.h>

#include <QtTest>

#include <type_traits>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

// The dispatcher is no base class of the parsers that it feeds.
static_assert(!std::is_base_of_v<CommandParser, ExecuteCommandParser>);
static_assert(!std::is_base_of_v<CommandParser, ReadCommandParser>);
static_assert(!std::is_base_of_v<CommandParser, WriteCommandParser>);

class CommandParserTest : public QObject
{
    Q_OBJECT

private slots:
    void recordReachesTheSignalOfItsGroupAlone_data();
    void recordReachesTheSignalOfItsGroupAlone();
    void recordOfAnyOtherGroupIsDropped();
    void everyCommandIdIsPassedOn_data();
    void everyCommandIdIsPassedOn();
    void recordIsPassedOnUnchangedEvenIfItsLengthIsWrong();
    void payloadOfFullSizeIsPassedOn();
    void receiverHasRunWhenTheSlotReturns();
    void allParsersDeriveFromQObjectDirectly();
    void unknownCommandIsLoggedWithItsGroup();

private:
    static QStringList parse(const CommandMessage& message)
    {
        CommandParser parser;
        SignalLog log;
        log.watch(&parser, &CommandParser::parsedExecuteCommand);
        log.watch(&parser, &CommandParser::parsedReadCommand);
        log.watch(&parser, &CommandParser::parsedWriteCommand);
        parser.onCommandMessageReceived(message);
        return log.take();
    }
};

void CommandParserTest::recordReachesTheSignalOfItsGroupAlone_data()
{
    QTest::addColumn<int>("group");
    QTest::addColumn<QString>("emitted");
    QTest::newRow("execute") << 0 << "parsedExecuteCommand(cmd 40 grp 0 length 3 data 00 7f ff)";
    QTest::newRow("read") << 1 << "parsedReadCommand(cmd 40 grp 1 length 3 data 00 7f ff)";
    QTest::newRow("write") << 2 << "parsedWriteCommand(cmd 40 grp 2 length 3 data 00 7f ff)";
}

void CommandParserTest::recordReachesTheSignalOfItsGroupAlone()
{
    QFETCH(int, group);
    QFETCH(QString, emitted);
    QCOMPARE(parse({0x40, static_cast<quint8>(group), 3, QByteArray("\x00\x7F\xFF", 3)}),
             QStringList{emitted});
}

void CommandParserTest::recordOfAnyOtherGroupIsDropped()
{
    for (int group = 3; group <= 255; ++group) {
        for (const int cmdId : {0x00, 0x01, 0x30, 0x40, 0xFF}) {
            QCOMPARE(parse({static_cast<quint8>(cmdId), static_cast<quint8>(group), 1, "x"}), QStringList());
        }
    }
}

void CommandParserTest::everyCommandIdIsPassedOn_data()
{
    QTest::addColumn<int>("group");
    QTest::addColumn<QString>("signal");
    QTest::newRow("execute") << 0 << "parsedExecuteCommand";
    QTest::newRow("read") << 1 << "parsedReadCommand";
    QTest::newRow("write") << 2 << "parsedWriteCommand";
}

void CommandParserTest::everyCommandIdIsPassedOn()
{
    QFETCH(int, group);
    QFETCH(QString, signal);
    for (int id = 0; id <= 255; ++id) {
        const CommandMessage message{static_cast<quint8>(id), static_cast<quint8>(group), 0, {}};
        QCOMPARE(parse(message), QStringList{QStringLiteral("%1(%2)").arg(signal, asText(message))});
    }
}

void CommandParserTest::recordIsPassedOnUnchangedEvenIfItsLengthIsWrong()
{
    QCOMPARE(parse({0x30, 2, 700, "AB"}),
             QStringList{QStringLiteral("parsedWriteCommand(cmd 30 grp 2 length 700 data 41 42)")});
}

void CommandParserTest::payloadOfFullSizeIsPassedOn()
{
    const CommandMessage message{0x95, 2, 65535, QByteArray(65535, '\xA4')};
    QCOMPARE(parse(message), QStringList{QStringLiteral("parsedWriteCommand(%1)").arg(asText(message))});
}

void CommandParserTest::receiverHasRunWhenTheSlotReturns()
{
    CommandParser parser;
    bool hasRun = false;
    connect(&parser, &CommandParser::parsedReadCommand, this, [&hasRun] { hasRun = true; });
    parser.onCommandMessageReceived({0x31, 1, 0, {}});
    QVERIFY(hasRun);
}

void CommandParserTest::allParsersDeriveFromQObjectDirectly()
{
    QCOMPARE(CommandParser::staticMetaObject.superClass(), &QObject::staticMetaObject);
    QCOMPARE(ExecuteCommandParser::staticMetaObject.superClass(), &QObject::staticMetaObject);
    QCOMPARE(ReadCommandParser::staticMetaObject.superClass(), &QObject::staticMetaObject);
    QCOMPARE(WriteCommandParser::staticMetaObject.superClass(), &QObject::staticMetaObject);
}

/// The host's engineer who asks why nothing happens finds it on the debug log.
void CommandParserTest::unknownCommandIsLoggedWithItsGroup()
{
    DataManager model;
    ReadCommandResponder responder(&model);
    ExecuteCommandParser execute(&model);
    ReadCommandParser read(&responder);
    WriteCommandParser write(&model);
    const CaughtDebugLog log("varundo.parser");
    execute.parseCommandMessage({0xEE, 0, 0, {}});
    read.parseCommandMessage({0xEE, 1, 0, {}});
    write.parseCommandMessage({0x00, 2, 0, {}});
    QCOMPARE(CaughtDebugLog::lines(), QStringList({QStringLiteral("unknown execute command 0xEE dropped"),
                                                   QStringLiteral("unknown read command 0xEE dropped"),
                                                   QStringLiteral("unknown write command 0x00 dropped")}));
}

QTEST_GUILESS_MAIN(CommandParserTest)

#include "tst_commandparser.moc"
