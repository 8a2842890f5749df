#include <Tolvar/Varundo/TcpServer.h>

#include "Isolation.h"
#include "ObservedTcpServer.h"
#include "OpenDescriptors.h"
#include "ResidentMemory.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <QtTest>

#include <functional>
#include <utility>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

constexpr int AnswerSize = 60000;
constexpr qint64 KernelBuffers = 16 * 1024 * 1024; // both ends' of a loopback connection, at their largest

/// A request that carries its number, so that nothing can be lost, doubled or swapped unnoticed.
CommandMessage request(int number)
{
    return {static_cast<quint8>(1 + number % 255), 1, 2,
            QByteArray(1, static_cast<char>(number % 256)) + static_cast<char>(number / 256)};
}

QByteArray requests(int first, int count)
{
    QByteArray frames;
    for (int number = first; number < first + count; ++number) {
        frames += encodeFrame(request(number));
    }
    return frames;
}

QStringList expectedRecords(int first, int count)
{
    QStringList records;
    for (int number = first; number < first + count; ++number) {
        records.append(describe(request(number)));
    }
    return records;
}

CommandMessage answerTo(const CommandMessage& asked, int size)
{
    QByteArray data = asked.data;
    data.append(QByteArray(size - data.size(), static_cast<char>(asked.cmdId)));
    return {asked.cmdId, 1, static_cast<quint16>(size), data};
}

/// What a client must receive, from the first byte on, for so many requests.
QByteArray expectedReplies(int count, int answerSize)
{
    QByteArray replies;
    for (int number = 0; number < count; ++number) {
        replies += '\x06';
        replies += encodeFrame(answerTo(request(number), answerSize));
    }
    return replies;
}

/// Waits until a number has not changed for a while; returns it.
qint64 settledValue(const std::function<qint64()>& value)
{
    qint64 last = value();
    for (int unchanged = 0, rounds = 0; unchanged < 6 && rounds < 200; ++rounds) {
        QTest::qWait(50);
        const qint64 now = value();
        unchanged = now == last ? unchanged + 1 : 0;
        last = now;
    }
    return last;
}

/// Sends as fast as the other end takes it, until it takes no more; returns how much that was.
qint64 flood(WireClient& client, const QByteArray& block, qint64 atMost)
{
    qint64 sent = 0;
    QElapsedTimer sinceProgress;
    sinceProgress.start();
    while (sent < atMost && sinceProgress.elapsed() < 500) {
        if (client.socket().bytesToWrite() == 0) {
            client.send(block);
            sent += block.size();
            sinceProgress.restart();
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    return sent;
}

} // namespace

/// What one client, or many, can make the server hold, and that nothing is lost by its holding back.
class TestTcpServerLoad : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void aThousandFramesInOneWriteAreAnsweredInOrder();
    void aLongFrameInManySegmentsIsAcceptedOnce();
    void anOlderClientThatFloodsIsNotTakenIn();
    void aClientThatFloodsGarbageIsReadWithoutGrowing();
    void aClientThatDoesNotReadIsActedUponOnlySoFar();
    void aClientThatReadsAgainGetsEveryReplyInOrder();
    void whatAClientHasTakenIsNotKeptThoughMoreAlwaysWaits();
    void whatWaitsLeavesWithTheNextWriteWithoutAnEventLoop();
    void aNewClientIsServedAtOnceWhileAnotherDoesNotRead();
    void framesHeldBackFromAClientThatDoesNotReadAreDroppedWhenTheNextConnects();
    void allFramesOfAClientThatClosesAtOnceAreActedUpon_data();
    void allFramesOfAClientThatClosesAtOnceAreActedUpon();
    void framesThatWaitUnreadWhenTheirClientGoesAreActedUpon();
    void aClientThatStopsSendingCountsAsGoneAndAllItsFramesAreActedUpon();
    void aClientThatDoesNotReadAndResetsHarmsNobody();

    void framesThatArriveInANestedEventLoopWaitTheirTurn();
    void everyFrameMayRunANestedEventLoop();

    void slowFramesLeaveTheEventLoopItsTurns_data();
    void slowFramesLeaveTheEventLoopItsTurns();
    void framesThatKeepComingDoNotMakeTurnsLonger();
    void whatWasReadOfAnOlderClientIsCarriedOutInLaterTurns();
    void lastWordsDuringANestedEventLoopAreBounded();
};

