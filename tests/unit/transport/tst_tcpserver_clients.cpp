#include <Tolvar/Varundo/TcpServer.h>

#include "CaughtWarnings.h"
#include "Isolation.h"
#include "ObservedTcpServer.h"
#include "OpenDescriptors.h"

#include <QtTest>

#include <unistd.h>

#include <functional>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

QStringList told(const char* words)
{
    return QString::fromLatin1(words).split(QLatin1Char(','), Qt::SkipEmptyParts);
}

/// Gives the server's event loop time enough to do what it must not do.
void letTheServerRun()
{
    QTest::qWait(50);
}

/// Does something when the event loop has its turn, before what was posted earlier.
class BeforeOthers final : public QObject
{
public:
    explicit BeforeOthers(std::function<void()> act)
        : m_act(std::move(act))
    {}
    void post() { QCoreApplication::postEvent(this, new QEvent(QEvent::User), Qt::HighEventPriority); }
    bool event(QEvent* event) override
    {
        if (event->type() == QEvent::User) {
            m_act();
        }
        return QObject::event(event);
    }

private:
    std::function<void()> m_act;
};

} // namespace

/// Several clients, and clients that go: the newest is served, the others stay open and unread, and whoever
/// has disconnected is no client.
class TestTcpServerClients : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void repliesAndAnswersGoToTheNewestClientOnly();
    void aFrameThatWasCompleteBeforeTheNewestConnectedIsAnsweredToIt();
    void anOlderClientStaysOpenAndUnread();
    void ofTwoThatWaitTheLaterOneIsServed();
    void aFrameBegunByOneClientIsContinuedByTheNext();
    void aHeldFrameIsCompletedByTheNextClient();
    void aClientsEndDoesNotResetTheDecoder();

    void aClientThatHasGoneIsNoClient_data();
    void aClientThatHasGoneIsNoClient();
    void aClientThatGoesIsNothingToWarnOf_data();
    void aClientThatGoesIsNothingToWarnOf();
    void whatIsWrittenInTheMomentOfDisconnectionIsDropped();
    void anOlderClientIsNotServedAgainWhenTheNewestGoes();
    void anOlderClientThatGoesChangesNothing_data();
    void anOlderClientThatGoesChangesNothing();
    void aClientThatResetsDuringItsAnswerHarmsNobody();
    void aClientThatGoesBeforeItIsAcceptedHarmsNobody();
    void aClientMayHaveTheFirstDescriptor();
    void aConnectionThatWaitsEndsWithTheServer();
    void aServerThatIsDestroyedDisconnectsAllClients();
    void aServerMayBeDeletedLaterFromWithinARecord();

private:
    Q_INVOKABLE void actNow() { m_actNow(); }

    std::function<void()> m_actNow;
};

void TestTcpServerClients::init()
{
    if (!hasOwn("net")) {
        QSKIP(NeedsOwnNetwork);
    }
}

void TestTcpServerClients::repliesAndAnswersGoToTheNewestClientOnly()
{
    ObservedTcpServer server;
    server.onRecord([&](const CommandMessage& record) { server->writeMessage({record.cmdId, 1, 0, {}}); });
    const auto older = server.connectClient();
    QVERIFY(older);
    older->sendHex("02 05 01 00 00 03");
    QTRY_COMPARE(older->receivedHex(), QByteArray("06020501000003"));

    const auto newest = server.connectClient();
    QVERIFY(newest);
    older->forget();
    newest->sendHex("02 06 01 00 00 03");
    QTRY_COMPARE(newest->receivedHex(), QByteArray("06020601000003"));
    // An answer to what the older one had asked, given late.
    server->writeMessage({5, 1, 0, {}});
    server->sendNACK();
    QTRY_COMPARE(newest->receivedHex(), QByteArray("06020601000003"
                                                   "020501000003"
                                                   "15"));
    QVERIFY(older->received().isEmpty());
}

void TestTcpServerClients::aFrameThatWasCompleteBeforeTheNewestConnectedIsAnsweredToIt()
{
    ObservedTcpServer server;
    const auto older = server.connectClient();
    QVERIFY(older);
    std::unique_ptr<WireClient> newest;
    server.onRecord([&](const CommandMessage& record) {
        if (record.cmdId == 5) {
            newest = server.connectClient(); // while the older one's second frame waits to be looked at
        }
        server->writeMessage({record.cmdId, 1, 0, {}});
    });
    older->sendHex("02 05 01 00 00 03  02 06 01 00 00 03");
    QTRY_COMPARE(server.records(), told("5/1 0:,6/1 0:"));
    QVERIFY(newest);
    QTRY_COMPARE(newest->receivedHex(), QByteArray("020501000003"
                                                   "06"
                                                   "020601000003"));
    QCOMPARE(older->receivedHex(), QByteArray("06"));
}

