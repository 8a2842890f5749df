#include "FakeTcpUnit.h"
#include "ZelctlRun.h"

#include <Tolvar/Varundo/Client/CommandCatalog.h>
#include <Tolvar/Varundo/Client/FrameMeaning.h>
#include <Tolvar/Varundo/Client/PayloadBuilder.h>

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSignalSpy>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <memory>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Client;
using Tolvar::Varundo::Test::PipedProcess;
using Tolvar::Varundo::Tests::FakeTcpUnit;
using Tolvar::Varundo::Tests::FakeUnit;
using Tolvar::Varundo::Tests::runZelctl;
using Tolvar::Varundo::Tests::ZelctlRun;
namespace Build = PayloadBuilder;

/// The program as users meet it: a process, its output, its exit status, and what reaches the unit.
class tst_Zelctl : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void readPrintsPlainValues_data();
    void readPrintsPlainValues();
    void commandPutsItsFrameOnTheWire_data();
    void commandPutsItsFrameOnTheWire();
    void everyMeaningIsACommandLineForItsFrame();
    void textGoesOutInTheUnitsCodec_data();
    void textGoesOutInTheUnitsCodec();
    void emptyWordClearsAStatusLine();
    void scriptClearsAStatusLine();
    void typedCharactersReachTheUnitUnframed();
    void mistakesAreUsageErrorsAndReachNoUnit_data();
    void mistakesAreUsageErrorsAndReachNoUnit();
    void rejectionEndsWithOne();
    void silenceEndsWithOne();
    void missingAnswerIsExplained();
    void refusedConnectionEndsWithThree();
    void lostConnectionEndsWithThree();
    void jsonIsOneObjectALine();
    void jsonTellsFailuresToo();
    void verboseShowsFramesBothWays();
    void rawPrintsWhatComesBack();
    void rawBytesThatAreNoFrameAreListenedFor();
    void decodeNeedsNoUnit_data();
    void decodeNeedsNoUnit();
    void decodeReadsStandardInput();
    void decodeReadsTheLargestFrameInOneWord();
    void scriptRunsOnOneConnection();
    void scriptStopsAtTheFirstFailureAndNamesTheLine();
    void scriptKeepsGoingWhenTold();
    void scriptRemembersTheCodecItHasSet();
    void resyncBringsTheUnitBack_data();
    void resyncBringsTheUnitBack();
    void resyncOfASilentUnitEndsWithOne();
    void watchReadsSoManyTimes();
    void watchEndsOnInterrupt();
    void listShowsTheWholeCatalogue();
    void optionsMayFollowTheCommand();
    void helpAndVersionEndWithZero();

private:
    QStringList connected(const QStringList& words) const;
    ZelctlRun runLine(const QString& line) const
    {
        return runZelctl(connected(QProcess::splitCommand(line)));
    }

    std::unique_ptr<FakeTcpUnit> m_unit;
};

void tst_Zelctl::init()
{
    m_unit = std::make_unique<FakeTcpUnit>();
    m_unit->setAnswer(0x01, Build::codec(TextCodec::Utf8));
    m_unit->setAnswer(0x30, Build::single(12.5F));
    m_unit->setAnswer(0x31, QByteArray::fromHex("00010A02"));
    m_unit->setAnswer(0x40, QByteArray::fromHex("1F0C141A"));
    m_unit->setAnswer(0x50, QByteArray::fromHex("09050000"));
    m_unit->setAnswer(0x70, QByteArray::fromHex("01020304"));
    m_unit->setAnswer(0x90, Build::lineText(2, QByteArray("caf\xC3\xA9")));
    m_unit->setAnswer(0x92, QByteArray::fromHex("02AF010000"));
    m_unit->setAnswer(0xD4, Build::point3D(1, -2.5, 3) + Build::single(45.5F));
    m_unit->setAnswer(0xF0, Build::single(-0.1F));
    m_unit->setAnswer(0xFD, QByteArray::fromHex("013FE0000000000000"));
    m_unit->setAnswer(0xFF, "V1");
}

QStringList tst_Zelctl::connected(const QStringList& words) const
{
    return QStringList{QStringLiteral("--tcp"), QStringLiteral("127.0.0.1:%1").arg(m_unit->port())} + words;
}