void TestTcpServerLoad::init()
{
    if (!hasOwn("net")) {
        QSKIP(NeedsOwnNetwork);
    }
}

void TestTcpServerLoad::aThousandFramesInOneWriteAreAnsweredInOrder()
{
    ObservedTcpServer server;
    server.onRecord([&](const CommandMessage& record) { server->writeMessage(answerTo(record, 10)); });
    const auto client = server.connectClient();
    QVERIFY(client);
    client->send(requests(0, 1000));
    const QByteArray expected = expectedReplies(1000, 10);
    QTRY_COMPARE(client->received().size(), expected.size());
    QVERIFY(client->received() == expected);
    QCOMPARE(server.records(), expectedRecords(0, 1000));
}

void TestTcpServerLoad::aLongFrameInManySegmentsIsAcceptedOnce()
{
    ObservedTcpServer server;
    const auto client = server.connectClient();
    QVERIFY(client);
    QByteArray payload(65535, '\0');
    for (int i = 0; i < payload.size(); ++i) {
        payload[i] = static_cast<char>(i * 7);
    }
    const CommandMessage sent{7, 2, 65535, payload};
    const QByteArray frame = encodeFrame(sent);
    for (int at = 0; at < frame.size(); at += 997) {
        client->send(frame.mid(at, 997));
        QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
    }
    QTRY_COMPARE(client->receivedHex(), QByteArray("06"));
    QCOMPARE(server.records().size(), 1);
    QVERIFY(server.records().first() == describe(sent));
}

void TestTcpServerLoad::anOlderClientThatFloodsIsNotTakenIn()
{
    ObservedTcpServer server;
    const auto older = server.connectClient();
    const auto newest = server.connectClient();
    QVERIFY(older && newest);
    const qint64 before = residentMemory();
    const qint64 atMost = 4 * MaxGrowth + 2 * KernelBuffers;
    const qint64 sent = flood(*older, QByteArray(64 * 1024, 'x'), atMost);
    QVERIFY2(sent <= TcpServer::MaxUnreadBytes + KernelBuffers, QByteArray::number(sent).constData());
    QVERIFY2(residentMemory() - before < MaxGrowth,
             QByteArray::number(residentMemory() - before).constData());
    QVERIFY(server.typed().isEmpty());

    newest->sendHex("02 05 01 00 00 03");
    QTRY_COMPARE(newest->receivedHex(), QByteArray("06"));
}

void TestTcpServerLoad::aClientThatFloodsGarbageIsReadWithoutGrowing()
{
    ObservedTcpServer server;
    const auto client = server.connectClient();
    QVERIFY(client);
    QByteArray garbage(64 * 1024, '\0');
    garbage.replace(5, 3, QByteArray("\x02\x01\x03", 3)); // and a rejection in every read
    const qint64 before = residentMemory();
    const qint64 size = 64 * 1024 * 1024;
    QCOMPARE(flood(*client, garbage, size), size);
    QTRY_VERIFY(server->frameCounters().discardedBytes + 3 * (size / garbage.size()) >= quint64(size));
    QVERIFY2(residentMemory() - before < MaxGrowth,
             QByteArray::number(residentMemory() - before).constData());
}

