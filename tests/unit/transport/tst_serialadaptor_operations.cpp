#include <Tolvar/Varundo/SerialAdaptor.h>

#include "Isolation.h"
#include "MadeUpPorts.h"
#include "PseudoSerialLine.h"
#include "WireOutcome.h"

#include <QSerialPort>
#include <QSerialPortInfo>
#include <QSignalSpy>
#include <QtTest>

#include <memory>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

QStringList told(const char* words)
{
    return QString::fromLatin1(words).split(QLatin1Char(','), Qt::SkipEmptyParts);
}

/// An adaptor that writes down what it passes on. The names ttyUSB7 to ttyUSB9 are not watched, so nothing
/// but the test opens and closes them.
struct ObservedAdaptor
{
    SerialAdaptor adaptor{QStringLiteral("/dev/ttyUSB1")};
    QStringList records;
    QByteArray typed;
    QStringList errors;
    bool answers = false;

    ObservedAdaptor()
    {
        QObject::connect(
            &adaptor, &SerialAdaptor::receivedValidMessage, [this](const CommandMessage& record) {
                records.append(describe(record));
                if (answers) {
                    adaptor.writeMessage(
                        {record.cmdId, 1, static_cast<quint16>(record.data.size()), record.data});
                }
            });
        QObject::connect(&adaptor, &SerialAdaptor::printableCharReceived,
                         [this](char byte) { typed.append(byte); });
        QObject::connect(&adaptor, &SerialAdaptor::serialPortError,
                         [this](const QString& text) { errors.append(text); });
    }
    SerialAdaptor* operator->() { return &adaptor; }
};

} // namespace

/// The adaptor's operations, and frames over a line that stays plugged in.
class TestSerialAdaptorOperations : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void aRealChangeOfTheBaudrateIsTold();
    void theLineIsSetUpWithoutParityAndFlowControl();
    void theBaudrateReachesTheLine();
    void withoutAdaptersThePortNamesAreDisabledOnly();
    void thePortNamesAreTheUsbAdapters();
    void aPortListIsTakenWithoutAWord();

    void framesAreDecodedAsOnAnyTransport_data();
    void framesAreDecodedAsOnAnyTransport();
    void everyByteIsCarriedBothWays();
    void theReplyOperationsWriteWhatTheySay();
    void aFrameMayArriveByteByByte();
    void closingAndOpeningDoesNotResetTheDecoder();
    void whatArrivedBeforeThePortIsClosedIsCarriedOut();
    void restOfALongReadIsCarriedOutThoughThePortIsClosed();

    void anOpenThatFailsIsToldAndMayBeTriedAgain();
    void aFailedOpenFollowedByACloseLeavesThePortClosed();
    void openingIsIgnoredWhileAPortIsOpen();
    void aClosedPortMayBeOpenedUnderAnotherName();
    void noErrorIsNotTold();
    void everyErrorIsToldAndLeavesThePortOpen();
    void whatIsWrittenToAClosedPortIsLostSilently();

    void anAdaptorMayBeDestroyedAtAnyTime();
};

void TestSerialAdaptorOperations::init()
{
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
}

void TestSerialAdaptorOperations::aRealChangeOfTheBaudrateIsTold()
{
    SerialAdaptor adaptor(QStringLiteral("/dev/ttyUSB1"));
    QSignalSpy changed(&adaptor, &SerialAdaptor::baudrateChanged);
    QCOMPARE(adaptor.baudrate(), 9600);
    adaptor.setBaudrate(9600);
    QCOMPARE(changed.count(), 0);
    adaptor.setBaudrate(115200);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.first().first().toInt(), 115200);
    QCOMPARE(adaptor.baudrate(), 115200);
    adaptor.setBaudrate(115200);
    QCOMPARE(changed.count(), 1);
    adaptor.setBaudrate(9600);
    QCOMPARE(changed.count(), 2);
    QCOMPARE(adaptor.baudrate(), 9600);
}

