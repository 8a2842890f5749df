// The adaptor on a line that stays: settings, bytes, frames and replies. The adapter's coming is told to it
// directly here; the watcher finds no node.

#include "Isolation.h"
#include "ObservedSerialAdaptor.h"
#include "PseudoAdapter.h"

#include <Tolvar/Varundo/FrameCodec.h>

#include <QSignalSpy>
#include <QtTest>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

// Nodes that the watcher does not look at, so that only the test opens and closes.
constexpr const char* Node = "/dev/ttyUSB5";
const QString Name = QStringLiteral("ttyUSB5");
const QByteArray Ack(1, '\x06');
const QByteArray Nack(1, '\x15');

QByteArray allByteValues()
{
    QByteArray bytes;
    for (int value = 0; value < 256; ++value) {
        bytes.append(static_cast<char>(value));
    }
    return bytes;
}

QByteArray writeFrame(quint8 command, const QByteArray& payload)
{
    return encodeFrame({command, 2, static_cast<quint16>(payload.size()), payload});
}

} // namespace

class TestSerialAdaptor : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void freshAdaptorHasTheLineSetUpAndClosed();
    void openLineIs9600With8BitsNoParityOneStopBitNoFlowControl();
    void baudRateReachesTheLine_data();
    void baudRateReachesTheLine();
    void baudRateSetWhileClosedHoldsForTheNextOpen();
    void baudRateThatAGoneLineDidNotTakeHoldsForTheNextOpen();
    void baudrateChangeIsToldOnceAndOnlyIfItIsOne();
    void noErrorIsNotTold();
    void everyOtherErrorIsToldInThePortsOwnWords();

    void openIsIgnoredWhileAPortIsOpen();
    void closedPortIsNotListenedTo();
    void portCanBeOpenedAgain();
    void closeAfterAFailedOpenReachesThePort();
    void portThatIsOpenedWhileAnOpenFailsIsOpen();
    void portThatOnlyReportsErrorsIsGivenUp();
    void hundredErrorsInARowAreTheLinesEnd_data();
    void hundredErrorsInARowAreTheLinesEnd();
    void openingForgetsTheErrorsOfTheLineBefore();
    void bytesThatWaitDoNotMakeAnErrorTheLinesEnd();
    void settingsThatAreRefusedDoNotCountAsErrorsOfTheLine_data();
    void settingsThatAreRefusedDoNotCountAsErrorsOfTheLine();
    void aReadInBetweenKeepsAPortWithErrors();

    void allByteValuesArriveInAPayload();
    void allByteValuesLeaveInAPayload();
    void bytesOutsideAFrameAreTypedFrom0x20On();
    void frameIsAcknowledgedBeforeItIsPassedOn();
    void rejectedFrameIsAnsweredWithOneNack();
    void frameSplitOverReadsIsAcceptedOnce();
    void decoderGoesOnAfterAReopen();
    void repliesOnAClosedPortAreLostWithoutAWord();
    void recordsLengthIsSentAsItIs();
};

void TestSerialAdaptor::initTestCase()
{
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
}

void TestSerialAdaptor::freshAdaptorHasTheLineSetUpAndClosed()
{
    ObservedSerialAdaptor unit;
    QCOMPARE(unit->baudrate(), 9600);
    QCOMPARE(unit.port().baudRate(QSerialPort::Input), 9600);
    QCOMPARE(unit.port().baudRate(QSerialPort::Output), 9600);
    QCOMPARE(unit.port().dataBits(), QSerialPort::Data8);
    QCOMPARE(unit.port().parity(), QSerialPort::NoParity);
    QCOMPARE(unit.port().stopBits(), QSerialPort::OneStop);
    QCOMPARE(unit.port().flowControl(), QSerialPort::NoFlowControl);
    QCOMPARE(unit.port().portName(), QStringLiteral("ttyUSB1"));
    QVERIFY(!unit.port().isOpen());
    QCOMPARE(unit.errors(), QStringList());
}

