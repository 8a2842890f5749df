#include "Conversation.h"
#include "HostileWords.h"
#include "Isolation.h"
#include "KeepAliveTimes.h"
#include "ModelDecoder.h"
#include "RawPeer.h"

#include <Tolvar/Varundo/TcpServer.h>

#include <QElapsedTimer>
#include <QTest>

#include <algorithm>
#include <csignal>
#include <random>
#include <vector>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

std::vector<std::uint8_t> octets(const QByteArray& bytes)
{
    return {bytes.begin(), bytes.end()};
}

QByteArray repliesOf(const std::vector<WireOutcome>& outcomes)
{
    QByteArray replies;
    for (const WireOutcome& outcome : outcomes) {
        if (outcome.kind == WireOutcome::Kind::Accepted || outcome.kind == WireOutcome::Kind::Rejected) {
            replies.append(outcome.kind == WireOutcome::Kind::Accepted ? '\x06' : '\x15');
        }
    }
    return replies;
}

/// What is done at once may take so long, fifty or a hundred times over. It takes a few milliseconds, but for
/// a machine that has much else to do.
constexpr qint64 AtOnceUs = 5000000;

QByteArray random(std::mt19937& generator, int size)
{
    QByteArray bytes(size, '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(generator() % 256);
    }
    return bytes;
}

QByteArray text(std::mt19937& generator, int size)
{
    QByteArray bytes(size, '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>('!' + generator() % 94);
    }
    return bytes;
}

} // namespace

/// A whole unit in a process of its own, and peers at its TCP port that mean it no good or are broken.
class TestHostileTcp : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void readerThatNeverReadsCostsLittleAndGetsEveryAnswerLater_data();
    void readerThatNeverReadsCostsLittleAndGetsEveryAnswerLater();
    void olderClientThatFloodsIsNotTakenInAndTheNewerOneIsServed();
    void tenThousandConnectionsLeaveNothingBehind();
    void clientThatDiesAtAnyByteIsFollowedByOneThatIsServed_data();
    void clientThatDiesAtAnyByteIsFollowedByOneThatIsServed();
    void connectionsThatSayNothingTakeNobodysPlace();
    void peersThatVanishWithoutAWordTakeNobodysPlace_data();
    void peersThatVanishWithoutAWordTakeNobodysPlace();
    void peersThatVanishWithoutAWordAreFoundOutByKeepAlive();
    void garbageIsSurvived_data();
    void garbageIsSurvived();
    void largestFramesBackToBack();
    void aHundredClientsAtOnce();

private:
    bool isServing() const
    {
        RawPeer peer = RawPeer::connectTo(m_unit->port());
        return HostileWords::bringToAnEnd(peer) && peer.exchange(numberedRead(7), 8) == numberedAnswer(7);
    }

    int growth() const { return m_unit->residentKiB() - m_memory; }
    QString grown() const { return QStringLiteral("grown by %1 KiB").arg(growth()); }

    std::unique_ptr<SimulatorProcess> m_unit;
    int m_memory = 0;
    int m_descriptors = 0;
};

void TestHostileTcp::init()
{
    m_unit = std::make_unique<SimulatorProcess>();
    QVERIFY2(m_unit->start(), qPrintable(m_unit->errors()));
    m_descriptors = m_unit->descriptors();
    RawPeer first = RawPeer::connectTo(m_unit->port());
    QCOMPARE(first.exchange(numberedRead(1), 8), numberedAnswer(1));
    m_memory = m_unit->residentKiB();
    first.close();
    QTRY_COMPARE(m_unit->descriptors(), m_descriptors);
}

void TestHostileTcp::cleanup()
{
    QVERIFY(m_unit->isRunning());
    QVERIFY2(growth() < MaxGrowthKiB, qPrintable(grown()));
    QCOMPARE(m_unit->end(SIGTERM), 0);
    QCOMPARE(m_unit->errors(), QString());
}

void TestHostileTcp::readerThatNeverReadsCostsLittleAndGetsEveryAnswerLater_data()
{
    QTest::addColumn<int>("textSize");
    QTest::addColumn<int>("rounds");
    QTest::newRow("small answers") << 0 << 4000;
    QTest::newRow("large answers") << 60000 << 15; // 90 MB of answers to 20 KB of requests
}