void TestTcpServerLoad::aClientThatDoesNotReadIsActedUponOnlySoFar()
{
    constexpr int Count = 5000;
    ObservedTcpServer server;
    server.onRecord(
        [&](const CommandMessage& record) { server->writeMessage(answerTo(record, AnswerSize)); });
    const auto client = server.connectClient();
    QVERIFY(client);
    client->stopReading();
    const qint64 before = residentMemory();
    client->send(requests(0, Count));
    const qint64 actedOn = settledValue([&] { return server.records().size(); });
    QVERIFY(actedOn > 0);
    const qint64 bound = (KernelBuffers + TcpServer::MaxUnsentBytes + AnswerSize) / AnswerSize + 1;
    QVERIFY2(actedOn <= bound, QByteArray::number(actedOn).constData());
    QVERIFY2(residentMemory() - before < MaxGrowth,
             QByteArray::number(residentMemory() - before).constData());
}

void TestTcpServerLoad::aClientThatReadsAgainGetsEveryReplyInOrder()
{
    constexpr int Count = 600;
    ObservedTcpServer server;
    server.onRecord(
        [&](const CommandMessage& record) { server->writeMessage(answerTo(record, AnswerSize)); });
    const auto client = server.connectClient();
    QVERIFY(client);
    client->stopReading();
    client->send(requests(0, Count - 100));
    const qint64 actedOn = settledValue([&] { return server.records().size(); });
    QVERIFY(actedOn < Count - 100);           // else nothing was held back and nothing is shown
    client->send(requests(Count - 100, 100)); // arrives while the server holds back
    client->startReading();

    const QByteArray expected = expectedReplies(Count, AnswerSize);
    QTRY_COMPARE_WITH_TIMEOUT(client->received().size(), expected.size(), 30000);
    QVERIFY(client->received() == expected);
    QCOMPARE(server.records(), expectedRecords(0, Count));
}

void TestTcpServerLoad::whatAClientHasTakenIsNotKeptThoughMoreAlwaysWaits()
{
    constexpr qint64 Waiting = 1024 * 1024;
    constexpr qint64 Total = 64 * 1024 * 1024;
    ObservedTcpServer server;
    const auto client = server.connectClient();
    QVERIFY(client);
    // Then the kernel holds less than what waits, and the server always has some of it.
    client->socket().setSocketOption(QAbstractSocket::ReceiveBufferSizeSocketOption, 64 * 1024);
    const CommandMessage answer = answerTo(request(0), AnswerSize);
    const qint64 before = residentMemory();
    qint64 written = 0;
    qint64 taken = 0;
    while (taken < Total) {
        for (; written - taken < Waiting; written += AnswerSize + Protocol::FrameOverhead) {
            server->writeMessage(answer);
        }
        QVERIFY(QTest::qWaitFor([&] { return client->socket().bytesAvailable() > 0; }));
        taken += client->socket().readAll().size();
    }
    QVERIFY2(residentMemory() - before < MaxGrowth,
             QByteArray::number(residentMemory() - before).constData());
}

/// As from a host's slot that writes for long before it returns.
void TestTcpServerLoad::whatWaitsLeavesWithTheNextWriteWithoutAnEventLoop()
{
    ObservedTcpServer server;
    const auto client = server.connectClient();
    QVERIFY(client);
    QByteArray expected;
    for (int number = 0; number < 100; ++number) {
        server->writeMessage(answerTo(request(number), AnswerSize));
        expected += encodeFrame(answerTo(request(number), AnswerSize));
    }
    QByteArray received;
    QElapsedTimer elapsed;
    elapsed.start();
    while (received.size() < expected.size() && elapsed.elapsed() < 10000) {
        QByteArray some(AnswerSize, '\0');
        const auto size = recv(static_cast<int>(client->socket().socketDescriptor()), some.data(),
                               static_cast<std::size_t>(some.size()), MSG_DONTWAIT);
        received += some.left(static_cast<int>(qMax<qint64>(size, 0)));
        server->sendACK();
    }
    QVERIFY2(received.startsWith(expected), QByteArray::number(received.size()).constData());
}