void tst_Zelctl::readPrintsPlainValues_data()
{
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* line, const char* expected) {
        QTest::newRow(line) << QString::fromUtf8(expected);
    };
    row("read meter-counter-1", "12.5\n");
    row("read meter-counter-1 value", "12.5\n");
    row("read section-distance", "12.5\n");
    row("read pan", "-0.1\n");
    row("read meter-counter-1 state", "format 0, visible yes, position 10 2\n");
    row("read date", "2026-12-31\n");
    row("read time", "09:05:00\n");
    row("read video-counter", "01:02:03.04\n");
    row("read text-codec", "utf8\n");
    row("read status-line-2", "caf\xC3\xA9\n");
    row("read status-line 2 text", "caf\xC3\xA9\n");
    row("read status-line-2 value", "caf\xC3\xA9\n");
    row("read status-line-2 state", "colour red black, visible yes\n");
    row("read measurement-3d", "1 -2.5 3 45.5\n");
    row("read laser-calibration-1", "0.5\n");
    row("read software-id", "V1\n");
    row("--codec latin9 read status-line-2", "caf\xC3\x83\xC2\xA9\n");
}

void tst_Zelctl::readPrintsPlainValues()
{
    QFETCH(QString, expected);
    const ZelctlRun result = runLine(QString::fromUtf8(QTest::currentDataTag()));
    QCOMPARE(result.err, QString());
    QCOMPARE(result.out, expected);
    QCOMPARE(result.status, 0);
}

void tst_Zelctl::commandPutsItsFrameOnTheWire_data()
{
    QTest::addColumn<QByteArray>("frame");
    const auto row = [](const char* line, const char* frame) {
        QTest::newRow(line) << QByteArray::fromHex(frame);
    };
    row("show meter-counter-1", "023000000003");
    row("hide status-line-4", "029A00000003");
    row("toggle inclination", "02FE00000003");
    row("overlay on", "028000000003");
    row("overlay off", "028100000003");
    row("overlay clear", "028800000003");
    row("measurement-3d lateral", "02D500000003");
    row("write meter-counter-1 position 10 2", "02320202000A0203");
    row("write pan 10 2", "02F00202000A0203");
    row("write meter-counter-1 value 12.5", "02300204004148000003");
    row("write meter-counter-1 -12.5", "0230020400C148000003");
    row("write meter-counter-3 colour white blue", "02E5020200151D03");
    row("write meter-counter-3 color 10", "02E502020015A003");
    row("write free-text colour white blue", "029202"
                                             "0100"
                                             "1D03");
    row("write status-line-2 colour red black", "0299020200"
                                                "02AF03");
    row("write date 2026-03-15", "02400204000F03141A03");
    row("write time 09:05:00", "0250020300"
                               "09050003");
    row("write cursor 3 4", "0262020200"
                            "030403");
    row("write video-counter value 1 2 3", "0270020300"
                                           "01020303");
    row("write text-codec utf16", "0201020100"
                                  "0203");
    row("write external-temperature format fahrenheit", "02F5020100"
                                                        "0103");
    row("write inclination format 1", "02FD020100"
                                      "0103");
    row("write measurement-3d orientation 1 2", "02D50208003F8000004000000003");
    row("write measurement-3d position 1 -2 0.5",
        "02D40218003FF0000000000000C0000000000000003FE000000000000003");
    row("--codec latin9 text A b", "0295020300"
                                   "41206203");
    row("--codec latin9 line 3 hi", "0298020300"
                                    "03686903");
    row("--codec latin9 free-text --duration 30 AB C", "02D7020700"
                                                       "001E004142004303");
    row("--codec latin9 write status-line-2 off", "0290020400"
                                                  "026F666603");
    row("--codec latin9 write status-line-3 text", "0290020100"
                                                   "0303");
    row("--codec utf16 write status-line 3 text", "0290020100"
                                                  "0303");
    row("--codec latin9 write status-line-2 text off", "0290020400"
                                                       "026F666603");
}

void tst_Zelctl::commandPutsItsFrameOnTheWire()
{
    QFETCH(QByteArray, frame);
    const ZelctlRun result = runLine(QString::fromUtf8(QTest::currentDataTag()));
    QCOMPARE(result.err, QString());
    QCOMPARE(result.status, 0);
    QCOMPARE(m_unit->received().toHex(), frame.toHex());
}