void TestTcpServerClients::anOlderClientStaysOpenAndUnread()
{
    ObservedTcpServer server;
    const auto older = server.connectClient();
    const auto newest = server.connectClient();
    QVERIFY(older && newest);
    older->sendHex("41 02 05 01 00 00 03 02 05 03");
    letTheServerRun();
    newest->sendHex("42 02 06 01 00 00 03");
    QTRY_COMPARE(newest->receivedHex(), QByteArray("06"));
    QCOMPARE(server.records(), told("6/1 0:"));
    QCOMPARE(server.typed(), QByteArray("B"));
    QVERIFY(older->received().isEmpty());
    QVERIFY(older->isConnected());
}

void TestTcpServerClients::ofTwoThatWaitTheLaterOneIsServed()
{
    ObservedTcpServer server;
    WireClient first;
    WireClient second;
    QVERIFY(first.isConnected() && second.isConnected());
    QTRY_VERIFY(descriptorOfPeer(first.socket().localPort()) >= 0);
    QTRY_VERIFY(descriptorOfPeer(second.socket().localPort()) >= 0);
    second.sendHex("02 06 01 00 00 03");
    QTRY_COMPARE(second.receivedHex(), QByteArray("06"));
    first.sendHex("02 05 01 00 00 03");
    letTheServerRun();
    QCOMPARE(server.records(), told("6/1 0:"));
    QVERIFY(first.isConnected());
}

void TestTcpServerClients::aFrameBegunByOneClientIsContinuedByTheNext()
{
    ObservedTcpServer server;
    const auto older = server.connectClient();
    QVERIFY(older);
    older->sendHex("41 02 05 02 02 00 61");
    QTRY_COMPARE(server.typed(), QByteArray("A")); // read, then
    const auto newest = server.connectClient();
    QVERIFY(newest);
    newest->sendHex("62 03");
    QTRY_COMPARE(newest->receivedHex(), QByteArray("06"));
    QCOMPARE(server.records(), told("5/2 2:6162"));
    QVERIFY(older->received().isEmpty());
}

void TestTcpServerClients::aHeldFrameIsCompletedByTheNextClient()
{
    ObservedTcpServer server;
    const auto older = server.connectClient();
    QVERIFY(older);
    older->sendHex("02 05 01 00 00 04");
    QTRY_COMPARE(older->receivedHex(), QByteArray("15"));
    const auto newest = server.connectClient();
    QVERIFY(newest);
    newest->sendHex("02 06 01 00 00 03");
    QTRY_COMPARE(newest->receivedHex(), QByteArray("15"));
    newest->sendHex("03");
    QTRY_COMPARE(newest->receivedHex(), QByteArray("1506"));
    QCOMPARE(server.records(), told("5/1 0:"));
}

void TestTcpServerClients::aClientsEndDoesNotResetTheDecoder()
{
    ObservedTcpServer server;
    const auto first = server.connectClient();
    QVERIFY(first);
    first->sendHex("41 02 05 01 01 00");
    QTRY_COMPARE(server.typed(), QByteArray("A"));
    const quint16 port = first->socket().localPort();
    first->close();
    QTRY_COMPARE(descriptorOfPeer(port), -1);
    const auto second = server.connectClient();
    QVERIFY(second);
    second->sendHex("61 03");
    QTRY_COMPARE(second->receivedHex(), QByteArray("06"));
    QCOMPARE(server.records(), told("5/1 1:61"));
}

void TestTcpServerClients::aClientThatHasGoneIsNoClient_data()
{
    QTest::addColumn<bool>("byReset");
    QTest::addColumn<bool>("noticed");
    QTest::newRow("closed") << false << true;
    QTest::newRow("closed, not noticed yet") << false << false;
    QTest::newRow("reset") << true << true;
    QTest::newRow("reset, not noticed yet") << true << false;
}

