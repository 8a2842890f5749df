// The selected interface, seen from the serial line, with a TCP client beside it.
//
// One unit serves all the tests: a Runner leaves its serial adaptor behind, which keeps the line to itself.

#include "HostedUnit.h"
#include "PseudoAdapter.h"
#include "ZelPeer.h"

#include <Tolvar/Varundo/ReadCommandResponder.h>

#include <QtTest>

#include <memory>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

constexpr quint8 MoveMeterCounter1 = 0x32;
constexpr quint8 ClearEdit = 0x88;
constexpr quint8 ReadTextCodec = 0x01;
const QByteArray Answer = frame(Protocol::Read, ReadTextCodec, QByteArray(1, '\0'));

} // namespace

class TestRunnerSerial : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void unknownStoredInterfaceHearsNobodyAndAnswersOnTheLine();
    void serialIsHeardAndAnsweredOnTheLine();
    void tcpIsAnsweredOverTcpAndTheLineIsAcknowledgedOnly();
    void udpHearsNobodyAndAnswersOnTheLine();
    void selectionTakesEffectAtOnce();
    void lineIsAcknowledgedAfterTheRunnerAndNothingElse(); // the last one: it ends the unit

private:
    void verifyOnlyAcknowledged();

    std::unique_ptr<PseudoAdapter> m_line;
    std::unique_ptr<HostedUnit> m_unit;
    std::unique_ptr<ZelPeer> m_peer;
};

void TestRunnerSerial::initTestCase()
{
    if (!hasOwn("net")) {
        QSKIP(NeedsOwnNetwork);
    }
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
    m_line = std::make_unique<PseudoAdapter>("/dev/ttyUSB1");
    QVERIFY(m_line->isPlugged());
    m_unit = std::make_unique<HostedUnit>(QStringLiteral("Bluetooth"));
    m_peer = std::make_unique<ZelPeer>(m_unit->port);
    QVERIFY(m_peer->isConnected());
    // The unit looks for the adapter once a second.
    QVERIFY(QTest::qWaitFor(
        [this] {
            m_line->send(frame(Protocol::Execute, 0x33));
            QTest::qWait(200);
            return m_line->take().endsWith(Ack);
        },
        10000));
    QTest::qWait(200);
    static_cast<void>(m_line->take());
}

void TestRunnerSerial::cleanupTestCase()
{
    m_peer.reset();
    m_unit.reset();
    m_line.reset();
}

/// The line's frames and characters change nothing, and a request is not answered anywhere.
void TestRunnerSerial::verifyOnlyAcknowledged()
{
    m_unit->model().setMeterCounter1Position(QPoint(1, 1));
    const int texts = m_unit->manager.created.size();
    QCOMPARE(m_line->exchange("q" + frame(Protocol::Write, MoveMeterCounter1, "\x05\x07") +
                                  frame(Protocol::Read, ReadTextCodec),
                              2),
             Ack + Ack);
    QCOMPARE(m_unit->model().meterCounter1Position(), QPoint(1, 1));
    QCOMPARE(m_unit->manager.created.size(), texts);
    QCOMPARE(m_peer->socket().readAll(), QByteArray());
}

void TestRunnerSerial::unknownStoredInterfaceHearsNobodyAndAnswersOnTheLine()
{
    if (m_unit->runner->interface() == Runner::Serial || m_unit->runner->interface() == Runner::Tcp ||
        m_unit->runner->interface() == Runner::Udp) {
        QSKIP("runs first only");
    }
    QCOMPARE(static_cast<int>(m_unit->runner->interface()), -1);
    verifyOnlyAcknowledged();
    QCOMPARE(m_peer->exchange(frame(Protocol::Read, ReadTextCodec)), Ack);
    m_unit->runner->findChild<ReadCommandResponder*>()->onReadTextCodec();
    QCOMPARE(m_line->exchange(QByteArray(), Answer.size()), Answer);
    QCOMPARE(m_peer->socket().readAll(), QByteArray());
}

void TestRunnerSerial::serialIsHeardAndAnsweredOnTheLine()
{
    m_unit->runner->setInterface(Runner::Serial);
    QCOMPARE(m_line->exchange(frame(Protocol::Write, MoveMeterCounter1, "\x05\x07")), Ack);
    QCOMPARE(m_unit->model().meterCounter1Position(), QPoint(5, 7));
    QCOMPARE(m_line->exchange(frame(Protocol::Read, ReadTextCodec), 1 + Answer.size()), Ack + Answer);
    QCOMPARE(m_line->exchange("xyz" + frame(Protocol::Execute, 0x33)), Ack);
    QCOMPARE(m_unit->manager.created.size(), 1);
    QCOMPARE(m_unit->manager.created.first()->text(), QStringLiteral("xyz"));
    QCOMPARE(m_line->exchange(frame(Protocol::Execute, ClearEdit)), Ack);
    QCOMPARE(m_unit->manager.created.size(), 0);

    QCOMPARE(m_peer->exchange(frame(Protocol::Write, MoveMeterCounter1, "\x01\x01")), Ack);
    QCOMPARE(m_unit->model().meterCounter1Position(), QPoint(5, 7));
    QCOMPARE(m_peer->exchange(frame(Protocol::Read, ReadTextCodec)), Ack);
    QCOMPARE(m_line->take(), QByteArray());
}

void TestRunnerSerial::tcpIsAnsweredOverTcpAndTheLineIsAcknowledgedOnly()
{
    m_unit->runner->setInterface(Runner::Tcp);
    verifyOnlyAcknowledged();
    QCOMPARE(m_peer->exchange(frame(Protocol::Read, ReadTextCodec), 1 + Answer.size()), Ack + Answer);
    QTest::qWait(20);
    QCOMPARE(m_line->take(), QByteArray());
}

void TestRunnerSerial::udpHearsNobodyAndAnswersOnTheLine()
{
    m_unit->runner->setInterface(Runner::Udp);
    verifyOnlyAcknowledged();
    QCOMPARE(m_peer->exchange(frame(Protocol::Read, ReadTextCodec)), Ack);
    QCOMPARE(m_line->take(), QByteArray());
    m_unit->runner->findChild<ReadCommandResponder*>()->onReadTextCodec();
    QCOMPARE(m_line->exchange(QByteArray(), Answer.size()), Answer);
    QCOMPARE(m_peer->socket().readAll(), QByteArray());
}

void TestRunnerSerial::selectionTakesEffectAtOnce()
{
    m_unit->runner->setInterface(Runner::Tcp);
    QCOMPARE(m_line->exchange(frame(Protocol::Read, ReadTextCodec)), Ack);
    m_unit->runner->setInterface(Runner::Serial);
    QCOMPARE(m_line->exchange(frame(Protocol::Read, ReadTextCodec), 1 + Answer.size()), Ack + Answer);
}

void TestRunnerSerial::lineIsAcknowledgedAfterTheRunnerAndNothingElse()
{
    m_unit->runner->setInterface(Runner::Serial);
    m_unit->runner.reset();
    m_unit->discardCalls();
    QCOMPARE(m_line->exchange("q" + frame(Protocol::Write, MoveMeterCounter1, "\x05\x07") +
                                  frame(Protocol::Read, ReadTextCodec) + frame(Protocol::Execute, ClearEdit),
                              3),
             Ack + Ack + Ack);
    QCOMPARE(m_unit->log.take(), QStringList());
}

QTEST_MAIN(TestRunnerSerial)
#include "tst_runner_serial.moc"