/// What --verbose and decode print can be typed back, for every command there is.
void tst_Zelctl::everyMeaningIsACommandLineForItsFrame()
{
    QStringList script;
    QVector<QByteArray> expected;
    for (const CommandInfo& info : allCommands()) {
        QByteArray payload;
        switch (info.request) {
        case PayloadKind::Codec:
            payload = Build::codec(TextCodec::Latin9);
            break;
        case PayloadKind::Text:
            payload = "say \"hi\" ";
            break;
        case PayloadKind::FreeText:
            payload = QByteArray::fromHex("001E0041200042");
            break;
        case PayloadKind::Single:
            payload = Build::single(-0.1F);
            break;
        case PayloadKind::Point3D:
            payload = Build::point3D(0.1, -1e300, 3);
            break;
        case PayloadKind::Orientation:
            payload = Build::orientation(1e-20F, 7);
            break;
        case PayloadKind::Date:
            payload = Build::date(QDate(2026, 3, 15));
            break;
        default:
            payload = QByteArray::fromHex("01020A").left(
                info.request == PayloadKind::None                                                ? 0
                : info.request == PayloadKind::Time || info.request == PayloadKind::VideoCounter ? 3
                : info.request == PayloadKind::Position || info.request == PayloadKind::NumberedColors ||
                        info.request == PayloadKind::LineText
                    ? 2
                    : 1);
        }
        const CommandMessage message = makeCommand(info, payload);
        script.append(frameMeaning(message, Sender::Controller, TextCodec::Latin9));
        expected.append(encodeFrame(message));
    }
    const ZelctlRun result =
        runZelctl(connected({QStringLiteral("--codec"), QStringLiteral("latin9"), QStringLiteral("--timeout"),
                             QStringLiteral("30"), QStringLiteral("run"), QStringLiteral("--keep-going"),
                             QStringLiteral("-")}),
                  script.join(QLatin1Char('\n')).toUtf8());
    QVERIFY2(!result.err.contains(QLatin1String("expected")) &&
                 !result.err.contains(QLatin1String("unknown element")),
             qPrintable(result.err));
    QVector<QByteArray> got;
    for (const CommandMessage& frame : m_unit->frames()) {
        const bool isEcho =
            frame.grpId == Protocol::Read && frame.cmdId == 0x90 && frame.data.toHex().toInt() >= 10;
        if (!isEcho) {
            got.append(encodeFrame(frame));
        }
    }
    QCOMPARE(got.size(), expected.size());
    for (int i = 0; i < expected.size(); ++i) {
        QVERIFY2(got.at(i) == expected.at(i), qPrintable(script.at(i)));
    }
}

void tst_Zelctl::textGoesOutInTheUnitsCodec_data()
{
    QTest::addColumn<int>("codec");
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("latin9") << 0 << QByteArray::fromHex("A4");
    QTest::newRow("utf8") << 1 << QByteArray::fromHex("E282AC");
    QTest::newRow("utf16") << 2 << QByteArray::fromHex("FFFEAC20");
}

void tst_Zelctl::textGoesOutInTheUnitsCodec()
{
#if Q_BYTE_ORDER == Q_BIG_ENDIAN
    QSKIP("UTF-16 is sent in the machine's byte order");
#endif
    QFETCH(int, codec);
    QFETCH(QByteArray, payload);
    m_unit->setAnswer(0x01, Build::number(static_cast<quint8>(codec)));
    const ZelctlRun result = runZelctl(connected({QStringLiteral("text"), QStringLiteral("\u20AC")}));
    QCOMPARE(result.status, 0);
    QCOMPARE(m_unit->frames().size(), 2);
    QCOMPARE(m_unit->frames().at(0).cmdId, quint8(0x01));
    QCOMPARE(m_unit->frames().at(1).data.toHex(), payload.toHex());
}

void tst_Zelctl::emptyWordClearsAStatusLine()
{
    const ZelctlRun result = runZelctl(connected(
        {QStringLiteral("write"), QStringLiteral("status-line-3"), QStringLiteral("text"), QString()}));
    QCOMPARE(result.err, QString());
    QCOMPARE(result.status, 0);
    QCOMPARE(m_unit->frames().last().data.toHex(), QByteArray("03"));
}