void TestHostileTcp::readerThatNeverReadsCostsLittleAndGetsEveryAnswerLater()
{
    QFETCH(int, textSize);
    QFETCH(int, rounds);
    RawPeer peer = RawPeer::connectTo(m_unit->port());
    const QByteArray text = QByteArray(1, '\1') + QByteArray(textSize, 'x');
    QCOMPARE(peer.exchange(frame(Protocol::Write, 0x90, text), 1), acknowledgement());

    // Pairs of requests: one whose answer has a number, one whose answer is large.
    Conversation pairs;
    for (int number = 0; number < 100; ++number) {
        pairs.add(numberedRead(number), numberedAnswer(number));
        pairs.add(frame(Protocol::Read, 0x90, QByteArray(1, '\1')),
                  acknowledgement() + frame(Protocol::Read, 0x90, text));
    }
    pairs.repeat(rounds);
    QVERIFY(pairs.sendUntilBlocked(peer));
    QVERIFY2(growth() < MaxGrowthKiB, qPrintable(grown()));
    QVERIFY2(pairs.finish(peer), qPrintable(pairs.report()));
}

void TestHostileTcp::olderClientThatFloodsIsNotTakenInAndTheNewerOneIsServed()
{
    RawPeer older = RawPeer::connectTo(m_unit->port());
    QCOMPARE(older.exchange(numberedRead(2), 8), numberedAnswer(2));
    RawPeer newer = RawPeer::connectTo(m_unit->port());
    QCOMPARE(newer.exchange(numberedRead(3), 8), numberedAnswer(3));
    const QByteArray flood = numberedRead(4).repeated(1000);
    qint64 flooded = 0;
    QElapsedTimer timer;
    qint64 waited = 0;
    for (int number = 0; number < 100; ++number) {
        flooded += older.sendUntilBlocked(flood, 4 << 20, 0);
        timer.start();
        QCOMPARE(newer.exchange(numberedRead(number), 8), numberedAnswer(number));
        waited += timer.nsecsElapsed() / 1000;
    }
    QVERIFY2(waited < AtOnceUs, qPrintable(QStringLiteral("waited for %1 us").arg(waited)));
    QVERIFY(flooded > flood.size());
    QVERIFY2(flooded < 32 << 20, "the kernel's buffers alone take it");
    QVERIFY2(growth() < MaxGrowthKiB, qPrintable(grown()));
    QCOMPARE(older.receiveFor(0), QByteArray());
}

void TestHostileTcp::tenThousandConnectionsLeaveNothingBehind()
{
    const QByteArray words[] = {{}, numberedRead(5), numberedRead(5).left(3), QByteArray(200, 'x')};
    for (int round = 0; round < 10000; ++round) {
        RawPeer peer = RawPeer::connectTo(m_unit->port());
        QVERIFY2(peer.isOpen(), qPrintable(QString::number(round)));
        peer.send(words[round % 4]);
        if (round % 40 == 1) {
            // Now and then the unit is waited for: it is not the kernel's queue that is tested here.
            peer.receiveFor(20);
        }
        if (round / 4 % 2 == 0) {
            peer.reset();
        }
    }
    // A slow unit has its queue overrun all the same, and then the kernel tries for up to a minute to
    // complete connections whose peers have gone.
    QTRY_COMPARE_WITH_TIMEOUT(m_unit->descriptors(), m_descriptors, 120000);
    QVERIFY(isServing());
}

void TestHostileTcp::clientThatDiesAtAnyByteIsFollowedByOneThatIsServed_data()
{
    QTest::addColumn<QByteArray>("frame");
    QTest::newRow("short") << frame(Protocol::Write, 0x90, QByteArray("\1AB"));
    QTest::newRow("no payload") << frame(Protocol::Execute, 0x80);
    QTest::newRow("dropped") << frame(Protocol::Write, 0x00, QByteArray("AB"));
    QTest::newRow("long") << frame(Protocol::Write, 0x90, QByteArray(1, '\2') + QByteArray(300, 'x'));
}

/// There is one decoder for all clients: what one has begun, the next one's bytes continue. What the next one
/// must hear for each cut is told by a model of the decoder.
void TestHostileTcp::clientThatDiesAtAnyByteIsFollowedByOneThatIsServed()
{
    QFETCH(QByteArray, frame);
    ModelDecoder model;
    for (int cut = 0; cut <= frame.size(); ++cut) {
        for (const bool byReset : {false, true}) {
            const QByteArray where = QByteArray::number(cut) + (byReset ? " RST" : " FIN");
            // The answer to the first request shows that the unit has read what stands behind it.
            RawPeer dying = RawPeer::connectTo(m_unit->port());
            const QByteArray first = numberedRead(6) + frame.left(cut);
            const QByteArray heard = repliesOf(model.read(octets(first))).mid(1);
            QVERIFY2(dying.exchange(first, 8 + heard.size()) == numberedAnswer(6) + heard, where.constData());
            byReset ? dying.reset() : dying.close();

            RawPeer next = RawPeer::connectTo(m_unit->port());
            for (int attempt = 0; attempt < 400 && model.state != 0; ++attempt) {
                const QByteArray byte(1, model.state == 6 ? '\3' : '\0');
                const QByteArray replies = repliesOf(model.read(octets(byte)));
                QVERIFY2(next.exchange(byte, replies.size()) == replies, where.constData());
            }
            // What a dropped frame has left behind is given up here, with a rejection; else it is answered.
            const bool isFresh = repliesOf(model.read(octets(numberedRead(9)))) == acknowledgement();
            const QByteArray heardNext = isFresh ? numberedAnswer(9) : QByteArray("\x15");
            QVERIFY2(next.exchange(numberedRead(9), heardNext.size()) == heardNext, where.constData());
            QCOMPARE(repliesOf(model.read(octets(numberedRead(8)))), acknowledgement());
            QVERIFY2(next.exchange(numberedRead(8), 8) == numberedAnswer(8), where.constData());
        }
    }
}

