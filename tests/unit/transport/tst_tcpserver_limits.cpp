#include <Tolvar/Varundo/TcpServer.h>

#include "CaughtWarnings.h"
#include "Isolation.h"
#include "ObservedTcpServer.h"
#include "OpenDescriptors.h"

#include <QAbstractEventDispatcher>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QtTest>

#include <vector>

#include <sys/resource.h>
#include <unistd.h>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

/// Gives the server's event loop time enough to do what it must not do.
void letTheServerRun()
{
    QTest::qWait(50);
}

/// While it exists, this process can open nothing more.
class NoFreeDescriptors
{
public:
    NoFreeDescriptors()
    {
        const int lowestFree = dup(STDIN_FILENO);
        close(lowestFree);
        getrlimit(RLIMIT_NOFILE, &m_before);
        rlimit none = m_before;
        none.rlim_cur = static_cast<rlim_t>(lowestFree);
        setrlimit(RLIMIT_NOFILE, &none);
    }
    ~NoFreeDescriptors() { setrlimit(RLIMIT_NOFILE, &m_before); }
    NoFreeDescriptors(const NoFreeDescriptors&) = delete;
    NoFreeDescriptors& operator=(const NoFreeDescriptors&) = delete;

private:
    rlimit m_before{};
};

} // namespace

/// How many connections are kept, and what becomes of the server when the system gives no more.
class TestTcpServerLimits : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void soManyOlderClientsStayOpenAndNoMore();
    void anOlderClientThatWentMakesRoom();
    void aClientThatGoesWhileItsFrameIsActedUponIsNoOlderOne();
    void clientsThatComeAndGoLeaveNoDescriptorBehind();
    void afterRunningOutOfDescriptorsTheServerAcceptsAgain_data();
    void afterRunningOutOfDescriptorsTheServerAcceptsAgain();
    void afterThatEveryClientIsTakenOnAtOnceAndWithoutAWarning();
    void longShortageIsToldOnce();
    void portThatIsTakenDuringAShortageIsSurvived();
};

void TestTcpServerLimits::init()
{
    if (!hasOwn("net")) {
        QSKIP(NeedsOwnNetwork);
    }
}

void TestTcpServerLimits::soManyOlderClientsStayOpenAndNoMore()
{
    ObservedTcpServer server;
    std::vector<std::unique_ptr<WireClient>> clients;
    for (int i = 0; i < TcpServer::MaxOlderClients + 1; ++i) {
        clients.push_back(server.connectClient());
        QVERIFY(clients.back());
    }
    letTheServerRun();
    for (const auto& client : clients) {
        QVERIFY(client->isConnected());
    }
    for (std::size_t closed = 0; closed < 3; ++closed) {
        clients.push_back(server.connectClient());
        QVERIFY(clients.back());
        QTRY_VERIFY(!clients.at(closed)->isConnected());
        letTheServerRun();
        for (std::size_t i = closed + 1; i < clients.size(); ++i) {
            QVERIFY(clients.at(i)->isConnected());
        }
    }
    clients.back()->sendHex("02 05 01 00 00 03");
    QTRY_COMPARE(clients.back()->receivedHex(), QByteArray("06"));
}

void TestTcpServerLimits::anOlderClientThatWentMakesRoom()
{
    ObservedTcpServer server;
    std::vector<std::unique_ptr<WireClient>> clients;
    for (int i = 0; i < TcpServer::MaxOlderClients + 1; ++i) {
        clients.push_back(server.connectClient());
        QVERIFY(clients.back());
    }
    const quint16 port = clients.at(5)->socket().localPort();
    clients.at(5)->close();
    QTRY_COMPARE(descriptorOfPeer(port), -1);
    const auto newest = server.connectClient();
    QVERIFY(newest);
    letTheServerRun();
    for (std::size_t i = 0; i < clients.size(); ++i) {
        QCOMPARE(clients.at(i)->isConnected(), i != 5);
    }
}

/// Its socket is kept until the slot has returned, and another client comes before that.
void TestTcpServerLimits::aClientThatGoesWhileItsFrameIsActedUponIsNoOlderOne()
{
    ObservedTcpServer server;
    std::vector<std::unique_ptr<WireClient>> clients;
    const auto first = server.connectClient();
    QVERIFY(first);
    const quint16 port = first->socket().localPort();
    server.onRecord([&](const CommandMessage&) {
        if (!clients.empty()) {
            return;
        }
        QTRY_COMPARE(first->receivedHex(), QByteArray("06")); // else it would end by a reset
        first->close();
        QTRY_COMPARE(descriptorOfPeer(port), -1);
        clients.push_back(server.connectClient());
    });
    first->sendHex("02 05 01 00 00 03");
    QTRY_COMPARE(clients.size(), std::size_t(1));
    QTRY_COMPARE(server.sockets().size(), 1);
    while (clients.size() < TcpServer::MaxOlderClients + 2) {
        QVERIFY(clients.back());
        clients.push_back(server.connectClient());
    }
    QTRY_VERIFY(!clients.front()->isConnected());
    clients.back()->sendHex("02 05 01 00 00 03");
    QTRY_COMPARE(clients.back()->receivedHex(), QByteArray("06"));
}