void tst_Zelctl::scriptClearsAStatusLine()
{
    const ZelctlRun result = runZelctl(connected({QStringLiteral("run"), QStringLiteral("-")}),
                                       "write status-line-3 text\nwrite status-line-4 text \"\"\n");
    QCOMPARE(result.err, QString());
    QCOMPARE(result.status, 0);
    QCOMPARE(m_unit->frames().size(), 3); // one asks for the codec
    QCOMPARE(m_unit->frames().at(1).data.toHex(), QByteArray("03"));
    QCOMPARE(m_unit->frames().at(2).data.toHex(), QByteArray("04"));
}

void tst_Zelctl::typedCharactersReachTheUnitUnframed()
{
    const ZelctlRun result = runZelctl(connected({QStringLiteral("type"), QStringLiteral("caf\u00E9")}));
    QCOMPARE(result.err, QString());
    QCOMPARE(result.status, 0);
    QCOMPARE(m_unit->typed(), QByteArray("caf\xE9"));
}

void tst_Zelctl::mistakesAreUsageErrorsAndReachNoUnit_data()
{
    QTest::addColumn<QString>("said");
    const auto row = [](const char* line, const char* said) {
        QTest::newRow(line) << QString::fromUtf8(said);
    };
    row("", "no command given");
    row("raed pan", "unknown command 'raed'; possible: read, write");
    row("read", "the element is missing");
    row("read foo", "unknown element 'foo'; known: text-codec");
    row("read meter-conter-1", "did you mean 'meter-counter-1'");
    row("read temprature",
        "did you mean 'crawler-temperature' or 'external-temperature' or 'camera-temperature'?");
    row("read pan position", "cannot read 'position' of pan; possible: value, state");
    row("read cursor", "'cursor' has nothing of that kind; possible: write position, text");
    row("read pan value now", "'now' is more than this command takes");
    row("read status-line", "the number of the status-line is missing");
    row("read status-line-5", "expected 1 to 4");
    row("write pan", "the column is missing; expected: pan position COLUMN ROW");
    row("write pan position 256 0", "the column '256': expected a whole number from 0 to 255");
    row("write pan position 1 2 3", "'3' is more than this command takes");
    row("write pan format 1", "cannot write 'format' of pan; possible: position, colour");
    row("write software-id x", "'software-id' has nothing of that kind; possible: read value");
    row("write pan colour mauve", "the text colour 'mauve': expected 0 to 15 or one of transparent, white");
    row("write date 2026-02-30", "expected a date such as 2026-03-15");
    row("write time 25:00:00", "expected a time such as 09:05:00");
    row("write text-codec ebcdic", "expected latin9, utf8 or utf16");
    row("write meter-counter-1 value far", "expected a number");
    row("free-text 1 2 3 4 5 6", "6 lines given, the unit shows 5 at most");
    row("line 256 x", "the number of the line '256': expected a whole number from 0 to 255");
    row("--codec latin9 text \xCE\xA9", "does not exist in latin9");
    row("type \xCE\xA9", "U+03a9 cannot be typed");
    row("type", "the text is missing");
    row("overlay maybe", "cannot do 'maybe'; possible: on, off, clear");
    row("show cursor", "'cursor' has nothing of that kind");
    row("raw 0g", "'0g': expected bytes of two hexadecimal digits");
    row("raw", "no bytes given");
    row("run nowhere.txt", "cannot read nowhere.txt");
    row("watch measurement-3d --state", "measurement-3d has no state to read");
    row("watch pan --interval soon", "--interval 'soon': expected a whole number");
    row("list everything", "expected commands, elements or colours");
    row("--timeout 0 read pan", "--timeout 0: expected 1 to");
    row("--codec klingon read pan", "--codec klingon: expected latin9, utf8 or utf16");
    row("--tcp :99999 read pan", "--tcp :99999: expected HOST or HOST:PORT");
    row("--tcp host:0 read pan", "--tcp host:0: expected HOST or HOST:PORT");
    row("--frobnicate read pan", "frobnicate");
    row("--serial /dev/ttyUSB0 read pan", "--tcp and --serial exclude each other");
    row("read pan --serial /dev/ttyUSB0", "--tcp and --serial exclude each other");
    row("write status-line-3", "the text is missing");
    row("write line-3 text", "the text is missing");
}

