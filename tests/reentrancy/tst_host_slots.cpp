// Hosts that show a dialog, tidy up or end the unit from within a call of the library: every such place, and
// everything that a host may do there. Each row is a unit of its own, in a process of its own.

#include "ChildProcess.h"
#include "HostActions.h"
#include "HostTriggers.h"
#include "Isolation.h"

#include <QTemporaryDir>
#include <QtTest>

#include <map>
#include <memory>
#include <vector>

using namespace Tolvar::Varundo::Test;

namespace {

struct Row
{
    QByteArray road;
    QByteArray trigger;
    QByteArray action;
};

/// What would be the host's own undoing, and no matter of the library.
bool isSensible(const HostTrigger& trigger, const HostAction& action)
{
    if (trigger.mutex == HostTrigger::Mutex::Held) {
        return !action.touchesOverlay;
    }
    // Which of two choices stands is tst_interface_slots' question.
    if (trigger.point == QByteArray("settings.setCustomSetting") && nameOf(action).startsWith("selects")) {
        return false;
    }
    // Whoever is destroyed while it answers has no answer to give.
    const bool answersWithItsOwn =
        trigger.point == QByteArray("manager.createText") || trigger.point == QByteArray("manager.mutex");
    return !(answersWithItsOwn && action.name == QByteArray("destroys the overlay"));
}

/// An emulator takes seconds to start a unit, memcheck too, and what a host's slot may do hangs on the
/// library's order of calls, not on the processor: there, some rows show that it holds for the unit's build
/// and that no memory is looked at that was never written.
size_t oneRowInHowMany()
{
    if (qEnvironmentVariableIsSet("VARUNDO_TEST_UNDER_MEMCHECK")) {
        return 11;
    }
#ifdef VARUNDO_EMULATED
    return 5;
#else
    return 1;
#endif
}

/// With VARUNDO_TEST_EVERY_ROW set, every trigger is tried with every action over TCP, which takes a while.
std::vector<Row> rowsOf(const QByteArray& road)
{
    const bool everyRow = qEnvironmentVariableIsSet("VARUNDO_TEST_EVERY_ROW");
    const size_t oneRowIn = everyRow ? 1 : oneRowInHowMany();
    size_t count = 0;
    std::vector<Row> rows;
    for (const HostTrigger& trigger : hostTriggers()) {
        const bool isOneOfItsKind = trigger.roads == HostTrigger::Roads::Both;
        if (road == "serial" && !isOneOfItsKind) {
            continue;
        }
        for (const HostAction& action : hostActions()) {
            const bool isDue = isOneOfItsKind || action.isHarsh() || everyRow;
            if (isDue && isSensible(trigger, action) && count++ % oneRowIn == 0) {
                rows.push_back({road, nameOf(trigger), nameOf(action)});
            }
        }
    }
    return rows;
}

} // namespace

class TestHostSlots : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void hostMayDoAsItLikes_data();
    void hostMayDoAsItLikes();

private:
    void startUpTo(size_t row);
    QByteArray verdictFile(size_t row) const;

    std::vector<Row> m_rows = rowsOf(ROAD);
    std::map<size_t, std::unique_ptr<ChildProcess>> m_running;
    size_t m_started = 0;
    QTemporaryDir m_directory;
};

void TestHostSlots::initTestCase()
{
    if (!hasOwn("net") || !hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
    QVERIFY(m_directory.isValid());
}

QByteArray TestHostSlots::verdictFile(size_t row) const
{
    return QFile::encodeName(m_directory.filePath(QString::number(row)));
}

/// Several at a time: the unit looks for its adapter once a second, and its rows wait for that.
void TestHostSlots::startUpTo(size_t row)
{
    for (; m_started <= row && m_started < m_rows.size(); ++m_started) {
        const Row& next = m_rows[m_started];
        m_running[m_started] = std::make_unique<ChildProcess>(QList<QByteArray>{
            ISOLATE, REENTRANT_UNIT, next.road, next.trigger, next.action, verdictFile(m_started)});
    }
}

void TestHostSlots::hostMayDoAsItLikes_data()
{
    QTest::addColumn<int>("row");
    for (size_t row = 0; row < m_rows.size(); ++row) {
        QTest::newRow(m_rows[row].trigger + ": " + m_rows[row].action) << static_cast<int>(row);
    }
}

void TestHostSlots::hostMayDoAsItLikes()
{
    QFETCH(int, row);
    const auto index = static_cast<size_t>(row);
    // A single row may be asked for by name.
    m_started = std::max(m_started, index);
    const size_t atOnce = m_rows[index].road == "serial" ? 12 : 3;
    startUpTo(index + atOnce - 1);
    const QByteArray end = m_running[index]->waitForEnd();
    m_running.erase(index);
    QFile verdict(QFile::decodeName(verdictFile(index)));
    const QByteArray complaint =
        verdict.open(QIODevice::ReadOnly) ? verdict.readAll().trimmed() : QByteArray();
    QVERIFY2(end == "exit 0", end + ' ' + complaint);
}

QTEST_GUILESS_MAIN(TestHostSlots)
#include "tst_host_slots.moc"
