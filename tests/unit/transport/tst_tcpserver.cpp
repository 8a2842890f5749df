#include <Tolvar/Varundo/TcpServer.h>

#include "Isolation.h"
#include "ObservedTcpServer.h"
#include "OpenDescriptors.h"

#include <QRegularExpression>
#include <QtTest>

#include <netinet/tcp.h>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

static_assert(std::is_base_of_v<QObject, TcpServer>);
static_assert(!std::is_copy_constructible_v<TcpServer>);

namespace {

QStringList told(const char* words)
{
    return QString::fromLatin1(words).split(QLatin1Char(','), Qt::SkipEmptyParts);
}

} // namespace

/// Where the server listens, and how it carries frames and replies.
class TestTcpServer : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void aFreshServerAcceptsOnPort9998OnAnyLocalAddress_data();
    void aFreshServerAcceptsOnPort9998OnAnyLocalAddress();
    void settingTheSamePortDoesNothing();
    void settingAnotherPortMovesTheListener();
    void thePortIsUsedAsASixteenBitNumber();
    void clientsStayWhenThePortIsSet();
    void aPortThatIsTakenIsWarnedOfOnly();
    void movingToATakenPortIsWarnedOfAndCanBeMended();
    void aPortThatBecomesFreeIsNotListenedOnBySettingItAgain();

    void withoutAClientNothingIsSentAndNothingFails();
    void theSingleByteRepliesAreSentAtOnce();
    void aMessageIsFramedAndSentAtOnce();
    void aMessageGoesOutWithItsOwnLength();
    void theAckIsOnTheWireBeforeTheRecordIsPassedOn();
    void anAnswerFollowsItsAck();
    void twoFramesInOneReadAreActedOnInOrder();
    void framesAreDecodedAsOnAnyTransport_data();
    void framesAreDecodedAsOnAnyTransport();
    void aFrameInOneByteSegmentsIsAcceptedAsIfSentWhole();
    void aHeldFrameIsCompletedByALaterRead();
    void typedBytesArePassedOnOneByOne();
    void theCountersAreTheDecoders();
    void smallRepliesAreNotHeldBack();
};

void TestTcpServer::init()
{
    if (!hasOwn("net")) {
        QSKIP(NeedsOwnNetwork);
    }
}

void TestTcpServer::aFreshServerAcceptsOnPort9998OnAnyLocalAddress_data()
{
    QTest::addColumn<QString>("address");
    QTest::newRow("IPv4") << QStringLiteral("127.0.0.1");
    QTest::newRow("another local IPv4 address") << QStringLiteral("127.0.0.77");
    QTest::newRow("IPv6") << QStringLiteral("::1");
}

void TestTcpServer::aFreshServerAcceptsOnPort9998OnAnyLocalAddress()
{
    QFETCH(QString, address);
    QTcpServer probe;
    if (!probe.listen(QHostAddress(address))) {
        QSKIP("this machine has no such address");
    }
    ObservedTcpServer server;
    QCOMPARE(server->listeningPort(), 9998);
    WireClient client(9998, QHostAddress(address));
    QVERIFY(client.isConnected());
    client.sendHex("02 05 01 00 00 03");
    QTRY_COMPARE(client.receivedHex(), QByteArray("06"));
    QCOMPARE(server.records(), told("5/1 0:"));
}

void TestTcpServer::settingTheSamePortDoesNothing()
{
    ObservedTcpServer server;
    // This client waits in the listener's queue; it would be lost with the listener.
    WireClient waiting;
    QVERIFY(waiting.isConnected());
    server->setListeningPort(9998);
    QCOMPARE(server->listeningPort(), 9998);
    waiting.sendHex("02 05 01 00 00 03");
    QTRY_COMPARE(waiting.receivedHex(), QByteArray("06"));
}