void tst_Zelctl::mistakesAreUsageErrorsAndReachNoUnit()
{
    QFETCH(QString, said);
    const ZelctlRun result = runLine(QString::fromUtf8(QTest::currentDataTag()));
    QVERIFY2(result.err.startsWith(QLatin1String("zelctl: ")) && result.err.contains(said),
             qPrintable(result.err));
    QCOMPARE(result.status, 2);
    QCOMPARE(result.out, QString());
    QVERIFY(m_unit->received().isEmpty());
}

void tst_Zelctl::rejectionEndsWithOne()
{
    m_unit->setBehaviour([this](const CommandMessage&) { m_unit->say(FakeUnit::nack()); });
    const ZelctlRun result = runLine(QStringLiteral("show pan"));
    QCOMPARE(result.status, 1);
    QCOMPARE(result.err, QStringLiteral("zelctl: show pan: rejected by the unit (NACK)\n"));
}

void tst_Zelctl::silenceEndsWithOne()
{
    m_unit->setBehaviour([](const CommandMessage&) {});
    const ZelctlRun result = runLine(QStringLiteral("--timeout 100 show pan"));
    QCOMPARE(result.status, 1);
    QVERIFY2(result.err.contains(QLatin1String("within 100 ms")), qPrintable(result.err));
}

void tst_Zelctl::missingAnswerIsExplained()
{
    const ZelctlRun result = runLine(QStringLiteral("--timeout 100 read tilt"));
    QCOMPARE(result.status, 1);
    QVERIFY2(result.err.startsWith(
                 QLatin1String("zelctl: read tilt value: acknowledged, but no answer: the unit does "
                               "not know this command")),
             qPrintable(result.err));
}

void tst_Zelctl::refusedConnectionEndsWithThree()
{
    const QString address = QStringLiteral("127.0.0.1:%1").arg(m_unit->port());
    m_unit.reset();
    const ZelctlRun result =
        runZelctl({QStringLiteral("--tcp"), address, QStringLiteral("read"), QStringLiteral("pan")});
    QCOMPARE(result.status, 3);
    QCOMPARE(result.err, QStringLiteral("zelctl: cannot connect to %1: Connection refused\n").arg(address));
}

void tst_Zelctl::lostConnectionEndsWithThree()
{
    m_unit->setBehaviour([this](const CommandMessage&) { m_unit->hangUp(); });
    const ZelctlRun result = runLine(QStringLiteral("read pan"));
    QCOMPARE(result.status, 3);
    QCOMPARE(result.err, QStringLiteral("zelctl: connection to 127.0.0.1:%1 lost: The remote host closed the "
                                        "connection\n")
                             .arg(m_unit->port()));
}

void tst_Zelctl::jsonIsOneObjectALine()
{
    const ZelctlRun result = runLine(QStringLiteral("--json read meter-counter-1 state"));
    QCOMPARE(result.status, 0);
    QCOMPARE(result.out.count(QLatin1Char('\n')), 1);
    const QJsonObject object = QJsonDocument::fromJson(result.out.toUtf8()).object();
    const QJsonObject expected{{QStringLiteral("request"), QStringLiteral("read meter-counter-1 state")},
                               {QStringLiteral("group"), QStringLiteral("read")},
                               {QStringLiteral("element"), QStringLiteral("meter-counter-1")},
                               {QStringLiteral("verb"), QStringLiteral("state")},
                               {QStringLiteral("outcome"), QStringLiteral("answered")},
                               {QStringLiteral("answer"), QJsonObject{{QStringLiteral("format"), 0},
                                                                      {QStringLiteral("visible"), true},
                                                                      {QStringLiteral("column"), 10},
                                                                      {QStringLiteral("row"), 2}}}};
    QCOMPARE(object, expected);
}

void tst_Zelctl::jsonTellsFailuresToo()
{
    m_unit->setBehaviour([this](const CommandMessage&) { m_unit->say(FakeUnit::nack()); });
    const ZelctlRun result = runLine(QStringLiteral("--json show pan"));
    QCOMPARE(result.status, 1);
    const QJsonObject object = QJsonDocument::fromJson(result.out.toUtf8()).object();
    QCOMPARE(object.value(QLatin1String("outcome")).toString(), QStringLiteral("rejected"));
    QVERIFY(!object.value(QLatin1String("error")).toString().isEmpty());
    QVERIFY(!object.contains(QLatin1String("answer")));
}

