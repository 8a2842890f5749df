#include "Isolation.h"
#include "SimulatorProcess.h"

#include <Tolvar/Varundo/FrameCodec.h>
#include <Tolvar/Varundo/Protocol.h>

#include <QFile>
#include <QSerialPort>
#include <QTest>
#include <QtEndian>

#include <csignal>
#include <sys/stat.h>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;
using Protocol::Execute;
using Protocol::Read;
using Protocol::Write;

namespace {

const QByteArray ack("\x06", 1);
const QString serialInterface = QStringLiteral("--interface=Serial");
const QString virtualSerial = QStringLiteral("--virtual-serial");

QByteArray frame(Protocol::Group group, quint8 command, const QByteArray& payload = {})
{
    return encodeFrame({command, group, static_cast<quint16>(payload.size()), payload});
}

/// A controller at its end of the line, as any program opens it.
class Controller
{
public:
    explicit Controller(const QString& device)
    {
        m_port.setPortName(device);
        m_port.open(QIODevice::ReadWrite);
    }

    bool isOpen() const { return m_port.isOpen(); }

    /// So many bytes as an answer has; all that came when they do not come.
    QByteArray request(const QByteArray& bytes, int answerSize = 1, int patienceMs = 5000)
    {
        m_port.write(bytes);
        QByteArray answer;
        while (answer.size() < answerSize &&
               (m_port.bytesAvailable() > 0 || m_port.waitForReadyRead(patienceMs))) {
            answer += m_port.read(answerSize - answer.size());
        }
        return answer;
    }

    /// Until the unit has found its adapter, there is no answer.
    bool reachesTheUnit()
    {
        for (int attempt = 0; attempt < 40; ++attempt) {
            if (request(frame(Execute, 0x80), 1, 500) == ack) {
                m_port.readAll(); // what was answered late
                while (m_port.waitForReadyRead(100)) {
                    m_port.readAll();
                }
                return true;
            }
        }
        return false;
    }

private:
    QSerialPort m_port;
};

bool nodeExists()
{
    struct stat found
    {};
    return lstat("/dev/ttyUSB1", &found) == 0;
}

float sectionCounter(Controller& controller)
{
    const QByteArray answer = controller.request(frame(Read, 0x30), 11);
    const quint32 bits = answer.size() == 11 ? qFromBigEndian<quint32>(answer.constData() + 6) : 0;
    float value = 0;
    memcpy(&value, &bits, sizeof value);
    return value;
}

} // namespace

/// The program's serial door, and the devices that move, from outside.
class tst_SimulatorSerial : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { QVERIFY(!nodeExists()); }

    void readyLineNamesBothEnds();
    void commandsArriveAndShow();
    void lineSurvivesUnplugAndPlug();
    void unselectedSerialLineIsAcknowledgedAndIgnored();
    void toggleWithoutALineIsTold();
    void nodeOfAnotherEndsTheProgramBeforeTheReadyLine();
    void lineIsGivenBackWhenTheProgramCannotStart();
    void nodeIsGoneAfterEachEnd_data();
    void nodeIsGoneAfterEachEnd();
    void readingsMoveAsTheScriptSays();
    void badScriptIsToldBeforeTheReadyLine();
};

void tst_SimulatorSerial::init()
{
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
}

void tst_SimulatorSerial::readyLineNamesBothEnds()
{
    SimulatorProcess simulator;
    QVERIFY2(simulator.start({virtualSerial}), qPrintable(simulator.errors()));
    QVERIFY2(simulator.port() > 0, qPrintable(simulator.readyLine()));
    QVERIFY2(QFile::exists(simulator.controllerDevice()), qPrintable(simulator.readyLine()));
    QVERIFY(nodeExists());
    const QJsonObject serial = simulator.freshState().value(QStringLiteral("serial")).toObject();
    QCOMPARE(serial.value(QStringLiteral("device")).toString(), QStringLiteral("/dev/ttyUSB1"));
    QCOMPARE(serial.value(QStringLiteral("controller")).toString(), simulator.controllerDevice());
    QCOMPARE(serial.value(QStringLiteral("plugged")), QJsonValue(true));
    QCOMPARE(simulator.end(SIGTERM), 0);
    QCOMPARE(simulator.errors(), QString());
}

void tst_SimulatorSerial::commandsArriveAndShow()
{
    SimulatorProcess simulator;
    QVERIFY2(simulator.start({virtualSerial, serialInterface}), qPrintable(simulator.errors()));
    Controller controller(simulator.controllerDevice());
    QVERIFY(controller.isOpen());
    QVERIFY(controller.reachesTheUnit());
    QCOMPARE(controller.request(frame(Write, 0x30, QByteArray::fromHex("42150000"))), ack);
    QCOMPARE(controller.request(frame(Read, 0x30), 11),
             ack + frame(Read, 0x30, QByteArray::fromHex("42150000")));
    QCOMPARE(controller.request(frame(Execute, 0x81)), ack);
    QCOMPARE(simulator.freshState().value(QStringLiteral("overlayVisible")), QJsonValue(false));
}