void TestTcpServerLoad::aNewClientIsServedAtOnceWhileAnotherDoesNotRead()
{
    ObservedTcpServer server;
    server.onRecord([&](const CommandMessage& record) {
        server->writeMessage(answerTo(record, record.cmdId == 200 ? 10 : AnswerSize));
    });
    const auto silent = server.connectClient();
    QVERIFY(silent);
    silent->stopReading();
    silent->send(requests(0, 190));
    const qint64 actedOn = settledValue([&] { return server.records().size(); });
    QVERIFY(actedOn < 190);

    const auto newest = server.connectClient();
    QVERIFY(newest);
    const CommandMessage asked{200, 1, 2, QByteArrayLiteral("ab")};
    newest->send(encodeFrame(asked));
    const QByteArray reply = '\x06' + encodeFrame(answerTo(asked, 10));
    QTRY_VERIFY(newest->received().endsWith(reply));
    QVERIFY(silent->isConnected());
}

void TestTcpServerLoad::framesHeldBackFromAClientThatDoesNotReadAreDroppedWhenTheNextConnects()
{
    ObservedTcpServer server;
    server.onRecord(
        [&](const CommandMessage& record) { server->writeMessage(answerTo(record, AnswerSize)); });
    const auto silent = server.connectClient();
    QVERIFY(silent);
    silent->stopReading();
    silent->send(requests(0, 500)); // one read
    const qint64 actedOn = settledValue([&] { return server.records().size(); });
    QVERIFY(actedOn < 500);

    const auto newest = server.connectClient();
    QVERIFY(newest);
    const CommandMessage asked{200, 1, 2, QByteArrayLiteral("ab")};
    newest->send(encodeFrame(asked));
    // Nothing of what the older client had asked: neither is it acted upon, nor does the newest get answers
    // to it.
    QTRY_COMPARE(newest->received(), '\x06' + encodeFrame(answerTo(asked, AnswerSize)));
    QCOMPARE(server.records().size(), actedOn + 1);
}

void TestTcpServerLoad::allFramesOfAClientThatClosesAtOnceAreActedUpon_data()
{
    QTest::addColumn<int>("answerSize");
    QTest::newRow("without answers") << 0;
    QTest::newRow("small answers") << 10;
    QTest::newRow("answers that nobody takes") << AnswerSize;
}

void TestTcpServerLoad::allFramesOfAClientThatClosesAtOnceAreActedUpon()
{
    QFETCH(int, answerSize);
    ObservedTcpServer server;
    server.onRecord([&](const CommandMessage& record) {
        if (answerSize > 0) {
            server->writeMessage(answerTo(record, answerSize));
        }
    });
    const auto client = server.connectClient();
    QVERIFY(client);
    client->send(requests(0, 1000));
    client->close();
    QTRY_COMPARE_WITH_TIMEOUT(server.records().size(), 1000, 10000);
    QCOMPARE(server.records(), expectedRecords(0, 1000));

    const auto next = server.connectClient();
    QVERIFY(next);
    QVERIFY(next->received().isEmpty());
    next->send(requests(0, 1));
    QTRY_COMPARE(next->received(),
                 QByteArray(1, '\x06') +
                     (answerSize > 0 ? encodeFrame(answerTo(request(0), answerSize)) : QByteArray()));
}

void TestTcpServerLoad::framesThatWaitUnreadWhenTheirClientGoesAreActedUpon()
{
    ObservedTcpServer server;
    server.onRecord(
        [&](const CommandMessage& record) { server->writeMessage(answerTo(record, AnswerSize)); });
    const auto client = server.connectClient();
    QVERIFY(client);
    client->stopReading();
    client->send(requests(0, 500));
    const qint64 actedOn = settledValue([&] { return server.records().size(); });
    QVERIFY(actedOn < 500);
    client->send(requests(500, 100)); // arrives, but is not read while the server holds back
    QTest::qWait(50);
    client->reset();
    QTRY_COMPARE(server.records(), expectedRecords(0, 600));
}

