#include "SimulatorProcess.h"

#include <Tolvar/Varundo/FrameCodec.h>
#include <Tolvar/Varundo/Protocol.h>

#include <QDir>
#include <QFile>
#include <QHostAddress>
#include <QImage>
#include <QJsonArray>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <csignal>

using Tolvar::Varundo::Test::SimulatorProcess;

namespace {

using namespace Tolvar::Varundo;
using Protocol::Execute;
using Protocol::Read;
using Protocol::Write;

QByteArray frame(Protocol::Group group, quint8 command, const QByteArray& payload = {})
{
    return encodeFrame({command, group, static_cast<quint16>(payload.size()), payload});
}

/// A controller that waits for what it asked for.
class Controller
{
public:
    explicit Controller(int port)
    {
        m_socket.connectToHost(QHostAddress::LocalHost, static_cast<quint16>(port));
        m_socket.waitForConnected();
    }

    void type(const QByteArray& characters) { m_socket.write(characters); }

    /// So many bytes as an answer has; all that came when they do not come.
    QByteArray request(const QByteArray& bytes, int answerSize = 1)
    {
        m_socket.write(bytes);
        QByteArray answer;
        while (answer.size() < answerSize &&
               (m_socket.bytesAvailable() > 0 || m_socket.waitForReadyRead(5000))) {
            answer += m_socket.read(answerSize - answer.size());
        }
        return answer;
    }

private:
    QTcpSocket m_socket;
};

const QByteArray ack("\x06", 1);

QJsonObject elementOf(const QJsonObject& state, const QString& field, const QString& value)
{
    const QJsonArray elements = state.value(QStringLiteral("elements")).toArray();
    for (const QJsonValue& element : elements) {
        if (element.toObject().value(field) == value) {
            return element.toObject();
        }
    }
    return {};
}

QString textOf(const QJsonObject& state, const char* key)
{
    return elementOf(state, QStringLiteral("key"), QLatin1String(key))
        .value(QStringLiteral("text"))
        .toString();
}

/// How many pixels of exactly this colour stand in a part of the 60 x 24 grid of a 720x576 picture.
int pixels(const QImage& picture, const QColor& colour, int column, int row, int columns)
{
    int count = 0;
    for (int y = row * 24; y < row * 24 + 24; ++y) {
        for (int x = column * 12; x < (column + columns) * 12; ++x) {
            count += picture.pixelColor(x, y) == colour ? 1 : 0;
        }
    }
    return count;
}

} // namespace

/// The program, from outside: command line, signals, files, and a controller at its TCP port.
class tst_SimulatorProgram : public QObject
{
    Q_OBJECT

private slots:
    void readyLineNamesThePort();
    void endsWithZeroAndWritesBothFiles_data();
    void endsWithZeroAndWritesBothFiles();
    void takenPortIsToldBeforeTheReadyLine();
    void otherSimulatorOnTheDefaultPortIsNoTrouble();
    void badCommandLineEndsWithUsageStatus();
    void badProfileIsToldBeforeTheReadyLine();
    void helpAndVersionGoToTheOutput();
    void snapshotIsWrittenWhileItRuns();
    void snapshotWithoutAnyFileDoesNothing();
    void snapshotThatCannotBeWrittenIsToldAndTheUnitRunsOn();
    void interfaceIsKeptFromOneRunToTheNext();
    void controllersCommandsShowInStateAndPicture();
    void switchedOffOverlayIsNotDrawn();
    void readAnswersComeFromTheDevices();
    void unselectedInterfaceIsAcknowledgedAndIgnored();
    void pictureHasTheSizeAskedFor();
    void commandsOnTheInputAreAnswered_data();
    void commandsOnTheInputAreAnswered();
    void commandsOnTheInputAreCarriedOut();
    void linesWithoutCommandGetNoAnswer();
    void oversizedLineIsRefusedAsAWhole();
    void endOfTheInputEndsTheCommandsAlone();
    void inputIsNotReadUnlessAskedFor();
};

void tst_SimulatorProgram::readyLineNamesThePort()
{
    SimulatorProcess simulator;
    QVERIFY2(simulator.start(), qPrintable(simulator.errors()));
    QVERIFY2(simulator.port() > 0, qPrintable(simulator.readyLine()));
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, static_cast<quint16>(simulator.port()));
    QVERIFY(socket.waitForConnected());
}