void tst_Zelctl::verboseShowsFramesBothWays()
{
    const ZelctlRun result = runLine(QStringLiteral("-v read meter-counter-1"));
    QCOMPARE(result.status, 0);
    QCOMPARE(result.out, QStringLiteral("12.5\n"));
    QCOMPARE(result.err,
             QStringLiteral("> 02 30 01 00 00 03  read meter-counter-1 value\n"
                            "< 06  ACK\n"
                            "< 02 30 01 04 00 41 48 00 00 03  answer: meter-counter-1 value 12.5\n"));
}

void tst_Zelctl::rawPrintsWhatComesBack()
{
    const ZelctlRun result = runLine(QStringLiteral("raw 0230 01:00,00 0x03 023000000003"));
    QCOMPARE(result.err, QString());
    QCOMPARE(result.status, 0);
    QCOMPARE(result.out, QStringLiteral("06  ACK\n"
                                        "02 30 01 04 00 41 48 00 00 03  answer: meter-counter-1 value 12.5\n"
                                        "06  ACK\n"));
}

void tst_Zelctl::rawBytesThatAreNoFrameAreListenedFor()
{
    const ZelctlRun rejected = runLine(QStringLiteral("--timeout 100 raw 02 01 03 41"));
    QCOMPARE(rejected.out, QStringLiteral("15  NACK\n"));
    QCOMPARE(rejected.status, 1);
    QCOMPARE(rejected.err, QStringLiteral("zelctl: not acknowledged within 100 ms\n"));
}

void tst_Zelctl::decodeNeedsNoUnit_data()
{
    QTest::addColumn<QString>("expected");
    QTest::addColumn<int>("status");
    const auto row = [](const char* line, const char* expected, int status) {
        QTest::newRow(line) << QString::fromUtf8(expected) << status;
    };
    row("decode 02 30 01 00 00 03", "02 30 01 00 00 03  read meter-counter-1 value\n", 0);
    row("decode 06023001040041480000031541",
        "06  ACK\n02 30 01 04 00 41 48 00 00 03  answer: meter-counter-1 value 12.5\n15  NACK\n41  typed "
        "\"A\"\n",
        0);
    row("decode --from unit 02 90 01 01 00 03 03", "02 90 01 01 00 03 03  answer: status-line-3 text \"\"\n",
        0);
    row("decode 02 90 01 01 00 03 03", "02 90 01 01 00 03 03  read status-line-3 text\n", 0);
    row("decode --codec utf8 02 95 02 03 00 E2 82 AC 03",
        "02 95 02 03 00 e2 82 ac 03  write cursor text \"\xE2\x82\xAC\"\n", 0);
    row("decode 02 30 01", "02 30 01  incomplete frame\n", 1);
    row("decode 01 06", "01  no frame, ignored\n06  ACK\n", 1);
}

void tst_Zelctl::decodeNeedsNoUnit()
{
    QFETCH(QString, expected);
    QFETCH(int, status);
    const ZelctlRun result = runLine(QString::fromUtf8(QTest::currentDataTag()));
    QCOMPARE(result.err, QString());
    QCOMPARE(result.out, expected);
    QCOMPARE(result.status, status);
    QVERIFY(m_unit->received().isEmpty());
}

void tst_Zelctl::decodeReadsStandardInput()
{
    const ZelctlRun result =
        runZelctl({QStringLiteral("--json"), QStringLiteral("decode"), QStringLiteral("-")},
                  "02 32 02 02\n00 0A 02 03\n");
    QCOMPARE(result.status, 0);
    const QJsonObject object = QJsonDocument::fromJson(result.out.toUtf8()).object();
    QCOMPARE(object.value(QLatin1String("meaning")).toString(),
             QStringLiteral("write meter-counter-1 position 10 2"));
    QCOMPARE(object.value(QLatin1String("fields")).toObject().value(QLatin1String("column")).toInt(), 10);
    QCOMPARE(object.value(QLatin1String("sender")).toString(), QStringLiteral("controller"));
}

