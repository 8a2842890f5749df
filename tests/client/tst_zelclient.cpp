#include "FakeTcpUnit.h"

#include <Tolvar/Varundo/Client/CommandCatalog.h>
#include <Tolvar/Varundo/Client/PayloadBuilder.h>
#include <Tolvar/Varundo/Client/TcpLink.h>
#include <Tolvar/Varundo/Client/ZelClient.h>

#include <QBuffer>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QtTest>

#include <algorithm>
#include <memory>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Client;
using Tolvar::Varundo::Tests::FakeTcpUnit;
using Tolvar::Varundo::Tests::FakeUnit;
using Outcome = Reply::Outcome;

namespace {

constexpr int ShortTimeout = 150; // for tests in which the unit stays silent
constexpr int LongTimeout = 10000;

CommandMessage readCommand(quint8 id)
{
    return {id, Protocol::Read, 0, {}};
}

CommandMessage writePosition(quint8 column)
{
    return makeCommand(*findCommand(Protocol::Write, 0x32), PayloadBuilder::position(column, 0));
}

const CommandMessage ShowPan{0xF0, Protocol::Execute, 0, {}};

/// A device that is no socket, and does not announce its last bytes on their own.
class LineEnd : public QIODevice
{
public:
    [[nodiscard]] bool isSequential() const override { return true; }
    [[nodiscard]] qint64 bytesAvailable() const override
    {
        return m_last.size() + QIODevice::bytesAvailable();
    }

    void end(const QByteArray& lastBytes)
    {
        m_last = lastBytes;
        emit readChannelFinished();
    }

protected:
    qint64 readData(char* data, qint64 maxSize) override
    {
        const auto size = std::min<qint64>(maxSize, m_last.size());
        std::copy_n(m_last.constData(), size, data);
        m_last.remove(0, static_cast<int>(size));
        return size;
    }
    qint64 writeData(const char*, qint64 size) override { return size; }

private:
    QByteArray m_last;
};

} // namespace

class tst_ZelClient : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void writeIsAcknowledged();
    void readIsAnswered();
    void rejectedRequestSaysSo();
    void silenceEndsInATimeOut();
    void acknowledgeGivesTheAnswerATimeLimitOfItsOwn();
    void unknownReadIsAcknowledgedButUnanswered();
    void closedConnectionIsToldAtOnce();
    void closeInTheMiddleOfAnAnswerIsALostConnection();
    void replyInFrontOfTheCloseStillCounts();
    void requestsAfterTheEndFailWithItsReason();
    void garbageBetweenRepliesIsIgnored();
    void garbageThatLooksLikeALongFrameCostsOneRequestNotTheConnection();
    void answerToAnotherCommandIsNotTaken();
    void answerInFrontOfTheAcknowledgeIsNotTaken();
    void lateAcknowledgeIsNotTakenForTheNextRequest();
    void lateAnswerOfTheSameCommandIsNotTakenForTheNextRequest();
    void echoFollowsARejectionAndClosesAHeldFrame();
    void unitThatStaysSilentFailsEveryRequestInItsTime();
    void requestsAreSentOneByOneByDefault();
    void windowLetsRequestsOverlap();
    void nextAcknowledgeProvesThatAReadHasNoAnswer();
    void requestsBehindARejectedOneAreAbandoned();
    void invalidRequestsAreNotSent_data();
    void invalidRequestsAreNotSent();
    void typedBytesNeedNoReply();
    void rawBytesAreRefusedWhileARequestIsOnTheWay();
    void deletedReplyDoesNotHurt();
    void listenerMayDeleteTheClient();
    void deletedClientEndsTheWait();
    void acknowledgeOfRawBytesIsNotTakenForTheNextRequest();
    void deviceThatIsNotOpenIsNoConnection();
    void anyDeviceWillDo();
    void endOfAnyDeviceIsTheEndOfTheConnection();
    void refusedConnectionNamesHostPortAndReason();
    void hostThatDoesNotAnswerIsGivenUp();

private:
    void connectClient(int timeout);

    std::unique_ptr<FakeTcpUnit> m_unit;
    std::unique_ptr<TcpLink> m_link;
    std::unique_ptr<ZelClient> m_client;
};

