// The selected interface: how it is kept, and what it decides about the TCP connection.

#include "CaughtDebugLog.h"
#include "HostedUnit.h"
#include "ZelPeer.h"

#include <Tolvar/Varundo/ReadCommandResponder.h>

#include <QSignalSpy>
#include <QtTest>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

constexpr quint8 MoveMeterCounter1 = 0x32;
constexpr quint8 ReadTextCodec = 0x01;
constexpr quint8 WriteVideoCounter = 0x70;

} // namespace

class TestRunnerInterface : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void storedTextSelects_data();
    void storedTextSelects();
    void nothingStoredSelectsSerialAndStoresNothing();
    void startDoesNotWriteTheSetting();
    void selectingStoresThenAnnounces_data();
    void selectingStoresThenAnnounces();
    void selectingTheSameDoesNothing();
    void selectingOutOfAnUnknownInterfaceWorks();
    void interfaceThatDoesNotExistIsNotSelected();
    void nextRunnerFindsTheSelection();

    void onlyTcpListensToTheTcpClient_data();
    void onlyTcpListensToTheTcpClient();
    void onlyTcpAnswersTheTcpClient_data();
    void onlyTcpAnswersTheTcpClient();
    void selectionTakesEffectAtOnce();
    void selectionTakesEffectBetweenTwoFramesOfOneRead();
    void frameOverTheOtherInterfaceLeavesATraceOnTheLog();
};

void TestRunnerInterface::initTestCase()
{
    if (!hasOwn("net")) {
        QSKIP(NeedsOwnNetwork);
    }
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
}

void TestRunnerInterface::storedTextSelects_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<int>("selected");
    QTest::newRow("Serial") << "Serial" << 0;
    QTest::newRow("Tcp") << "Tcp" << 1;
    QTest::newRow("Udp") << "Udp" << 2;
    QTest::newRow("other case") << "tcp" << -1;
    QTest::newRow("upper case") << "TCP" << -1;
    QTest::newRow("blank before") << " Tcp" << -1;
    QTest::newRow("blank behind") << "Tcp " << -1;
    QTest::newRow("number") << "1" << -1;
    QTest::newRow("unknown") << "Bluetooth" << -1;
    QTest::newRow("qualified key is no key") << "Tolvar::Varundo::Runner::Tcp" << -1;
    QTest::newRow("name of the enumeration is no key") << "SelectedInterface::Tcp" << -1;
}

void TestRunnerInterface::storedTextSelects()
{
    QFETCH(QString, stored);
    const HostedUnit unit(stored);
    QTEST(static_cast<int>(unit.runner->interface()), "selected");
}

void TestRunnerInterface::nothingStoredSelectsSerialAndStoresNothing()
{
    HostedUnit unit;
    const StoredSettings empty;
    const Runner runner(&unit.backend, &unit.manager, &unit.accessor);
    QCOMPARE(runner.interface(), Runner::Serial);
    QCOMPARE(empty.storedInterface(), QStringLiteral("nothing stored"));
}

void TestRunnerInterface::startDoesNotWriteTheSetting()
{
    const HostedUnit unit(QStringLiteral("Bluetooth"));
    QCOMPARE(unit.settings.storedInterface(), QStringLiteral("Bluetooth"));
}

void TestRunnerInterface::selectingStoresThenAnnounces_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<int>("selected");
    QTest::addColumn<QString>("stored");
    QTest::newRow("Serial") << "Tcp" << 0 << "Serial";
    QTest::newRow("Tcp") << "Serial" << 1 << "Tcp";
    QTest::newRow("Udp") << "Serial" << 2 << "Udp";
}

void TestRunnerInterface::selectingStoresThenAnnounces()
{
    QFETCH(QString, before);
    QFETCH(int, selected);
    const HostedUnit unit(before);
    QStringList heard;
    connect(unit.runner.get(), &Runner::interfaceChanged, this, [&](Runner::SelectedInterface interface) {
        heard.append(QStringLiteral("%1 %2 %3")
                         .arg(interface)
                         .arg(unit.runner->interface())
                         .arg(unit.settings.storedInterface()));
    });
    unit.runner->setInterface(static_cast<Runner::SelectedInterface>(selected));
    QFETCH(QString, stored);
    QCOMPARE(heard, inOrder(QStringLiteral("%1 %1 %2").arg(selected).arg(stored)));
}

void TestRunnerInterface::selectingTheSameDoesNothing()
{
    HostedUnit unit(QStringLiteral("Serial"));
    const QSignalSpy changed(unit.runner.get(), &Runner::interfaceChanged);
    unit.runner->setInterface(Runner::Tcp);
    unit.settings.storeInterface(QStringLiteral("marked"));
    unit.runner->setInterface(Runner::Tcp);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(unit.settings.storedInterface(), QStringLiteral("marked"));
}

void TestRunnerInterface::selectingOutOfAnUnknownInterfaceWorks()
{
    const HostedUnit unit(QStringLiteral("Bluetooth"));
    const QSignalSpy changed(unit.runner.get(), &Runner::interfaceChanged);
    unit.runner->setInterface(Runner::Serial);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(unit.settings.storedInterface(), QStringLiteral("Serial"));
}

// There would be no text to keep it under.
void TestRunnerInterface::interfaceThatDoesNotExistIsNotSelected()
{
    const HostedUnit unit;
    const QSignalSpy changed(unit.runner.get(), &Runner::interfaceChanged);
    for (const int number : {-1, 3, 256}) {
        unit.runner->setInterface(static_cast<Runner::SelectedInterface>(number));
    }
    QCOMPARE(unit.runner->interface(), Runner::Tcp);
    QCOMPARE(unit.settings.storedInterface(), QStringLiteral("Tcp"));
    QCOMPARE(changed.count(), 0);
}

