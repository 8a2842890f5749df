#include "Isolation.h"
#include "VirtualSerialLine.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <memory>

using namespace Tolvar::Varundo::Simulator;
using namespace Tolvar::Varundo::Test;

namespace {

/// One of the line's ends, opened as a program would.
class End
{
public:
    explicit End(const QString& device)
        : m_descriptor(open(device.toLocal8Bit().constData(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC))
    {
        termios settings{};
        tcgetattr(m_descriptor, &settings);
        cfmakeraw(&settings);
        tcsetattr(m_descriptor, TCSANOW, &settings);
    }
    ~End() { close(m_descriptor); }
    Q_DISABLE_COPY_MOVE(End)

    bool isOpen() const { return m_descriptor >= 0; }
    void claim() const { ioctl(m_descriptor, TIOCEXCL); }
    /// Not everywhere does the kernel, or what stands between it and us, tell who has claimed a line.
    bool canTellClaims() const
    {
        int claimed = 0;
        return ioctl(m_descriptor, TIOCGEXCL, &claimed) == 0;
    }
    bool isClaimed() const
    {
        int claimed = 0;
        ioctl(m_descriptor, TIOCGEXCL, &claimed);
        return claimed != 0;
    }
    int send(const QByteArray& bytes) const
    {
        return int(::write(m_descriptor, bytes.constData(), size_t(bytes.size())));
    }
    QByteArray& received()
    {
        char bytes[4096];
        ssize_t count = 0;
        while ((count = ::read(m_descriptor, bytes, sizeof bytes)) > 0) {
            m_received.append(bytes, int(count));
        }
        return m_received;
    }
    bool isHungUp() const
    {
        pollfd state{m_descriptor, POLLIN, 0};
        return poll(&state, 1, 0) == 1 && (state.revents & POLLHUP) != 0;
    }

private:
    int m_descriptor;
    QByteArray m_received;
};

QByteArray allBytes()
{
    QByteArray bytes;
    for (int value = 0; value < 256; ++value) {
        bytes.append(char(value));
    }
    return bytes;
}

bool nodeExists()
{
    struct stat found
    {};
    return lstat("/dev/ttyUSB1", &found) == 0; // also a link that leads nowhere
}

/// Processor time of this process.
qint64 usedMilliseconds()
{
    timespec used{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
    return used.tv_sec * 1000 + used.tv_nsec / 1000000;
}

} // namespace

/// The line without hardware, between a program on the unit's side and one on the controller's.
class tst_VirtualSerialLine : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { QVERIFY(!nodeExists()); }

