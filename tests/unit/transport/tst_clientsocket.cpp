#include <ClientSocket.h>
#include <Tolvar/Varundo/TcpServer.h>

#include "CaughtWarnings.h"

#include <QSignalSpy>
#include <QtTest>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <memory>

using namespace Tolvar::Varundo;
using Tolvar::Varundo::Test::CaughtWarnings;

namespace {

constexpr int MaxUnread = 8;

/// A connection over the loopback interface: the peer's end is a plain blocking descriptor.
class Connection
{
public:
    explicit Connection(int family = AF_INET, int maxUnread = MaxUnread)
    {
        sockaddr_storage address{};
        socklen_t size = family == AF_INET ? sizeof(sockaddr_in) : sizeof(sockaddr_in6);
        address.ss_family = static_cast<sa_family_t>(family);
        if (family == AF_INET) {
            reinterpret_cast<sockaddr_in*>(&address)->sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        } else {
            reinterpret_cast<sockaddr_in6*>(&address)->sin6_addr = in6addr_loopback;
        }
        auto* const any = reinterpret_cast<sockaddr*>(&address);
        const int listener = ::socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0);
        m_peer = ::socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0);
        const int small = 65536; // so that little is on its way
        setsockopt(m_peer, SOL_SOCKET, SO_RCVBUF, &small, sizeof small);
        const bool isListening = bind(listener, any, size) == 0 && listen(listener, 1) == 0 &&
                                 getsockname(listener, any, &size) == 0;
        if (isListening && connect(m_peer, any, size) == 0) {
            m_descriptor = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
            getsockname(m_peer, any, &size);
            m_peerPort = ntohs(family == AF_INET ? reinterpret_cast<sockaddr_in*>(any)->sin_port
                                                 : reinterpret_cast<sockaddr_in6*>(any)->sin6_port);
        }
        close(listener);
        if (m_descriptor >= 0) {
            m_socket = std::make_unique<ClientSocket>(m_descriptor, maxUnread, nullptr);
        }
    }

    ~Connection() { closePeer(); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    explicit operator bool() const { return m_socket != nullptr; }
    ClientSocket& operator*() const { return *m_socket; }
    ClientSocket* operator->() const { return m_socket.get(); }
    void destroySocket() { m_socket.reset(); }

    int descriptor() const { return m_descriptor; }
    bool isDescriptorOpen() const { return fcntl(m_descriptor, F_GETFD) >= 0; }
    int option(int level, int name) const
    {
        int value = -1;
        socklen_t size = sizeof value;
        getsockopt(m_descriptor, level, name, &value, &size);
        return value;
    }

    int peerPort() const { return m_peerPort; }
    bool peerSends(const QByteArray& bytes) const
    {
        return ::send(m_peer, bytes.constData(), static_cast<std::size_t>(bytes.size()), MSG_NOSIGNAL) ==
               bytes.size();
    }
    /// What has arrived at the peer; waits for nothing.
    QByteArray peerReceives(int most = 1 << 20) const
    {
        QByteArray bytes(most, Qt::Uninitialized);
        const ssize_t size = recv(m_peer, bytes.data(), static_cast<std::size_t>(most), MSG_DONTWAIT);
        bytes.truncate(static_cast<int>(qMax<ssize_t>(size, 0)));
        return bytes;
    }
    void closePeer()
    {
        if (m_peer >= 0) {
            close(std::exchange(m_peer, -1));
        }
    }
    /// Ends the connection at once, with what had not been sent.
    void resetPeer()
    {
        const linger atOnce{1, 0};
        setsockopt(m_peer, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
        closePeer();
    }

private:
    int m_peer = -1;
    int m_peerPort = 0;
    int m_descriptor = -1;
    std::unique_ptr<ClientSocket> m_socket;
};

/// Takes all that there is, as a transport does.
QByteArray readAll(ClientSocket& socket, int piece = 64)
{
    QByteArray all;
    QByteArray bytes(piece, Qt::Uninitialized);
    while (const int size = socket.read(bytes.data(), piece)) {
        all.append(bytes.constData(), size);
    }
    return all;
}

/// Sends until the kernel takes no more, and then some.
QByteArray fill(ClientSocket& socket)
{
    QByteArray sent;
    for (int i = 0; socket.bytesToWrite() < 1000000; ++i) {
        const QByteArray piece(1000, static_cast<char>('a' + i % 26));
        socket.send(piece.constData(), piece.size());
        sent += piece;
    }
    return sent;
}

} // namespace

