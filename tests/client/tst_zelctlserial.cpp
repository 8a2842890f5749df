#include "FakeSerialUnit.h"
#include "ZelctlRun.h"

#include <Tolvar/Varundo/Client/PayloadBuilder.h>

#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <fcntl.h>
#include <memory>
#include <unistd.h>

using namespace Tolvar::Varundo;
using Tolvar::Varundo::Tests::FakeSerialUnit;
using Tolvar::Varundo::Tests::FakeUnit;
using Tolvar::Varundo::Tests::runZelctl;
using Tolvar::Varundo::Tests::ZelctlRun;
namespace Build = Tolvar::Varundo::Client::PayloadBuilder;

/// The program over a serial line: whatever it does over TCP, it does here.
class tst_ZelctlSerial : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void commandsAreDone_data();
    void commandsAreDone();
    void baudRateIsSetOnTheLine_data();
    void baudRateIsSetOnTheLine();
    void rawPassesAllBytesBothWays();
    void scriptRunsOverTheLine();
    void resyncFillsUpAHeldFrameAtTheLinesPace();
    void rejectionEndsWithOne();
    void silenceEndsWithOne();
    void hangUpInTheMiddleOfAnAnswerEndsWithThreeAtOnce();
    void hangUpEndsAWatch();
    void deviceThatCannotBeOpenedEndsWithThree_data();
    void deviceThatCannotBeOpenedEndsWithThree();
    void deviceNameMayHaveColons();
    void mistakesAreUsageErrors_data();
    void mistakesAreUsageErrors();

private:
    /// A device's name may be followed by a colon and the rate.
    [[nodiscard]] ZelctlRun runLine(const QString& line, const QString& rate = QString()) const
    {
        return runZelctl(QStringList{QStringLiteral("--serial"), m_unit->device() + rate} +
                         QProcess::splitCommand(line));
    }

    std::unique_ptr<FakeSerialUnit> m_unit;
};

void tst_ZelctlSerial::init()
{
    m_unit = std::make_unique<FakeSerialUnit>();
    m_unit->setAnswer(0x01, Build::codec(Client::TextCodec::Utf8));
    m_unit->setAnswer(0x30, Build::single(12.5F));
}

void tst_ZelctlSerial::commandsAreDone_data()
{
    QTest::addColumn<QByteArray>("lastReceived");
    QTest::addColumn<QString>("printed");
    const auto row = [](const char* line, const char* lastReceived, const char* printed) {
        QTest::newRow(line) << QByteArray::fromHex(lastReceived) << QString::fromUtf8(printed);
    };
    row("read meter-counter-1", "023001000003", "12.5\n");
    row("show pan", "02f000000003", "");
    row("write status-line-2 text caf\xC3\xA9",
        "0290020600"
        "02636166c3a903",
        "");
    row("watch meter-counter-1 --count 2 --interval 1", "023001000003023001000003",
        "meter-counter-1 12.5\nmeter-counter-1 12.5\n");
    row("type caf\xC3\xA9",
        "636166e9029001010010"
        "03",
        "");
    row("--timeout 200 raw 01 02 F0 00 00 00 03", "0102f000000003", "06  ACK\n");
    row("resync", "0302900101001003", "");
}

void tst_ZelctlSerial::commandsAreDone()
{
    QFETCH(QByteArray, lastReceived);
    QFETCH(QString, printed);
    const ZelctlRun result = runLine(QString::fromUtf8(QTest::currentDataTag()));
    QCOMPARE(result.err, QString());
    QCOMPARE(result.out, printed);
    QCOMPARE(result.status, 0);
    QCOMPARE(m_unit->received().right(lastReceived.size()).toHex(), lastReceived.toHex());
}

void tst_ZelctlSerial::baudRateIsSetOnTheLine_data()
{
    QTest::addColumn<QString>("rate");
    QTest::addColumn<uint>("expected");
    QTest::newRow("default") << QString() << uint(B9600);
    QTest::newRow("given") << QStringLiteral(":115200") << uint(B115200);
}