void tst_Zelctl::decodeReadsTheLargestFrameInOneWord()
{
    const QByteArray frame = "029802ffff" + QByteArray(65535, 'x').toHex() + "03";
    const ZelctlRun result =
        runZelctl({QStringLiteral("--json"), QStringLiteral("decode"), QStringLiteral("-")}, frame);
    QCOMPARE(result.err, QString());
    QCOMPARE(result.status, 0);
    const QJsonObject object = QJsonDocument::fromJson(result.out.toUtf8()).object();
    QCOMPARE(object.value(QLatin1String("kind")).toString(), QStringLiteral("frame"));
}

void tst_Zelctl::scriptRunsOnOneConnection()
{
    const QTemporaryDir directory;
    QFile script(directory.filePath(QStringLiteral("a script.zel")));
    QVERIFY(script.open(QIODevice::WriteOnly));
    script.write("# moves things\n\nshow pan\n  write pan position 1 2\nwrite status-line-1 text \"a  "
                 "b\"\nread meter-counter-1\n");
    script.close();
    const ZelctlRun result = runZelctl(connected({QStringLiteral("run"), script.fileName()}));
    QCOMPARE(result.err, QString());
    QCOMPARE(result.status, 0);
    QCOMPARE(result.out, QStringLiteral("12.5\n"));
    QCOMPARE(m_unit->connections(), 1);
    QCOMPARE(m_unit->frames().size(), 5); // one asks for the codec
    QCOMPARE(m_unit->frames().at(3).data, QByteArray("\x01"
                                                     "a  b"));
}

void tst_Zelctl::scriptStopsAtTheFirstFailureAndNamesTheLine()
{
    const ZelctlRun result = runZelctl(connected({QStringLiteral("run"), QStringLiteral("-")}),
                                       "show pan\nshow nothing\nhide pan\n");
    QCOMPARE(result.status, 2);
    QVERIFY2(
        result.err.startsWith(QLatin1String("zelctl: standard input:2: show: unknown element 'nothing'")),
        qPrintable(result.err));
    QCOMPARE(m_unit->frames().size(), 1);
}

void tst_Zelctl::scriptKeepsGoingWhenTold()
{
    const ZelctlRun result =
        runZelctl(connected({QStringLiteral("--timeout"), QStringLiteral("100"), QStringLiteral("run"),
                             QStringLiteral("--keep-going"), QStringLiteral("-")}),
                  "read tilt\nrun -\nread meter-counter-1\n");
    QCOMPARE(result.status, 1); // of the first failure
    QCOMPARE(result.out, QStringLiteral("12.5\n"));
    QVERIFY2(result.err.contains(QLatin1String("standard input:1: read tilt value: acknowledged")),
             qPrintable(result.err));
    QVERIFY2(result.err.contains(QLatin1String("standard input:2: 'run' has no place in a script")),
             qPrintable(result.err));
}

void tst_Zelctl::scriptRemembersTheCodecItHasSet()
{
    const ZelctlRun result = runZelctl(connected({QStringLiteral("run"), QStringLiteral("-")}),
                                       QByteArray("write text-codec latin9\ntext \xE2\x82\xAC\n"));
    QCOMPARE(result.err, QString());
    QCOMPARE(m_unit->frames().size(), 2); // nobody had to ask
    QCOMPARE(m_unit->frames().at(1).data, QByteArray("\xA4"));
}

void tst_Zelctl::resyncBringsTheUnitBack_data()
{
    QTest::addColumn<QByteArray>("leftBehind");
    const auto row = [](const char* name, const char* bytes) {
        QTest::newRow(name) << QByteArray::fromHex(bytes);
    };
    row("nothing", "");
    row("waiting for the command", "02");
    row("waiting for the group", "0230");
    row("waiting for the group, after a rejection", "023003");
    row("waiting for the length", "023001");
    row("waiting for the high length", "02300105");
    row("waiting for the largest payload", "023001FFFF");
    row("waiting for the last payload byte", "02300102004100");
    row("waiting for the end", "0230010100410A");
    row("payload of a dropped frame", "02000103004142430302000103");
    row("payload of a dropped frame, waiting", "0200010300414243");
}