/// A controller's connection on its descriptor.
class TestClientSocket : public QObject
{
    Q_OBJECT

private slots:
    void peerIsNamed();
    void peerThatHasGoneHasNoName();
    void optionsAreThoseOfAController();

    void bytesAreReadInPiecesUntilThereAreNone();
    void whatIsLeftIsToldAgain();
    void nothingIsReadBeforeTheEventLoopHasTold();
    void whatArrivesDuringAReplyIsReadInTheSameTurn();
    void eventLoopHasItsTurnThoughEachReplyIsFollowedByARequest();
    void withoutAReplyNothingMoreIsLookedFor();
    void whatNobodyReadsIsReceivedUpToTheBound();
    void whoStopsReadingIsTreatedLikeNobody();
    void whatWasReceivedComesBeforeWhatTheKernelHas();
    void takenUnreadBytesMakeRoom();

    void bytesAreHandedToTheKernelAtOnce();
    void whatTheKernelDoesNotTakeWaitsInOrder();
    void peerThatReadsIsTold();
    void nothingIsToldWhileThereIsNoRoom();
    void nothingIsToldOfWhatNeverWaited();

    void endOfThePeerIsToldOnceAndAfterItsBytes();
    void endIsToldThoughNobodyReadsAndBytesBeforeItAreKept();
    void abortEndsTheConnectionAtOnce();
    void bytesInTheKernelAreReceivedBeforeAnAbort_data();
    void bytesInTheKernelAreReceivedBeforeAnAbort();
    void failedSendEndsTheConnectionLater();
    void bytesBeforeAFailedSendAreKept();
    void endedConnectionTakesNothing();
    void descriptorGoesWithTheSocket();
    void socketMayBeDeletedByWhoReads();
};

void TestClientSocket::peerIsNamed()
{
    const Connection four;
    QVERIFY(four);
    QCOMPARE(four->peer(), QStringLiteral("127.0.0.1 port %1").arg(four.peerPort()));
    const Connection six(AF_INET6);
    if (!six) {
        QSKIP("this machine has no IPv6");
    }
    QCOMPARE(six->peer(), QStringLiteral("::1 port %1").arg(six.peerPort()));
}

void TestClientSocket::peerThatHasGoneHasNoName()
{
    const ClientSocket socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), MaxUnread, nullptr);
    QCOMPARE(socket.peer(), QStringLiteral("that is gone already"));
}

void TestClientSocket::optionsAreThoseOfAController()
{
    const Connection connection;
    QVERIFY(connection);
    QCOMPARE(connection.option(IPPROTO_TCP, TCP_NODELAY), 1);
    QCOMPARE(connection.option(SOL_SOCKET, SO_KEEPALIVE), 1);
    QCOMPARE(connection.option(SOL_SOCKET, SO_SNDBUF), 2 * TcpServer::KernelSendBufferBytes);
}

void TestClientSocket::bytesAreReadInPiecesUntilThereAreNone()
{
    const Connection connection;
    QVERIFY(connection);
    QList<QByteArray> reads;
    connect(&*connection, &ClientSocket::readyRead, [&] { reads.append(readAll(*connection, 4)); });
    QVERIFY(connection.peerSends("0123456789"));
    QTRY_COMPARE(reads, QList<QByteArray>{"0123456789"});
    QVERIFY(connection.peerSends("abcd"));
    QTRY_COMPARE(reads, (QList<QByteArray>{"0123456789", "abcd"}));
    QVERIFY(connection->isConnected());
    QVERIFY(connection->takeUnread().isEmpty());
}

void TestClientSocket::whatIsLeftIsToldAgain()
{
    const Connection connection;
    QVERIFY(connection);
    QByteArray all;
    connect(&*connection, &ClientSocket::readyRead, [&] {
        char bytes[4];
        all.append(bytes, connection->read(bytes, sizeof bytes));
    });
    QVERIFY(connection.peerSends("0123456789"));
    QTRY_COMPARE(all, QByteArray("0123456789"));
}

void TestClientSocket::nothingIsReadBeforeTheEventLoopHasTold()
{
    const Connection connection;
    QVERIFY(connection);
    QVERIFY(connection.peerSends("a"));
    QVERIFY(readAll(*connection).isEmpty());
    QSignalSpy told(&*connection, &ClientSocket::readyRead);
    QVERIFY(told.wait());
}