void TestTcpServer::settingAnotherPortMovesTheListener()
{
    ObservedTcpServer server;
    server->setListeningPort(5000);
    QCOMPARE(server->listeningPort(), 5000);
    QVERIFY(!WireClient(9998).isConnected());
    const auto client = server.connectClient();
    QVERIFY(client);
    QCOMPARE(client->socket().peerPort(), quint16(5000));
    client->sendHex("02 05 01 00 00 03");
    QTRY_COMPARE(client->receivedHex(), QByteArray("06"));
    server->setListeningPort(9998);
    QVERIFY(!WireClient(5000).isConnected());
    QVERIFY(WireClient(9998).isConnected());
}

void TestTcpServer::thePortIsUsedAsASixteenBitNumber()
{
    ObservedTcpServer server;
    server->setListeningPort(65536 + 5000);
    QCOMPARE(server->listeningPort(), 65536 + 5000);
    QVERIFY(WireClient(5000).isConnected());
    // Stored as it was given, so this is another port as far as the comparison goes.
    server->setListeningPort(5000);
    QCOMPARE(server->listeningPort(), 5000);
    QVERIFY(WireClient(5000).isConnected());
    server->setListeningPort(-1);
    QCOMPARE(server->listeningPort(), -1);
    QVERIFY(WireClient(65535).isConnected());
}

void TestTcpServer::clientsStayWhenThePortIsSet()
{
    ObservedTcpServer server;
    const auto client = server.connectClient();
    QVERIFY(client);
    client->sendHex("02 05 01");
    server->setListeningPort(5000);
    client->sendHex("00 00 03");
    QTRY_COMPARE(client->receivedHex(), QByteArray("06"));
    server->writeMessage({6, 1, 0, {}});
    QTRY_COMPARE(client->receivedHex(), QByteArray("06020601000003"));
    QVERIFY(client->isConnected());
}

void TestTcpServer::aPortThatIsTakenIsWarnedOfOnly()
{
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress::Any, 9998));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("9998")));
    ObservedTcpServer server;
    QCOMPARE(server->listeningPort(), 9998);
    server->writeMessage({5, 1, 0, {}});
    server->sendACK();

    server->setListeningPort(5000);
    const auto client = server.connectClient();
    QVERIFY(client);
    client->sendHex("02 05 01 00 00 03");
    QTRY_COMPARE(client->receivedHex(), QByteArray("06"));
}

void TestTcpServer::movingToATakenPortIsWarnedOfAndCanBeMended()
{
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress::Any, 5000));
    ObservedTcpServer server;
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("5000")));
    server->setListeningPort(5000);
    QCOMPARE(server->listeningPort(), 5000);
    QVERIFY(!WireClient(9998).isConnected());
    server->setListeningPort(5001);
    QVERIFY(server.connectClient());
}

void TestTcpServer::aPortThatBecomesFreeIsNotListenedOnBySettingItAgain()
{
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress::Any, 9998));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("9998")));
    ObservedTcpServer server;
    other.close();
    server->setListeningPort(9998); // no change, so nothing is done
    QVERIFY(!WireClient(9998).isConnected());
    server->setListeningPort(5000);
    server->setListeningPort(9998);
    QVERIFY(WireClient(9998).isConnected());
}

void TestTcpServer::withoutAClientNothingIsSentAndNothingFails()
{
    ObservedTcpServer server;
    server->sendACK();
    server->sendNACK();
    server->writeMessage({5, 1, 3, QByteArrayLiteral("abc")});
    server->onReadyRead();
    server->newConnection();
    QCOMPARE(server.records(), QStringList());

    const auto client = server.connectClient();
    QVERIFY(client);
    server->sendNACK();
    QTRY_COMPARE(client->receivedHex(), QByteArray("15")); // nothing of the above was kept for it
}

void TestTcpServer::theSingleByteRepliesAreSentAtOnce()
{
    ObservedTcpServer server;
    const auto client = server.connectClient();
    QVERIFY(client);
    server->sendACK();
    QVERIFY(client->receivesWithoutEventLoop(1));
    server->sendNACK();
    QVERIFY(client->receivesWithoutEventLoop(2));
    QCOMPARE(client->receivedHex(), QByteArray("0615"));
}