void TestSerialAdaptorOperations::theLineIsSetUpWithoutParityAndFlowControl()
{
    PseudoSerialLine line("ttyUSB7");
    QVERIFY(line.isPlugged());
    ObservedAdaptor adaptor;
    adaptor->openSerialPort(QStringLiteral("ttyUSB7"));
    const termios settings = line.lineSettings();
    QCOMPARE(cfgetispeed(&settings), speed_t(B9600));
    QCOMPARE(cfgetospeed(&settings), speed_t(B9600));
    QCOMPARE(settings.c_cflag & CSIZE, tcflag_t(CS8));
    QCOMPARE(settings.c_cflag & (PARENB | CSTOPB | CRTSCTS), tcflag_t(0));
    QCOMPARE(settings.c_iflag & (IXON | IXOFF | IXANY), tcflag_t(0));
    QCOMPARE(adaptor.errors, QStringList());
}

void TestSerialAdaptorOperations::theBaudrateReachesTheLine()
{
    PseudoSerialLine line("ttyUSB7");
    QVERIFY(line.isPlugged());
    SerialAdaptor adaptor(QStringLiteral("/dev/ttyUSB1"));
    adaptor.setBaudrate(19200); // while closed
    adaptor.openSerialPort(QStringLiteral("ttyUSB7"));
    termios settings = line.lineSettings();
    QCOMPARE(cfgetispeed(&settings), speed_t(B19200));
    QCOMPARE(cfgetospeed(&settings), speed_t(B19200));
    adaptor.setBaudrate(115200); // while open
    settings = line.lineSettings();
    QCOMPARE(cfgetispeed(&settings), speed_t(B115200));
    QCOMPARE(cfgetospeed(&settings), speed_t(B115200));
}

void TestSerialAdaptorOperations::withoutAdaptersThePortNamesAreDisabledOnly()
{
    MadeUpPorts ports;
    QVERIFY(ports.isMounted());
    SerialAdaptor adaptor(QStringLiteral("/dev/ttyUSB1"));
    QCOMPARE(adaptor.getPortNames(), told("disabled"));
    ports.addBoardPort(QStringLiteral("ttyS0"));
    QCOMPARE(QSerialPortInfo::availablePorts().size(), 1);
    QCOMPARE(adaptor.getPortNames(), told("disabled"));
}

void TestSerialAdaptorOperations::thePortNamesAreTheUsbAdapters()
{
    MadeUpPorts ports;
    QVERIFY(ports.isMounted());
    ports.addUsbPort(QStringLiteral("ttyUSB0"), 1);
    ports.addBoardPort(QStringLiteral("ttyS0"));
    ports.addUsbPort(QStringLiteral("ttyUSB3"), 2);
    ports.addUsbPort(QStringLiteral("ttyACM0"), 3);
    QStringList enumerated;
    const QList<QSerialPortInfo> available = QSerialPortInfo::availablePorts();
    for (const QSerialPortInfo& port : available) {
        if (port.portName() == QLatin1String("ttyUSB0") || port.portName() == QLatin1String("ttyUSB3")) {
            enumerated.append(port.portName());
        }
    }
    QCOMPARE(available.size(), 4);
    QCOMPARE(enumerated.size(), 2);

    SerialAdaptor adaptor(QStringLiteral("/dev/ttyUSB1"));
    QCOMPARE(adaptor.getPortNames(), told("disabled") + enumerated);
    QStringList invoked;
    QVERIFY(QMetaObject::invokeMethod(&adaptor, "getPortNames", Q_RETURN_ARG(QStringList, invoked)));
    QCOMPARE(invoked, told("disabled") + enumerated);
}

void TestSerialAdaptorOperations::aPortListIsTakenWithoutAWord()
{
    ObservedAdaptor adaptor;
    QSignalSpy renamed(&adaptor.adaptor, &SerialAdaptor::changePortname);
    QSignalSpy baudrate(&adaptor.adaptor, &SerialAdaptor::baudrateChanged);
    adaptor->portListUpdated(told("disabled,ttyUSB0"));
    adaptor->portListUpdated(told("disabled,ttyUSB0"));
    adaptor->portListUpdated({});
    QCOMPARE(renamed.count() + baudrate.count(), 0);
    QCOMPARE(adaptor.errors, QStringList());
}

