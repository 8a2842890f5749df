// The watcher's edges, one look at a time, and once with its timer in a thread of its own.

#include <Tolvar/Varundo/SerialPortWatcher.h>

#include "Isolation.h"
#include "PseudoAdapter.h"

#include <QSignalSpy>
#include <QThread>
#include <QtTest>

#include <atomic>

#include <sys/stat.h>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

constexpr const char* Usb0 = "/dev/ttyUSB0";
constexpr const char* Usb1 = "/dev/ttyUSB1";

/// A watcher that looks when it is told to, and the names it reported; a disconnection is "-".
class WatchedNodes
{
public:
    WatchedNodes()
    {
        QObject::connect(&m_watcher, &SerialPortWatcher::serialPortConnected,
                         [this](const QString& name) { m_reports.append(name); });
        QObject::connect(&m_watcher, &SerialPortWatcher::serialPortDisconnected,
                         [this] { m_reports.append(QStringLiteral("-")); });
    }

    /// What one look reports.
    QString look()
    {
        m_reports.clear();
        m_watcher.checkPorts();
        return m_reports.join(QLatin1Char(' '));
    }
    [[nodiscard]] QString portName() const { return m_watcher.portName(); }

private:
    SerialPortWatcher m_watcher{QStringLiteral("ttyUSB1")};
    QStringList m_reports;
};

const QString Nothing;
const QString Gone = QStringLiteral("-");
const QString Name0 = QStringLiteral("ttyUSB0");
const QString Name1 = QStringLiteral("ttyUSB1");

} // namespace

class TestSerialPortWatcher : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void nameIsTheGivenOneBeforeTheFirstLook();
    void nameCanBeReplaced();
    void nothingIsReportedWithoutAnAdapter();
    void onlyUsb0IsReportedOnce();
    void onlyUsb1IsReportedOnce();
    void usb1WinsWhenBothAreThere();
    void usb1AddedToUsb0IsNotedButNotReported();
    void usb0LeftBehindByUsb1IsNotedButNotReported();
    void exchangeBetweenTwoLooksIsNotReported_data();
    void exchangeBetweenTwoLooksIsNotReported();
    void removalOfBothIsReportedOnce();
    void comingBackIsReportedAgain();
    void usb2AloneIsNeverReported();
    void namesThatOnlyResembleAreNeverReported();
    void nodeThatCannotBeOpenedIsReportedAllTheSame();
    void linkToADeviceCountsAndALinkToNothingDoesNot();

    void itLooksOnlyWhileItWatches();
    void itsTimerRunsInItsThread();
};

void TestSerialPortWatcher::initTestCase()
{
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
}

void TestSerialPortWatcher::nameIsTheGivenOneBeforeTheFirstLook()
{
    const SerialPortWatcher watcher(QStringLiteral("ttyACM7"));
    QCOMPARE(watcher.portName(), QStringLiteral("ttyACM7"));
}

void TestSerialPortWatcher::nameCanBeReplaced()
{
    SerialPortWatcher watcher(Name1);
    watcher.setPortName(Name0);
    QCOMPARE(watcher.portName(), Name0);
    watcher.checkPorts();
    QCOMPARE(watcher.portName(), Name0); // a look that finds nothing leaves it
}

void TestSerialPortWatcher::nothingIsReportedWithoutAnAdapter()
{
    WatchedNodes nodes;
    QCOMPARE(nodes.look(), Nothing);
    QCOMPARE(nodes.look(), Nothing);
    QCOMPARE(nodes.portName(), Name1);
}

void TestSerialPortWatcher::onlyUsb0IsReportedOnce()
{
    const PseudoAdapter adapter(Usb0);
    QVERIFY(adapter.isPlugged());
    WatchedNodes nodes;
    QCOMPARE(nodes.look(), Name0);
    QCOMPARE(nodes.portName(), Name0);
    QCOMPARE(nodes.look(), Nothing);
    QCOMPARE(nodes.look(), Nothing);
}

