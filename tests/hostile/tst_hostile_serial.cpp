#include "Conversation.h"
#include "HostileWords.h"
#include "Isolation.h"
#include "RawPeer.h"

#include <QTest>

#include <csignal>
#include <random>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

/// The same at the other end of a serial line.
class TestHostileSerial : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void readerThatNeverReadsCostsLittleAndGetsEveryAnswerLater();
    void garbageIsSurvived();
    void lineThatIsPulledInTheMiddleOfAFloodIsServedAgain();

private:
    /// Until the unit has found its adapter, there is no answer.
    bool isServing(RawPeer& peer) const
    {
        for (int attempt = 0; attempt < 60; ++attempt) {
            peer.send("\3");
            if (!peer.receiveFor(500).isEmpty() || attempt > 10) {
                break;
            }
            peer.send(numberedRead(7));
        }
        return HostileWords::bringToAnEnd(peer) && peer.exchange(numberedRead(7), 8) == numberedAnswer(7);
    }

    std::unique_ptr<SimulatorProcess> m_unit;
    int m_memory = 0;
};

void TestHostileSerial::init()
{
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
    m_unit = std::make_unique<SimulatorProcess>();
    QVERIFY2(m_unit->start({QStringLiteral("--virtual-serial"), QStringLiteral("--interface=Serial"),
                            QStringLiteral("--control")}),
             qPrintable(m_unit->errors()));
    RawPeer peer = RawPeer::openDevice(m_unit->controllerDevice().toLocal8Bit());
    QVERIFY(isServing(peer));
    m_memory = m_unit->residentKiB();
}

void TestHostileSerial::cleanup()
{
    QVERIFY(m_unit->isRunning());
    const int growth = m_unit->residentKiB() - m_memory;
    QVERIFY2(growth < MaxGrowthKiB, qPrintable(QStringLiteral("grown by %1 KiB").arg(growth)));
    QCOMPARE(m_unit->end(SIGTERM), 0);
}

void TestHostileSerial::readerThatNeverReadsCostsLittleAndGetsEveryAnswerLater()
{
    RawPeer peer = RawPeer::openDevice(m_unit->controllerDevice().toLocal8Bit());
    const QByteArray text = QByteArray(1, '\1') + QByteArray(60000, 'x');
    QCOMPARE(peer.exchange(frame(Protocol::Write, 0x90, text), 1), acknowledgement());
    Conversation pairs;
    for (int number = 0; number < 100; ++number) {
        pairs.add(numberedRead(number), numberedAnswer(number));
        pairs.add(frame(Protocol::Read, 0x90, QByteArray(1, '\1')),
                  acknowledgement() + frame(Protocol::Read, 0x90, text));
    }
    pairs.repeat(2);
    QVERIFY(pairs.sendUntilBlocked(peer));
    const int growth = m_unit->residentKiB() - m_memory;
    QVERIFY2(growth < MaxGrowthKiB, qPrintable(QStringLiteral("grown by %1 KiB").arg(growth)));
    QVERIFY2(pairs.finish(peer), qPrintable(pairs.report()));
}

void TestHostileSerial::garbageIsSurvived()
{
    RawPeer peer = RawPeer::openDevice(m_unit->controllerDevice().toLocal8Bit());
    std::mt19937 generator(1);
    for (int piece = 0; piece < 100; ++piece) {
        QByteArray garbage(1000, '\0');
        for (char& byte : garbage) {
            byte = static_cast<char>(generator() % 256);
        }
        QVERIFY(peer.send(garbage));
        peer.receiveFor(0);
    }
    QVERIFY(isServing(peer));
}

void TestHostileSerial::lineThatIsPulledInTheMiddleOfAFloodIsServedAgain()
{
    RawPeer peer = RawPeer::openDevice(m_unit->controllerDevice().toLocal8Bit());
    QVERIFY(peer.sendUntilBlocked(numberedRead(1).repeated(100), 20000, 50) > 0);
    QCOMPARE(m_unit->command("unplug"), QStringLiteral("ok"));
    peer.sendUntilBlocked(numberedRead(2).repeated(100), 20000, 50);
    QTest::qWait(2500); // two looks of the watcher
    QCOMPARE(m_unit->command("plug"), QStringLiteral("ok"));
    QVERIFY(isServing(peer));
}

QTEST_GUILESS_MAIN(TestHostileSerial)
#include "tst_hostile_serial.moc"