void TestSerialAdaptorOperations::framesAreDecodedAsOnAnyTransport_data()
{
    QTest::addColumn<QByteArray>("sent");
    QTest::addColumn<QByteArray>("records");
    QTest::addColumn<QByteArray>("typed");
    QTest::addColumn<QByteArray>("replies");
    const auto row = [](const char* name, const char* sent, const char* records, const char* typed,
                        const char* replies) {
        QTest::newRow(name) << QByteArray::fromHex(sent) << QByteArray(records) << QByteArray(typed)
                            << QByteArray(replies);
    };
    row("empty payload, empty answer", "02 05 01 00 00 03", "5/1 0:", "", "06020501000003");
    row("two frames, each answer after its own ACK", "02 05 01 00 00 03 02 06 01 01 00 41 03",
        "5/1 0:,6/1 1:41", "",
        "06020501000003"
        "0602060101004103");
    row("command 0", "02 00 01 00 00 03 02 05 01 00 00 03", "5/1 0:", "", "06020501000003");
    row("wrong group", "02 01 03 41 02 05 01 00 00 03", "", "", "15");
    row("wrong end", "02 05 01 01 00 41 04 03", "", "", "15");
    row("typed text", "41 42 0D 0A FF", "", "4142ff", "");
}

void TestSerialAdaptorOperations::framesAreDecodedAsOnAnyTransport()
{
    QFETCH(QByteArray, sent);
    QFETCH(QByteArray, records);
    QFETCH(QByteArray, typed);
    QFETCH(QByteArray, replies);
    PseudoSerialLine line("ttyUSB7");
    ObservedAdaptor adaptor;
    adaptor.answers = true;
    adaptor->openSerialPort(QStringLiteral("ttyUSB7"));
    QVERIFY(line.send(sent));
    QTRY_COMPARE(line.receivedHex(), replies);
    QTRY_COMPARE(adaptor.typed.toHex(), typed);
    QCOMPARE(adaptor.records, told(records.constData()));
    QCOMPARE(adaptor.errors, QStringList());
}

void TestSerialAdaptorOperations::everyByteIsCarriedBothWays()
{
    PseudoSerialLine line("ttyUSB7");
    ObservedAdaptor adaptor;
    adaptor.answers = true;
    adaptor->openSerialPort(QStringLiteral("ttyUSB7"));
    QByteArray payload;
    for (int byte = 0; byte < 256; ++byte) {
        payload.append(static_cast<char>(byte));
    }
    const QByteArray frame = encodeFrame({7, 1, 256, payload});
    QVERIFY(line.send(frame));
    QTRY_COMPARE(line.received(), '\x06' + frame);
}

void TestSerialAdaptorOperations::theReplyOperationsWriteWhatTheySay()
{
    PseudoSerialLine line("ttyUSB7");
    ObservedAdaptor adaptor;
    adaptor->openSerialPort(QStringLiteral("ttyUSB7"));
    adaptor->sendACK();
    adaptor->sendNACK();
    adaptor->writeMessage({0x10, 1, 3, QByteArrayLiteral("xyz")});
    adaptor->writeMessage({0x11, 2, 1, QByteArrayLiteral("xyz")});
    QTRY_COMPARE(line.receivedHex(), QByteArray("0615"
                                                "021001030078797a03"
                                                "021102010078797a03"));
}

void TestSerialAdaptorOperations::aFrameMayArriveByteByByte()
{
    PseudoSerialLine line("ttyUSB7");
    ObservedAdaptor adaptor;
    adaptor->openSerialPort(QStringLiteral("ttyUSB7"));
    const QByteArray frame = encodeFrame({7, 2, 40, QByteArray(40, '\x03')});
    for (const char byte : frame) {
        QVERIFY(line.received().isEmpty());
        QVERIFY(line.send(QByteArray(1, byte)));
        QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
    }
    QTRY_COMPARE(line.receivedHex(), QByteArray("06"));
    QCOMPARE(adaptor.records.size(), 1);
    QCOMPARE(adaptor->frameCounters().accepted, 1U);
    QCOMPARE(adaptor->frameCounters().rejected, 0U);
}