void TestSerialAdaptor::openLineIs9600With8BitsNoParityOneStopBitNoFlowControl()
{
    const PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    QVERIFY(!adapter.isOpenedByUnit());
    unit->openSerialPort(Name);
    QVERIFY(adapter.isOpenedByUnit());
    const termios line = adapter.line();
    QCOMPARE(cfgetispeed(&line), speed_t(B9600));
    QCOMPARE(cfgetospeed(&line), speed_t(B9600));
    QCOMPARE(line.c_cflag & CSIZE, tcflag_t(CS8));
    QCOMPARE(line.c_cflag & (PARENB | CSTOPB | CRTSCTS), tcflag_t(0));
    QCOMPARE(line.c_iflag & (IXON | IXOFF | IXANY), tcflag_t(0));
}

void TestSerialAdaptor::baudRateReachesTheLine_data()
{
    QTest::addColumn<int>("rate");
    QTest::addColumn<uint>("onTheLine");
    QTest::newRow("1200") << 1200 << uint(B1200);
    QTest::newRow("9600") << 9600 << uint(B9600);
    QTest::newRow("19200") << 19200 << uint(B19200);
    QTest::newRow("57600") << 57600 << uint(B57600);
    QTest::newRow("115200") << 115200 << uint(B115200);
}

void TestSerialAdaptor::baudRateReachesTheLine()
{
    QFETCH(int, rate);
    QFETCH(uint, onTheLine);
    PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    unit->openSerialPort(Name);
    unit->setBaudrate(rate);
    const termios line = adapter.line();
    QCOMPARE(cfgetospeed(&line), onTheLine);
    QCOMPARE(cfgetispeed(&line), onTheLine);
    QCOMPARE(unit->baudrate(), rate);
    QCOMPARE(adapter.exchange(writeFrame(1, QByteArray())), Ack); // the port is still open
}

void TestSerialAdaptor::baudRateSetWhileClosedHoldsForTheNextOpen()
{
    const PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    unit->setBaudrate(38400);
    unit->openSerialPort(Name);
    const termios line = adapter.line();
    QCOMPARE(cfgetospeed(&line), speed_t(B38400));
}

void TestSerialAdaptor::baudRateThatAGoneLineDidNotTakeHoldsForTheNextOpen()
{
    PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    unit->openSerialPort(Name);
    adapter.unplug();
    unit->setBaudrate(57600); // the port is still open, and fails
    QCOMPARE(unit->baudrate(), 57600);
    unit->closeSerialPort();
    QVERIFY(adapter.plug());
    unit->openSerialPort(Name);
    const termios line = adapter.line();
    QCOMPARE(cfgetospeed(&line), speed_t(B57600));
}

void TestSerialAdaptor::baudrateChangeIsToldOnceAndOnlyIfItIsOne()
{
    SerialAdaptor adaptor(QStringLiteral("/dev/ttyUSB1"));
    QSignalSpy changed(&adaptor, &SerialAdaptor::baudrateChanged);
    adaptor.setBaudrate(9600);
    QCOMPARE(changed.count(), 0);
    adaptor.setBaudrate(115200);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.first().first().toInt(), 115200);
    adaptor.setBaudrate(115200);
    QCOMPARE(changed.count(), 1);
    adaptor.setBaudrate(9600);
    QCOMPARE(changed.count(), 2);
}

void TestSerialAdaptor::noErrorIsNotTold()
{
    ObservedSerialAdaptor unit;
    unit->handleError(QSerialPort::NoError);
    QCOMPARE(unit.errors(), QStringList());
}

void TestSerialAdaptor::everyOtherErrorIsToldInThePortsOwnWords()
{
    ObservedSerialAdaptor unit;
    for (int error = 1; error <= 14; ++error) {
        unit->handleError(error);
        QCOMPARE(unit.errors().size(), error);
        QCOMPARE(unit.errors().last(), unit.port().errorString());
    }
}

void TestSerialAdaptor::openIsIgnoredWhileAPortIsOpen()
{
    PseudoAdapter first(Node);
    PseudoAdapter second("/dev/ttyUSB6");
    ObservedSerialAdaptor unit;
    unit->openSerialPort(Name);
    unit->openSerialPort(QStringLiteral("ttyUSB6"));
    QVERIFY(!second.isOpenedByUnit());
    QCOMPARE(unit.port().portName(), Name);
    QCOMPARE(first.exchange(writeFrame(1, QByteArray())), Ack);
    QCOMPARE(unit.errors(), QStringList());
}

