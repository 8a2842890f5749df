// Nodes that stand where an adapter should, and are none that can be used.

#include "CaughtLog.h"
#include "Isolation.h"
#include "ObservedSerialAdaptor.h"
#include "PseudoAdapter.h"

#include <QFile>
#include <QtTest>

#include <memory>

#include <sys/stat.h>
#include <sys/sysmacros.h>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

constexpr const char* Node = "/dev/ttyUSB1";
const QString Name = QStringLiteral("ttyUSB1");
const QByteArray Ack(1, '\x06');
const QByteArray EmptyRead = QByteArray::fromHex("020501000003");
constexpr int LongerThanALookMs = 1300;

enum Kind { Directory, AbsentDevice, RegularFile, NullDevice, DeadLine, BusyLine };

/// Something at the adapter's node for as long as it lives.
class UnusableNode
{
public:
    explicit UnusableNode(Kind kind)
        : m_kind(kind)
    {
        switch (kind) {
        case Directory:
            m_isThere = mkdir(Node, 0700) == 0;
            break;
        case AbsentDevice: // a major number that nobody serves
            m_isThere = mknod(Node, S_IFCHR | 0600, makedev(233, 0)) == 0;
            break;
        case RegularFile:
            m_isThere = makeFile();
            break;
        case NullDevice:
            m_isThere = makeFile() && mount("/dev/null", Node, "", MS_BIND, nullptr) == 0;
            break;
        case DeadLine:
            m_line = std::make_unique<PseudoAdapter>(Node);
            m_line->hangUpOnly();
            m_isThere = QFile::exists(QLatin1String(Node));
            break;
        case BusyLine:
            m_line = std::make_unique<PseudoAdapter>(Node);
            m_otherUser.setPortName(Name);
            m_isThere = m_otherUser.open(QIODevice::ReadWrite);
            break;
        }
    }
    ~UnusableNode()
    {
        m_otherUser.close();
        if (m_kind == NullDevice) {
            umount2(Node, MNT_DETACH);
        }
        m_line.reset();
        static_cast<void>(remove(Node));
    }
    UnusableNode(const UnusableNode&) = delete;
    UnusableNode& operator=(const UnusableNode&) = delete;

    [[nodiscard]] bool isThere() const { return m_isThere; }

private:
    static bool makeFile()
    {
        QFile file{QLatin1String(Node)};
        return file.open(QIODevice::WriteOnly);
    }

    Kind m_kind;
    bool m_isThere = false;
    std::unique_ptr<PseudoAdapter> m_line;
    QSerialPort m_otherUser;
};

} // namespace

class TestSerialNodes : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void unusableNodeIsToldOnceAndLeftAlone_data();
    void unusableNodeIsToldOnceAndLeftAlone();
    void adapterInPlaceOfAnUnusableNodeWaitsForAnAbsence();
    void nodeThatIsGoneBeforeItIsOpenedIsTold();
    void lockOfAProcessThatIsGoneDoesNotKeepThePort();
};

void TestSerialNodes::initTestCase()
{
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
}

void TestSerialNodes::unusableNodeIsToldOnceAndLeftAlone_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("error"); // as the port has it; -1: whatever the system makes of it
    QTest::newRow("directory") << int(Directory) << -1;
    QTest::newRow("node of an absent device") << int(AbsentDevice) << -1;
    QTest::newRow("regular file") << int(RegularFile) << -1;
    QTest::newRow("no terminal") << int(NullDevice) << -1;
    QTest::newRow("line that has hung up") << int(DeadLine) << -1;
    QTest::newRow("busy") << int(BusyLine) << int(QSerialPort::PermissionError);
}

void TestSerialNodes::unusableNodeIsToldOnceAndLeftAlone()
{
    QFETCH(int, kind);
    QFETCH(int, error);
    const CaughtLog log;
    const UnusableNode node(static_cast<Kind>(kind));
    if (kind == AbsentDevice && !node.isThere()) {
        QSKIP("device nodes cannot be made here");
    }
    QVERIFY(node.isThere());
    ObservedSerialAdaptor unit;
    QTRY_VERIFY(!unit.errors().isEmpty());
    QVERIFY(!unit.port().isOpen());
    const QStringList told = unit.errors(); // of one attempt; the port may find more than one thing wrong
    QVERIFY2(told.size() <= 2 && !told.contains(QString()), qPrintable(told.join(QStringLiteral(" | "))));
    QCOMPARE(told.last(), unit.port().errorString());
    if (error >= 0) {
        QCOMPARE(int(unit.port().error()), error);
    }
    QTest::qWait(LongerThanALookMs); // further looks find the node and try nothing
    QCOMPARE(unit.errors(), told);
    QCOMPARE(log.lines().size(), 1);
    QVERIFY2(log.lines().first().startsWith(QStringLiteral("ttyUSB1 cannot be opened (%1)").arg(told.last())),
             qPrintable(log.lines().first()));
}

void TestSerialNodes::adapterInPlaceOfAnUnusableNodeWaitsForAnAbsence()
{
    const CaughtLog log;
    auto node = std::make_unique<UnusableNode>(Directory);
    ObservedSerialAdaptor unit;
    QTRY_COMPARE(unit.errors().size(), 1);
    node.reset();
    PseudoAdapter adapter(Node); // at once: no look finds the node absent
    QVERIFY(adapter.isPlugged());
    QTest::qWait(LongerThanALookMs);
    QVERIFY(!adapter.isOpenedByUnit());
    QCOMPARE(unit.errors().size(), 1);

    adapter.unplug();
    QTest::qWait(LongerThanALookMs);
    QCOMPARE(unit.errors().size(), 2); // the port that is closed all the same was not open
    QVERIFY(adapter.plug());
    QTRY_VERIFY(adapter.isOpenedByUnit());
    QCOMPARE(adapter.exchange(EmptyRead), Ack);
    QCOMPARE(unit.errors().size(), 2);
}

void TestSerialNodes::nodeThatIsGoneBeforeItIsOpenedIsTold()
{
    const CaughtLog log;
    PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    QTest::qSleep(LongerThanALookMs); // the watcher has reported it, the report waits for the event loop
    adapter.unplug();
    QTRY_COMPARE(unit.errors().size(), 1);
    QCOMPARE(unit.port().error(), QSerialPort::DeviceNotFoundError);

    QTest::qWait(LongerThanALookMs);
    QVERIFY(adapter.plug());
    QTRY_VERIFY(adapter.isOpenedByUnit());
}

void TestSerialNodes::lockOfAProcessThatIsGoneDoesNotKeepThePort()
{
    QFile lock(QStringLiteral("/run/lock/LCK..ttyUSB5"));
    QVERIFY(lock.open(QIODevice::WriteOnly));
    lock.write("4194305\nrecorder\n" + QSysInfo::machineHostName().toUtf8() + "\n"); // beyond any process id
    lock.close();
    PseudoAdapter adapter("/dev/ttyUSB5");
    ObservedSerialAdaptor unit;
    unit->openSerialPort(QStringLiteral("ttyUSB5"));
    QCOMPARE(unit.errors(), QStringList());
    QVERIFY(adapter.isOpenedByUnit());
}

QTEST_GUILESS_MAIN(TestSerialNodes)
#include "tst_serial_nodes.moc"