void TestTcpServer::aMessageIsFramedAndSentAtOnce()
{
    ObservedTcpServer server;
    const auto client = server.connectClient();
    QVERIFY(client);
    server->writeMessage({0x10, 1, 3, QByteArrayLiteral("xyz")});
    QVERIFY(client->receivesWithoutEventLoop(9));
    QCOMPARE(client->receivedHex(), QByteArray("021001030078797a03"));
}

void TestTcpServer::aMessageGoesOutWithItsOwnLength()
{
    ObservedTcpServer server;
    const auto client = server.connectClient();
    QVERIFY(client);
    server->writeMessage({5, 1, 0x0201, QByteArrayLiteral("ab")});
    QVERIFY(client->receivesWithoutEventLoop(8));
    QCOMPARE(client->receivedHex(), QByteArray("0205010102616203"));
}

void TestTcpServer::theAckIsOnTheWireBeforeTheRecordIsPassedOn()
{
    ObservedTcpServer server;
    const auto client = server.connectClient();
    QVERIFY(client);
    QByteArray seenWhileActing;
    server.onRecord([&](const CommandMessage&) {
        if (client->receivesWithoutEventLoop(1)) {
            seenWhileActing = client->receivedHex();
        }
    });
    client->sendHex("02 05 01 00 00 03");
    QTRY_COMPARE(seenWhileActing, QByteArray("06"));
}

void TestTcpServer::anAnswerFollowsItsAck()
{
    ObservedTcpServer server;
    const auto client = server.connectClient();
    QVERIFY(client);
    server.onRecord([&](const CommandMessage& record) { server->writeMessage({record.cmdId, 1, 1, "A"}); });
    client->sendHex("02 05 01 00 00 03  02 06 01 00 00 03");
    QTRY_COMPARE(client->receivedHex(), QByteArray("06"
                                                   "02050101004103"
                                                   "06"
                                                   "02060101004103"));
}

void TestTcpServer::twoFramesInOneReadAreActedOnInOrder()
{
    ObservedTcpServer server;
    const auto client = server.connectClient();
    QVERIFY(client);
    QList<QByteArray> repliesSeen;
    server.onRecord([&](const CommandMessage&) {
        // The next frame's ACK is not out while this one is acted upon.
        if (client->receivesWithoutEventLoop(repliesSeen.size() + 1)) {
            client->socket().waitForReadyRead(20);
            repliesSeen.append(client->receivedHex());
        }
    });
    client->sendHex("02 05 01 00 00 03  02 06 02 01 00 41 03");
    QTRY_COMPARE(repliesSeen, (QList<QByteArray>{"06", "0606"}));
    QCOMPARE(server.records(), told("5/1 0:,6/2 1:41"));
}

void TestTcpServer::framesAreDecodedAsOnAnyTransport_data()
{
    QTest::addColumn<QByteArray>("sent");
    QTest::addColumn<QByteArray>("records");
    QTest::addColumn<QByteArray>("typed");
    QTest::addColumn<QByteArray>("replies");
    const auto row = [](const char* name, const char* sent, const char* records, const char* typed,
                        const char* replies) {
        QTest::newRow(name) << QByteArray::fromHex(sent) << QByteArray(records) << QByteArray(typed)
                            << QByteArray(replies);
    };
    row("empty payload", "02 05 01 00 00 03", "5/1 0:", "", "06");
    row("three letters", "02 07 02 03 00 41 42 43 03", "7/2 3:414243", "", "06");
    row("command 0", "02 00 01 00 00 03 02 05 01 00 00 03", "5/1 0:", "", "06");
    row("wrong group", "02 01 03 41 02 05 01 00 00 03", "", "", "15");
    row("wrong end", "02 05 01 01 00 41 04 03", "", "", "15");
    row("typed text", "41 42 0D 0A", "", "4142", "");
    row("everything at once", "41 02 05 01 00 00 03 42 06 15 02 07 02 01 00 02 03 43 02 01 03 44",
        "5/1 0:,7/2 1:02", "414243", "060615");
    row("a surplus given up", "02 00 01 01 00 41 03 02 05 01 00 00 03 02 06 01 00 00 03", "6/1 0:", "",
        "1506");
}