void TestSerialAdaptorOperations::closingAndOpeningDoesNotResetTheDecoder()
{
    PseudoSerialLine first("ttyUSB7");
    PseudoSerialLine second("ttyUSB8");
    ObservedAdaptor adaptor;
    adaptor->openSerialPort(QStringLiteral("ttyUSB7"));
    QVERIFY(first.sendHex("41 02 05 01 02 00 61"));
    QTRY_COMPARE(adaptor.typed, QByteArray("A"));
    adaptor->closeSerialPort();
    adaptor->openSerialPort(QStringLiteral("ttyUSB8"));
    QVERIFY(second.sendHex("62 03"));
    QTRY_COMPARE(second.receivedHex(), QByteArray("06"));
    QCOMPARE(adaptor.records, told("5/1 2:6162"));
    QVERIFY(first.received().isEmpty());
}

void TestSerialAdaptorOperations::whatArrivedBeforeThePortIsClosedIsCarriedOut()
{
    PseudoSerialLine line("ttyUSB7");
    ObservedAdaptor adaptor;
    bool hasArrived = false;
    connect(adaptor.operator->(), &SerialAdaptor::receivedValidMessage, [&](const CommandMessage& record) {
        if (record.cmdId == 5) { // a host that turns an event loop, and then has enough
            const auto* const port = adaptor->findChild<QSerialPort*>();
            hasArrived = line.sendHex("02 06 01 00 00 03") &&
                         QTest::qWaitFor([&] { return port->bytesAvailable() == 6; });
            adaptor->closeSerialPort();
        }
    });
    adaptor->openSerialPort(QStringLiteral("ttyUSB7"));
    QVERIFY(line.sendHex("02 05 01 00 00 03"));
    QTRY_COMPARE(adaptor.records, told("5/1 0:,6/1 0:"));
    QVERIFY(hasArrived);
}

void TestSerialAdaptorOperations::restOfALongReadIsCarriedOutThoughThePortIsClosed()
{
    PseudoSerialLine line("ttyUSB7");
    ObservedAdaptor adaptor;
    connect(adaptor.operator->(), &SerialAdaptor::receivedValidMessage, [&] {
        adaptor->closeSerialPort(); // so that no reply's having gone begins the next turn
        QTest::qSleep(30);          // longer than a turn is to be
    });
    adaptor->openSerialPort(QStringLiteral("ttyUSB7"));
    QVERIFY(line.sendHex("02 05 01 00 00 03 02 06 01 00 00 03 02 07 01 00 00 03"));
    QTRY_COMPARE(adaptor.records, told("5/1 0:,6/1 0:,7/1 0:"));
}

void TestSerialAdaptorOperations::anOpenThatFailsIsToldAndMayBeTriedAgain()
{
    ObservedAdaptor adaptor;
    adaptor->openSerialPort(QStringLiteral("ttyUSB7"));
    QCOMPARE(adaptor.errors.size(), 1);
    QVERIFY(!adaptor.errors.first().isEmpty());

    PseudoSerialLine line("ttyUSB7");
    adaptor->openSerialPort(QStringLiteral("ttyUSB7"));
    QVERIFY(line.sendHex("02 05 01 00 00 03"));
    QTRY_COMPARE(line.receivedHex(), QByteArray("06"));
    QCOMPARE(adaptor.errors.size(), 1);
}

void TestSerialAdaptorOperations::aFailedOpenFollowedByACloseLeavesThePortClosed()
{
    ObservedAdaptor adaptor;
    adaptor->openSerialPort(QStringLiteral("ttyUSB7"));
    adaptor->closeSerialPort();
    adaptor->closeSerialPort();
    PseudoSerialLine line("ttyUSB7");
    adaptor->openSerialPort(QStringLiteral("ttyUSB7"));
    QVERIFY(line.sendHex("02 05 01 00 00 03"));
    QTRY_COMPARE(line.receivedHex(), QByteArray("06"));
}