void tst_SimulatorProgram::endsWithZeroAndWritesBothFiles_data()
{
    QTest::addColumn<int>("signalNumber");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
}

void tst_SimulatorProgram::endsWithZeroAndWritesBothFiles()
{
    QFETCH(int, signalNumber);
    SimulatorProcess simulator;
    QVERIFY2(simulator.start(), qPrintable(simulator.errors()));
    QVERIFY(!QFile::exists(simulator.pictureFile()));
    QCOMPARE(simulator.end(signalNumber), 0);
    QCOMPARE(QImage(simulator.pictureFile()).size(), QSize(720, 576));
    QCOMPARE(simulator.stateOnDisk().value(QStringLiteral("tcpPort")).toInt(), simulator.port());
    const QStringList files = QFileInfo(simulator.stateFile()).dir().entryList(QDir::Files, QDir::Name);
    QCOMPARE(files, QStringList({QStringLiteral("picture.png"), QStringLiteral("settings.json"),
                                 QStringLiteral("state.json")})); // nothing half written is left behind
}

void tst_SimulatorProgram::takenPortIsToldBeforeTheReadyLine()
{
    QTcpServer occupier;
    QVERIFY(occupier.listen(QHostAddress::LocalHost));
    SimulatorProcess simulator;
    simulator.run({QStringLiteral("--tcp-port"), QString::number(occupier.serverPort())});
    QCOMPARE(simulator.exitStatus(), 1);
    const QString errors = simulator.errors();
    QVERIFY2(errors.contains(QStringLiteral("cannot listen on TCP port %1: ").arg(occupier.serverPort())),
             qPrintable(errors));
    QCOMPARE(simulator.output(), QString());
}

void tst_SimulatorProgram::otherSimulatorOnTheDefaultPortIsNoTrouble()
{
    QTcpServer occupier;
    if (!occupier.listen(QHostAddress::Any, 9998)) {
        QSKIP("somebody else has port 9998 here, and this machine permits no network of our own");
    }
    SimulatorProcess simulator;
    QVERIFY2(simulator.start(), qPrintable(simulator.errors()));
    QCOMPARE(simulator.end(SIGTERM), 0);
    const QString errors = simulator.errors();
    QVERIFY2(!errors.contains(QStringLiteral("9998")), qPrintable(errors));
}

void tst_SimulatorProgram::badCommandLineEndsWithUsageStatus()
{
    SimulatorProcess simulator;
    simulator.run({QStringLiteral("--size"), QStringLiteral("huge")});
    QCOMPARE(simulator.exitStatus(), 2);
    const QString errors = simulator.errors();
    QVERIFY2(errors.contains(QStringLiteral("varundo-simulator: --size: expected ")), qPrintable(errors));
    QCOMPARE(simulator.output(), QString());
}

void tst_SimulatorProgram::badProfileIsToldBeforeTheReadyLine()
{
    SimulatorProcess simulator;
    QFile profile(simulator.stateFile());
    QVERIFY(profile.open(QIODevice::WriteOnly) && profile.write("{\"elements\": 7}") > 0);
    profile.close();
    simulator.run({QStringLiteral("--tcp-port=0"), QStringLiteral("--profile"), simulator.stateFile()});
    QCOMPARE(simulator.exitStatus(), 1);
    const QString errors = simulator.errors();
    QVERIFY2(errors.contains(simulator.stateFile()) && errors.contains(QStringLiteral("elements")),
             qPrintable(errors));
    QCOMPARE(simulator.output(), QString());
}

void tst_SimulatorProgram::helpAndVersionGoToTheOutput()
{
    SimulatorProcess simulator;
    simulator.run({QStringLiteral("--help")});
    QCOMPARE(simulator.exitStatus(), 0);
    QVERIFY(simulator.output().contains(QStringLiteral("--seed-clock")));
    simulator.run({QStringLiteral("--version")});
    QCOMPARE(simulator.exitStatus(), 0);
    QVERIFY(simulator.output().startsWith(QStringLiteral("varundo-simulator ")));
}

void tst_SimulatorProgram::snapshotIsWrittenWhileItRuns()
{
    SimulatorProcess simulator;
    QVERIFY2(simulator.start({QStringLiteral("--seed-clock=2031-12-30T01:02:03")}),
             qPrintable(simulator.errors()));
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(textOf(simulator.freshState(), "Date"), QStringLiteral("30.12.2031"));
        QCOMPARE(QImage(simulator.pictureFile()).size(), QSize(720, 576));
    }
    QVERIFY(simulator.isRunning());
}