void TestSerialPortWatcher::onlyUsb1IsReportedOnce()
{
    const PseudoAdapter adapter(Usb1);
    QVERIFY(adapter.isPlugged());
    WatchedNodes nodes;
    QCOMPARE(nodes.look(), Name1);
    QCOMPARE(nodes.look(), Nothing);
}

void TestSerialPortWatcher::usb1WinsWhenBothAreThere()
{
    const PseudoAdapter first(Usb0);
    const PseudoAdapter second(Usb1);
    QVERIFY(first.isPlugged() && second.isPlugged());
    WatchedNodes nodes;
    QCOMPARE(nodes.look(), Name1);
    QCOMPARE(nodes.portName(), Name1);
    QCOMPARE(nodes.look(), Nothing);
}

void TestSerialPortWatcher::usb1AddedToUsb0IsNotedButNotReported()
{
    const PseudoAdapter first(Usb0);
    WatchedNodes nodes;
    QCOMPARE(nodes.look(), Name0);
    const PseudoAdapter second(Usb1);
    QVERIFY(first.isPlugged() && second.isPlugged());
    QCOMPARE(nodes.look(), Nothing);
    QCOMPARE(nodes.portName(), Name1);
}

void TestSerialPortWatcher::usb0LeftBehindByUsb1IsNotedButNotReported()
{
    const PseudoAdapter first(Usb0);
    PseudoAdapter second(Usb1);
    QVERIFY(first.isPlugged() && second.isPlugged());
    WatchedNodes nodes;
    QCOMPARE(nodes.look(), Name1);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("is in its place")));
    second.unplug();
    QCOMPARE(nodes.look(), Nothing);
    QCOMPARE(nodes.portName(), Name0);
}

void TestSerialPortWatcher::exchangeBetweenTwoLooksIsNotReported_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::newRow("ttyUSB1 for ttyUSB0") << QByteArray(Usb1) << QByteArray(Usb0);
    QTest::newRow("ttyUSB0 for ttyUSB1") << QByteArray(Usb0) << QByteArray(Usb1);
    QTest::newRow("another at the same node") << QByteArray(Usb1) << QByteArray(Usb1);
}

void TestSerialPortWatcher::exchangeBetweenTwoLooksIsNotReported()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("is in its place")));
    PseudoAdapter old(before.constData());
    WatchedNodes nodes;
    QCOMPARE(nodes.look(), QString::fromLatin1(before.mid(5)));
    old.removeNodeOnly();
    PseudoAdapter other(after.constData());
    QVERIFY(other.isPlugged());
    QCOMPARE(nodes.look(), Nothing);
    QCOMPARE(nodes.portName(), QString::fromLatin1(after.mid(5)));
    other.unplug();
    QCOMPARE(nodes.look(), Gone);
}

void TestSerialPortWatcher::removalOfBothIsReportedOnce()
{
    PseudoAdapter first(Usb0);
    PseudoAdapter second(Usb1);
    QVERIFY(first.isPlugged() && second.isPlugged());
    WatchedNodes nodes;
    QCOMPARE(nodes.look(), Name1);
    first.unplug();
    QCOMPARE(nodes.look(), Nothing);
    second.unplug();
    QCOMPARE(nodes.look(), Gone);
    QCOMPARE(nodes.portName(), Name1);
    QCOMPARE(nodes.look(), Nothing);
    QCOMPARE(nodes.look(), Nothing);
}

void TestSerialPortWatcher::comingBackIsReportedAgain()
{
    WatchedNodes nodes;
    for (int round = 0; round < 3; ++round) {
        PseudoAdapter adapter(round % 2 == 0 ? Usb1 : Usb0);
        QVERIFY(adapter.isPlugged());
        QCOMPARE(nodes.look(), round % 2 == 0 ? Name1 : Name0);
        QCOMPARE(nodes.look(), Nothing);
        adapter.unplug();
        QCOMPARE(nodes.look(), Gone);
    }
}

void TestSerialPortWatcher::usb2AloneIsNeverReported()
{
    PseudoAdapter stranger("/dev/ttyUSB2");
    QVERIFY(stranger.isPlugged());
    WatchedNodes nodes;
    QCOMPARE(nodes.look(), Nothing);
    PseudoAdapter adapter(Usb1);
    QCOMPARE(nodes.look(), Name1);
    adapter.unplug();
    QCOMPARE(nodes.look(), Gone); // ttyUSB2 does not count as an adapter that is still there
}

