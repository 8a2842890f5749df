// What the Runner hands on to the host: signals, the clock, the overlay's switch.

#include "HostedUnit.h"

#include <QSignalSpy>
#include <QtTest>

#include <cmath>
#include <limits>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

class TestRunnerSignals : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void distanceGoesToItsOwnSignal_data();
    void distanceGoesToItsOwnSignal();
    void videoCounterIsHandedOnAndNotKept();
    void position3dIsHandedOn();
    void orientation3dIsHandedOn();
    void measurement3dIsSwitchedByItsOwnSignal_data();
    void measurement3dIsSwitchedByItsOwnSignal();
    void otherCommandsEmitNothingToTheHost();

    void dateSetsTheClockAtTheTimeOfDayNow();
    void impossibleDateReachesTheClockAsInvalid();
    void timeSetsTheClock();
    void impossibleTimeReachesTheClockAsInvalid();
    void clockCommandsNeedNoClock();

    void overlayIsSwitchedOnAndOff();

private:
    void listenTo(Runner& runner);

    QStringList m_heard; // every signal that the host can hear, "name(arguments)", in the order of emission
};

void TestRunnerSignals::initTestCase()
{
    if (!hasOwn("net")) {
        QSKIP(NeedsOwnNetwork);
    }
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
}

void TestRunnerSignals::listenTo(Runner& runner)
{
    m_heard.clear();
    const auto note = [this](const char* name, const QList<double>& arguments) {
        QStringList texts;
        for (const double argument : arguments) {
            texts.append(QString::number(argument, 'g', 17));
        }
        m_heard.append(QStringLiteral("%1(%2)").arg(QLatin1String(name), texts.join(QLatin1String(", "))));
    };
    connect(&runner, &Runner::baudrateChanged, this, [=](int b) { note("baudrateChanged", {double(b)}); });
    connect(&runner, &Runner::zelTcpPortChanged, this, [=] { note("zelTcpPortChanged", {}); });
    connect(&runner, &Runner::interfaceChanged, this, [=](int i) { note("interfaceChanged", {double(i)}); });
    connect(&runner, &Runner::execute3dMeasurementMainPipeActivate, this, [=] { note("mainPipe", {}); });
    connect(&runner, &Runner::execute3dMeasurementLateralActivate, this, [=] { note("lateral", {}); });
    connect(&runner, &Runner::execute3dMeasurementDeactivate, this, [=] { note("deactivate", {}); });
    connect(&runner, &Runner::setDistanceCounterSection, this,
            [=](float d) { note("section", {double(d)}); });
    connect(&runner, &Runner::setDistanceCounterTotal, this, [=](float d) { note("total", {double(d)}); });
    connect(&runner, &Runner::setDistanceCounterSat, this, [=](float d) { note("sat", {double(d)}); });
    connect(&runner, &Runner::writeVideoCounter, this, [=](int h, int m, int s) {
        note("videoCounter", {double(h), double(m), double(s)});
    });
    connect(&runner, &Runner::writeMeasurement3DPosition, this, [=](double x, double y, double z) {
        note("position", {x, y, z});
    });
    connect(&runner, &Runner::writeMeasurement3DOrientation, this, [=](float xy, float z) {
        note("orientation", {double(xy), double(z)});
    });
}

void TestRunnerSignals::distanceGoesToItsOwnSignal_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("signal");
    QTest::newRow("section") << 0x30 << QByteArray::fromHex("41200000") << "section(10)";
    QTest::newRow("SAT") << 0x36 << QByteArray::fromHex("C0400000") << "sat(-3)";
    QTest::newRow("total") << 0x3C << QByteArray::fromHex("3F000000") << "total(0.5)";
}

void TestRunnerSignals::distanceGoesToItsOwnSignal()
{
    QFETCH(int, id);
    QFETCH(QByteArray, payload);
    QFETCH(QString, signal);
    HostedUnit unit;
    listenTo(*unit.runner);
    unit.command(Protocol::Write, static_cast<quint8>(id), payload);
    QCOMPARE(m_heard, QStringList(signal));
    unit.command(Protocol::Write, static_cast<quint8>(id), payload); // the same again is told again
    QCOMPARE(m_heard, inOrder(signal, signal));
}

void TestRunnerSignals::videoCounterIsHandedOnAndNotKept()
{
    HostedUnit unit;
    listenTo(*unit.runner);
    unit.command(Protocol::Write, 0x70, QByteArray::fromHex("01FF03"));
    QCOMPARE(m_heard, inOrder("videoCounter(1, 255, 3)"));
    QCOMPARE(unit.model().videoCounterHours(), 10);
    QCOMPARE(unit.model().videoCounterMinutes(), 20);
    QCOMPARE(unit.model().videoCounterSeconds(), 30);
}

