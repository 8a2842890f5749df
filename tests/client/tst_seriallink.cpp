#include "FakeSerialUnit.h"

#include <Tolvar/Varundo/Client/CommandCatalog.h>
#include <Tolvar/Varundo/Client/PayloadBuilder.h>
#include <Tolvar/Varundo/Client/SerialLink.h>
#include <Tolvar/Varundo/Client/ZelClient.h>

#include <QElapsedTimer>
#include <QSerialPort>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Client;
using Tolvar::Varundo::Tests::FakeSerialUnit;
using Tolvar::Varundo::Tests::FakeUnit;
using Outcome = Reply::Outcome;

namespace {

constexpr int LongTimeout = 10000;

const CommandMessage ReadCounter{0x30, Protocol::Read, 0, {}};

QByteArray allBytes()
{
    QByteArray bytes;
    for (int byte = 0; byte < 256; ++byte) {
        bytes.append(static_cast<char>(byte));
    }
    return bytes;
}

} // namespace

class tst_SerialLink : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void lineHasTheUnitsSettings();
    void lineHasTheRateThatIsAskedFor();
    void requestsAreAnswered();
    void allBytesPassBothWays();
    void bytesForAnEarlierProgramAreThrownAway();
    void hangUpIsToldAtOnceAndOnlyOnce();
    void hangUpInTheMiddleOfAnAnswerIsALostConnection();
    void lineThatHungUpIsClosedAndKeepsNobodyBusy();
    void listenerMayDeleteTheLink();
    void closeSendsWhatIsStillToBeSent();
    void closedLinkTellsNoLoss();
    void deviceThatCannotBeOpenedIsNamedWithTheReason_data();
    void deviceThatCannotBeOpenedIsNamedWithTheReason();
    void deviceInUseIsRefused();
    void transmissionTimeFollowsTheRate();

private:
    void openLink();

    std::unique_ptr<FakeSerialUnit> m_unit;
    std::unique_ptr<SerialLink> m_link;
    std::unique_ptr<ZelClient> m_client;
};

void tst_SerialLink::init()
{
    m_unit = std::make_unique<FakeSerialUnit>();
    m_unit->setAnswer(0x30, PayloadBuilder::single(12.5F));
    m_link = std::make_unique<SerialLink>(m_unit->device());
}

void tst_SerialLink::cleanup()
{
    m_client.reset();
    m_link.reset();
    m_unit.reset();
}

void tst_SerialLink::openLink()
{
    QVERIFY2(m_link->open(), qPrintable(m_link->errorText()));
    m_client = std::make_unique<ZelClient>(m_link->device(), m_link->peerName());
    m_client->setTimeout(LongTimeout);
    connect(m_link.get(), &SerialLink::lost, m_client.get(), &ZelClient::fail);
}

void tst_SerialLink::lineHasTheUnitsSettings()
{
    openLink();
    const termios line = m_unit->lineSettings();
    QCOMPARE(cfgetispeed(&line), speed_t(B9600));
    QCOMPARE(cfgetospeed(&line), speed_t(B9600));
    QCOMPARE(line.c_cflag & (CSIZE | PARENB | CSTOPB | CRTSCTS), tcflag_t(CS8));
    QCOMPARE(line.c_iflag & (IXON | IXOFF), tcflag_t(0));
}

void tst_SerialLink::lineHasTheRateThatIsAskedFor()
{
    m_link = std::make_unique<SerialLink>(m_unit->device(), 115200);
    openLink();
    const termios line = m_unit->lineSettings();
    QCOMPARE(cfgetospeed(&line), speed_t(B115200));
}

void tst_SerialLink::requestsAreAnswered()
{
    openLink();
    Reply* read = m_client->send(ReadCounter);
    QCOMPARE(read->wait(), Outcome::Answered);
    QCOMPARE(read->answer().data, PayloadBuilder::single(12.5F));
    QCOMPARE(m_client->send({0xF0, Protocol::Execute, 0, {}})->wait(), Outcome::Acknowledged);
}

void tst_SerialLink::allBytesPassBothWays()
{
    openLink();
    m_unit->setAnswer(0x30, allBytes());
    Reply* reply = m_client->send({0x30, Protocol::Read, 256, allBytes()});
    QCOMPARE(reply->wait(), Outcome::Answered);
    QCOMPARE(reply->answer().data, allBytes());
    QCOMPARE(m_unit->frames().size(), 1);
    QCOMPARE(m_unit->frames().first().data, allBytes());
}

void tst_SerialLink::bytesForAnEarlierProgramAreThrownAway()
{
    m_unit->say(FakeUnit::nack());
    openLink();
    QCOMPARE(m_client->send(ReadCounter)->wait(), Outcome::Answered);
}

