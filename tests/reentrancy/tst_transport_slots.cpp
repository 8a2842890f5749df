// Slots of the transports' own signals that turn an event loop: what comes, goes and is sent meanwhile.

#include "ChildProcess.h"
#include "Controller.h"
#include "Isolation.h"
#include "ObservedSerialAdaptor.h"
#include "ObservedTcpServer.h"

#include <QPointer>
#include <QtTest>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

constexpr int dialogMs = 30;
constexpr const char* Node = "/dev/ttyUSB5";
const QString Name = QStringLiteral("ttyUSB5");

/// A frame of its own for each number.
QByteArray request(int number)
{
    return frame(Protocol::Read, number);
}

QByteArray numbersOf(const std::vector<CommandMessage>& records)
{
    QByteArray numbers;
    for (const CommandMessage& record : records) {
        numbers.append(static_cast<char>('0' + record.cmdId));
    }
    return numbers;
}

} // namespace

class TestTransportSlots : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void socketOutlivesTheSlotThatItsClientLeavesIn();
    void socketOutlivesTheSlotThatItIsPushedOutIn();
    void charactersKeepTheirOrder();
    void messageOfASlotFollowsTheAcknowledgement();
    void portIsChangedWithinASlot();
    void framesOfASlotsTimeOutliveTheAdapter_data();
    void framesOfASlotsTimeOutliveTheAdapter();
    void errorsAreNotToldWithinOneAnotherWithoutEnd();
    void baudRateIsChangedWithinASlot();
    void destroyingATransportInItsOwnSlotIsRefused_data();
    void destroyingATransportInItsOwnSlotIsRefused();
};

void TestTransportSlots::initTestCase()
{
    if (!hasOwn("net")) {
        QSKIP(NeedsOwnNetwork);
    }
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
}

// Its signal has not returned: deleted by then it would be used after its end.
void TestTransportSlots::socketOutlivesTheSlotThatItsClientLeavesIn()
{
    ObservedTcpServer server;
    const auto client = server.connectClient();
    QVERIFY(client);
    const QPointer<QObject> socket = server.sockets().value(0);
    QVERIFY(socket);
    bool outlived = false;
    bool hasLeft = false;
    server.onRecord([&](const CommandMessage& record) {
        if (record.cmdId == 1) {
            client->close();
            spin(dialogMs);
            outlived = !socket.isNull();
            hasLeft = outlived && !socket->property("connected").toBool();
        }
    });
    client->send(request(1) + request(2));
    QTRY_COMPARE(server.records().size(), 2);
    QVERIFY(hasLeft);
    QVERIFY(outlived);
    QTRY_VERIFY(socket.isNull());
}

void TestTransportSlots::socketOutlivesTheSlotThatItIsPushedOutIn()
{
    ObservedTcpServer server;
    const auto client = server.connectClient();
    QVERIFY(client);
    const QPointer<QObject> socket = server.sockets().value(0);
    QVERIFY(socket);
    std::vector<std::unique_ptr<WireClient>> newer;
    bool outlived = false;
    bool isPushedOut = false;
    server.onRecord([&](const CommandMessage& record) {
        if (record.cmdId == 1) {
            for (int i = 0; i <= TcpServer::MaxOlderClients; ++i) {
                newer.push_back(server.connectClient());
            }
            spin(dialogMs);
            outlived = !socket.isNull();
            isPushedOut = outlived && !socket->property("connected").toBool();
        }
    });
    client->send(request(1) + request(2));
    QTRY_COMPARE(server.records().size(), 2);
    QVERIFY(isPushedOut);
    QTRY_VERIFY(socket.isNull());
    QVERIFY(newer.back());
    newer.back()->send(request(3));
    // The frame behind the one that the slot was for is acknowledged to whoever is the client now.
    QTRY_COMPARE(newer.back()->received(), Ack + Ack);
}

void TestTransportSlots::charactersKeepTheirOrder()
{
    TcpServer server;
    QByteArray typed;
    std::unique_ptr<WireClient> client;
    connect(&server, &TcpServer::printableCharReceived, this, [&](char character) {
        typed.append(character);
        if (character == 'a' || character == 'd') {
            client->send(character == 'a' ? "de" : "f");
            spin(dialogMs);
            typed.append('|');
        }
    });
    client = std::make_unique<WireClient>();
    client->send("abc");
    QTRY_COMPARE(typed, QByteArray("a|bcd|ef"));
}