    void allBytesPassBothWays();
    void controllersEndStaysTheSame();
    void unitHearsTheUnplug();
    void whatIsSentWhileUnpluggedIsLost();
    void whatIsSentBeforeTheUnitOpensWaits();
    void endThatDoesNotReadHoldsTheOtherUp();
    void idleLineCostsNothing_data();
    void idleLineCostsNothing();
    void pluggingTwiceAndUnpluggingTwiceChangesNothing();
    void nodeOfAnotherIsLeftAlone_data();
    void nodeOfAnotherIsLeftAlone();
    void nodeThatCannotBeMadeIsTold();
    void claimOfAKilledControllerIsLifted();
};

void tst_VirtualSerialLine::init()
{
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
}

void tst_VirtualSerialLine::allBytesPassBothWays()
{
    VirtualSerialLine line;
    QString error;
    QVERIFY2(line.plug(&error), qPrintable(error));
    End unit(VirtualSerialLine::device());
    End controller(line.controller());
    QVERIFY(unit.isOpen() && controller.isOpen());
    QCOMPARE(controller.send(allBytes()), 256);
    QTRY_COMPARE(unit.received(), allBytes());
    QCOMPARE(unit.send(allBytes()), 256);
    QTRY_COMPARE(controller.received(), allBytes());
}

void tst_VirtualSerialLine::controllersEndStaysTheSame()
{
    VirtualSerialLine line;
    QString error;
    QVERIFY2(line.plug(&error), qPrintable(error));
    const QString name = line.controller();
    End controller(name);
    for (int round = 0; round < 3; ++round) {
        line.unplug();
        QVERIFY(!nodeExists());
        QCOMPARE(line.isPlugged(), false);
        QVERIFY2(line.plug(&error), qPrintable(error));
        QCOMPARE(line.isPlugged(), true);
        QCOMPARE(line.controller(), name);
        QVERIFY(!controller.isHungUp());
        End unit(VirtualSerialLine::device());
        QCOMPARE(controller.send("again"), 5);
        QTRY_COMPARE(unit.received(), QByteArray("again"));
    }
}

void tst_VirtualSerialLine::unitHearsTheUnplug()
{
    VirtualSerialLine line;
    QString error;
    QVERIFY2(line.plug(&error), qPrintable(error));
    const End unit(VirtualSerialLine::device());
    QVERIFY(!unit.isHungUp());
    line.unplug();
    QVERIFY(unit.isHungUp());
    QVERIFY2(line.plug(&error), qPrintable(error));
    QVERIFY(unit.isHungUp()); // the adapter that came is another one
}

void tst_VirtualSerialLine::whatIsSentWhileUnpluggedIsLost()
{
    VirtualSerialLine line;
    QString error;
    End controller(line.controller());
    QCOMPARE(controller.send(QByteArray(2000, 'x')), 2000);
    QTest::qWait(20);
    QVERIFY2(line.plug(&error), qPrintable(error));
    End unit(VirtualSerialLine::device());
    QCOMPARE(controller.send("now"), 3);
    QTRY_VERIFY(unit.received().endsWith("now"));
    QCOMPARE(unit.received(), QByteArray("now"));
}

void tst_VirtualSerialLine::whatIsSentBeforeTheUnitOpensWaits()
{
    VirtualSerialLine line;
    QString error;
    QVERIFY2(line.plug(&error), qPrintable(error));
    const End controller(line.controller());
    QCOMPARE(controller.send("early"), 5);
    QTest::qWait(20);
    End unit(VirtualSerialLine::device());
    QTRY_COMPARE(unit.received(), QByteArray("early"));
}

void tst_VirtualSerialLine::endThatDoesNotReadHoldsTheOtherUp()
{
    VirtualSerialLine line;
    QString error;
    QVERIFY2(line.plug(&error), qPrintable(error));
    End unit(VirtualSerialLine::device());
    const End controller(line.controller());
    QByteArray sent;
    int idleTurns = 0;
    while (idleTurns < 20 && sent.size() < 1000000) {
        const QByteArray piece = QByteArray::number(sent.size()).rightJustified(512, '.');
        const int count = controller.send(piece);
        sent += piece.left(qMax(count, 0));
        idleTurns = count > 0 ? 0 : idleTurns + 1;
        QTest::qWait(1);
    }
    QVERIFY2(sent.size() < 1000000, "the line takes without end");
    QTRY_COMPARE(unit.received().size(), sent.size());
    QCOMPARE(unit.received(), sent);
}

void tst_VirtualSerialLine::idleLineCostsNothing_data()
{
    QTest::addColumn<bool>("isPlugged");
    QTest::addColumn<bool>("isOpenAtTheUnit");
    QTest::newRow("unplugged") << false << false;
    QTest::newRow("plugged") << true << false;
    QTest::newRow("open") << true << true;
}

void tst_VirtualSerialLine::idleLineCostsNothing()
{
    QFETCH(bool, isPlugged);
    QFETCH(bool, isOpenAtTheUnit);
    VirtualSerialLine line;
    QString error;
    QVERIFY2(line.plug(&error), qPrintable(error));
    const std::unique_ptr<End> unit =
        isOpenAtTheUnit ? std::make_unique<End>(VirtualSerialLine::device()) : nullptr;
    {
        const End visitor(line.controller()); // comes and goes
    }
    if (!isPlugged) {
        line.unplug();
    }
    const qint64 before = usedMilliseconds();
    QElapsedTimer timer;
    timer.start();
    QTest::qWait(300);
    QVERIFY(usedMilliseconds() - before < timer.elapsed() / 2); // a busy loop would take all of it
}

void tst_VirtualSerialLine::pluggingTwiceAndUnpluggingTwiceChangesNothing()
{
    VirtualSerialLine line;
    QString error;
    line.unplug();
    QVERIFY2(line.plug(&error), qPrintable(error));
    End unit(VirtualSerialLine::device());
    QVERIFY2(line.plug(&error), qPrintable(error));
    QVERIFY(!unit.isHungUp());
    line.unplug();
    line.unplug();
    QVERIFY(!line.isPlugged());
}

void tst_VirtualSerialLine::nodeOfAnotherIsLeftAlone_data()
{
    QTest::addColumn<bool>("isLink");
    QTest::newRow("a file") << false;
    QTest::newRow("a link that leads nowhere") << true;
}

void tst_VirtualSerialLine::nodeOfAnotherIsLeftAlone()
{
    QFETCH(bool, isLink);
    if (isLink) {
        QVERIFY(QFile::link(QStringLiteral("/dev/nowhere"), VirtualSerialLine::device()));
    } else {
        QFile other(VirtualSerialLine::device());
        QVERIFY(other.open(QIODevice::WriteOnly) && other.write("mine") == 4);
    }
    {
        VirtualSerialLine line;
        QString error;
        QVERIFY(!line.plug(&error));
        QVERIFY2(error.startsWith(QStringLiteral("/dev/ttyUSB1 exists already and is left alone")),
                 qPrintable(error));
        QVERIFY(!line.isPlugged());
    }
    QVERIFY(nodeExists());
    QFile other(VirtualSerialLine::device());
    QVERIFY(isLink || (other.open(QIODevice::ReadOnly) && other.readAll() == "mine"));
    QVERIFY(other.remove());
}

void tst_VirtualSerialLine::nodeThatCannotBeMadeIsTold()
{
    // As it is for somebody who may not write to /dev; root may, whatever the rights say.
    DeviceNode node(QStringLiteral("/proc/self/ttyUSB1"), QStringLiteral("/dev/null"));
    QVERIFY(!node.isMade());
    QVERIFY2(node.error().startsWith(QStringLiteral("cannot make /proc/self/ttyUSB1: ")),
             qPrintable(node.error()));
    QVERIFY2(node.error().contains(QStringLiteral("run as root")), qPrintable(node.error()));
}

void tst_VirtualSerialLine::claimOfAKilledControllerIsLifted()
{
    VirtualSerialLine line;
    QString error;
    QVERIFY2(line.plug(&error), qPrintable(error));
    const End next(line.controller());
    if (!next.canTellClaims()) {
        QSKIP("the emulator does not know the question whether a line is claimed (TIOCGEXCL)");
    }
    {
        const End killed(line.controller());
        killed.claim();
        QVERIFY(next.isClaimed());
        QCOMPARE(killed.send("x"), 1);
    }
    QTRY_VERIFY(!next.isClaimed());
}

QTEST_GUILESS_MAIN(tst_VirtualSerialLine)
#include "tst_virtualserialline.moc"