void TestTcpServerClients::aClientThatHasGoneIsNoClient()
{
    QFETCH(bool, byReset);
    QFETCH(bool, noticed);
    ObservedTcpServer server;
    const auto gone = server.connectClient();
    QVERIFY(gone);
    const quint16 port = gone->socket().localPort();
    if (byReset) {
        gone->reset();
    } else {
        gone->close();
    }
    if (noticed) {
        QTRY_COMPARE(descriptorOfPeer(port), -1);
    }
    for (int i = 0; i < 3; ++i) {
        server->sendACK();
        server->sendNACK();
        server->writeMessage({5, 1, 3, QByteArrayLiteral("abc")});
        server->onReadyRead();
        QCoreApplication::processEvents();
    }
    QTRY_COMPARE(descriptorOfPeer(port), -1);
    const auto next = server.connectClient();
    QVERIFY(next);
    next->sendHex("02 05 01 00 00 03");
    QTRY_COMPARE(next->receivedHex(), QByteArray("06"));
}

void TestTcpServerClients::aClientThatGoesIsNothingToWarnOf_data()
{
    QTest::addColumn<int>("framesBefore");
    QTest::addColumn<bool>("byReset");
    QTest::newRow("it closes") << 0 << false;
    QTest::newRow("it resets") << 0 << true;
    QTest::newRow("it sends frames and closes") << 1000 << false;
    QTest::newRow("it sends frames and resets") << 1000 << true;
}

void TestTcpServerClients::aClientThatGoesIsNothingToWarnOf()
{
    QFETCH(int, framesBefore);
    QFETCH(bool, byReset);
    ObservedTcpServer server;
    const auto client = server.connectClient();
    QVERIFY(client);
    const quint16 port = client->socket().localPort();
    const CaughtWarnings warnings;
    client->send(QByteArray::fromHex("020501000003").repeated(framesBefore));
    if (byReset) {
        client->reset();
    } else {
        client->close();
    }
    QTRY_COMPARE(descriptorOfPeer(port), -1);
    QCOMPARE(CaughtWarnings::texts(), QStringList());
}

void TestTcpServerClients::whatIsWrittenInTheMomentOfDisconnectionIsDropped()
{
    ObservedTcpServer server;
    const auto client = server.connectClient();
    QVERIFY(client);
    const QList<QObject*> sockets = server.sockets();
    QCOMPARE(sockets.size(), 1);
    const QObject* const served = sockets.first();
    bool written = false;
    const auto write = [&] {
        server->sendACK();
        server->writeMessage({5, 1, 3, QByteArrayLiteral("abc")});
        server->onReadyRead();
        written = true;
    };
    // The socket's class is the server's own, so its signal is found by name.
    m_actNow = write;
    const auto slot = metaObject()->method(metaObject()->indexOfMethod("actNow()"));
    const QMetaObject* const kind = served->metaObject();
    QVERIFY(connect(served, kind->method(kind->indexOfSignal("disconnected()")), this, slot));
    connect(served, &QObject::destroyed, this, write);
    client->close();
    QTRY_VERIFY(written);
    m_actNow = nullptr;
    const auto next = server.connectClient();
    QVERIFY(next);
    next->sendHex("02 05 01 00 00 03");
    QTRY_COMPARE(next->receivedHex(), QByteArray("06"));
}

void TestTcpServerClients::anOlderClientIsNotServedAgainWhenTheNewestGoes()
{
    ObservedTcpServer server;
    const auto older = server.connectClient();
    const auto newest = server.connectClient();
    QVERIFY(older && newest);
    const quint16 port = newest->socket().localPort();
    newest->close();
    QTRY_COMPARE(descriptorOfPeer(port), -1);

    older->sendHex("41 02 05 01 00 00 03");
    server->writeMessage({5, 1, 0, {}});
    server->sendNACK();
    letTheServerRun();
    QVERIFY(older->isConnected());
    QVERIFY(older->received().isEmpty());
    QCOMPARE(server.records(), QStringList());
    QCOMPARE(server.typed(), QByteArray());

    const auto next = server.connectClient();
    QVERIFY(next);
    next->sendHex("02 06 01 00 00 03");
    QTRY_COMPARE(next->receivedHex(), QByteArray("06"));
    QCOMPARE(server.records(), told("6/1 0:"));
}

void TestTcpServerClients::anOlderClientThatGoesChangesNothing_data()
{
    QTest::addColumn<bool>("byReset");
    QTest::newRow("closed") << false;
    QTest::newRow("reset") << true;
}

void TestTcpServerClients::anOlderClientThatGoesChangesNothing()
{
    QFETCH(bool, byReset);
    ObservedTcpServer server;
    const auto older = server.connectClient();
    const auto newest = server.connectClient();
    QVERIFY(older && newest);
    newest->sendHex("41 02 05 01 01");
    QTRY_COMPARE(server.typed(), QByteArray("A"));
    const quint16 port = older->socket().localPort();
    if (byReset) {
        older->reset();
    } else {
        older->sendHex("42 43");
        older->close();
    }
    QTRY_COMPARE(descriptorOfPeer(port), -1);
    QTRY_COMPARE(server.sockets().size(), 1); // nothing is kept of it, though nobody sends anything
    newest->sendHex("00 61 03");
    QTRY_COMPARE(newest->receivedHex(), QByteArray("06"));
    QCOMPARE(server.records(), told("5/1 1:61"));
    QCOMPARE(server.typed(), QByteArray("A"));
}