void TestSerialAdaptor::closedPortIsNotListenedTo()
{
    PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    unit->openSerialPort(Name);
    unit->closeSerialPort();
    QVERIFY(!adapter.isOpenedByUnit());
    adapter.send(writeFrame(1, QByteArray()) + "x");
    QTest::qWait(50);
    QVERIFY(unit.records().empty());
    QCOMPARE(unit.typed(), QByteArray());
    QCOMPARE(unit.errors(), QStringList());
}

void TestSerialAdaptor::portCanBeOpenedAgain()
{
    PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    for (int round = 1; round <= 3; ++round) {
        unit->openSerialPort(Name);
        QCOMPARE(adapter.exchange(writeFrame(1, QByteArray())), Ack);
        QCOMPARE(unit.records().size(), size_t(round));
        unit->closeSerialPort();
    }
}

void TestSerialAdaptor::closeAfterAFailedOpenReachesThePort()
{
    ObservedSerialAdaptor unit;
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("^/dev/ttyUSB5|^ttyUSB5")));
    unit->openSerialPort(Name);
    QCOMPARE(unit.errors().size(), 1); // there is no such node
    unit->closeSerialPort();
    QCOMPARE(unit.errors().size(), 2); // the port itself says that it is not open
    QCOMPARE(unit.errors().last(), unit.port().errorString());
    QCOMPARE(unit.port().error(), QSerialPort::NotOpenError);

    const PseudoAdapter adapter(Node);
    unit->openSerialPort(Name); // not ignored: no port counts as open
    QVERIFY(adapter.isOpenedByUnit());
}

void TestSerialAdaptor::portThatIsOpenedWhileAnOpenFailsIsOpen()
{
    PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    connect(&*unit, &SerialAdaptor::serialPortError, this, [&] { unit->openSerialPort(Name); });
    unit->openSerialPort(QStringLiteral("ttyUSB6")); // which is not there
    QVERIFY(adapter.isOpenedByUnit());
    QCOMPARE(unit.errors().size(), 1);
    unit->openSerialPort(Name); // ignored, since it is open
    QCOMPARE(unit.errors().size(), 1);
    QCOMPARE(adapter.exchange(writeFrame(1, QByteArray())), Ack);
}

void TestSerialAdaptor::portThatOnlyReportsErrorsIsGivenUp()
{
    const PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    unit->openSerialPort(Name);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("no longer answers")));
    for (int count = 0; count < 1000; ++count) {
        emit unit.port().errorOccurred(QSerialPort::ReadError);
    }
    QTRY_VERIFY(!adapter.isOpenedByUnit());
    unit->openSerialPort(Name); // to the outside it counts as open until the adapter has been away
    QVERIFY(!adapter.isOpenedByUnit());
}

void TestSerialAdaptor::hundredErrorsInARowAreTheLinesEnd_data()
{
    QTest::addColumn<int>("errorsBeforeAFrame");
    QTest::newRow("since the port was opened") << 0;
    QTest::newRow("since bytes have come") << 60;
}

void TestSerialAdaptor::hundredErrorsInARowAreTheLinesEnd()
{
    QFETCH(int, errorsBeforeAFrame);
    PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    unit->openSerialPort(Name);
    if (errorsBeforeAFrame > 0) {
        for (int count = 0; count < errorsBeforeAFrame; ++count) {
            emit unit.port().errorOccurred(QSerialPort::ReadError);
        }
        QCOMPARE(adapter.exchange(writeFrame(1, QByteArray())), Ack);
    }
    for (int count = 0; count < 99; ++count) {
        emit unit.port().errorOccurred(QSerialPort::ReadError);
    }
    QCoreApplication::sendPostedEvents();
    QVERIFY(adapter.isOpenedByUnit());
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("no longer answers")));
    emit unit.port().errorOccurred(QSerialPort::ReadError);
    QCoreApplication::sendPostedEvents();
    QVERIFY(!adapter.isOpenedByUnit());
}