void tst_ZelClient::init()
{
    m_unit = std::make_unique<FakeTcpUnit>();
    m_unit->setAnswer(0x30, PayloadBuilder::single(12.5F));
    m_unit->setAnswer(0x31, QByteArray::fromHex("00010A02"));
}

void tst_ZelClient::cleanup()
{
    m_client.reset();
    m_link.reset();
    m_unit.reset();
}

void tst_ZelClient::connectClient(int timeout)
{
    m_link = std::make_unique<TcpLink>(QStringLiteral("127.0.0.1"), m_unit->port());
    QVERIFY(m_link->openAndWait(LongTimeout));
    m_client = std::make_unique<ZelClient>(m_link->device(), m_link->peerName());
    m_client->setTimeout(timeout);
    QTRY_VERIFY(m_unit->hasClient());
}

void tst_ZelClient::writeIsAcknowledged()
{
    connectClient(LongTimeout);
    Reply* reply = m_client->send(writePosition(7));
    QSignalSpy finished(reply, &Reply::finished);
    QCOMPARE(reply->outcome(), Outcome::Pending);
    QCOMPARE(reply->wait(), Outcome::Acknowledged);
    QVERIFY(reply->succeeded());
    QVERIFY(reply->errorText().isEmpty());
    QCOMPARE(finished.count(), 1);
    QCOMPARE(m_unit->frames().size(), 1);
    QCOMPARE(m_unit->frames().first().data, QByteArray::fromHex("0700"));
}

void tst_ZelClient::readIsAnswered()
{
    connectClient(LongTimeout);
    Reply* reply = m_client->send(readCommand(0x30));
    QCOMPARE(reply->wait(), Outcome::Answered);
    QCOMPARE(reply->answer().cmdId, quint8(0x30));
    QCOMPARE(reply->answer().data, PayloadBuilder::single(12.5F));
}

void tst_ZelClient::rejectedRequestSaysSo()
{
    connectClient(LongTimeout);
    m_unit->setBehaviour([this](const CommandMessage&) { m_unit->say(FakeUnit::nack()); });
    Reply* reply = m_client->send(ShowPan);
    QCOMPARE(reply->wait(), Outcome::Rejected);
    QVERIFY(reply->errorText().contains(QLatin1String("NACK")));
    QVERIFY(!reply->succeeded());
}

void tst_ZelClient::silenceEndsInATimeOut()
{
    connectClient(ShortTimeout);
    m_unit->setBehaviour([](const CommandMessage&) {});
    QElapsedTimer elapsed;
    elapsed.start();
    Reply* reply = m_client->send(ShowPan);
    QCOMPARE(reply->wait(), Outcome::TimedOut);
    QVERIFY(elapsed.elapsed() >= ShortTimeout - 20);
    QVERIFY2(reply->errorText().contains(m_link->peerName()), qPrintable(reply->errorText()));
}

void tst_ZelClient::acknowledgeGivesTheAnswerATimeLimitOfItsOwn()
{
    constexpr int Limit = 1000;
    connectClient(Limit);
    m_unit->setBehaviour([this](const CommandMessage&) {
        QTimer::singleShot(Limit * 6 / 10, m_unit.get(), [this] { m_unit->say(FakeUnit::ack()); });
        QTimer::singleShot(Limit * 12 / 10, m_unit.get(),
                           [this] { m_unit->say(FakeUnit::answer(0x30, "late")); });
    });
    QCOMPARE(m_client->send(readCommand(0x30))->wait(), Outcome::Answered);
}

void tst_ZelClient::unknownReadIsAcknowledgedButUnanswered()
{
    connectClient(ShortTimeout);
    Reply* reply = m_client->send(readCommand(0x02));
    QCOMPARE(reply->wait(), Outcome::Unanswered);
    QVERIFY2(reply->errorText().startsWith(
                 QLatin1String("acknowledged, but no answer: the unit does not know this command")),
             qPrintable(reply->errorText()));
}

