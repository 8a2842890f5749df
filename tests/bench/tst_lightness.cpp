// Counts, which are exact, of what a request costs: whoever loses one of these by accident hears of it here.

#include "AllocationCounter.h"
#include "BenchUnit.h"
#include "Isolation.h"
#include "SystemCallCounter.h"

#include <QGuiApplication>
#include <QtTest>

#include <limits>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Bench;
using Test::hasOwn;
using Test::NeedsOwnNetwork;

Q_DECLARE_METATYPE(QVector<QByteArray>)

namespace {

constexpr int warmUps = 80; // past the growth of what grows by doubling
constexpr int requests = 100;
constexpr int rounds = 5;

const QByteArray toggle = BenchUnit::frame(0x32, Protocol::Execute);
const QByteArray readValue = BenchUnit::frame(0xF0, Protocol::Read);
const QByteArray readText = BenchUnit::frame(0x90, Protocol::Read, QByteArray(1, '\1'));

QVector<QByteArray> toAndFro(quint8 command, const QByteArray& first, const QByteArray& second)
{
    return {BenchUnit::frame(command, Protocol::Write, first),
            BenchUnit::frame(command, Protocol::Write, second)};
}

QByteArray bytes(const char* hex)
{
    return QByteArray::fromHex(hex);
}

/// Sends the frames in turn, and waits for each one's reply.
void talk(BenchUnit& unit, const QVector<QByteArray>& frames, int replySize, int times)
{
    for (int i = 0; i < times; ++i) {
        unit.talk(frames.at(i % frames.size()), replySize);
    }
}

/// How far a counter is taken by some requests. The watcher's reports and the clean-up ticks are nobody's
/// request: the least of a few rounds counts.
template <class Counter, class Requests>
quint64 leastOfRounds(Counter counter, Requests makeRequests)
{
    quint64 least = std::numeric_limits<quint64>::max();
    for (int i = 0; i < rounds; ++i) {
        const quint64 before = counter();
        makeRequests();
        least = qMin(least, counter() - before);
    }
    return least;
}

} // namespace

class TestLightness : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void requestsTakeFewAllocations_data();
    void requestsTakeFewAllocations();
    void requestTakesFiveSystemCallsAtMost_data();
    void requestTakesFiveSystemCallsAtMost();
    void acknowledgementIsHandedToTheKernelByItself();
    void memoryStaysFlatOverManyRequests();
    void countersSeeWhatTheyCount();
};

void TestLightness::initTestCase()
{
    if (!hasOwn("net")) {
        QSKIP(NeedsOwnNetwork);
    }
    QLoggingCategory::setFilterRules(QStringLiteral("varundo.*=false"));
}

void TestLightness::requestsTakeFewAllocations_data()
{
    QTest::addColumn<QVector<QByteArray>>("frames");
    QTest::addColumn<int>("replySize");
    QTest::addColumn<int>("most");

    QTest::newRow("execute") << QVector<QByteArray>{toggle} << 1 << 0;
    QTest::newRow("write a position") << toAndFro(0x32, bytes("0A02"), bytes("0B03")) << 1 << 1;
    QTest::newRow("write colours") << toAndFro(0xE5, bytes("001D"), bytes("002F")) << 1 << 1;
    // The element keeps the text itself, an allocation of its own.
    QTest::newRow("write a text") << toAndFro(0x90, bytes("0141"), bytes("0142")) << 1 << 1 + 1;
    QTest::newRow("read a value") << QVector<QByteArray>{readValue} << 11 << 3;
    QTest::newRow("read a state") << QVector<QByteArray>{BenchUnit::frame(0x31, Protocol::Read)} << 11 << 3;
    QTest::newRow("read a text") << QVector<QByteArray>{readText} << 12 << 3;
    QTest::newRow("unknown, without a payload")
        << QVector<QByteArray>{BenchUnit::frame(0x02, Protocol::Write)} << 1 << 0;
    QTest::newRow("unknown") << QVector<QByteArray>{BenchUnit::frame(0x02, Protocol::Write, bytes("0102"))}
                             << 1 << 1;
}

/// Over a socket, from the received bytes to the sent ones.
void TestLightness::requestsTakeFewAllocations()
{
    QFETCH(const QVector<QByteArray>, frames);
    QFETCH(const int, replySize);
    QFETCH(const int, most);
    BenchUnit unit;
    unit.connectOverTcp();
    talk(unit, frames, replySize, warmUps);
    const quint64 taken =
        leastOfRounds([&] { return allocationCount(); }, [&] { talk(unit, frames, replySize, requests); });
    QVERIFY2(taken <= static_cast<quint64>(most * requests),
             qPrintable(QStringLiteral("%1 allocations in %2 requests").arg(taken).arg(requests)));
}

void TestLightness::requestTakesFiveSystemCallsAtMost_data()
{
    requestsTakeFewAllocations_data();
}

void TestLightness::requestTakesFiveSystemCallsAtMost()
{
    QFETCH(const QVector<QByteArray>, frames);
    QFETCH(const int, replySize);
    constexpr int most = 5;
    BenchUnit unit;
    unit.connectOverTcp();
    talk(unit, frames, replySize, warmUps);
    const quint64 calls = leastOfRounds([&] { return systemCallCount() - unit.clientCalls(); },
                                        [&] { talk(unit, frames, replySize, requests); });
    QVERIFY(calls >= 3 * requests); // it waits, reads and acknowledges at least
    QVERIFY2(calls <= static_cast<quint64>(most * requests),
             qPrintable(QStringLiteral("%1 system calls in %2 requests").arg(calls).arg(requests)));
}

/// Few calls must not come from putting the two replies into one.
void TestLightness::acknowledgementIsHandedToTheKernelByItself()
{
    BenchUnit unit;
    unit.connectOverTcp();
    unit.talk(readValue, 11);
    const QVector<int> before = sentSizes();
    unit.talk(readValue, 11);
    const QVector<int> sent = sentSizes().mid(before.size());
    QCOMPARE(sent, (QVector<int>{readValue.size(), 1, 10})); // the controller's own, then the two replies
}

void TestLightness::memoryStaysFlatOverManyRequests()
{
    BenchUnit unit;
    unit.connectOverTcp();
    const auto talk = [&](int times) {
        for (int i = 0; i < times; ++i) {
            unit.talk(i % 2 == 0 ? readValue : toggle, i % 2 == 0 ? 11 : 1);
        }
    };
    talk(1000);
    const qint64 before = livingBlocks();
    talk(5000);
    QTRY_COMPARE(livingBlocks(), before); // the watcher may just have something under way
}

/// Else the figures above would prove nothing.
void TestLightness::countersSeeWhatTheyCount()
{
    const quint64 allocations = allocationCount();
    const QByteArray block(100, 'x');
    QCOMPARE(allocationCount(), allocations + 1);
    QCOMPARE(block.size(), 100);

    const quint64 calls = systemCallCount();
    QFile zero(QStringLiteral("/dev/zero"));
    QVERIFY(zero.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
    const quint64 opened = systemCallCount();
    QCOMPARE(zero.read(10).size(), 10);
    QVERIFY(opened >= calls);
    QVERIFY(systemCallCount() > opened);
}

int main(int argc, char** argv)
{
    const QGuiApplication application(argc, argv);
    TestLightness test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_lightness.moc"