void TestSerialAdaptor::openingForgetsTheErrorsOfTheLineBefore()
{
    const PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    for (int round = 0; round < 3; ++round) {
        unit->openSerialPort(Name);
        for (int count = 0; count < 60; ++count) {
            emit unit.port().errorOccurred(QSerialPort::ReadError);
        }
        QCoreApplication::sendPostedEvents();
        QVERIFY(adapter.isOpenedByUnit());
        unit->closeSerialPort();
    }
}

void TestSerialAdaptor::bytesThatWaitDoNotMakeAnErrorTheLinesEnd()
{
    PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    unit->openSerialPort(Name);
    QCOMPARE(adapter.send("typed"), 5);
    emit unit.port().errorOccurred(QSerialPort::ReadError);
    QCoreApplication::sendPostedEvents(); // before the bytes are read
    QCOMPARE(unit.typed(), QByteArray());
    QVERIFY(adapter.isOpenedByUnit());
    QTRY_COMPARE(unit.typed(), QByteArray("typed"));
}

void TestSerialAdaptor::settingsThatAreRefusedDoNotCountAsErrorsOfTheLine_data()
{
    QTest::addColumn<int>("error");
    QTest::addColumn<bool>("isOfTheLine");
    QTest::newRow("DeviceNotFoundError") << int(QSerialPort::DeviceNotFoundError) << false;
    QTest::newRow("PermissionError") << int(QSerialPort::PermissionError) << false;
    QTest::newRow("OpenError") << int(QSerialPort::OpenError) << false;
    QTest::newRow("WriteError") << int(QSerialPort::WriteError) << true;
    QTest::newRow("ReadError") << int(QSerialPort::ReadError) << true;
    QTest::newRow("ResourceError") << int(QSerialPort::ResourceError) << true;
    QTest::newRow("UnsupportedOperationError") << int(QSerialPort::UnsupportedOperationError) << false;
    QTest::newRow("UnknownError") << int(QSerialPort::UnknownError) << true;
    QTest::newRow("TimeoutError") << int(QSerialPort::TimeoutError) << false;
    QTest::newRow("NotOpenError") << int(QSerialPort::NotOpenError) << false;
}

void TestSerialAdaptor::settingsThatAreRefusedDoNotCountAsErrorsOfTheLine()
{
    QFETCH(int, error);
    QFETCH(bool, isOfTheLine);
    const PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    unit->openSerialPort(Name);
    if (isOfTheLine) {
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("no longer answers")));
    }
    for (int count = 0; count < 1000; ++count) {
        emit unit.port().errorOccurred(static_cast<QSerialPort::SerialPortError>(error));
    }
    QCOMPARE(unit.errors().size(), 1000);
    // What looks at the port afterwards has been queued before this.
    QCoreApplication::sendPostedEvents();
    QCOMPARE(adapter.isOpenedByUnit(), !isOfTheLine);
}

void TestSerialAdaptor::aReadInBetweenKeepsAPortWithErrors()
{
    PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    unit->openSerialPort(Name);
    for (int round = 0; round < 40; ++round) {
        for (int count = 0; count < 50; ++count) {
            emit unit.port().errorOccurred(QSerialPort::ReadError);
        }
        QCOMPARE(adapter.exchange(writeFrame(1, QByteArray())), Ack);
    }
    QCOMPARE(unit.errors().size(), 2000); // all told, none acted upon
}

void TestSerialAdaptor::allByteValuesArriveInAPayload()
{
    PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    unit->openSerialPort(Name);
    QByteArray frames;
    for (int value = 0; value < 256; ++value) {
        frames += writeFrame(7, QByteArray(3, static_cast<char>(value)));
    }
    QCOMPARE(adapter.exchange(frames, 256), Ack.repeated(256));
    QCOMPARE(unit.records().size(), size_t(256));
    for (int value = 0; value < 256; ++value) {
        QCOMPARE(unit.records()[static_cast<size_t>(value)].data, QByteArray(3, static_cast<char>(value)));
    }
    QCOMPARE(adapter.exchange(writeFrame(7, allByteValues())), Ack);
    QCOMPARE(unit.records().back().data, allByteValues());
    QCOMPARE(unit.records().size(), size_t(257));
}