void tst_ZelClient::closedConnectionIsToldAtOnce()
{
    connectClient(LongTimeout);
    QSignalSpy lost(m_client.get(), &ZelClient::connectionLost);
    m_unit->setBehaviour([this](const CommandMessage&) { m_unit->hangUp(); });
    Reply* first = m_client->send(ShowPan);
    Reply* second = m_client->send(ShowPan);
    QElapsedTimer elapsed;
    elapsed.start();
    QCOMPARE(first->wait(), Outcome::ConnectionLost);
    QCOMPARE(second->wait(), Outcome::ConnectionLost);
    QVERIFY(elapsed.elapsed() < LongTimeout / 2);
    QCOMPARE(lost.count(), 1);
    QVERIFY(!m_client->isConnected());
    QVERIFY2(first->errorText().contains(m_link->peerName()), qPrintable(first->errorText()));
    QVERIFY2(first->errorText().contains(QLatin1String("closed")), qPrintable(first->errorText()));
}

void tst_ZelClient::closeInTheMiddleOfAnAnswerIsALostConnection()
{
    connectClient(LongTimeout);
    m_unit->setBehaviour([this](const CommandMessage&) {
        m_unit->say(FakeUnit::ack() + FakeUnit::answer(0x30, QByteArray(4, 'x')).left(7));
        m_unit->hangUp();
    });
    Reply* reply = m_client->send(readCommand(0x30));
    QCOMPARE(reply->wait(), Outcome::ConnectionLost);
}

void tst_ZelClient::replyInFrontOfTheCloseStillCounts()
{
    connectClient(LongTimeout);
    m_unit->setBehaviour([this](const CommandMessage& frame) {
        m_unit->behaveWell(frame);
        m_unit->hangUp();
    });
    QCOMPARE(m_client->send(readCommand(0x30))->wait(), Outcome::Answered);
}

void tst_ZelClient::requestsAfterTheEndFailWithItsReason()
{
    connectClient(LongTimeout);
    m_client->fail(QStringLiteral("the line was cut"));
    Reply* reply = m_client->send(ShowPan);
    QCOMPARE(reply->wait(), Outcome::ConnectionLost);
    QVERIFY2(reply->errorText().contains(QLatin1String("the line was cut")), qPrintable(reply->errorText()));
    QVERIFY(m_unit->frames().isEmpty());
}

void tst_ZelClient::garbageBetweenRepliesIsIgnored()
{
    connectClient(LongTimeout);
    m_unit->setBehaviour([this](const CommandMessage& frame) {
        m_unit->say("xyz");
        m_unit->say(QByteArray::fromHex("0230FF00"));
        m_unit->behaveWell(frame);
        m_unit->say("abc");
    });
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(m_client->send(readCommand(0x30))->wait(), Outcome::Answered);
    }
}

void tst_ZelClient::garbageThatLooksLikeALongFrameCostsOneRequestNotTheConnection()
{
    connectClient(ShortTimeout);
    m_unit->setBehaviour([this](const CommandMessage& frame) {
        m_unit->setBehaviour({});
        m_unit->say(QByteArray::fromHex("023001FFFF")); // announces 65535 bytes that never come
        m_unit->behaveWell(frame);
    });
    QCOMPARE(m_client->send(ShowPan)->wait(), Outcome::TimedOut);
    // Its echo still goes into the frame that never ends.
    QCOMPARE(m_client->send(ShowPan)->wait(), Outcome::TimedOut);
    QCOMPARE(m_client->send(readCommand(0x30))->wait(), Outcome::Answered);
}

void tst_ZelClient::answerToAnotherCommandIsNotTaken()
{
    connectClient(LongTimeout);
    m_unit->setBehaviour([this](const CommandMessage& frame) {
        m_unit->say(FakeUnit::ack() + FakeUnit::answer(0x31, QByteArray(4, '\0')) +
                    FakeUnit::answer(frame.cmdId, QByteArray(4, '\x01')));
    });
    Reply* reply = m_client->send(readCommand(0x30));
    QCOMPARE(reply->wait(), Outcome::Answered);
    QCOMPARE(reply->answer().data, QByteArray(4, '\x01'));
}

void tst_ZelClient::answerInFrontOfTheAcknowledgeIsNotTaken()
{
    connectClient(LongTimeout);
    m_unit->setBehaviour([this](const CommandMessage& frame) {
        m_unit->say(FakeUnit::answer(frame.cmdId, "old!") + FakeUnit::ack() +
                    FakeUnit::answer(frame.cmdId, "new!"));
    });
    Reply* reply = m_client->send(readCommand(0x30));
    QCOMPARE(reply->wait(), Outcome::Answered);
    QCOMPARE(reply->answer().data, QByteArray("new!"));
}

