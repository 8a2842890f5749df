// Units that come and go: what the transports do that a Runner leaves behind, and hosts that end it at an
// awkward moment. The address sanitizer sees what nothing else here does.

#include "ReferenceUnit.h"
#include "ZelPeer.h"

#include <QtTest>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;
using Mavril::VideoOverlay::ElementParam;

class TestUnitLifetime : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void clientOfADestroyedRunnerIsAcknowledgedAndNothingElse();
    void newClientOfADestroyedRunnerIsAcknowledgedToo();
    void elementsStayWhenTheRunnerGoes();
    void managerReportsToNoRunner();
    void twoUnitsOneAfterTheOtherServeTheirOwnClients();
    void secondRunnerTakesOverTheSelectionOfTheFirst();
    void overlaysOfTwoUnitsAreSeparate();
    void controllerMayGoInTheMiddleOfAFrame();
    void profileMayBeReplacedByACommand();
};

void TestUnitLifetime::initTestCase()
{
    if (!hasOwn("net")) {
        QSKIP(NeedsOwnNetwork);
    }
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
}

void TestUnitLifetime::clientOfADestroyedRunnerIsAcknowledgedAndNothingElse()
{
    ReferenceUnit unit;
    ZelPeer peer(unit.port);
    QVERIFY(peer.isConnected());
    unit.runner.reset();
    QByteArray frames = "typed";
    QByteArray acks;
    for (int group = Protocol::Execute; group <= Protocol::Write; ++group) {
        for (int id = 1; id <= 0xFF; ++id) {
            frames += frame(static_cast<Protocol::Group>(group), id, QByteArray::fromHex("0102030405"));
            acks += Ack;
        }
    }
    QCOMPARE(peer.exchange(frames, acks.size()), acks);
    for (int row = 0; row < 16; ++row) {
        QCOMPARE(unit.manager.getElementList().at(row)->row(), row);
        QVERIFY(unit.manager.getElementList().at(row)->enabled());
    }
    QCOMPARE(unit.customTexts().size(), 0);
    QCOMPARE(unit.backend.switched, QList<bool>());
    QCOMPARE(unit.clock.times.size() + unit.clock.dateTimes.size(), 0);
}

void TestUnitLifetime::newClientOfADestroyedRunnerIsAcknowledgedToo()
{
    ReferenceUnit unit;
    unit.runner.reset();
    ZelPeer peer(unit.port);
    QVERIFY(peer.isConnected());
    QCOMPARE(peer.exchange(frame(Protocol::Read, 0x01)), Ack);
}

void TestUnitLifetime::elementsStayWhenTheRunnerGoes()
{
    ReferenceUnit unit;
    ZelPeer peer(unit.port);
    QVERIFY(peer.isConnected());
    QCOMPARE(peer.exchange(frame(Protocol::Write, 0x98, "\x05line")), Ack);
    unit.runner.reset();
    QCOMPARE(unit.manager.getElementList().size(), 22);
    QCOMPARE(unit.customTexts().first()->text(), QStringLiteral("line"));
    // Nobody clears it up any more.
    unit.customTexts().first()->setText(QString());
    QTest::qWait(400);
    QCOMPARE(unit.customTexts().size(), 1);
}

void TestUnitLifetime::managerReportsToNoRunner()
{
    ReferenceUnit unit;
    unit.runner.reset();
    QVERIFY2(unit.loadProfile(), qPrintable(unit.error));
    unit.manager.deleteElementFromModel(unit.manager.createText());
    QCOMPARE(unit.manager.getElementList().size(), 21);
}