void TestTcpServerLoad::aClientThatStopsSendingCountsAsGoneAndAllItsFramesAreActedUpon()
{
    ObservedTcpServer server;
    server.onRecord(
        [&](const CommandMessage& record) { server->writeMessage(answerTo(record, AnswerSize)); });
    const auto client = server.connectClient();
    QVERIFY(client);
    client->stopReading();
    client->send(requests(0, 600)); // more than the server answers at once
    QTRY_VERIFY(!server.records().isEmpty());
    shutdown(static_cast<int>(client->socket().socketDescriptor()), SHUT_WR);
    QTRY_COMPARE(server.records(), expectedRecords(0, 600));
    // What had left the unit by then arrives whole; replies that still waited are gone.
    client->startReading();
    QTRY_VERIFY(!client->isConnected());
    QVERIFY(!client->received().isEmpty());
    QVERIFY(expectedReplies(600, AnswerSize).startsWith(client->received()));
}

void TestTcpServerLoad::aClientThatDoesNotReadAndResetsHarmsNobody()
{
    ObservedTcpServer server;
    server.onRecord(
        [&](const CommandMessage& record) { server->writeMessage(answerTo(record, AnswerSize)); });
    const auto client = server.connectClient();
    QVERIFY(client);
    const quint16 port = client->socket().localPort();
    client->stopReading();
    client->send(requests(0, 500));
    QTRY_VERIFY(!server.records().isEmpty());
    client->reset();
    QTRY_COMPARE(descriptorOfPeer(port), -1);
    // What is still carried out of a client's is answered to the next.
    QTRY_COMPARE_WITH_TIMEOUT(server.records().size(), 500, 30000);
    server.forget();

    const auto next = server.connectClient();
    QVERIFY(next);
    const QByteArray reply = '\x06' + encodeFrame(answerTo(request(7), AnswerSize));
    next->send(requests(7, 1));
    QTRY_COMPARE(next->received().size(), reply.size());
    QVERIFY(next->received() == reply);
}

void TestTcpServerLoad::framesThatArriveInANestedEventLoopWaitTheirTurn()
{
    ObservedTcpServer server;
    const auto client = server.connectClient();
    QVERIFY(client);
    QStringList order;
    server.onRecord([&](const CommandMessage& record) {
        order.append(QStringLiteral("begin %1").arg(record.cmdId));
        if (record.cmdId == 1) {
            client->send(requests(3, 3));
            QTest::qWait(100);
        }
        server->writeMessage({record.cmdId, 1, 0, {}});
        order.append(QStringLiteral("end %1").arg(record.cmdId));
    });
    client->send(requests(0, 3));
    QTRY_COMPARE(order.size(), 12);
    QStringList inTurn;
    QByteArray replies;
    for (int command = 1; command <= 6; ++command) {
        inTurn << QStringLiteral("begin %1").arg(command) << QStringLiteral("end %1").arg(command);
        replies += '\x06' + encodeFrame({static_cast<quint8>(command), 1, 0, {}});
    }
    QCOMPARE(order, inTurn);
    QTRY_COMPARE(client->received(), replies);
}

void TestTcpServerLoad::everyFrameMayRunANestedEventLoop()
{
    ObservedTcpServer server;
    const auto client = server.connectClient();
    QVERIFY(client);
    int depth = 0;
    int deepest = 0;
    server.onRecord([&](const CommandMessage& record) {
        deepest = qMax(deepest, ++depth);
        QEventLoop loop;
        QTimer::singleShot(1, &loop, &QEventLoop::quit);
        loop.exec();
        server->writeMessage(answerTo(record, 10));
        --depth;
    });
    for (int first = 0; first < 100; first += 10) {
        client->send(requests(first, 10));
        QTest::qWait(3);
    }
    const QByteArray expected = expectedReplies(100, 10);
    QTRY_COMPARE(client->received().size(), expected.size());
    QVERIFY(client->received() == expected);
    QCOMPARE(server.records(), expectedRecords(0, 100));
    QCOMPARE(deepest, 1);
}

