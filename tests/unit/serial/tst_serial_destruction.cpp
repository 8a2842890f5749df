// An adaptor is destroyed at an awkward moment: its thread has ended when the destructor returns, and that is
// soon.

#include "CaughtLog.h"
#include "Isolation.h"
#include "ObservedSerialAdaptor.h"
#include "ProcessFigures.h"
#include "PseudoAdapter.h"

#include <QElapsedTimer>
#include <QtTest>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

constexpr const char* Node = "/dev/ttyUSB5";
const QString Name = QStringLiteral("ttyUSB5");
constexpr int LongerThanALookMs = 1300;
constexpr int Soon = 500; // milliseconds; a busy machine takes its time, a wait for a look would take longer

std::unique_ptr<SerialAdaptor> makeAdaptor()
{
    return std::make_unique<SerialAdaptor>(QStringLiteral("/dev/ttyUSB1"));
}

} // namespace

class TestSerialDestruction : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void beforeTheFirstLook();
    void aroundALook();
    void withAReportUnderway();
    void whileThePortFloods();
    void withBytesPending();
    void whenTheAdapterHasJustGone();
    void inADeferredDeletion();

private:
    void destroySoon(ObservedSerialAdaptor& unit);
    int m_threads = 0;
};

void TestSerialDestruction::initTestCase()
{
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
}

void TestSerialDestruction::init()
{
    m_threads = threadCount();
}

void TestSerialDestruction::cleanup()
{
    // The thread has finished all that is ours; the kernel takes it off the list a moment later.
    QTRY_COMPARE(watcherThreadCount(), 0);
    QVERIFY(threadCount() <= m_threads);
    QCoreApplication::processEvents(); // whatever was queued for an adaptor that is gone
}

void TestSerialDestruction::destroySoon(ObservedSerialAdaptor& unit)
{
    QElapsedTimer timer;
    timer.start();
    unit.destroy();
    QVERIFY2(timer.elapsed() < Soon, qPrintable(QString::number(timer.elapsed())));
    QTRY_COMPARE(watcherThreadCount(), 0);
}

void TestSerialDestruction::beforeTheFirstLook()
{
    QElapsedTimer timer;
    timer.start();
    for (int round = 0; round < 100; ++round) {
        const auto adaptor = makeAdaptor();
        if (round % 2 == 1) {
            QCoreApplication::processEvents();
        }
    }
    QVERIFY2(timer.elapsed() < 100 * Soon / 10, qPrintable(QString::number(timer.elapsed())));
}

void TestSerialDestruction::aroundALook()
{
    const PseudoAdapter adapter; // there is something to report
    std::vector<std::unique_ptr<SerialAdaptor>> adaptors(60);
    for (auto& adaptor : adaptors) {
        adaptor = makeAdaptor();
    }
    QTest::qSleep(960); // their looks come one after the other, a millisecond from now or thirty
    QCOMPARE(watcherThreadCount(), 60);
    for (auto& adaptor : adaptors) {
        adaptor.reset();
        QTest::qSleep(1);
    }
    QCoreApplication::processEvents();
    QVERIFY(!adapter.isOpenedByUnit());
}

void TestSerialDestruction::withAReportUnderway()
{
    const PseudoAdapter adapter;
    ObservedSerialAdaptor unit;
    QTest::qSleep(LongerThanALookMs); // reported; the event loop has not delivered it
    destroySoon(unit);
    QCoreApplication::processEvents();
    QVERIFY(!adapter.isOpenedByUnit());
}

void TestSerialDestruction::whileThePortFloods()
{
    const QByteArray frames = QByteArray::fromHex("020501000003").repeated(100) + QByteArray(500, 'x');
    for (int round = 0; round < 20; ++round) {
        PseudoAdapter adapter(Node);
        ObservedSerialAdaptor unit;
        unit->openSerialPort(Name);
        std::atomic_bool stop = false;
        std::thread controller([&] {
            while (!stop) {
                adapter.send(frames);
                static_cast<void>(adapter.take());
            }
        });
        QTRY_VERIFY(unit.records().size() > size_t(round * 10));
        destroySoon(unit);
        stop = true;
        controller.join();
        QVERIFY(!adapter.isOpenedByUnit());
    }
}

void TestSerialDestruction::withBytesPending()
{
    PseudoAdapter adapter(Node);
    ObservedSerialAdaptor unit;
    unit->openSerialPort(Name);
    unit->writeMessage({1, 1, 65535, QByteArray(65535, 'a')});
    adapter.send("typed");
    QTest::qWait(20);
    adapter.send("not read");
    QVERIFY(unit.port().bytesToWrite() > 0);
    destroySoon(unit);
    QVERIFY(!adapter.isOpenedByUnit());
}

void TestSerialDestruction::whenTheAdapterHasJustGone()
{
    const CaughtLog log;
    for (int turns = 0; turns < 4; ++turns) {
        PseudoAdapter adapter(Node);
        ObservedSerialAdaptor unit;
        unit->openSerialPort(Name);
        QCoreApplication::processEvents();
        adapter.unplug();
        for (int turn = 0; turn < turns; ++turn) {
            QCoreApplication::processEvents();
        }
        destroySoon(unit);
        QVERIFY(!adapter.isOpenedByUnit());
    }
}

void TestSerialDestruction::inADeferredDeletion()
{
    PseudoAdapter adapter(Node);
    auto* const adaptor = makeAdaptor().release();
    QPointer<SerialAdaptor> alive(adaptor);
    connect(adaptor, &SerialAdaptor::receivedValidMessage, adaptor, &QObject::deleteLater);
    adaptor->openSerialPort(Name);
    adapter.send(QByteArray::fromHex("020501000003020501000003"));
    QTRY_VERIFY(!alive);
    QVERIFY(!adapter.isOpenedByUnit());
}

QTEST_GUILESS_MAIN(TestSerialDestruction)
#include "tst_serial_destruction.moc"