void tst_SimulatorProgram::snapshotWithoutAnyFileDoesNothing()
{
    SimulatorProcess simulator;
    QVERIFY2(simulator.start({QStringLiteral("--snapshot="), QStringLiteral("--state=")}),
             qPrintable(simulator.errors()));
    simulator.sendSignal(SIGUSR1);
    Controller controller(simulator.port());
    QCOMPARE(controller.request(frame(Execute, 0x80)), ack); // it is alive
    QCOMPARE(simulator.end(SIGTERM), 0);
}

void tst_SimulatorProgram::snapshotThatCannotBeWrittenIsToldAndTheUnitRunsOn()
{
    SimulatorProcess simulator;
    QVERIFY2(simulator.start(), qPrintable(simulator.errors()));
    QVERIFY(QDir().mkpath(simulator.stateFile())); // a directory has come into its way
    simulator.sendSignal(SIGUSR1);
    const QString reason = QStringLiteral("cannot write ") + simulator.stateFile();
    QTRY_VERIFY2(simulator.errors().contains(reason), qPrintable(simulator.errors()));
    Controller controller(simulator.port());
    QCOMPARE(controller.request(frame(Execute, 0x80)), ack);
    QCOMPARE(simulator.end(SIGTERM), 1); // the last one could not be written either
}

void tst_SimulatorProgram::interfaceIsKeptFromOneRunToTheNext()
{
    SimulatorProcess simulator;
    const auto interfaceOf = [&simulator](const QStringList& arguments) {
        return simulator.start(arguments) && simulator.end(SIGTERM) == 0
                   ? simulator.stateOnDisk().value(QStringLiteral("interface")).toString()
                   : simulator.errors();
    };
    QCOMPARE(interfaceOf({}), QStringLiteral("Tcp"));
    QCOMPARE(interfaceOf({QStringLiteral("--interface=Udp")}), QStringLiteral("Udp"));
    QCOMPARE(interfaceOf({}), QStringLiteral("Udp"));
}

void tst_SimulatorProgram::controllersCommandsShowInStateAndPicture()
{
    SimulatorProcess simulator;
    QVERIFY2(simulator.start(), qPrintable(simulator.errors()));
    Controller controller(simulator.port());
    QCOMPARE(controller.request(frame(Write, 0x01, QByteArray(1, 1))), ack);                // texts in UTF-8
    QCOMPARE(controller.request(frame(Write, 0x30, QByteArray::fromHex("42150000"))), ack); // section 37.25
    QCOMPARE(controller.request(frame(Write, 0x32, QByteArray("\x1E\x0F", 2))), ack); // to column 30, row 15
    QCOMPARE(controller.request(frame(Write, 0xE5, QByteArray("\x00\xAD", 2))), ack); // red on blue
    QCOMPARE(controller.request(frame(Write, 0x70, QByteArray("\x01\x02\x03", 3))), ack);
    QCOMPARE(controller.request(frame(Write, 0x98, QByteArray("\x0C") + QByteArray("Längsriss 3 €"))), ack);
    QCOMPARE(controller.request(frame(Write, 0x62, QByteArray("\x14\x11", 2))), ack);
    controller.type("typed");
    QCOMPARE(controller.request(frame(Execute, 0x50)), ack);

    const QJsonObject state = simulator.freshState();
    const QJsonObject section =
        elementOf(state, QStringLiteral("key"), QStringLiteral("SectionDistanceCounter"));
    QCOMPARE(section.value(QStringLiteral("text")).toString(), QStringLiteral("37.25"));
    QCOMPARE(section.value(QStringLiteral("column")).toInt(), 30);
    QCOMPARE(section.value(QStringLiteral("row")).toInt(), 15);
    QCOMPARE(section.value(QStringLiteral("textColor")).toString(), QStringLiteral("#FFFF0000"));
    QCOMPARE(section.value(QStringLiteral("backgroundColor")).toString(), QStringLiteral("#FF0000FF"));
    QCOMPARE(textOf(state, "VideoTimeCounter"), QStringLiteral("01:02:03"));
    QVERIFY(!elementOf(state, QStringLiteral("text"), QStringLiteral("Längsriss 3 €")).isEmpty());
    QVERIFY(!elementOf(state, QStringLiteral("text"), QStringLiteral("typed")).isEmpty());
    QCOMPARE(state.value(QStringLiteral("signals")).toArray().size(), 2);

    const QImage picture(simulator.pictureFile());
    QVERIFY(pixels(picture, Qt::blue, 30, 15, 15) > 1500); // "Section 37.25 m"
    QVERIFY(pixels(picture, Qt::red, 30, 15, 15) > 100);
    QVERIFY(pixels(picture, Qt::blue, 0, 12, 13) > 1500); // the written line
    QVERIFY(pixels(picture, Qt::white, 0, 12, 13) > 100);
    QVERIFY(pixels(picture, Qt::blue, 20, 17, 5) > 500); // the typed text
    QCOMPARE(pixels(picture, Qt::blue, 26, 17, 30), 0);
}