void tst_ZelClient::lateAcknowledgeIsNotTakenForTheNextRequest()
{
    connectClient(ShortTimeout);
    m_unit->setBehaviour([](const CommandMessage&) {});
    QCOMPARE(m_client->send(ShowPan)->wait(), Outcome::TimedOut);

    // The unit wakes up, replies to what is past, then to the echo, and rejects the next request.
    m_unit->setBehaviour([this](const CommandMessage& echo) {
        m_unit->say(FakeUnit::ack());
        m_unit->behaveWell(echo);
        m_unit->setBehaviour([this](const CommandMessage&) { m_unit->say(FakeUnit::nack()); });
    });
    QCOMPARE(m_client->send(writePosition(1))->wait(), Outcome::Rejected);
}

void tst_ZelClient::lateAnswerOfTheSameCommandIsNotTakenForTheNextRequest()
{
    connectClient(ShortTimeout);
    m_unit->setBehaviour([this](const CommandMessage&) { m_unit->say(FakeUnit::ack()); });
    QCOMPARE(m_client->send(readCommand(0x30))->wait(), Outcome::Unanswered);

    m_unit->setBehaviour([this](const CommandMessage& echo) {
        m_unit->say(FakeUnit::answer(0x30, "old!"));
        m_unit->behaveWell(echo);
        m_unit->setAnswer(0x30, "new!");
        m_unit->setBehaviour({});
    });
    Reply* reply = m_client->send(readCommand(0x30));
    QCOMPARE(reply->wait(), Outcome::Answered);
    QCOMPARE(reply->answer().data, QByteArray("new!"));
}

void tst_ZelClient::echoFollowsARejectionAndClosesAHeldFrame()
{
    // A frame without its end byte, as a controller that went away in the middle leaves it behind.
    connectClient(LongTimeout);
    QVERIFY(m_client->writeUnframed(QByteArray::fromHex("023001010041 41")));
    QTRY_COMPARE(m_unit->received().size(), 7);
    m_client = std::make_unique<ZelClient>(m_link->device(), m_link->peerName());
    m_client->setTimeout(LongTimeout);

    QCOMPARE(m_client->send(ShowPan)->wait(), Outcome::Rejected);
    QCOMPARE(m_client->send(readCommand(0x30))->wait(), Outcome::Answered);
    QVERIFY(m_unit->received().contains(QByteArray::fromHex("0302900101001003")));
}

void tst_ZelClient::unitThatStaysSilentFailsEveryRequestInItsTime()
{
    connectClient(ShortTimeout);
    m_unit->setBehaviour([](const CommandMessage&) {});
    QVector<Reply*> replies;
    for (int i = 0; i < 4; ++i) {
        replies.append(m_client->send(ShowPan));
    }
    for (Reply* reply : replies) {
        QCOMPARE(reply->wait(), Outcome::TimedOut);
    }
    QVERIFY(m_client->isConnected());
    m_unit->setBehaviour({});
    QCOMPARE(m_client->send(ShowPan)->wait(), Outcome::Acknowledged);
}

void tst_ZelClient::requestsAreSentOneByOneByDefault()
{
    connectClient(LongTimeout);
    m_unit->setBehaviour([](const CommandMessage&) {});
    Reply* first = m_client->send(writePosition(1));
    Reply* second = m_client->send(writePosition(2));
    QTRY_COMPARE(m_unit->frames().size(), 1);
    QTest::qWait(20);
    QCOMPARE(m_unit->frames().size(), 1);
    m_unit->setBehaviour({});
    m_unit->say(FakeUnit::ack());
    QCOMPARE(first->wait(), Outcome::Acknowledged);
    QCOMPARE(second->wait(), Outcome::Acknowledged);
    QCOMPARE(m_unit->frames().at(1).data, QByteArray::fromHex("0200"));
}