void TestClientSocket::whatArrivesDuringAReplyIsReadInTheSameTurn()
{
    const Connection connection;
    QVERIFY(connection);
    QList<QByteArray> reads;
    connect(&*connection, &ClientSocket::readyRead, [&] {
        char bytes[8];
        while (const int size = connection->read(bytes, sizeof bytes)) {
            reads.append(QByteArray(bytes, size));
            if (bytes[0] < 'c') {
                connection.peerSends(QByteArray(1, static_cast<char>(bytes[0] + 1)));
            }
            connection->send(bytes, size);
        }
    });
    QSignalSpy told(&*connection, &ClientSocket::readyRead);
    QVERIFY(connection.peerSends("a"));
    QVERIFY(told.wait());
    QCOMPARE(reads, (QList<QByteArray>{"a", "b", "c"}));
    QCOMPARE(connection.peerReceives(), QByteArray("abc"));
}

void TestClientSocket::eventLoopHasItsTurnThoughEachReplyIsFollowedByARequest()
{
    const Connection connection;
    QVERIFY(connection);
    QList<int> reads; // in each turn
    connect(&*connection, &ClientSocket::readyRead, [&] {
        reads.append(0);
        char bytes[8];
        while (reads.last() < 1000 && connection->read(bytes, sizeof bytes) > 0) {
            ++reads.last();
            connection->send(bytes, 1);
            connection.peerSends("a");
        }
    });
    QVERIFY(connection.peerSends("a"));
    QTRY_VERIFY(reads.size() >= 3);
    QCOMPARE(reads.first(), ClientSocket::MaxReadsATurn);
    QCOMPARE(reads.at(1), ClientSocket::MaxReadsATurn);
}

void TestClientSocket::withoutAReplyNothingMoreIsLookedFor()
{
    const Connection connection;
    QVERIFY(connection);
    QList<QByteArray> reads;
    connect(&*connection, &ClientSocket::readyRead, [&] {
        char bytes[8];
        const int size = connection->read(bytes, sizeof bytes);
        reads.append(QByteArray(bytes, size));
        if (reads.size() == 1) {
            connection.peerSends("b");
            QCOMPARE(connection->read(bytes, sizeof bytes), 0);
        }
    });
    QVERIFY(connection.peerSends("a"));
    QTRY_COMPARE(reads, (QList<QByteArray>{"a", "b"}));
}

void TestClientSocket::whatNobodyReadsIsReceivedUpToTheBound()
{
    const Connection connection;
    QVERIFY(connection);
    QSignalSpy told(&*connection, &ClientSocket::readyRead);
    QVERIFY(connection.peerSends("0123456789abcdef"));
    QTRY_COMPARE(told.size(), 2); // once with the bytes, once with those for which there is no room
    QTest::qWait(50);
    QCOMPARE(told.size(), 2); // else it would be told without end
    QCOMPARE(connection->takeUnread(), QByteArray("01234567"));
}

void TestClientSocket::whoStopsReadingIsTreatedLikeNobody()
{
    const Connection connection;
    QVERIFY(connection);
    bool reads = true;
    int told = 0;
    connect(&*connection, &ClientSocket::readyRead, [&] {
        ++told;
        if (reads) {
            readAll(*connection);
        }
    });
    QVERIFY(connection.peerSends("abc"));
    QTRY_COMPARE(told, 1);
    reads = false;
    QVERIFY(connection.peerSends("def"));
    QTRY_COMPARE(told, 2);
    QTest::qWait(50);
    QCOMPARE(told, 2);
    QCOMPARE(connection->takeUnread(), QByteArray("def"));
}

void TestClientSocket::whatWasReceivedComesBeforeWhatTheKernelHas()
{
    const Connection connection;
    QVERIFY(connection);
    QSignalSpy told(&*connection, &ClientSocket::readyRead);
    QVERIFY(connection.peerSends("0123456789abcdef"));
    QTRY_COMPARE(told.size(), 2);
    char bytes[5];
    QCOMPARE(connection->read(bytes, sizeof bytes), 5);
    QCOMPARE(QByteArray(bytes, 5), QByteArray("01234"));
    QCOMPARE(connection->read(bytes, sizeof bytes), 3);
    QCOMPARE(QByteArray(bytes, 3), QByteArray("567"));
    QCOMPARE(readAll(*connection), QByteArray("89abcdef"));
}