void tst_ZelctlSerial::baudRateIsSetOnTheLine()
{
    QFETCH(QString, rate);
    QFETCH(uint, expected);
    uint found = 0;
    m_unit->setBehaviour([&](const CommandMessage& frame) {
        const termios line = m_unit->lineSettings();
        found = cfgetospeed(&line);
        m_unit->behaveWell(frame);
    });
    QCOMPARE(runLine(QStringLiteral("show pan"), rate).status, 0);
    QCOMPARE(found, expected);
}

void tst_ZelctlSerial::rawPassesAllBytesBothWays()
{
    QByteArray all;
    for (int byte = 0; byte < 256; ++byte) {
        all.append(static_cast<char>(byte));
    }
    m_unit->setAnswer(0xF0, all);
    const QByteArray frame = encodeFrame({0xF0, Protocol::Read, 256, all});
    const ZelctlRun result = runLine(QStringLiteral("raw ") + QString::fromLatin1(frame.toHex()));
    QCOMPARE(result.err, QString());
    QCOMPARE(result.status, 0);
    QCOMPARE(m_unit->received(), frame);
    const QString expected = QString::fromLatin1(FakeUnit::answer(0xF0, all).toHex(' '));
    QVERIFY2(result.out.contains(expected), qPrintable(result.out));
}

void tst_ZelctlSerial::scriptRunsOverTheLine()
{
    const ZelctlRun result =
        runZelctl({QStringLiteral("--serial"), m_unit->device(), QStringLiteral("run"), QStringLiteral("-")},
                  "show pan\nread meter-counter-1\nwrite pan position 1 2\n");
    QCOMPARE(result.err, QString());
    QCOMPARE(result.out, QStringLiteral("12.5\n"));
    QCOMPARE(m_unit->frames().size(), 3);
}

/// A pseudo-terminal is as fast as it likes, a line is not; so the program has to wait by the rate.
void tst_ZelctlSerial::resyncFillsUpAHeldFrameAtTheLinesPace()
{
    const int writer = ::open(m_unit->device().toLocal8Bit().constData(), O_WRONLY | O_NOCTTY | O_CLOEXEC);
    QCOMPARE(::write(writer, "\x02\x30\x01\xFF\xFF", 5), ssize_t(5));
    ::close(writer);
    QTRY_COMPARE(m_unit->received().size(), 5);
    QElapsedTimer elapsed;
    elapsed.start();
    const ZelctlRun resync = runLine(QStringLiteral("--timeout 300 resync"), QStringLiteral(":921600"));
    QCOMPARE(resync.err, QString());
    QCOMPARE(resync.status, 0);
    // The first try in vain, some 65,800 bytes of ten bits each, and the quiet behind them.
    QVERIFY2(elapsed.elapsed() > 300 + 700 + 150, qPrintable(QString::number(elapsed.elapsed())));
    QCOMPARE(runLine(QStringLiteral("read meter-counter-1")).out, QStringLiteral("12.5\n"));
}

void tst_ZelctlSerial::rejectionEndsWithOne()
{
    m_unit->setBehaviour([this](const CommandMessage&) { m_unit->say(FakeUnit::nack()); });
    const ZelctlRun result = runLine(QStringLiteral("show pan"));
    QCOMPARE(result.err, QStringLiteral("zelctl: show pan: rejected by the unit (NACK)\n"));
    QCOMPARE(result.status, 1);
}

void tst_ZelctlSerial::silenceEndsWithOne()
{
    m_unit->setBehaviour([](const CommandMessage&) {});
    const ZelctlRun result = runLine(QStringLiteral("--timeout 100 show pan"));
    QVERIFY2(result.err.contains(QStringLiteral("no reply from %1 within 100 ms").arg(m_unit->device())),
             qPrintable(result.err));
    QCOMPARE(result.status, 1);
}

void tst_ZelctlSerial::hangUpInTheMiddleOfAnAnswerEndsWithThreeAtOnce()
{
    m_unit->setBehaviour([this](const CommandMessage&) {
        m_unit->say(FakeUnit::ack() + FakeUnit::answer(0x30, "half").chopped(3));
        m_unit->hangUp();
    });
    QElapsedTimer elapsed;
    elapsed.start();
    const ZelctlRun result = runLine(QStringLiteral("--timeout 15000 read meter-counter-1"));
    QCOMPARE(result.err,
             QStringLiteral("zelctl: connection to %1 lost: the line hung up\n").arg(m_unit->device()));
    QCOMPARE(result.out, QString());
    QCOMPARE(result.status, 3);
    QVERIFY(elapsed.elapsed() < 10000);
}