void TestSerialPortWatcher::namesThatOnlyResembleAreNeverReported()
{
    const PseudoAdapter longer("/dev/ttyUSB10");
    const PseudoAdapter otherCase("/dev/ttyusb1");
    const PseudoAdapter otherKind("/dev/ttyACM1");
    QVERIFY(longer.isPlugged() && otherCase.isPlugged() && otherKind.isPlugged());
    QCOMPARE(WatchedNodes().look(), Nothing);
}

void TestSerialPortWatcher::nodeThatCannotBeOpenedIsReportedAllTheSame()
{
    QVERIFY(mkdir(Usb0, 0) == 0);
    WatchedNodes nodes;
    QCOMPARE(nodes.look(), Name0);
    QVERIFY(rmdir(Usb0) == 0);
    QCOMPARE(nodes.look(), Gone);
}

void TestSerialPortWatcher::linkToADeviceCountsAndALinkToNothingDoesNot()
{
    WatchedNodes nodes;
    QVERIFY(symlink("/dev/ttyUSB7", Usb1) == 0);
    QCOMPARE(nodes.look(), Nothing);
    PseudoAdapter target("/dev/ttyUSB7");
    QCOMPARE(nodes.look(), Name1);
    target.unplug();
    QCOMPARE(nodes.look(), Gone);
    QVERIFY(unlink(Usb1) == 0);
}

void TestSerialPortWatcher::itLooksOnlyWhileItWatches()
{
    PseudoAdapter adapter(Usb1);
    SerialPortWatcher watcher(Name1);
    QSignalSpy connected(&watcher, &SerialPortWatcher::serialPortConnected);
    QTest::qWait(1300);
    QCOMPARE(connected.count(), 0); // made, but not told to watch

    QElapsedTimer sinceStart;
    sinceStart.start();
    watcher.startWatching();
    QCOMPARE(connected.count(), 0); // the first look is one interval later
    QVERIFY(connected.wait(3000));
    QVERIFY2(sinceStart.elapsed() >= 900, qPrintable(QString::number(sinceStart.elapsed())));
    QCOMPARE(connected.takeFirst().at(0).toString(), Name1);

    watcher.stopWatching();
    adapter.unplug();
    QSignalSpy disconnected(&watcher, &SerialPortWatcher::serialPortDisconnected);
    QTest::qWait(1300);
    QCOMPARE(disconnected.count(), 0);
    watcher.startWatching();
    QVERIFY(disconnected.wait(3000));
}

void TestSerialPortWatcher::itsTimerRunsInItsThread()
{
    const PseudoAdapter adapter(Usb0);
    QThread thread;
    auto* const watcher = new SerialPortWatcher(Name1);
    watcher->moveToThread(&thread);
    std::atomic_int reports = 0;
    std::atomic<QThread*> emittedIn = nullptr;
    std::atomic<QThread*> deletedIn = nullptr;
    const auto noteReport = [&] {
        ++reports;
        emittedIn = QThread::currentThread();
    };
    const auto noteDeletion = [&] {
        deletedIn = QThread::currentThread();
    };
    connect(watcher, &SerialPortWatcher::serialPortConnected, watcher, noteReport, Qt::DirectConnection);
    connect(watcher, &QObject::destroyed, watcher, noteDeletion, Qt::DirectConnection);
    connect(&thread, &QThread::started, watcher, &SerialPortWatcher::startWatching);
    connect(&thread, &QThread::finished, watcher, &QObject::deleteLater);
    thread.start();
    QTest::qSleep(1500); // without this thread's event loop
    thread.quit();
    QVERIFY(thread.wait(5000));
    QCOMPARE(reports.load(), 1);
    QCOMPARE(emittedIn.load(), &thread);
    QCOMPARE(deletedIn.load(), &thread);
}

QTEST_GUILESS_MAIN(TestSerialPortWatcher)
#include "tst_serialportwatcher.moc"