void TestHostileTcp::connectionsThatSayNothingTakeNobodysPlace()
{
    std::vector<RawPeer> idle;
    for (int i = 0; i < 3 * TcpServer::MaxOlderClients; ++i) {
        idle.push_back(RawPeer::connectTo(m_unit->port()));
        QVERIFY(idle.back().send(i % 2 == 0 ? QByteArray() : QByteArray("\r")));
    }
    RawPeer peer = RawPeer::connectTo(m_unit->port());
    QCOMPARE(peer.exchange(numberedRead(10), 8), numberedAnswer(10));
    QTRY_VERIFY(m_unit->descriptors() <= m_descriptors + 1 + TcpServer::MaxOlderClients);
    QCOMPARE(peer.exchange(numberedRead(11), 8), numberedAnswer(11));
}

void TestHostileTcp::peersThatVanishWithoutAWordTakeNobodysPlace_data()
{
    const QByteArray unfinished = frame(Protocol::Write, 0x90, QByteArray("\2AB"));
    const QByteArray large = frame(Protocol::Read, 0x90, QByteArray(1, '\1'));
    QTest::addColumn<QByteArray>("lastWords");
    QTest::addColumn<QByteArray>("continuation"); // which is the next one's to say
    QTest::newRow("at rest") << QByteArray() << QByteArray();
    QTest::newRow("in the middle of a frame") << unfinished.left(6) << unfinished.mid(6);
    QTest::newRow("with answers on the way") << large.repeated(20) << QByteArray();
}

void TestHostileTcp::peersThatVanishWithoutAWordTakeNobodysPlace()
{
    QFETCH(QByteArray, lastWords);
    QFETCH(QByteArray, continuation);
    const QByteArray text = QByteArray(1, '\1') + QByteArray(60000, 'x');
    std::vector<RawPeer> vanished;
    RawPeer next = RawPeer::connectTo(m_unit->port());
    QCOMPARE(next.exchange(frame(Protocol::Write, 0x90, text), 1), acknowledgement());
    QElapsedTimer timer;
    qint64 waited = 0;
    for (int number = 0; number < 50; ++number) {
        vanished.push_back(RawPeer::connectTo(m_unit->port()));
        RawPeer& peer = vanished.back();
        // The answer shows that the unit has read what stands behind the request, too.
        QCOMPARE(peer.exchange(numberedRead(number) + lastWords, 8), numberedAnswer(number));
        if (!peer.vanish()) {
            QSKIP("this machine does not let a peer vanish");
        }
        timer.start();
        next = RawPeer::connectTo(m_unit->port());
        const QByteArray heard = continuation.isEmpty() ? QByteArray() : acknowledgement();
        QCOMPARE(next.exchange(continuation + numberedRead(99 - number), heard.size() + 8),
                 heard + numberedAnswer(99 - number));
        waited += timer.nsecsElapsed() / 1000;
        QVERIFY(m_unit->descriptors() <= m_descriptors + 1 + TcpServer::MaxOlderClients);
    }
    QVERIFY2(waited < AtOnceUs, qPrintable(QStringLiteral("waited for %1 us").arg(waited)));
    QVERIFY(m_unit->descriptors() > m_descriptors + TcpServer::MaxOlderClients / 2); // nor has it noticed
    QVERIFY2(growth() < MaxGrowthKiB, qPrintable(grown()));
}