void TestClientSocket::takenUnreadBytesMakeRoom()
{
    const Connection connection;
    QVERIFY(connection);
    QSignalSpy told(&*connection, &ClientSocket::readyRead);
    QVERIFY(connection.peerSends("0123456789abcdef"));
    QTRY_COMPARE(told.size(), 2);
    QCOMPARE(connection->takeUnread(), QByteArray("01234567"));
    QTRY_COMPARE(told.size(), 3);
    QCOMPARE(connection->takeUnread(), QByteArray("89abcdef"));
}

void TestClientSocket::bytesAreHandedToTheKernelAtOnce()
{
    const Connection connection;
    QVERIFY(connection);
    connection->send("abc", 3);
    QCOMPARE(connection->bytesToWrite(), 0);
    QCOMPARE(connection.peerReceives(), QByteArray("abc"));
}

void TestClientSocket::whatTheKernelDoesNotTakeWaitsInOrder()
{
    const Connection connection;
    QVERIFY(connection);
    const QByteArray sent = fill(*connection);
    QVERIFY(connection->bytesToWrite() < sent.size());
    QByteArray received;
    const auto takeAll = [&] {
        received += connection.peerReceives();
        return received.size() == sent.size();
    };
    QTRY_VERIFY(takeAll());
    QVERIFY(received == sent);
    QCOMPARE(connection->bytesToWrite(), 0);
}

void TestClientSocket::peerThatReadsIsTold()
{
    const Connection connection;
    QVERIFY(connection);
    fill(*connection);
    const qint64 waiting = connection->bytesToWrite();
    QSignalSpy told(&*connection, &ClientSocket::bytesWritten);
    const auto takeSome = [&] {
        connection.peerReceives(100000);
        return !told.isEmpty();
    };
    QTRY_VERIFY(takeSome());
    QVERIFY(connection->bytesToWrite() < waiting);
    const auto takeAll = [&] {
        connection.peerReceives();
        return connection->bytesToWrite() == 0;
    };
    QTRY_VERIFY(takeAll());
    const int before = told.size();
    QTest::qWait(50);
    QVERIFY(told.size() <= before + 1); // there is nothing left to tell of
}

void TestClientSocket::nothingIsToldWhileThereIsNoRoom()
{
    const Connection connection;
    QVERIFY(connection);
    fill(*connection);
    QSignalSpy told(&*connection, &ClientSocket::bytesWritten);
    bool isQuiet = false; // once the kernel has moved what it can into the peer's buffer
    for (int i = 0; i < 20 && !isQuiet; ++i) {
        told.clear();
        QTest::qWait(250);
        isQuiet = told.isEmpty();
    }
    QVERIFY(isQuiet);
    QVERIFY(connection->bytesToWrite() > 0);
}

void TestClientSocket::nothingIsToldOfWhatNeverWaited()
{
    const Connection connection;
    QVERIFY(connection);
    QSignalSpy told(&*connection, &ClientSocket::bytesWritten);
    connection->send("abc", 3);
    QTest::qWait(50);
    QVERIFY(told.isEmpty());
}

void TestClientSocket::endOfThePeerIsToldOnceAndAfterItsBytes()
{
    Connection connection;
    QVERIFY(connection);
    QStringList story;
    connect(&*connection, &ClientSocket::readyRead,
            [&] { story.append(QString::fromLatin1(readAll(*connection))); });
    connect(&*connection, &ClientSocket::disconnected, [&] { story.append(QStringLiteral("end")); });
    QVERIFY(connection.peerSends("last"));
    connection.closePeer();
    QTRY_VERIFY(story.contains(QStringLiteral("end")));
    QTest::qWait(20);
    story.removeAll(QString()); // told of the end itself, where nothing is to be read
    QCOMPARE(story, (QStringList{QStringLiteral("last"), QStringLiteral("end")}));
    QVERIFY(!connection->isConnected());
}

void TestClientSocket::endIsToldThoughNobodyReadsAndBytesBeforeItAreKept()
{
    Connection connection;
    QVERIFY(connection);
    QSignalSpy ended(&*connection, &ClientSocket::disconnected);
    QVERIFY(connection.peerSends("abc"));
    connection.closePeer();
    QVERIFY(ended.wait());
    QVERIFY(!connection->isConnected());
    QCOMPARE(connection->takeUnread(), QByteArray("abc"));
    QVERIFY(connection->takeUnread().isEmpty());
}

