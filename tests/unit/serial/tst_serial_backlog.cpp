// A controller that asks and does not read: what waits for it is bounded, and nothing of it is lost.

#include "Isolation.h"
#include "ObservedSerialAdaptor.h"
#include "PseudoAdapter.h"
#include "ResidentMemory.h"

#include <Tolvar/Varundo/FrameCodec.h>

#include <QElapsedTimer>
#include <QtTest>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

constexpr const char* Node = "/dev/ttyUSB5";
const QString Name = QStringLiteral("ttyUSB5");
constexpr int AnswerSize = 60000;
constexpr int KernelBuffers = 64 * 1024; // a pseudo-terminal's, both directions

/// A request that carries its number, so that nothing can be lost, doubled or swapped unnoticed.
CommandMessage request(int number)
{
    return {static_cast<quint8>(1 + number % 255), 1, 2,
            QByteArray(1, static_cast<char>(number % 256)) + static_cast<char>(number / 256)};
}

CommandMessage answerTo(const CommandMessage& asked)
{
    return {asked.cmdId, 1, AnswerSize,
            asked.data + QByteArray(AnswerSize - asked.data.size(), static_cast<char>(asked.cmdId))};
}

/// Writes as much as the line takes until it has taken nothing for a while; returns how much that was.
int sendUntilRefused(PseudoAdapter& adapter, const QByteArray& bytes, int quietMs = 300)
{
    int sent = 0;
    QElapsedTimer sinceTaken;
    sinceTaken.start();
    while (sent < bytes.size() && sinceTaken.elapsed() < quietMs) {
        QCoreApplication::processEvents();
        if (const int taken = adapter.send(bytes.mid(sent, 4096))) {
            sent += taken;
            sinceTaken.start();
        } else {
            QTest::qSleep(1);
        }
    }
    return sent;
}

} // namespace

class TestSerialBacklog : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void answersThatNobodyReadsAreBoundedAndNoneIsLost();
    void acknowledgementsThatNobodyReadsAreBoundedAndNoneIsLost();
    void bytesThatAreNotReadAreLeftOnTheLine();
    void lineThatDrainsAgainIsHeardAgain();
    void commandsThatWaitForTheControllerAreCarriedOutWhenTheLineCloses();
};

void TestSerialBacklog::initTestCase()
{
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
}

void TestSerialBacklog::answersThatNobodyReadsAreBoundedAndNoneIsLost()
{
    const int count = 2000; // more requests than the buffers hold; their answers would be 120 MB
    QByteArray requests;
    for (int number = 0; number < count; ++number) {
        requests += encodeFrame(request(number));
    }
    requests += QByteArray(3 * SerialAdaptor::MaxUnreadBytes, '\n'); // filler that asks for nothing

    PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    unit.onRecord([&](const CommandMessage& asked) { unit->writeMessage(answerTo(asked)); });
    unit->openSerialPort(Name);
    const qint64 before = residentMemory();
    int sent = sendUntilRefused(adapter, requests);
    QVERIFY(sent < requests.size());
    const size_t actedUpon = unit.records().size();
    QVERIFY(actedUpon >= 1 && actedUpon < 10);
    // The reply that went over the limit is whole: its acknowledgement and its answer.
    QVERIFY(unit.port().bytesToWrite() < SerialAdaptor::MaxUnsentBytes + 1 + AnswerSize + 6);
    QVERIFY2(residentMemory() - before < MaxGrowth, qPrintable(QString::number(residentMemory() - before)));
    QVERIFY(unit.port().bytesAvailable() <= SerialAdaptor::MaxUnreadBytes);

    // The controller reads, slowly at first, and compares each reply as it comes.
    QByteArray received;
    int next = 0;
    QElapsedTimer timer;
    timer.start();
    while (next < count && timer.elapsed() < 30000) { // without anything that comes
        sent += adapter.send(requests.mid(sent, 4096));
        const QByteArray more = adapter.receive(1, 1000);
        if (!more.isEmpty()) {
            timer.restart();
        }
        received += more;
        const QByteArray reply = '\x06' + encodeFrame(answerTo(request(next)));
        if (received.size() >= reply.size()) {
            QVERIFY2(received.startsWith(reply), qPrintable(QString::number(next)));
            received.remove(0, reply.size());
            ++next;
        }
    }
    QCOMPARE(next, count);
    QCOMPARE(received, QByteArray());
    QCOMPARE(unit.records().size(), size_t(count));
    QVERIFY(residentMemory() - before < MaxGrowth);
}