void TestSerialAdaptorOperations::openingIsIgnoredWhileAPortIsOpen()
{
    PseudoSerialLine open("ttyUSB7");
    PseudoSerialLine other("ttyUSB8");
    ObservedAdaptor adaptor;
    adaptor->openSerialPort(QStringLiteral("ttyUSB7"));
    adaptor->openSerialPort(QStringLiteral("ttyUSB8"));
    adaptor->openSerialPort(QStringLiteral("ttyUSB9")); // there is none
    QCOMPARE(adaptor.errors, QStringList());
    QVERIFY(other.sendHex("02 06 01 00 00 03"));
    QVERIFY(open.sendHex("02 05 01 00 00 03"));
    QTRY_COMPARE(open.receivedHex(), QByteArray("06"));
    QCOMPARE(adaptor.records, told("5/1 0:"));
    QVERIFY(other.received().isEmpty());
}

void TestSerialAdaptorOperations::aClosedPortMayBeOpenedUnderAnotherName()
{
    PseudoSerialLine first("ttyUSB7");
    PseudoSerialLine second("ttyUSB8");
    ObservedAdaptor adaptor;
    adaptor->openSerialPort(QStringLiteral("ttyUSB7"));
    adaptor->closeSerialPort();
    adaptor->openSerialPort(QStringLiteral("ttyUSB8"));
    QVERIFY(first.sendHex("02 05 01 00 00 03"));
    QVERIFY(second.sendHex("02 06 01 00 00 03"));
    QTRY_COMPARE(second.receivedHex(), QByteArray("06"));
    QCOMPARE(adaptor.records, told("6/1 0:"));
    QVERIFY(first.received().isEmpty());
}

void TestSerialAdaptorOperations::noErrorIsNotTold()
{
    ObservedAdaptor adaptor;
    adaptor->handleError(0);
    QCOMPARE(adaptor.errors, QStringList());
    PseudoSerialLine line("ttyUSB7");
    adaptor->openSerialPort(QStringLiteral("ttyUSB7")); // an open that works tells of error 0
    QCOMPARE(adaptor.errors, QStringList());
}

void TestSerialAdaptorOperations::everyErrorIsToldAndLeavesThePortOpen()
{
    PseudoSerialLine line("ttyUSB7");
    ObservedAdaptor adaptor;
    adaptor->openSerialPort(QStringLiteral("ttyUSB7"));
    for (int error = QSerialPort::DeviceNotFoundError; error <= QSerialPort::NotOpenError; ++error) {
        adaptor->handleError(error);
        QCOMPARE(adaptor.errors.size(), error);
    }
    QVERIFY(line.sendHex("02 05 01 00 00 03"));
    QTRY_COMPARE(line.receivedHex(), QByteArray("06"));
}

void TestSerialAdaptorOperations::whatIsWrittenToAClosedPortIsLostSilently()
{
    PseudoSerialLine line("ttyUSB7");
    ObservedAdaptor adaptor;
    const auto write = [&] {
        adaptor->sendACK();
        adaptor->sendNACK();
        adaptor->writeMessage({5, 1, 3, QByteArrayLiteral("abc")});
    };
    write();
    adaptor->openSerialPort(QStringLiteral("ttyUSB7"));
    adaptor->closeSerialPort();
    write();
    adaptor->openSerialPort(QStringLiteral("ttyUSB7"));
    QVERIFY(line.sendHex("02 05 01 00 00 03"));
    QTRY_COMPARE(line.receivedHex(), QByteArray("06"));
    QCOMPARE(adaptor.errors, QStringList());
}

void TestSerialAdaptorOperations::anAdaptorMayBeDestroyedAtAnyTime()
{
    PseudoSerialLine line("ttyUSB7");
    for (int i = 0; i < 20; ++i) {
        auto adaptor = std::make_unique<SerialAdaptor>(QStringLiteral("/dev/ttyUSB1"));
        if (i % 2 == 0) {
            adaptor->openSerialPort(QStringLiteral("ttyUSB7"));
            QVERIFY(line.sendHex("02 05 01 00 00 03 02 05"));
        }
        if (i % 3 == 0) {
            QCoreApplication::processEvents();
        }
        QPointer<SerialAdaptor> alive(adaptor.get());
        adaptor.reset();
        QVERIFY(!alive);
    }
}

QTEST_GUILESS_MAIN(TestSerialAdaptorOperations)

#include "tst_serialadaptor_operations.moc"