void tst_SimulatorProgram::switchedOffOverlayIsNotDrawn()
{
    SimulatorProcess simulator;
    QVERIFY2(simulator.start(), qPrintable(simulator.errors()));
    Controller controller(simulator.port());
    QCOMPARE(controller.request(frame(Write, 0x98, QByteArray("\x0Ctext"))), ack);
    QVERIFY(simulator.freshState().value(QStringLiteral("overlayVisible")).toBool());
    QVERIFY(pixels(QImage(simulator.pictureFile()), Qt::blue, 0, 12, 4) > 500);
    QCOMPARE(controller.request(frame(Execute, 0x81)), ack);
    QVERIFY(!simulator.freshState().value(QStringLiteral("overlayVisible")).toBool());
    QCOMPARE(pixels(QImage(simulator.pictureFile()), Qt::blue, 0, 12, 4), 0);
    QCOMPARE(controller.request(frame(Execute, 0x80)), ack);
    simulator.freshState();
    QVERIFY(pixels(QImage(simulator.pictureFile()), Qt::blue, 0, 12, 4) > 500);
}

void tst_SimulatorProgram::readAnswersComeFromTheDevices()
{
    SimulatorProcess simulator;
    QVERIFY2(simulator.start(), qPrintable(simulator.errors()));
    Controller controller(simulator.port());
    QCOMPARE(controller.request(frame(Write, 0x30, QByteArray::fromHex("42150000"))), ack);
    QCOMPARE(controller.request(frame(Read, 0x30), 11),
             ack + frame(Read, 0x30, QByteArray::fromHex("42150000")));
    QCOMPARE(controller.request(frame(Read, 0xF3), 11),
             ack + frame(Read, 0xF3, QByteArray::fromHex("41700000")));
    const QByteArray zeroes(28, '\0');
    QCOMPARE(controller.request(frame(Read, 0xD4), 35), ack + frame(Read, 0xD4, zeroes));
}

void tst_SimulatorProgram::unselectedInterfaceIsAcknowledgedAndIgnored()
{
    SimulatorProcess simulator;
    QVERIFY2(simulator.start({QStringLiteral("--interface=Serial")}), qPrintable(simulator.errors()));
    Controller controller(simulator.port());
    QCOMPARE(controller.request(frame(Execute, 0x81)), ack);
    const QJsonObject state = simulator.freshState();
    QCOMPARE(state.value(QStringLiteral("interface")).toString(), QStringLiteral("Serial"));
    QVERIFY(state.value(QStringLiteral("overlayVisible")).toBool());
}

void tst_SimulatorProgram::pictureHasTheSizeAskedFor()
{
    SimulatorProcess simulator;
    QVERIFY2(simulator.start({QStringLiteral("--size=1280x720")}), qPrintable(simulator.errors()));
    QVERIFY(!simulator.freshState().isEmpty());
    QCOMPARE(QImage(simulator.pictureFile()).size(), QSize(1280, 720));
}

void tst_SimulatorProgram::commandsOnTheInputAreAnswered_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("answer");
    const auto row = [](const char* line, const char* answer) {
        QTest::newRow(line) << QByteArray(line) << QString::fromUtf8(answer);
    };
    row("interface Udp", "ok");
    row("  interface   Tcp ", "ok");
    row("interface Foo", "error: interface: expected Serial, Tcp or Udp, got \"Foo\"");
    row("interface SelectedInterface::Tcp",
        "error: interface: expected Serial, Tcp or Udp, got \"SelectedInterface::Tcp\"");
    row("profile", "ok");
    row("profile /nowhere.json", "error: /nowhere.json: cannot be read: No such file or directory");
    row(R"(devices {"camera": {"pan": 5}})", "ok");
    row(R"(devices {"camera": {"pan": 5.5}})",
        "error: camera.pan: expected an integer from -32768 to 32767, got 5.5");
    row("devices [1]", "error: devices: expected an object in JSON: no error occurred");
    row("devices {", "error: devices: expected an object in JSON: unterminated object");
    row("plug", "error: there is no serial line; it takes --virtual-serial");
    row("snapshot", "ok");
    row("snapshot now", "error: unknown command \"snapshot now\"");
    row("jump",
        "error: unknown command \"jump\"; known are interface, profile, devices, plug, unplug, snapshot");
}