void tst_SimulatorSerial::lineSurvivesUnplugAndPlug()
{
    SimulatorProcess simulator;
    QVERIFY2(simulator.start({virtualSerial, serialInterface}), qPrintable(simulator.errors()));
    Controller controller(simulator.controllerDevice());
    QVERIFY(controller.reachesTheUnit());
    for (int round = 0; round < 2; ++round) {
        simulator.sendSignal(SIGUSR2);
        QTRY_VERIFY(!nodeExists());
        const QJsonObject serial = simulator.freshState().value(QStringLiteral("serial")).toObject();
        QCOMPARE(serial.value(QStringLiteral("plugged")), QJsonValue(false));
        // An adapter that comes back before the unit has looked is one that was never away, to the unit.
        QCOMPARE(controller.request(frame(Execute, 0x81), 1, 2500), QByteArray());
        simulator.sendSignal(SIGUSR2);
        QTRY_VERIFY(nodeExists());
        QVERIFY(controller.reachesTheUnit());
    }
    QCOMPARE(simulator.freshState().value(QStringLiteral("overlayVisible")),
             QJsonValue(true)); // 0x81 is lost
    QCOMPARE(simulator.end(SIGTERM), 0);
}

void tst_SimulatorSerial::unselectedSerialLineIsAcknowledgedAndIgnored()
{
    SimulatorProcess simulator;
    QVERIFY2(simulator.start({virtualSerial, QStringLiteral("--interface=Tcp")}),
             qPrintable(simulator.errors()));
    Controller controller(simulator.controllerDevice());
    QVERIFY(controller.reachesTheUnit());
    QCOMPARE(controller.request(frame(Execute, 0x81)), ack);
    QCOMPARE(simulator.freshState().value(QStringLiteral("overlayVisible")), QJsonValue(true));
}

void tst_SimulatorSerial::toggleWithoutALineIsTold()
{
    SimulatorProcess simulator;
    QVERIFY2(simulator.start(), qPrintable(simulator.errors()));
    QCOMPARE(simulator.controllerDevice(), QString());
    simulator.sendSignal(SIGUSR2);
    QTRY_VERIFY2(simulator.errors().contains(
                     QStringLiteral("SIGUSR2: there is no serial line; it takes --virtual-serial")),
                 qPrintable(simulator.errors()));
    QVERIFY(simulator.freshState().value(QStringLiteral("serial")).isNull());
}

void tst_SimulatorSerial::nodeOfAnotherEndsTheProgramBeforeTheReadyLine()
{
    SimulatorProcess first;
    QVERIFY2(first.start({virtualSerial, serialInterface}), qPrintable(first.errors()));
    SimulatorProcess second;
    second.run({QStringLiteral("--tcp-port=0"), virtualSerial});
    QCOMPARE(second.exitStatus(), 1);
    QCOMPARE(second.output(), QString());
    QVERIFY2(second.errors().contains(QStringLiteral("/dev/ttyUSB1 exists already and is left alone")),
             qPrintable(second.errors()));
    Controller controller(first.controllerDevice());
    QVERIFY(controller.reachesTheUnit());
}

void tst_SimulatorSerial::lineIsGivenBackWhenTheProgramCannotStart()
{
    SimulatorProcess simulator;
    simulator.run({QStringLiteral("--tcp-port=0"), virtualSerial, QStringLiteral("--profile=/nowhere")});
    QCOMPARE(simulator.exitStatus(), 1);
    QVERIFY(!nodeExists());
}

void tst_SimulatorSerial::nodeIsGoneAfterEachEnd_data()
{
    QTest::addColumn<int>("signalNumber");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGHUP") << SIGHUP;
}

void tst_SimulatorSerial::nodeIsGoneAfterEachEnd()
{
    QFETCH(int, signalNumber);
    SimulatorProcess simulator;
    QVERIFY2(simulator.start({virtualSerial, serialInterface}), qPrintable(simulator.errors()));
    QVERIFY(nodeExists());
    QCOMPARE(simulator.end(signalNumber), 0);
    QVERIFY(!nodeExists());
}

void tst_SimulatorSerial::readingsMoveAsTheScriptSays()
{
    SimulatorProcess simulator;
    const QString script = simulator.write(QStringLiteral("devices.json"), R"({"steps": [
        {"at": 0, "reel": {"section": 1.5}, "positionSensor": null},
        {"at": 2, "reel": {"section": 2.5}, "camera": {"pan": -90, "laser": [1, 2]}}]})");
    QVERIFY2(simulator.start({virtualSerial, serialInterface, QStringLiteral("--devices"), script}),
             qPrintable(simulator.errors()));
    Controller controller(simulator.controllerDevice());
    QVERIFY(controller.reachesTheUnit());
    QTRY_COMPARE(sectionCounter(controller), 2.5F);
    QCOMPARE(controller.request(frame(Read, 0xF0), 11),
             ack + frame(Read, 0xF0, QByteArray::fromHex("C2B40000")));
    const QJsonObject devices = simulator.freshState().value(QStringLiteral("devices")).toObject();
    QVERIFY(devices.contains(QStringLiteral("positionSensor")));
    QVERIFY(devices.value(QStringLiteral("positionSensor")).isNull());
}

void tst_SimulatorSerial::badScriptIsToldBeforeTheReadyLine()
{
    SimulatorProcess simulator;
    const QString script = simulator.write(QStringLiteral("devices.json"),
                                           R"({"steps": [{"at": 0, "camera": {"pan": 40000}}]})");
    simulator.run({QStringLiteral("--tcp-port=0"), QStringLiteral("--devices"), script});
    QCOMPARE(simulator.exitStatus(), 1);
    QCOMPARE(simulator.output(), QString());
    const QString reason =
        script +
        QStringLiteral(": steps[0].camera.pan: expected an integer from -32768 to 32767, got 40000\n");
    QVERIFY2(simulator.errors().contains(reason), qPrintable(simulator.errors()));
}

QTEST_GUILESS_MAIN(tst_SimulatorSerial)
#include "tst_simulator_serial.moc"