void TestTcpServerClients::aClientThatResetsDuringItsAnswerHarmsNobody()
{
    ObservedTcpServer server;
    auto client = server.connectClient();
    QVERIFY(client);
    const quint16 port = client->socket().localPort();
    server.onRecord([&](const CommandMessage&) {
        server->writeMessage({5, 1, 60000, QByteArray(60000, 'x')});
        client->reset();
        for (int i = 0; i < 20; ++i) {
            server->writeMessage({5, 1, 60000, QByteArray(60000, 'x')});
            server->sendACK();
        }
    });
    client->sendHex("02 05 01 00 00 03");
    QTRY_COMPARE(descriptorOfPeer(port), -1);
    QCOMPARE(server.records(), told("5/1 0:"));

    server.onRecord({});
    const auto next = server.connectClient();
    QVERIFY(next);
    next->sendHex("02 06 01 00 00 03");
    QTRY_COMPARE(next->receivedHex(), QByteArray("06"));
}

void TestTcpServerClients::aClientThatGoesBeforeItIsAcceptedHarmsNobody()
{
    ObservedTcpServer server;
    for (int i = 0; i < 10; ++i) {
        WireClient closes;
        closes.sendHex("0D");
        WireClient resets;
        QVERIFY(closes.isConnected() && resets.isConnected());
        resets.reset();
    }
    const auto next = server.connectClient();
    QVERIFY(next);
    next->sendHex("02 06 01 00 00 03");
    QTRY_COMPARE(next->receivedHex(), QByteArray("06"));
}

/// As in a service that has closed its standard input.
void TestTcpServerClients::aClientMayHaveTheFirstDescriptor()
{
    const int input = dup(0);
    QVERIFY(input > 0);
    {
        ObservedTcpServer server;
        WireClient client;
        QVERIFY(client.isConnected());
        close(0);
        client.sendHex("02 05 01 00 00 03");
        const bool isServed = QTest::qWaitFor([&] { return client.receivedHex() == "06"; });
        const int first = descriptorOfPeer(client.socket().localPort());
        client.close();
        const bool isGone = QTest::qWaitFor([&] { return server.sockets().isEmpty(); });
        server.destroy();
        dup2(input, 0);
        QVERIFY(isServed);
        QCOMPARE(first, 0);
        QVERIFY(isGone);
    }
    close(input);
}

/// Whatever descriptor it has.
void TestTcpServerClients::aConnectionThatWaitsEndsWithTheServer()
{
    const int input = dup(0);
    QVERIFY(input > 0);
    {
        ObservedTcpServer server;
        BeforeOthers destruction([&] { server.destroy(); });
        auto* const listener = server->findChild<QTcpServer*>();
        QVERIFY(listener);
        connect(listener, &QTcpServer::newConnection, this, [&] { destruction.post(); });
        WireClient client;
        close(0);
        const bool hasEnded = QTest::qWaitFor([&] { return !client.isConnected(); });
        dup2(input, 0);
        QCOMPARE(server.connections(), 0);
        QVERIFY(hasEnded);
    }
    close(input);
}

void TestTcpServerClients::aServerThatIsDestroyedDisconnectsAllClients()
{
    ObservedTcpServer server;
    const auto older = server.connectClient();
    const auto newest = server.connectClient();
    QVERIFY(older && newest);
    newest->sendHex("02 05 01");
    server.destroy();
    QTRY_VERIFY(!older->isConnected());
    QTRY_VERIFY(!newest->isConnected());
    QVERIFY(!WireClient().isConnected());
}

void TestTcpServerClients::aServerMayBeDeletedLaterFromWithinARecord()
{
    auto* const server = new TcpServer;
    QPointer<TcpServer> alive(server);
    connect(server, &TcpServer::receivedValidMessage, this, [server] { server->deleteLater(); });
    WireClient client;
    client.sendHex("02 05 01 00 00 03 02 06 01 00 00 03");
    QTRY_VERIFY(!alive);
    QTRY_VERIFY(!client.isConnected());
}

QTEST_GUILESS_MAIN(TestTcpServerClients)

#include "tst_tcpserver_clients.moc"