/// Else those that the unit still keeps would stay for as long as nobody else comes.
void TestHostileTcp::peersThatVanishWithoutAWordAreFoundOutByKeepAlive()
{
    if (!hasOwn("net")) {
        QSKIP("in the machine's own network a test does not change how long a peer may be silent");
    }
    const KeepAliveTimes keepAlive;
    if (!keepAlive.areSet()) {
        QSKIP("this machine does not permit to change how long a peer may be silent");
    }
    std::vector<RawPeer> vanished;
    for (int number = 0; number < TcpServer::MaxOlderClients; ++number) {
        vanished.push_back(RawPeer::connectTo(m_unit->port()));
        QCOMPARE(vanished.back().exchange(numberedRead(number), 8), numberedAnswer(number));
        if (!vanished.back().vanish()) {
            QSKIP("this machine does not let a peer vanish");
        }
    }
    RawPeer newest = RawPeer::connectTo(m_unit->port());
    QCOMPARE(newest.exchange(numberedRead(12), 8), numberedAnswer(12));
    QTRY_COMPARE_WITH_TIMEOUT(m_unit->descriptors(), m_descriptors + 1, 60000);
    QCOMPARE(newest.exchange(numberedRead(13), 8), numberedAnswer(13));
    QVERIFY(newest.vanish());
    QTRY_COMPARE_WITH_TIMEOUT(m_unit->descriptors(), m_descriptors, 60000);
    QVERIFY(isServing());
}

void TestHostileTcp::garbageIsSurvived_data()
{
    QTest::addColumn<QByteArray>("garbage");
    const int million = 1000000;
    std::mt19937 generator(1);
    QTest::newRow("random") << random(generator, million);
    QTest::newRow("control bytes") << QByteArray(million, '\r');
    QTest::newRow("only starts") << QByteArray(million, '\2');
    QTest::newRow("only ends") << QByteArray(million, '\3');
    QTest::newRow("frames that announce more than they have")
        << QByteArray::fromHex("0290 02 FFFF 01").repeated(million / 6);
    QTest::newRow("unknown groups") << QByteArray::fromHex("029003").repeated(million / 3);
    // Typed characters gather in one text, which has no limit but the cost of copying it for each: a million
    // of them would take the unit a minute.
    QTest::newRow("typed characters") << QByteArray(20000, 'x');
}

void TestHostileTcp::garbageIsSurvived()
{
    QFETCH(QByteArray, garbage);
    RawPeer peer = RawPeer::connectTo(m_unit->port());
    std::mt19937 generator(2);
    for (int at = 0; at < garbage.size();) {
        const int size = 1 + static_cast<int>(generator() % 5000);
        QVERIFY(peer.send(garbage.mid(at, size)));
        at += size;
        peer.receiveFor(0);
    }
    peer.close();
    QVERIFY(isServing());
}

void TestHostileTcp::largestFramesBackToBack()
{
    RawPeer peer = RawPeer::connectTo(m_unit->port());
    std::mt19937 generator(3);
    QByteArray stream;
    QByteArray last;
    const int count = 60;
    for (int i = 0; i < count; ++i) {
        last = QByteArray(1, '\3') + text(generator, Protocol::MaxPayloadSize - 1);
        stream += frame(Protocol::Write, 0x90, last);
    }
    for (int at = 0; at < stream.size();) {
        const int size = 1 + static_cast<int>(generator() % 100000);
        QVERIFY(peer.send(stream.mid(at, size)));
        at += size;
    }
    QCOMPARE(peer.receive(count), acknowledgement().repeated(count));

    const QByteArray request = frame(Protocol::Read, 0x90, QByteArray(1, '\3'));
    const QByteArray answer = acknowledgement() + frame(Protocol::Read, 0x90, last);
    QVERIFY(peer.send(request.repeated(count)));
    for (int i = 0; i < count; ++i) {
        QVERIFY2(peer.receive(answer.size()) == answer, qPrintable(QString::number(i)));
    }
}

void TestHostileTcp::aHundredClientsAtOnce()
{
    std::vector<RawPeer> peers;
    for (int i = 0; i < 100; ++i) {
        peers.push_back(RawPeer::connectTo(m_unit->port()));
        QVERIFY(peers.back().isOpen());
    }
    QCOMPARE(peers.back().exchange(numberedRead(50), 8), numberedAnswer(50));
    for (RawPeer& peer : peers) {
        peer.send(numberedRead(51)); // those that the unit has closed may fail
    }
    QCOMPARE(peers.back().receive(8), numberedAnswer(51));
    QVERIFY(m_unit->descriptors() <= m_descriptors + 1 + TcpServer::MaxOlderClients);
    std::shuffle(peers.begin(), peers.end(), std::mt19937(4));
    while (!peers.empty()) {
        peers.pop_back();
    }
    QTRY_COMPARE(m_unit->descriptors(), m_descriptors);
    QVERIFY(isServing());
}

QTEST_GUILESS_MAIN(TestHostileTcp)
#include "tst_hostile_tcp.moc"