void TestTcpServer::framesAreDecodedAsOnAnyTransport()
{
    QFETCH(QByteArray, sent);
    QFETCH(QByteArray, records);
    QFETCH(QByteArray, typed);
    QFETCH(QByteArray, replies);
    ObservedTcpServer server;
    const auto client = server.connectClient();
    QVERIFY(client);
    client->send(sent);
    QTRY_COMPARE(client->receivedHex(), replies);
    QTRY_COMPARE(server.typed().toHex(), typed);
    QCOMPARE(server.records(), told(records.constData()));
}

void TestTcpServer::aFrameInOneByteSegmentsIsAcceptedAsIfSentWhole()
{
    ObservedTcpServer server;
    const auto client = server.connectClient();
    QVERIFY(client);
    const QByteArray frame = encodeFrame({7, 2, 300, QByteArray(300, '\x03')});
    for (const char byte : frame) {
        QVERIFY(client->received().isEmpty());
        client->send(QByteArray(1, byte));
        QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
    }
    QTRY_COMPARE(client->receivedHex(), QByteArray("06"));
    QCOMPARE(server.records().size(), 1);
    QCOMPARE(server.records().first().toLatin1(), "7/2 300:" + QByteArray(300, '\x03').toHex());
}

void TestTcpServer::aHeldFrameIsCompletedByALaterRead()
{
    ObservedTcpServer server;
    const auto client = server.connectClient();
    QVERIFY(client);
    client->sendHex("02 05 01 01 00 41 04");
    QTRY_COMPARE(client->receivedHex(), QByteArray("15"));
    client->sendHex("02 06 01 00 00 03");
    QTRY_COMPARE(client->receivedHex(), QByteArray("1515"));
    client->sendHex("03");
    QTRY_COMPARE(client->receivedHex(), QByteArray("151506"));
    QCOMPARE(server.records(), told("5/1 1:41"));
}

void TestTcpServer::typedBytesArePassedOnOneByOne()
{
    ObservedTcpServer server;
    const auto client = server.connectClient();
    QVERIFY(client);
    QByteArray all;
    QByteArray printable;
    for (int byte = 0; byte < 256; ++byte) {
        if (byte != 0x02) {
            all.append(static_cast<char>(byte));
        }
        if (byte >= 0x20) {
            printable.append(static_cast<char>(byte));
        }
    }
    client->send(all);
    QTRY_COMPARE(server.typed(), printable);
    QVERIFY(client->received().isEmpty());
}

void TestTcpServer::theCountersAreTheDecoders()
{
    ObservedTcpServer server;
    const auto client = server.connectClient();
    QVERIFY(client);
    client->sendHex("0D 02 05 01 00 00 03 02 00 01 00 00 03 02 06 01 00 00 03 02 07 03");
    QTRY_COMPARE(client->receivedHex(), QByteArray("060615"));
    QCOMPARE(server->frameCounters().accepted, 2U);
    QCOMPARE(server->frameCounters().dropped, 1U);
    QCOMPARE(server->frameCounters().rejected, 1U);
    QCOMPARE(server->frameCounters().discardedBytes, 2U);
}

void TestTcpServer::smallRepliesAreNotHeldBack()
{
    ObservedTcpServer server;
    const auto client = server.connectClient();
    QVERIFY(client);
    const int descriptor = descriptorOfPeer(client->socket().localPort());
    QVERIFY(descriptor >= 0);
    int noDelay = 0;
    socklen_t size = sizeof(noDelay);
    QCOMPARE(getsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &noDelay, &size), 0);
    QVERIFY(noDelay != 0);
}

QTEST_GUILESS_MAIN(TestTcpServer)

#include "tst_tcpserver.moc"