void TestSerialBacklog::acknowledgementsThatNobodyReadsAreBoundedAndNoneIsLost()
{
    const QByteArray frame = QByteArray::fromHex("020501000003");
    const int count = 200000;
    PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    unit->openSerialPort(Name);
    const QByteArray frames = frame.repeated(count);
    int sent = sendUntilRefused(adapter, frames);
    QVERIFY(sent < frames.size());
    QVERIFY(unit.port().bytesToWrite() <= SerialAdaptor::MaxUnsentBytes);

    QByteArray received;
    QElapsedTimer timer;
    timer.start();
    while (received.size() < count && timer.elapsed() < 30000) {
        sent += adapter.send(frames.mid(sent, 4096));
        received += adapter.receive(1, 10);
    }
    QCOMPARE(received, QByteArray(count, '\x06'));
    QCOMPARE(unit->frameCounters().accepted, quint64(count));
}

void TestSerialBacklog::bytesThatAreNotReadAreLeftOnTheLine()
{
    PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    unit->openSerialPort(Name);
    unit->writeMessage({1, 1, 65535, QByteArray(65535, 'a')});
    unit->writeMessage({1, 1, 65535, QByteArray(65535, 'b')});
    QTest::qWait(20);
    const QByteArray typed(1024 * 1024, 't');
    const int sent = sendUntilRefused(adapter, typed);
    QVERIFY2(sent <= SerialAdaptor::MaxUnreadBytes + KernelBuffers, qPrintable(QString::number(sent)));
    QCOMPARE(unit.typed(), QByteArray());

    const QByteArray answers = adapter.receive(2 * 65541);
    QCOMPARE(answers.size(), 2 * 65541);
    QTRY_COMPARE(unit.typed(), typed.left(sent));
}

void TestSerialBacklog::lineThatDrainsAgainIsHeardAgain()
{
    PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    unit.onRecord([&](const CommandMessage& asked) { unit->writeMessage(answerTo(asked)); });
    unit->openSerialPort(Name);
    const int replySize = 1 + AnswerSize + 6;
    for (int round = 0; round < 5; ++round) {
        QByteArray requests;
        QByteArray replies;
        for (int number = 0; number < 6; ++number) {
            requests += encodeFrame(request(number));
            replies += '\x06' + encodeFrame(answerTo(request(number)));
        }
        QCOMPARE(sendUntilRefused(adapter, requests, 50), requests.size());
        QTest::qWait(50); // nobody reads
        QVERIFY(unit.records().size() < size_t(6 * (round + 1)));
        QVERIFY(adapter.receive(6 * replySize) == replies);
    }
    QCOMPARE(unit.port().bytesToWrite(), 0);
}

void TestSerialBacklog::commandsThatWaitForTheControllerAreCarriedOutWhenTheLineCloses()
{
    PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    unit.onRecord([&](const CommandMessage& asked) { unit->writeMessage(answerTo(asked)); });
    unit->openSerialPort(Name);
    const size_t count = 6;
    QByteArray requests;
    for (size_t number = 0; number < count; ++number) {
        requests += encodeFrame(request(static_cast<int>(number)));
    }
    QCOMPARE(sendUntilRefused(adapter, requests, 50), requests.size());
    QTRY_VERIFY(!unit.records().empty());
    QVERIFY(unit.records().size() < count);
    unit->closeSerialPort();
    QCOMPARE(unit.records().size(), count);
}

QTEST_GUILESS_MAIN(TestSerialBacklog)
#include "tst_serial_backlog.moc"