void tst_SimulatorProgram::commandsOnTheInputAreAnswered()
{
    QFETCH(QByteArray, line);
    QFETCH(QString, answer);
    SimulatorProcess simulator;
    QVERIFY2(simulator.start({QStringLiteral("--control")}), qPrintable(simulator.errors()));
    QCOMPARE(simulator.command(line), answer);
}

void tst_SimulatorProgram::commandsOnTheInputAreCarriedOut()
{
    SimulatorProcess simulator;
    QVERIFY2(simulator.start({QStringLiteral("--control")}), qPrintable(simulator.errors()));
    const QString profile = simulator.write(
        QStringLiteral("one.json"), R"({"elements": [{"kind": "static", "id": 1, "text": "alone"}]})");
    QCOMPARE(simulator.command("profile " + profile.toUtf8()), QStringLiteral("ok"));
    QCOMPARE(simulator.command(R"(devices {"reel": {"section": 3.5}})"), QStringLiteral("ok"));
    QCOMPARE(simulator.command("interface Udp"), QStringLiteral("ok"));
    QVERIFY(!QFile::exists(simulator.stateFile()));
    QCOMPARE(simulator.command("snapshot"), QStringLiteral("ok"));
    const QJsonObject state = simulator.stateOnDisk();
    QCOMPARE(state.value(QStringLiteral("interface")), QJsonValue(QStringLiteral("Udp")));
    QCOMPARE(state.value(QStringLiteral("elements")).toArray().size(), 1);
    QCOMPARE(textOf(state, "1"), QStringLiteral("alone"));
    const QJsonObject reel =
        state.value(QStringLiteral("devices")).toObject().value(QStringLiteral("reel")).toObject();
    QCOMPARE(reel.value(QStringLiteral("section")), QJsonValue(3.5));
}

void tst_SimulatorProgram::linesWithoutCommandGetNoAnswer()
{
    SimulatorProcess simulator;
    QVERIFY2(simulator.start({QStringLiteral("--control")}), qPrintable(simulator.errors()));
    QCOMPARE(simulator.command("\n   \n# remark\njump\r"),
             QStringLiteral("error: unknown command \"jump\"; known are interface, profile, devices, plug, "
                            "unplug, snapshot"));
}

void tst_SimulatorProgram::oversizedLineIsRefusedAsAWhole()
{
    SimulatorProcess simulator;
    QVERIFY2(simulator.start({QStringLiteral("--control")}), qPrintable(simulator.errors()));
    QCOMPARE(simulator.command("profile " + QByteArray(70000, 'x')),
             QStringLiteral("error: a line of more than 65536 bytes"));
    QCOMPARE(simulator.command("profile"), QStringLiteral("ok"));
}

void tst_SimulatorProgram::endOfTheInputEndsTheCommandsAlone()
{
    SimulatorProcess simulator;
    QVERIFY2(simulator.start({QStringLiteral("--control")}), qPrintable(simulator.errors()));
    simulator.closeInput("interface Udp"); // the last line needs no end
    QTRY_COMPARE(simulator.freshState().value(QStringLiteral("interface")),
                 QJsonValue(QStringLiteral("Udp")));
    QCOMPARE(simulator.end(SIGTERM), 0);
}

void tst_SimulatorProgram::inputIsNotReadUnlessAskedFor()
{
    SimulatorProcess simulator;
    QVERIFY2(simulator.start(), qPrintable(simulator.errors()));
    simulator.closeInput("interface Udp\n");
    QCOMPARE(simulator.freshState().value(QStringLiteral("interface")), QJsonValue(QStringLiteral("Tcp")));
}

QTEST_GUILESS_MAIN(tst_SimulatorProgram)
#include "tst_simulator_program.moc"