void tst_Zelctl::resyncBringsTheUnitBack()
{
    QFETCH(QByteArray, leftBehind);
    if (!leftBehind.isEmpty()) {
        QTcpSocket otherController;
        otherController.connectToHost(QHostAddress::LocalHost, m_unit->port());
        otherController.write(leftBehind);
        QTRY_COMPARE(m_unit->received(), leftBehind);
        otherController.disconnectFromHost();
        QTRY_VERIFY(!m_unit->hasClient());
    }
    const ZelctlRun resync = runLine(QStringLiteral("--timeout 300 resync"));
    QCOMPARE(resync.err, QString());
    QCOMPARE(resync.status, 0);
    const ZelctlRun read = runLine(QStringLiteral("--timeout 300 read meter-counter-1"));
    QCOMPARE(read.out, QStringLiteral("12.5\n"));
}

void tst_Zelctl::resyncOfASilentUnitEndsWithOne()
{
    m_unit->setBehaviour([](const CommandMessage&) {});
    const ZelctlRun resync = runLine(QStringLiteral("--timeout 50 resync"));
    QCOMPARE(resync.status, 1);
    QVERIFY2(resync.err.startsWith(QLatin1String("zelctl: resync: no reply")), qPrintable(resync.err));
}

void tst_Zelctl::watchReadsSoManyTimes()
{
    const ZelctlRun result = runLine(QStringLiteral("watch meter-counter-1 pan --count 2 --interval 1"));
    QCOMPARE(result.err, QString());
    QCOMPARE(result.status, 0);
    QCOMPARE(result.out, QStringLiteral("meter-counter-1 12.5\npan -0.1\nmeter-counter-1 12.5\npan -0.1\n"));
}

void tst_Zelctl::watchEndsOnInterrupt()
{
    PipedProcess process;
    QVERIFY(process.start(QStringLiteral(ZELCTL_PROGRAM),
                          connected({QStringLiteral("watch"), QStringLiteral("meter-counter-1"),
                                     QStringLiteral("--interval"), QStringLiteral("60000")})));
    QByteArray out;
    QTRY_VERIFY_WITH_TIMEOUT((out += process.readOutput()).contains('\n'), ZelctlRun::Timeout);
    process.sendSignal(SIGINT);
    QVERIFY(process.waitForEnd(ZelctlRun::Timeout));
    QCOMPARE(process.exitStatus(), 0);
}

void tst_Zelctl::listShowsTheWholeCatalogue()
{
    const ZelctlRun result = runZelctl({QStringLiteral("--json"), QStringLiteral("list")});
    QCOMPARE(result.status, 0);
    const QStringList lines = result.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), static_cast<int>(allCommands().size()));
    int i = 0;
    for (const CommandInfo& info : allCommands()) {
        const QJsonObject object = QJsonDocument::fromJson(lines.at(i++).toUtf8()).object();
        QCOMPARE(object.value(QLatin1String("id")).toInt(), int(info.id));
        QCOMPARE(object.value(QLatin1String("group")).toString(), QString(groupName(info.group)));
        QCOMPARE(object.value(QLatin1String("element")).toString(), QString::fromLatin1(info.element));
    }
    QVERIFY(runZelctl({QStringLiteral("list"), QStringLiteral("elements")})
                .out.contains(QLatin1String("\nwrite status-line-N text TEXT\n")));
    QVERIFY(runZelctl({QStringLiteral("list"), QStringLiteral("colours")})
                .out.contains(QLatin1String("13 blue         #FF0000FF\n")));
}

void tst_Zelctl::optionsMayFollowTheCommand()
{
    const ZelctlRun result =
        runZelctl({QStringLiteral("read"), QStringLiteral("meter-counter-1"), QStringLiteral("--tcp"),
                   QStringLiteral("127.0.0.1:%1").arg(m_unit->port())});
    QCOMPARE(result.out, QStringLiteral("12.5\n"));
}

void tst_Zelctl::helpAndVersionEndWithZero()
{
    const ZelctlRun help = runZelctl({QStringLiteral("--help")});
    QCOMPARE(help.status, 0);
    QVERIFY(help.out.contains(QLatin1String("read ELEMENT [value|state]")));
    QVERIFY(help.out.contains(QLatin1String("--serial <DEVICE[:BAUD]>")));
    QVERIFY(runZelctl({QStringLiteral("watch"), QStringLiteral("--help")})
                .out.contains(QLatin1String("--interval")));
    QVERIFY(runZelctl({QStringLiteral("--version")}).out.startsWith(QLatin1String("zelctl 1.")));
}

QTEST_GUILESS_MAIN(tst_Zelctl)
#include "tst_zelctl.moc"