void tst_ZelClient::windowLetsRequestsOverlap()
{
    connectClient(LongTimeout);
    m_client->setWindow(4);
    m_unit->setBehaviour([](const CommandMessage&) {});
    QVector<Reply*> replies;
    for (int i = 0; i < 6; ++i) {
        replies.append(m_client->send(readCommand(i % 2 == 0 ? 0x30 : 0x31)));
    }
    QTRY_COMPARE(m_unit->frames().size(), 4);
    m_unit->setBehaviour({});
    const QVector<CommandMessage> waiting = m_unit->frames();
    for (const CommandMessage& frame : waiting) {
        m_unit->behaveWell(frame);
    }
    for (int i = 0; i < replies.size(); ++i) {
        QCOMPARE(replies.at(i)->wait(), Outcome::Answered);
        QCOMPARE(int(replies.at(i)->answer().cmdId), i % 2 == 0 ? 0x30 : 0x31);
    }
    m_client->setWindow(1000);
    QCOMPARE(m_client->window(), ZelClient::MaxWindow);
}

void tst_ZelClient::nextAcknowledgeProvesThatAReadHasNoAnswer()
{
    connectClient(LongTimeout);
    m_client->setWindow(3);
    QElapsedTimer elapsed;
    elapsed.start();
    Reply* unknown = m_client->send(readCommand(0x02));
    Reply* write = m_client->send(writePosition(1));
    Reply* read = m_client->send(readCommand(0x30));
    QCOMPARE(unknown->wait(), Outcome::Unanswered);
    QCOMPARE(write->wait(), Outcome::Acknowledged);
    QCOMPARE(read->wait(), Outcome::Answered);
    QVERIFY(elapsed.elapsed() < LongTimeout / 2);
}

void tst_ZelClient::requestsBehindARejectedOneAreAbandoned()
{
    connectClient(LongTimeout);
    m_client->setWindow(3);
    m_unit->setBehaviour([this](const CommandMessage&) {
        m_unit->say(FakeUnit::nack());
        m_unit->setBehaviour([](const CommandMessage&) {});
    });
    Reply* first = m_client->send(writePosition(1));
    Reply* second = m_client->send(writePosition(2));
    QCOMPARE(first->wait(), Outcome::Rejected);
    QCOMPARE(second->wait(), Outcome::Abandoned);
    QVERIFY(second->errorText().contains(QLatin1String("may or may not")));
}

void tst_ZelClient::invalidRequestsAreNotSent_data()
{
    QTest::addColumn<int>("cmdId");
    QTest::addColumn<int>("grpId");
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("size");
    QTest::newRow("command 0") << 0 << 1 << 0 << 0;
    QTest::newRow("group 3") << 5 << 3 << 0 << 0;
    QTest::newRow("length of something else") << 5 << 2 << 3 << 2;
    QTest::newRow("more than a frame holds") << 5 << 2 << 0 << 65536;
}

void tst_ZelClient::invalidRequestsAreNotSent()
{
    QFETCH(int, cmdId);
    QFETCH(int, grpId);
    QFETCH(int, length);
    QFETCH(int, size);
    connectClient(LongTimeout);
    Reply* reply = m_client->send({static_cast<quint8>(cmdId), static_cast<quint8>(grpId),
                                   static_cast<quint16>(length), QByteArray(size, 'x')});
    QCOMPARE(reply->wait(), Outcome::NotSent);
    QVERIFY(!reply->errorText().isEmpty());
    QCOMPARE(m_client->send(ShowPan)->wait(), Outcome::Acknowledged);
    QCOMPARE(m_unit->frames().size(), 1);
}

void tst_ZelClient::typedBytesNeedNoReply()
{
    connectClient(LongTimeout);
    QSignalSpy sent(m_client.get(), &ZelClient::sent);
    QVERIFY(m_client->writeUnframed("abc\xFF"));
    QCOMPARE(m_client->sendEcho()->wait(), Outcome::Answered);
    QCOMPARE(m_unit->typed(), QByteArray("abc\xFF"));
    QCOMPARE(sent.count(), 2); // the order of replies is still certain: no echo but the asked one
}

void tst_ZelClient::rawBytesAreRefusedWhileARequestIsOnTheWay()
{
    connectClient(LongTimeout);
    Reply* reply = m_client->send(ShowPan);
    QVERIFY(!m_client->writeUnframed(QByteArray::fromHex("0206")));
    QCOMPARE(reply->wait(), Outcome::Acknowledged);
}

void tst_ZelClient::acknowledgeOfRawBytesIsNotTakenForTheNextRequest()
{
    connectClient(LongTimeout);
    m_unit->setBehaviour([this](const CommandMessage& frame) {
        // Everything is well but the last request.
        if (frame.grpId == Protocol::Write) {
            m_unit->say(FakeUnit::nack());
        } else {
            m_unit->behaveWell(frame);
        }
    });
    QVERIFY(m_client->writeUnframed(QByteArray::fromHex("02F000000003")));
    QCOMPARE(m_client->send(writePosition(1))->wait(), Outcome::Rejected);
}