void TestTcpServerLoad::slowFramesLeaveTheEventLoopItsTurns_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("frames") << requests(0, 100);
    QTest::newRow("typed characters") << QByteArray(100, 'x');
}

/// A read may hold thousands of frames; whoever shares the thread must not wait for all of them.
void TestTcpServerLoad::slowFramesLeaveTheEventLoopItsTurns()
{
    QFETCH(QByteArray, bytes);
    ObservedTcpServer server;
    int actions = 0;
    int most = 0;
    int inThisTurn = 0;
    const auto act = [&] {
        QTest::qSleep(5);
        ++actions;
        most = qMax(most, ++inThisTurn);
    };
    server.onRecord([&](const CommandMessage&) { act(); });
    connect(&*server, &TcpServer::printableCharReceived, this, act);
    QTimer turns;
    connect(&turns, &QTimer::timeout, this, [&] { inThisTurn = 0; });
    turns.start(0);
    const auto client = server.connectClient();
    QVERIFY(client);
    client->send(bytes);
    QTRY_COMPARE(actions, 100);
    QVERIFY2(most <= 10, qPrintable(QString::number(most))); // 20 ms a turn, and the one that exceeds it
}

/// Each arrival may begin a turn of its own, but not a chain of turns of its own.
void TestTcpServerLoad::framesThatKeepComingDoNotMakeTurnsLonger()
{
    constexpr int Count = 300;
    ObservedTcpServer server;
    int most = 0;
    int inThisTurn = 0;
    QTimer turns;
    connect(&turns, &QTimer::timeout, this, [&] { inThisTurn = 0; });
    turns.start(0);
    const auto client = server.connectClient();
    QVERIFY(client);
    server.onRecord([&](const CommandMessage&) {
        QTest::qSleep(5);
        most = qMax(most, ++inThisTurn);
        client->sendHex("00"); // a byte that is discarded
    });
    client->send(requests(0, Count));
    QTRY_COMPARE_WITH_TIMEOUT(server.records().size(), Count, 30000);
    QVERIFY2(most <= 20, qPrintable(QString::number(most))); // one that arrival began, one that goes on
}

void TestTcpServerLoad::whatWasReadOfAnOlderClientIsCarriedOutInLaterTurns()
{
    ObservedTcpServer server;
    server.onRecord([](const CommandMessage&) { QTest::qSleep(2); });
    const auto older = server.connectClient();
    QVERIFY(older);
    older->send(requests(0, 100));
    QTRY_VERIFY(!server.records().empty());
    const auto newer = server.connectClient();
    QVERIFY(newer);
    QTRY_COMPARE(server.records(), expectedRecords(0, 100));
    QTRY_COMPARE(older->received().size() + newer->received().size(),
                 100); // each acknowledged, to who was served
}

void TestTcpServerLoad::lastWordsDuringANestedEventLoopAreBounded()
{
    ObservedTcpServer server;
    const auto first = server.connectClient();
    QVERIFY(first);
    int left = 0;
    bool isFirst = true;
    server.onRecord([&](const CommandMessage&) {
        if (!std::exchange(isFirst, false)) {
            return;
        }
        for (int i = 0; i < 40; ++i) {
            const auto visitor = server.connectClient();
            visitor->send(requests(0, 4000));
            QTest::qWait(1);
            visitor->close();
            left += QTest::qWaitFor([&] { return !visitor->isConnected(); }) ? 1 : 0;
        }
        QTest::qWait(20);
    });
    first->send(requests(0, 1));
    QTRY_COMPARE(left, 40);
    QTest::qWait(200);
    // Two of forty, since each is 32,000 bytes.
    QVERIFY2(server.records().size() <= 1 + 2 * 4000, qPrintable(QString::number(server.records().size())));
    QVERIFY(server.connectClient());
}

QTEST_GUILESS_MAIN(TestTcpServerLoad)

#include "tst_tcpserver_load.moc"