void TestTransportSlots::messageOfASlotFollowsTheAcknowledgement()
{
    ObservedTcpServer server;
    const auto client = server.connectClient();
    QVERIFY(client);
    server.onRecord([&](const CommandMessage& record) {
        server->writeMessage(record);
        spin(dialogMs);
    });
    client->send(request(1) + request(2));
    const QByteArray expected = Ack + request(1) + Ack + request(2);
    QTRY_COMPARE(client->received(), expected);
}

void TestTransportSlots::portIsChangedWithinASlot()
{
    ObservedTcpServer server;
    const auto client = server.connectClient();
    QVERIFY(client);
    server.onRecord([&](const CommandMessage& record) {
        if (record.cmdId == 1) {
            server->setListeningPort(9997);
            spin(dialogMs);
        }
    });
    client->send(request(1) + request(2));
    QTRY_COMPARE(client->received(), Ack + Ack);
    const auto next = server.connectClient();
    QVERIFY(next);
    next->send(request(3));
    QTRY_COMPARE(next->received(), Ack);
}

void TestTransportSlots::framesOfASlotsTimeOutliveTheAdapter_data()
{
    QTest::addColumn<bool>("reported");
    QTest::newRow("the line hangs up") << false;
    QTest::newRow("the watcher reports it gone") << true;
}

void TestTransportSlots::framesOfASlotsTimeOutliveTheAdapter()
{
    QFETCH(bool, reported);
    PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    unit->openSerialPort(Name);
    bool arrived = false;
    bool closedWithin = false;
    unit.onRecord([&](const CommandMessage& record) {
        if (record.cmdId == 1) {
            adapter.send(request(3) + request(4));
            arrived = spinUntil([&] { return unit.port().bytesAvailable() == 2 * request(1).size(); });
            reported ? unit->closeSerialPort() : adapter.unplug();
            closedWithin = spinUntil([&] { return !unit.port().isOpen(); });
        }
    });
    adapter.send(request(1) + request(2));
    QTRY_COMPARE(numbersOf(unit.records()), QByteArray("1234"));
    QVERIFY(arrived);
    QVERIFY(closedWithin);
}

// A host that shows each error in a dialog, while the line reports them as fast as it can.
void TestTransportSlots::errorsAreNotToldWithinOneAnotherWithoutEnd()
{
    PseudoAdapter adapter(Node);
    SerialAdaptor unit(QStringLiteral("/dev/ttyUSB1"));
    unit.openSerialPort(Name);
    int depth = 0;
    int deepest = 0;
    connect(&unit, &SerialAdaptor::serialPortError, this, [&] {
        deepest = std::max(deepest, ++depth);
        if (depth < 100) {
            spin(dialogMs);
        }
        --depth;
    });
    adapter.unplug();
    QTRY_VERIFY(deepest > 0);
    QTRY_COMPARE(depth, 0);
    QVERIFY2(deepest <= 2, qPrintable(QString::number(deepest)));
}

void TestTransportSlots::baudRateIsChangedWithinASlot()
{
    PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    unit->openSerialPort(Name);
    int changes = 0;
    connect(&*unit, &SerialAdaptor::baudrateChanged, this, [&] {
        ++changes;
        spin(dialogMs);
    });
    unit.onRecord([&](const CommandMessage& record) {
        if (record.cmdId == 1) {
            unit->setBaudrate(19200);
            unit->writeMessage(record);
        }
    });
    const QByteArray expected = Ack + request(1) + Ack;
    QCOMPARE(adapter.exchange(request(1) + request(2), expected.size()), expected);
    QCOMPARE(changes, 1);
    const termios line = adapter.line();
    QCOMPARE(cfgetospeed(&line), static_cast<speed_t>(B19200));
}

void TestTransportSlots::destroyingATransportInItsOwnSlotIsRefused_data()
{
    QTest::addColumn<QByteArray>("how");
    QTest::newRow("a server, in a frame") << QByteArray("tcp");
    QTest::newRow("an adaptor, in a frame") << QByteArray("serial");
    QTest::newRow("an adaptor, in an error") << QByteArray("error");
}

// A debug build stops at the mistake. Any other tells of it and goes on: a recording is not ended by it.
void TestTransportSlots::destroyingATransportInItsOwnSlotIsRefused()
{
    QFETCH(QByteArray, how);
    qputenv("MALLOC_PERTURB_", "165"); // what is used after its end is not what it was
    ChildProcess process({SELF_DESTRUCTION, how});
#ifdef QT_NO_DEBUG
    QCOMPARE(process.waitForEnd(), QByteArray("exit 0"));
#else
    QCOMPARE(process.waitForEnd(), QByteArray("signal 6"));
#endif
}

QTEST_GUILESS_MAIN(TestTransportSlots)
#include "tst_transport_slots.moc"
