// A process that made a Runner ends cleanly, whichever way it ends. The Runner's transports are never
// destroyed, so the watcher's thread is still there when the process begins to end.

#include "ChildProcess.h"
#include "Isolation.h"
#include "PseudoAdapter.h"

#include <QTemporaryDir>
#include <QtTest>

#include <memory>
#include <vector>

using namespace Tolvar::Varundo::Test;

namespace {

/// Few where each process takes long and whoever watches it tells of a single wrong access.
int runs()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || defined(VARUNDO_EMULATED)
    return 25;
#else
    return qEnvironmentVariableIsSet("VARUNDO_TEST_UNDER_MEMCHECK") ? 25 : 500;
#endif
}

} // namespace

class TestProcessEnd : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void processEndsCleanly_data();
    void processEndsCleanly();

private:
    QTemporaryDir m_directory;
};

void TestProcessEnd::initTestCase()
{
    if (!hasOwn("net") || !hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
    QVERIFY(m_directory.isValid());
}

void TestProcessEnd::processEndsCleanly_data()
{
    QTest::addColumn<QByteArray>("mode");
    QTest::addColumn<int>("runs");
    QTest::addColumn<int>("atOnce");
    QTest::addColumn<bool>("withAnAdapter");
    QTest::newRow("Runner not deleted") << QByteArray("kept") << runs() << 2 << false;
    QTest::newRow("Runner deleted first") << QByteArray("deleted") << runs() << 2 << false;
    QTest::newRow("event loop never run") << QByteArray("no-loop") << runs() / 10 << 2 << false;
    QTest::newRow("exit() inside a slot") << QByteArray("exit") << runs() / 10 << 2 << false;
    // Each waits for the look: many at once.
    QTest::newRow("exit() at a look") << QByteArray("exit-at-a-look") << runs() / 5 << 25 << false;
    QTest::newRow("exit() at a look that finds an adapter")
        << QByteArray("exit-at-a-look") << runs() / 5 << 25 << true;
}

void TestProcessEnd::processEndsCleanly()
{
    QFETCH(QByteArray, mode);
    QFETCH(int, runs);
    QFETCH(int, atOnce);
    QFETCH(bool, withAnAdapter);
    std::unique_ptr<PseudoAdapter> adapter;
    if (withAnAdapter) {
        adapter = std::make_unique<PseudoAdapter>();
        QVERIFY(adapter->isPlugged());
    }
    const QList<QByteArray> command{ENDING_UNIT, mode,
                                    QFile::encodeName(m_directory.filePath(QStringLiteral("settings")))};
    std::vector<std::unique_ptr<ChildProcess>> running(static_cast<size_t>(atOnce));
    for (int run = 0; run < runs + atOnce; ++run) {
        auto& place = running[static_cast<size_t>(run % atOnce)];
        if (place) {
            const QByteArray end = place->waitForEnd();
            QVERIFY2(end == "exit 0", end + " in run " + QByteArray::number(run - atOnce));
        }
        place = run < runs ? std::make_unique<ChildProcess>(command) : nullptr;
    }
}

QTEST_GUILESS_MAIN(TestProcessEnd)
#include "tst_process_end.moc"