void tst_SerialLink::hangUpIsToldAtOnceAndOnlyOnce()
{
    openLink();
    QSignalSpy lost(m_link.get(), &SerialLink::lost);
    QSignalSpy connectionLost(m_client.get(), &ZelClient::connectionLost);
    m_unit->setBehaviour([this](const CommandMessage&) { m_unit->hangUp(); });
    QElapsedTimer elapsed;
    elapsed.start();
    Reply* reply = m_client->send(ReadCounter);
    QCOMPARE(reply->wait(), Outcome::ConnectionLost);
    QVERIFY(elapsed.elapsed() < LongTimeout / 2);
    const QString expected = QStringLiteral("connection to %1 lost: the line hung up").arg(m_unit->device());
    QCOMPARE(reply->errorText(), expected);
    QCOMPARE(m_client->send(ReadCounter)->errorText(), expected);
    QCoreApplication::processEvents();
    QCOMPARE(lost.count(), 1);
    QCOMPARE(connectionLost.count(), 1);
}

void tst_SerialLink::hangUpInTheMiddleOfAnAnswerIsALostConnection()
{
    openLink();
    QSignalSpy received(m_client.get(), &ZelClient::received);
    m_unit->setBehaviour([this](const CommandMessage&) {
        m_unit->say(FakeUnit::ack() + FakeUnit::answer(0x30, "half").chopped(3));
    });
    Reply* reply = m_client->send(ReadCounter);
    QTRY_COMPARE(received.count(), 1); // the acknowledge, with half an answer behind it
    m_unit->hangUp();
    QCOMPARE(reply->wait(), Outcome::ConnectionLost);
    QCOMPARE(received.count(), 1);
}

/// An open port would report about a million errors a second.
void tst_SerialLink::lineThatHungUpIsClosedAndKeepsNobodyBusy()
{
    openLink();
    auto* port = qobject_cast<QSerialPort*>(m_link->device());
    QVERIFY(port);
    QSignalSpy errors(port, &QSerialPort::errorOccurred);
    m_unit->hangUp();
    QTRY_VERIFY(!port->isOpen());
    QVERIFY(!m_client->isConnected());
    const int errorsUntilClosed = errors.count();
    QVERIFY2(errorsUntilClosed > 0 && errorsUntilClosed < 10, qPrintable(QString::number(errors.count())));
    QTest::qWait(50);
    QCOMPARE(errors.count(), errorsUntilClosed);
}

void tst_SerialLink::listenerMayDeleteTheLink()
{
    openLink();
    connect(m_link.get(), &SerialLink::lost, this, [this] { m_link.reset(); });
    m_unit->hangUp();
    QTRY_VERIFY(!m_link);
    QVERIFY(!m_client->isConnected());
}

void tst_SerialLink::closeSendsWhatIsStillToBeSent()
{
    QVERIFY(m_link->open());
    m_link->device()->write(allBytes());
    QVERIFY(m_link->device()->bytesToWrite() > 0);
    m_link->close(LongTimeout);
    QVERIFY(!m_link->device()->isOpen());
    QTRY_COMPARE(m_unit->received(), allBytes());
}

void tst_SerialLink::closedLinkTellsNoLoss()
{
    openLink();
    QSignalSpy lost(m_link.get(), &SerialLink::lost);
    m_link->close(LongTimeout);
    QVERIFY(!m_client->isConnected());
    m_unit->hangUp();
    QTest::qWait(20);
    QCOMPARE(lost.count(), 0);
    m_link->close(LongTimeout); // a second time is no mistake
}

void tst_SerialLink::deviceThatCannotBeOpenedIsNamedWithTheReason_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("reason");
    QTest::newRow("does not exist") << QStringLiteral("no-such-device")
                                    << QStringLiteral("No such file or directory");
    QTest::newRow("no terminal") << QStringLiteral("file")
                                 << QStringLiteral("Inappropriate ioctl for device");
    QTest::newRow("a directory") << QStringLiteral(".") << QStringLiteral("Is a directory");
}

void tst_SerialLink::deviceThatCannotBeOpenedIsNamedWithTheReason()
{
    QFETCH(QString, name);
    QFETCH(QString, reason);
    const QTemporaryDir directory;
    QFile file(directory.filePath(QStringLiteral("file")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const QString path = directory.filePath(name);
    SerialLink link(path);
    QSignalSpy lost(&link, &SerialLink::lost);
    QVERIFY(!link.open());
    QCOMPARE(link.errorText(), QStringLiteral("cannot open %1: %2").arg(path, reason));
    QVERIFY(!link.device()->isOpen());
    QCoreApplication::processEvents();
    QCOMPARE(lost.count(), 0);
}

void tst_SerialLink::deviceInUseIsRefused()
{
    openLink();
    SerialLink second(m_unit->device());
    QVERIFY(!second.open());
    QVERIFY2(second.errorText().startsWith(QStringLiteral("cannot open %1: ").arg(m_unit->device())),
             qPrintable(second.errorText()));
    QCOMPARE(m_client->send(ReadCounter)->wait(), Outcome::Answered);
}

void tst_SerialLink::transmissionTimeFollowsTheRate()
{
    QCOMPARE(SerialLink(QStringLiteral("x")).transmissionTime(960), 1000);
    QCOMPARE(SerialLink(QStringLiteral("x"), 115200).transmissionTime(65536), 5688);
}

QTEST_GUILESS_MAIN(tst_SerialLink)
#include "tst_seriallink.moc"