void TestRunnerInterface::nextRunnerFindsTheSelection()
{
    HostedUnit unit(QStringLiteral("Serial"));
    unit.runner->setInterface(Runner::Udp);
    unit.runner = std::make_unique<Runner>(&unit.backend, &unit.manager, &unit.accessor);
    QCOMPARE(unit.runner->interface(), Runner::Udp);
}

void TestRunnerInterface::onlyTcpListensToTheTcpClient_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<bool>("listened");
    QTest::newRow("Tcp") << "Tcp" << true;
    QTest::newRow("Serial") << "Serial" << false;
    QTest::newRow("Udp") << "Udp" << false;
    QTest::newRow("unknown") << "Bluetooth" << false;
}

void TestRunnerInterface::onlyTcpListensToTheTcpClient()
{
    QFETCH(QString, stored);
    QFETCH(bool, listened);
    const HostedUnit unit(stored);
    ZelPeer peer(unit.port);
    QVERIFY(peer.isConnected());

    // A frame is acknowledged all the same.
    QCOMPARE(peer.exchange(frame(Protocol::Write, MoveMeterCounter1, "\x05\x07")), Ack);
    QCOMPARE(unit.model().meterCounter1Position(), listened ? QPoint(5, 7) : QPoint());
    QCOMPARE(peer.exchange("xyz" + frame(Protocol::Execute, 0x30)), Ack);
    QCOMPARE(unit.model().meterCounter1Visible(), listened);
    QCOMPARE(unit.manager.created.size(), listened ? 1 : 0);
    if (listened) {
        QCOMPARE(unit.manager.created.first()->text(), QStringLiteral("xyz"));
    }
    const QByteArray answer =
        listened ? frame(Protocol::Read, ReadTextCodec, QByteArray(1, '\0')) : QByteArray();
    QCOMPARE(peer.exchange(frame(Protocol::Read, ReadTextCodec), 1 + answer.size()), Ack + answer);
}

void TestRunnerInterface::onlyTcpAnswersTheTcpClient_data()
{
    onlyTcpListensToTheTcpClient_data();
}

void TestRunnerInterface::onlyTcpAnswersTheTcpClient()
{
    QFETCH(QString, stored);
    QFETCH(bool, listened);
    const HostedUnit unit(stored);
    ZelPeer peer(unit.port);
    QVERIFY(peer.isConnected());

    // An answer that nobody asked for, to see which way it goes.
    unit.runner->findChild<ReadCommandResponder*>()->onReadTextCodec();
    const QByteArray answer =
        listened ? frame(Protocol::Read, ReadTextCodec, QByteArray(1, '\0')) : QByteArray();
    QCOMPARE(peer.exchange(frame(Protocol::Execute, 0x33), 1 + answer.size()), answer + Ack);
}

void TestRunnerInterface::selectionTakesEffectAtOnce()
{
    const HostedUnit unit(QStringLiteral("Serial"));
    ZelPeer peer(unit.port);
    QVERIFY(peer.isConnected());
    const QByteArray request = frame(Protocol::Read, ReadTextCodec);
    const QByteArray answer = frame(Protocol::Read, ReadTextCodec, QByteArray(1, '\0'));
    QCOMPARE(peer.exchange(request), Ack);
    unit.runner->setInterface(Runner::Tcp);
    QCOMPARE(peer.exchange(request, 1 + answer.size()), Ack + answer); // on the connection that was there
    unit.runner->setInterface(Runner::Udp);
    QCOMPARE(peer.exchange(request), Ack);
    unit.runner->setInterface(Runner::Tcp);
    QCOMPARE(peer.exchange(request, 1 + answer.size()), Ack + answer);
}

void TestRunnerInterface::selectionTakesEffectBetweenTwoFramesOfOneRead()
{
    const HostedUnit unit;
    ZelPeer peer(unit.port);
    QVERIFY(peer.isConnected());
    connect(unit.runner.get(), &Runner::writeVideoCounter, this,
            [&] { unit.runner->setInterface(Runner::Serial); });
    QCOMPARE(peer.exchange(frame(Protocol::Write, MoveMeterCounter1, "\x05\x07") +
                               frame(Protocol::Write, WriteVideoCounter) +
                               frame(Protocol::Write, MoveMeterCounter1, "\x01\x01") +
                               frame(Protocol::Read, ReadTextCodec) + "q",
                           4),
             Ack + Ack + Ack + Ack);
    QCOMPARE(unit.runner->interface(), Runner::Serial);
    QCOMPARE(unit.model().meterCounter1Position(), QPoint(5, 7));
    QCOMPARE(unit.manager.created.size(), 0);
}

void TestRunnerInterface::frameOverTheOtherInterfaceLeavesATraceOnTheLog()
{
    const HostedUnit unit(QStringLiteral("Serial"));
    ZelPeer peer(unit.port);
    QVERIFY(peer.isConnected());
    const QByteArray write = frame(Protocol::Write, MoveMeterCounter1, "\x05\x07");
    const CaughtDebugLog log("varundo.runner");
    QCOMPARE(peer.exchange(write), Ack);
    QCOMPARE(CaughtDebugLog::lines().filter(QStringLiteral("not acted upon")).size(), 1);
    unit.runner->setInterface(Runner::Tcp);
    QCOMPARE(peer.exchange(write), Ack);
    QCOMPARE(CaughtDebugLog::lines().filter(QStringLiteral("not acted upon")).size(), 1);
}

QTEST_MAIN(TestRunnerInterface)
#include "tst_runner_interface.moc"