void TestRunnerSignals::position3dIsHandedOn()
{
    HostedUnit unit;
    listenTo(*unit.runner);
    unit.command(Protocol::Write, 0xD4,
                 QByteArray::fromHex("3FF8000000000000"
                                     "C000000000000000"
                                     "4059000000000000"));
    QCOMPARE(m_heard, inOrder("position(1.5, -2, 100)"));
}

void TestRunnerSignals::orientation3dIsHandedOn()
{
    HostedUnit unit;
    listenTo(*unit.runner);
    unit.command(Protocol::Write, 0xD5, QByteArray::fromHex("3FC00000C0000000"));
    QCOMPARE(m_heard, inOrder("orientation(1.5, -2)"));
}

void TestRunnerSignals::measurement3dIsSwitchedByItsOwnSignal_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<QString>("signal");
    QTest::newRow("main pipe") << 0xD4 << "mainPipe()";
    QTest::newRow("lateral") << 0xD5 << "lateral()";
    QTest::newRow("off") << 0xD6 << "deactivate()";
}

void TestRunnerSignals::measurement3dIsSwitchedByItsOwnSignal()
{
    QFETCH(int, id);
    QFETCH(QString, signal);
    HostedUnit unit;
    listenTo(*unit.runner);
    unit.command(Protocol::Execute, static_cast<quint8>(id));
    QCOMPARE(m_heard, QStringList(signal));
}

void TestRunnerSignals::otherCommandsEmitNothingToTheHost()
{
    HostedUnit unit;
    const QList<int> writing{0x30, 0x36, 0x3C, 0x70, 0xD4, 0xD5};
    const QList<int> executing{0xD4, 0xD5, 0xD6};
    listenTo(*unit.runner);
    for (int id = 0; id <= 0xFF; ++id) {
        if (!writing.contains(id)) {
            unit.command(Protocol::Write, static_cast<quint8>(id), QByteArray(32, '\x01'));
        }
        if (!executing.contains(id)) {
            unit.command(Protocol::Execute, static_cast<quint8>(id), QByteArray(32, '\x01'));
        }
    }
    QCOMPARE(m_heard, QStringList());
}

void TestRunnerSignals::dateSetsTheClockAtTheTimeOfDayNow()
{
    RecordingClock clock;
    HostedUnit unit;
    const QTime before = QTime::currentTime();
    unit.command(Protocol::Write, 0x40, QByteArray::fromHex("0F03141A"));
    const QTime after = QTime::currentTime();
    QCOMPARE(clock.dateTimes.size(), 1);
    QCOMPARE(clock.times.size(), 0);
    const QDateTime set = clock.dateTimes.first();
    QCOMPARE(set.date(), QDate(2026, 3, 15));
    QCOMPARE(set.timeSpec(), Qt::LocalTime);
    if (before <= after) { // not over midnight
        QVERIFY(before <= set.time() && set.time() <= after);
    }
}

void TestRunnerSignals::impossibleDateReachesTheClockAsInvalid()
{
    RecordingClock clock;
    HostedUnit unit;
    unit.command(Protocol::Write, 0x40, QByteArray::fromHex("010D1363"));
    QCOMPARE(clock.dateTimes.size(), 1);
    QVERIFY(!clock.dateTimes.first().isValid());
    QVERIFY(!clock.dateTimes.first().date().isValid());
}

void TestRunnerSignals::timeSetsTheClock()
{
    RecordingClock clock;
    HostedUnit unit;
    unit.command(Protocol::Write, 0x50, QByteArray::fromHex("090500"));
    QCOMPARE(clock.times, QList<QTime>({QTime(9, 5, 0)}));
    QCOMPARE(clock.dateTimes.size(), 0);
}

void TestRunnerSignals::impossibleTimeReachesTheClockAsInvalid()
{
    RecordingClock clock;
    HostedUnit unit;
    unit.command(Protocol::Write, 0x50, QByteArray::fromHex("180000"));
    QCOMPARE(clock.times.size(), 1);
    QVERIFY(!clock.times.first().isValid());
}

void TestRunnerSignals::clockCommandsNeedNoClock()
{
    HostedUnit unit;
    unit.command(Protocol::Write, 0x40, QByteArray::fromHex("0F03141A"));
    unit.command(Protocol::Write, 0x50, QByteArray::fromHex("090500"));
    RecordingClock clock; // nothing was kept for later
    unit.command(Protocol::Write, 0x50, QByteArray::fromHex("0A0000"));
    QCOMPARE(clock.times, QList<QTime>({QTime(10, 0, 0)}));
    QCOMPARE(clock.dateTimes.size(), 0);
}

void TestRunnerSignals::overlayIsSwitchedOnAndOff()
{
    HostedUnit unit;
    unit.command(Protocol::Execute, 0x80);
    QCOMPARE(unit.backend.switched, QList<bool>({true}));
    unit.command(Protocol::Execute, 0x81);
    unit.command(Protocol::Execute, 0x81);
    QCOMPARE(unit.backend.switched, QList<bool>({true, false, false}));
}

QTEST_MAIN(TestRunnerSignals)
#include "tst_runner_signals.moc"