void tst_ZelClient::deletedReplyDoesNotHurt()
{
    connectClient(LongTimeout);
    delete m_client->send(readCommand(0x30));
    QCOMPARE(m_client->send(readCommand(0x31))->wait(), Outcome::Answered);
}

void tst_ZelClient::listenerMayDeleteTheClient()
{
    connectClient(LongTimeout);
    connect(m_client.get(), &ZelClient::received, this, [this] { m_client.reset(); });
    m_client->send(readCommand(0x30));
    QTRY_VERIFY(!m_client);
}

void tst_ZelClient::deletedClientEndsTheWait()
{
    connectClient(LongTimeout);
    m_unit->setBehaviour([](const CommandMessage&) {});
    Reply* reply = m_client->send(ShowPan);
    QTimer::singleShot(20, this, [this] { m_client.reset(); });
    QCOMPARE(reply->wait(), Outcome::ConnectionLost);
}

void tst_ZelClient::deviceThatIsNotOpenIsNoConnection()
{
    QBuffer closed;
    ZelClient client(&closed, QStringLiteral("nowhere"));
    QVERIFY(!client.isConnected());
    Reply* reply = client.send(ShowPan);
    QCOMPARE(reply->wait(), Outcome::ConnectionLost);
    QVERIFY(reply->errorText().contains(QLatin1String("nowhere")));
}

void tst_ZelClient::anyDeviceWillDo()
{
    QByteArray written;
    QBuffer buffer(&written);
    QVERIFY(buffer.open(QIODevice::ReadWrite));
    ZelClient client(&buffer, QStringLiteral("a line"));
    client.setTimeout(ShortTimeout);
    Reply* reply = client.send(ShowPan);
    QCOMPARE(written.toHex(), QByteArray("02f000000003"));
    QCOMPARE(reply->wait(), Outcome::TimedOut);
    buffer.close();
    QVERIFY(!client.isConnected());
}

void tst_ZelClient::endOfAnyDeviceIsTheEndOfTheConnection()
{
    LineEnd line;
    QVERIFY(line.open(QIODevice::ReadWrite | QIODevice::Unbuffered));
    ZelClient client(&line, QStringLiteral("a line"));
    client.setWindow(2);
    Reply* first = client.send(ShowPan);
    Reply* second = client.send(ShowPan);
    line.end(FakeUnit::ack());
    QCOMPARE(first->wait(), Outcome::Acknowledged);
    QCOMPARE(second->wait(), Outcome::ConnectionLost);
    QCOMPARE(second->errorText(), QStringLiteral("connection to a line lost: the unit closed it"));
}

void tst_ZelClient::refusedConnectionNamesHostPortAndReason()
{
    const quint16 port = m_unit->port();
    m_unit.reset(); // nobody listens there any more
    TcpLink link(QStringLiteral("127.0.0.1"), port);
    QSignalSpy failed(&link, &TcpLink::failed);
    QVERIFY(!link.openAndWait(LongTimeout));
    QCOMPARE(link.errorText(),
             QStringLiteral("cannot connect to 127.0.0.1:%1: Connection refused").arg(port));
    QCOMPARE(failed.count(), 1);
    QCOMPARE(TcpLink(QStringLiteral("::1"), 5).peerName(), QStringLiteral("[::1]:5"));
}

void tst_ZelClient::hostThatDoesNotAnswerIsGivenUp()
{
    // An address for documentation: nobody has it, so packets to it get lost or are refused on the way.
    TcpLink link(QStringLiteral("192.0.2.1"), 9998);
    QElapsedTimer elapsed;
    elapsed.start();
    QVERIFY(!link.openAndWait(ShortTimeout));
    QVERIFY(elapsed.elapsed() < LongTimeout / 2);
    QVERIFY2(link.errorText().startsWith(QLatin1String("cannot connect to 192.0.2.1:9998: ")),
             qPrintable(link.errorText()));
}

QTEST_GUILESS_MAIN(tst_ZelClient)
#include "tst_zelclient.moc"