void TestClientSocket::abortEndsTheConnectionAtOnce()
{
    const Connection connection;
    QVERIFY(connection);
    fill(*connection);
    QSignalSpy written(&*connection, &ClientSocket::bytesWritten);
    const auto takeSome = [&] {
        connection.peerReceives(100000);
        return !written.isEmpty();
    };
    QTRY_VERIFY(takeSome());
    QVERIFY(connection->bytesToWrite() > 0);
    QSignalSpy ended(&*connection, &ClientSocket::disconnected);
    connection->abort();
    QCOMPARE(ended.size(), 1);
    QVERIFY(!connection->isConnected());
    QVERIFY(!connection.isDescriptorOpen());
    QCOMPARE(connection->bytesToWrite(), 0);
    connection->abort();
    QCOMPARE(ended.size(), 1);

    const CaughtWarnings warnings; // of a notifier that still looks at the descriptor
    QTest::qWait(50);
    QCOMPARE(warnings.texts(), QStringList());
}

void TestClientSocket::bytesInTheKernelAreReceivedBeforeAnAbort_data()
{
    QTest::addColumn<int>("maxUnread");
    QTest::addColumn<QByteArray>("kept");
    QTest::newRow("all") << 1024 << QByteArray("456789");
    QTest::newRow("up to the bound") << 5 << QByteArray("45678");
}

void TestClientSocket::bytesInTheKernelAreReceivedBeforeAnAbort()
{
    QFETCH(const int, maxUnread);
    QFETCH(const QByteArray, kept);
    const Connection connection(AF_INET, maxUnread);
    QVERIFY(connection);
    QByteArray first(4, Qt::Uninitialized);
    connect(&*connection, &ClientSocket::readyRead, [&] {
        if (connection->isConnected() && connection->read(first.data(), first.size()) > 0) {
            connection->abort(); // as a newer client's arrival may do meanwhile
        }
    });
    QVERIFY(connection.peerSends("0123456789"));
    QTRY_VERIFY(!connection->isConnected());
    QCOMPARE(first, QByteArray("0123"));
    QCOMPARE(connection->takeUnread(), kept);
}

void TestClientSocket::failedSendEndsTheConnectionLater()
{
    Connection connection;
    QVERIFY(connection);
    connection.resetPeer();
    QSignalSpy ended(&*connection, &ClientSocket::disconnected);
    connection->send("a", 1);
    QVERIFY(!connection->isConnected());
    QVERIFY(ended.isEmpty()); // who sends is not to be told in the middle of it
    QVERIFY(connection.isDescriptorOpen());
    connection->send("b", 1);
    QCOMPARE(connection->bytesToWrite(), 0);
    QTRY_COMPARE(ended.size(), 1);
    QTest::qWait(20);
    QCOMPARE(ended.size(), 1);
    QVERIFY(!connection.isDescriptorOpen());
}

void TestClientSocket::bytesBeforeAFailedSendAreKept()
{
    Connection connection;
    QVERIFY(connection);
    QSignalSpy ended(&*connection, &ClientSocket::disconnected);
    QVERIFY(connection.peerSends("abc"));
    connection.resetPeer();
    connection->send("a", 1);
    QVERIFY(!connection->isConnected());
    QVERIFY(ended.wait());
    QCOMPARE(connection->takeUnread(), QByteArray("abc"));
}

void TestClientSocket::endedConnectionTakesNothing()
{
    const Connection connection;
    QVERIFY(connection);
    connection->abort();
    connection->send("abc", 3);
    QCOMPARE(connection->bytesToWrite(), 0);
    QVERIFY(readAll(*connection).isEmpty());
}

void TestClientSocket::descriptorGoesWithTheSocket()
{
    Connection connection;
    QVERIFY(connection);
    QVERIFY(connection.isDescriptorOpen());
    connection.destroySocket();
    QVERIFY(!connection.isDescriptorOpen());
}

void TestClientSocket::socketMayBeDeletedByWhoReads()
{
    Connection connection;
    QVERIFY(connection);
    connect(&*connection, &ClientSocket::readyRead, [&] { connection.destroySocket(); });
    QVERIFY(connection.peerSends("abc"));
    QTRY_VERIFY(!connection);
    QTest::qWait(20);
}

QTEST_GUILESS_MAIN(TestClientSocket)
#include "tst_clientsocket.moc"