void TestSerialAdaptor::allByteValuesLeaveInAPayload()
{
    PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    unit->openSerialPort(Name);
    const CommandMessage answer{0x80, 1, 256, allByteValues()};
    unit->writeMessage(answer);
    QCOMPARE(adapter.receive(262), QByteArray::fromHex("0280010001") + allByteValues() + '\x03');
}

void TestSerialAdaptor::bytesOutsideAFrameAreTypedFrom0x20On()
{
    PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    unit->openSerialPort(Name);
    QByteArray outside = allByteValues();
    outside.remove(2, 1); // 0x02 opens a frame
    adapter.send(outside);
    QTRY_COMPARE(unit.typed(), allByteValues().mid(0x20));
    QCOMPARE(adapter.take(), QByteArray());
}

void TestSerialAdaptor::frameIsAcknowledgedBeforeItIsPassedOn()
{
    PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    unit->openSerialPort(Name);
    unit.onRecord([&](const CommandMessage& record) { unit->writeMessage(record); });
    const QByteArray first = QByteArray::fromHex("020501000003");
    const QByteArray second = QByteArray::fromHex("020702030041424303");
    QCOMPARE(adapter.exchange(first + second, 17), Ack + first + Ack + second);
    QCOMPARE(unit.records().size(), size_t(2));
}

void TestSerialAdaptor::rejectedFrameIsAnsweredWithOneNack()
{
    PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    unit->openSerialPort(Name);
    QCOMPARE(adapter.exchange(QByteArray::fromHex("020501010041044243020501000003")), Nack);
    QCOMPARE(adapter.exchange(QByteArray::fromHex("03")), Ack); // the held frame is completed
    QCOMPARE(unit.records().size(), size_t(1));
    QCOMPARE(unit.records().front().data, QByteArray("A"));
    QCOMPARE(unit->frameCounters().rejected, quint64(1));
}

void TestSerialAdaptor::frameSplitOverReadsIsAcceptedOnce()
{
    PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    unit->openSerialPort(Name);
    for (const char* const part : {"0205", "0100"}) {
        adapter.send(QByteArray::fromHex(part));
        QTest::qWait(20);
        QVERIFY(unit.records().empty());
    }
    QCOMPARE(adapter.exchange(QByteArray::fromHex("0003")), Ack);
    QCOMPARE(unit.records().size(), size_t(1));
}

void TestSerialAdaptor::decoderGoesOnAfterAReopen()
{
    PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    unit->openSerialPort(Name);
    adapter.send(QByteArray::fromHex("020702030041")); // a letter is still missing
    QTest::qWait(50);
    adapter.unplug();
    unit->closeSerialPort();
    QVERIFY(adapter.plug());
    unit->openSerialPort(Name);
    const QByteArray rest = QByteArray::fromHex("424303");
    QCOMPARE(adapter.exchange(rest), Ack);
    QCOMPARE(unit.records().size(), size_t(1));
    QCOMPARE(unit.records().front().data, QByteArray("ABC"));
}

void TestSerialAdaptor::repliesOnAClosedPortAreLostWithoutAWord()
{
    ObservedSerialAdaptor unit;
    unit->sendACK();
    unit->sendNACK();
    unit->writeMessage({1, 1, 0, {}});
    PseudoAdapter adapter(Node);
    unit->openSerialPort(Name);
    unit->sendNACK();
    QCOMPARE(adapter.receive(1), Nack);
    QTest::qWait(20);
    QCOMPARE(adapter.take(), QByteArray());
    QCOMPARE(unit.errors(), QStringList());
}

void TestSerialAdaptor::recordsLengthIsSentAsItIs()
{
    PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    unit->openSerialPort(Name);
    unit->writeMessage({0x10, 1, 0x0102, QByteArray("xyz")});
    QCOMPARE(adapter.receive(9), QByteArray::fromHex("021001020178797A03"));
}

QTEST_GUILESS_MAIN(TestSerialAdaptor)
#include "tst_serialadaptor.moc"