void tst_ZelctlSerial::hangUpEndsAWatch()
{
    m_unit->setBehaviour([this](const CommandMessage& frame) {
        m_unit->behaveWell(frame);
        QTimer::singleShot(100, m_unit.get(), [this] { m_unit->hangUp(); });
    });
    const ZelctlRun result = runLine(QStringLiteral("watch meter-counter-1 --interval 60000"));
    QCOMPARE(result.out, QStringLiteral("meter-counter-1 12.5\n"));
    QVERIFY2(result.err.contains(QLatin1String("the line hung up")), qPrintable(result.err));
    QCOMPARE(result.status, 3);
}

void tst_ZelctlSerial::deviceThatCannotBeOpenedEndsWithThree_data()
{
    QTest::addColumn<QString>("device");
    QTest::addColumn<QString>("reason");
    QTest::newRow("does not exist") << QStringLiteral("/dev/ttyNONE")
                                    << QStringLiteral("No such file or directory");
    QTest::newRow("no terminal") << QStringLiteral("/dev/null")
                                 << QStringLiteral("Inappropriate ioctl for device");
}

void tst_ZelctlSerial::deviceThatCannotBeOpenedEndsWithThree()
{
    QFETCH(QString, device);
    QFETCH(QString, reason);
    for (const char* command : {"read pan", "type x", "raw 02", "resync", "watch pan", "text x"}) {
        const ZelctlRun result = runZelctl(QStringList{QStringLiteral("--serial"), device} +
                                           QProcess::splitCommand(QString::fromLatin1(command)));
        QVERIFY2(result.err.contains(QStringLiteral("cannot open %1: %2\n").arg(device, reason)),
                 qPrintable(result.err));
        QCOMPARE(result.status, 3);
    }
}

void tst_ZelctlSerial::deviceNameMayHaveColons()
{
    const QTemporaryDir directory;
    const QString link = directory.filePath(QStringLiteral("pci-0000:00:14.0-usb-0:1:1.0-port0"));
    QVERIFY(QFile::link(m_unit->device(), link));
    for (const char* rate : {"", ":19200"}) {
        const ZelctlRun result = runZelctl({QStringLiteral("--serial"), link + QLatin1String(rate),
                                            QStringLiteral("read"), QStringLiteral("meter-counter-1")});
        QCOMPARE(result.err, QString());
        QCOMPARE(result.out, QStringLiteral("12.5\n"));
    }
}

void tst_ZelctlSerial::mistakesAreUsageErrors_data()
{
    QTest::addColumn<QString>("said");
    const auto row = [](const char* line, const char* said) {
        QTest::newRow(line) << QString::fromUtf8(said);
    };
    row("--serial /dev/ttyUSB0:fast read pan", "'fast' is no baud rate from 50 to 4000000");
    row("--serial /dev/ttyUSB0: read pan", "'' is no baud rate");
    row("--serial /dev/ttyUSB0:0 read pan", "'0' is no baud rate");
    row("--serial /dev/ttyUSB0:-9600 read pan", "'-9600' is no baud rate");
    row("--serial /dev/ttyUSB0:4000001 read pan", "'4000001' is no baud rate");
    row("--serial :9600 read pan", "--serial :9600: expected DEVICE or DEVICE:BAUD");
    row("--serial a --tcp b read pan", "--tcp and --serial exclude each other");
    row("--serial a read pan --tcp b", "--tcp and --serial exclude each other");
    row("--serial", "serial");
}

void tst_ZelctlSerial::mistakesAreUsageErrors()
{
    QFETCH(QString, said);
    const ZelctlRun result = runZelctl(QProcess::splitCommand(QString::fromLatin1(QTest::currentDataTag())));
    QVERIFY2(result.err.startsWith(QLatin1String("zelctl: ")) && result.err.contains(said),
             qPrintable(result.err));
    QCOMPARE(result.status, 2);
}

QTEST_GUILESS_MAIN(tst_ZelctlSerial)
#include "tst_zelctlserial.moc"