void TestTcpServerLimits::clientsThatComeAndGoLeaveNoDescriptorBehind()
{
    ObservedTcpServer server;
    QVERIFY(server.connectClient());
    QTRY_COMPARE(server.sockets().size(), 0);
    const auto before = openDescriptors().size();
    for (int i = 0; i < 200; ++i) {
        const auto client = server.connectClient();
        QVERIFY(client);
        client->sendHex(i % 3 == 0 ? "02 05 01 00 00 03" : "41");
        if (i % 2 == 0) {
            client->reset();
        }
    }
    QTRY_COMPARE(openDescriptors().size(), before);
    QTRY_COMPARE(server.sockets().size(), 0);
}

void TestTcpServerLimits::afterRunningOutOfDescriptorsTheServerAcceptsAgain_data()
{
    // The two are different ways through Qt: it only tells of the failure if it has accepted nobody before.
    QTest::addColumn<bool>("isFirst");
    QTest::newRow("the first client finds none") << true;
    QTest::newRow("a later client finds none") << false;
}

void TestTcpServerLimits::afterRunningOutOfDescriptorsTheServerAcceptsAgain()
{
    QFETCH(bool, isFirst);
    ObservedTcpServer server;
    const auto served = isFirst ? nullptr : server.connectClient();
    QVERIFY(isFirst || served);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("accept")));
    // The kernel accepts this one; the server is to find no descriptor for it.
    WireClient waiting;
    QVERIFY(waiting.isConnected());
    int connectionsThen = -1;
    int turns = 0;
    bool stillServed = true;
    {
        const NoFreeDescriptors shortage;
        const auto counting = connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake,
                                      &*server, [&turns] { ++turns; });
        QTest::qWait(100);
        disconnect(counting);
        connectionsThen = server.connections();
        if (served) {
            served->sendHex("02 05 01 00 00 03");
            stillServed = QTest::qWaitFor([&] { return served->receivedHex() == "06"; });
        }
    }
    QVERIFY(stillServed);
    QVERIFY2(turns < 100, "the event loop never comes to rest");
    QCOMPARE(connectionsThen, isFirst ? 0 : 1);
    waiting.sendHex("02 06 01 00 00 03");
    QTRY_COMPARE_WITH_TIMEOUT(waiting.receivedHex(), QByteArray("06"), 5 * TcpServer::AcceptRetryMs);
    QVERIFY(server.connectClient());
}

void TestTcpServerLimits::afterThatEveryClientIsTakenOnAtOnceAndWithoutAWarning()
{
    ObservedTcpServer server;
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("accept")));
    WireClient waiting;
    {
        const NoFreeDescriptors shortage;
        QTest::qWait(100);
    }
    QTRY_COMPARE_WITH_TIMEOUT(server.connections(), 1, 5 * TcpServer::AcceptRetryMs);
    const CaughtWarnings warnings;
    for (int i = 0; i < 3; ++i) {
        QElapsedTimer elapsed;
        elapsed.start();
        QVERIFY(server.connectClient());
        QVERIFY2(elapsed.elapsed() < TcpServer::AcceptRetryMs / 2, "the server was deaf for a while");
    }
    QCOMPARE(CaughtWarnings::texts(), QStringList());
}

void TestTcpServerLimits::longShortageIsToldOnce()
{
    ObservedTcpServer server;
    const CaughtWarnings warnings;
    WireClient waiting;
    {
        const NoFreeDescriptors shortage;
        QTest::qWait(5 * TcpServer::AcceptRetryMs / 2); // two more tries at least
        QCOMPARE(server.connections(), 0);
    }
    QCOMPARE(CaughtWarnings::texts().size(), 1);
    QTRY_COMPARE_WITH_TIMEOUT(server.connections(), 1, 5 * TcpServer::AcceptRetryMs);
}

void TestTcpServerLimits::portThatIsTakenDuringAShortageIsSurvived()
{
    ObservedTcpServer server;
    QTcpServer occupier;
    QVERIFY(occupier.listen());
    const CaughtWarnings warnings;
    WireClient waiting;
    {
        const NoFreeDescriptors shortage;
        QTRY_COMPARE(CaughtWarnings::texts().size(), 1);
    }
    server->setListeningPort(occupier.serverPort());
    QTest::qWait(3 * TcpServer::AcceptRetryMs / 2); // the try that was planned finds nobody listening
    QCOMPARE(CaughtWarnings::texts().size(), 2);
    server->setListeningPort(Protocol::DefaultTcpPort);
    QVERIFY(server.connectClient());
}

QTEST_GUILESS_MAIN(TestTcpServerLimits)

#include "tst_tcpserver_limits.moc"