void TestUnitLifetime::twoUnitsOneAfterTheOtherServeTheirOwnClients()
{
    auto first = std::make_unique<ReferenceUnit>();
    ZelPeer firstPeer(first->port);
    QVERIFY(firstPeer.isConnected());
    const QByteArray move = frame(Protocol::Write, 0x32, QByteArray::fromHex("0C0D"));
    QCOMPARE(firstPeer.exchange(move), Ack);
    QCOMPARE(first->text(ElementParam::NAME_SECTION_DISTANCE_COUNTER)->column(), 12);
    first.reset();

    ReferenceUnit second;
    QVERIFY2(second.profileLoaded, qPrintable(second.error));
    ZelPeer secondPeer(second.port);
    QVERIFY(secondPeer.isConnected());
    QCOMPARE(firstPeer.exchange(move), Ack);
    QCOMPARE(second.text(ElementParam::NAME_SECTION_DISTANCE_COUNTER)->column(), 1);
    QCOMPARE(secondPeer.exchange(move), Ack);
    QCOMPARE(second.text(ElementParam::NAME_SECTION_DISTANCE_COUNTER)->column(), 12);
    QCOMPARE(secondPeer.exchange(frame(Protocol::Read, 0x01), 8),
             Ack + frame(Protocol::Read, 0x01, QByteArray(1, '\0')));
}

void TestUnitLifetime::secondRunnerTakesOverTheSelectionOfTheFirst()
{
    ReferenceUnit unit(QStringLiteral("Serial"));
    unit.runner->setInterface(Runner::Tcp);
    unit.runner.reset();
    const int port = portOfItsOwn();
    unit.runner = std::make_unique<Runner>(&unit.backend, &unit.manager, &unit.accessor);
    unit.runner->setZelTcpPort(port);
    ZelPeer peer(port);
    QVERIFY(peer.isConnected());
    QCOMPARE(peer.exchange(frame(Protocol::Read, 0x01), 8),
             Ack + frame(Protocol::Read, 0x01, QByteArray(1, '\0')));
}

void TestUnitLifetime::overlaysOfTwoUnitsAreSeparate()
{
    ReferenceUnit first;
    ReferenceUnit second;
    ZelPeer peer(second.port);
    QVERIFY(peer.isConnected());
    QCOMPARE(peer.exchange(frame(Protocol::Write, 0x32, QByteArray::fromHex("0C0D")) +
                               frame(Protocol::Write, 0x98, "\x05line"),
                           2),
             Ack + Ack);
    QCOMPARE(first.text(ElementParam::NAME_SECTION_DISTANCE_COUNTER)->column(), 1);
    QCOMPARE(first.customTexts().size(), 0);
    QCOMPARE(second.text(ElementParam::NAME_SECTION_DISTANCE_COUNTER)->column(), 12);
    QCOMPARE(second.customTexts().size(), 1);
}

// There is one decoder, whoever is connected: the next controller ends the frame that the first one began.
void TestUnitLifetime::controllerMayGoInTheMiddleOfAFrame()
{
    ReferenceUnit unit;
    const QByteArray move = frame(Protocol::Write, 0x32, QByteArray::fromHex("0C0D"));
    {
        ZelPeer peer(unit.port);
        QVERIFY(peer.isConnected());
        peer.send(move.left(6));
        QTest::qWait(20);
    }
    QTcpSocket next;
    next.connectToHost(QHostAddress(QHostAddress::LocalHost), static_cast<quint16>(unit.port));
    QVERIFY(next.waitForConnected(5000));
    next.write(move.mid(6));
    QByteArray received;
    QTRY_COMPARE((received += next.readAll()), Ack);
    QCOMPARE(unit.text(ElementParam::NAME_SECTION_DISTANCE_COUNTER)->column(), 12);
}

// The host loads another profile while it hears of a command, with the command's element on the way.
void TestUnitLifetime::profileMayBeReplacedByACommand()
{
    ReferenceUnit unit;
    ZelPeer peer(unit.port);
    QVERIFY(peer.isConnected());
    connect(unit.runner.get(), &Runner::writeVideoCounter, this, [&] { unit.loadProfile(); });
    QCOMPARE(peer.exchange(frame(Protocol::Write, 0x98, "\x05line") +
                               frame(Protocol::Write, 0x70, QByteArray::fromHex("010203")) +
                               frame(Protocol::Write, 0x32, QByteArray::fromHex("0C0D")),
                           3),
             Ack + Ack + Ack);
    QCOMPARE(unit.customTexts().size(), 0);
    QCOMPARE(unit.text(ElementParam::NAME_SECTION_DISTANCE_COUNTER)->column(), 12);
}

QTEST_MAIN(TestUnitLifetime)
#include "tst_unit_lifetime.moc"
