#include "DeviceMover.h"
#include "DeviceScript.h"
#include "SimulatedDevices.h"

#include <QElapsedTimer>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Tolvar::Varundo::Simulator;

/// Scripts that move the devices: what may stand in the file, and that it happens when it should.
class tst_DeviceScript : public QObject
{
    Q_OBJECT

private slots:
    void stepsAreReadInOrder();
    void badFileIsToldWithPlaceAndReason_data();
    void badFileIsToldWithPlaceAndReason();
    void fileThatCannotBeReadIsTold();
    void oversizedFileIsRefused();
    void moverMakesEachStepAtItsTime();
    void moverThatRepeatsStartsAgainAfterTheLastStep();
    void stepsThatAreLateAreMadeInOrder();

private:
    QString write(const QByteArray& json) const
    {
        QFile file(m_dir.filePath(QStringLiteral("devices.json")));
        return file.open(QIODevice::WriteOnly) && file.write(json) == json.size() ? file.fileName()
                                                                                  : QString();
    }
    DeviceScript script(const QByteArray& json) const
    {
        QString error;
        const auto script = DeviceScript::readFile(write(json), &error);
        if (!script) {
            qFatal("%s", qPrintable(error));
        }
        return *script;
    }

    QTemporaryDir m_dir;
};

void tst_DeviceScript::stepsAreReadInOrder()
{
    const DeviceScript read = script(R"({"steps": [
        {"at": 0, "reel": {"speed": 0.1}},
        {"at": 0.0006},
        {"at": 2.5, "camera": {"pan": 10}, "rts": {"temperature": 3}},
        {"at": 2.5, "positionSensor": null}]})");
    QVERIFY(!read.repeats());
    QVector<int> times;
    for (const DeviceScript::Step& step : read.steps()) {
        times.append(step.atMs);
    }
    QCOMPARE(times, QVector<int>({0, 1, 2500, 2500}));
    SimulatedDevices devices;
    read.steps().at(2).settings.applyTo(devices);
    QCOMPARE(devices.camera().pan(), short(10));
    QCOMPARE(devices.rts().temperature(), 3.0F);
}

void tst_DeviceScript::badFileIsToldWithPlaceAndReason_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* json, const char* expected) {
        QTest::newRow(json) << QByteArray(json) << QString::fromUtf8(expected);
    };
    row("", ":1:1: illegal value");
    row("{\n  \"steps\": [{\"at\": 1,}]}", ":2:22: object is missing after a comma");
    row("[]", ": expected an object with \"steps\", got an array");
    row("{}", ": steps: expected an array, got nothing");
    row(R"({"steps": []})", ": steps: expected one step at least, got none");
    row(R"({"steps": 5})", ": steps: expected an array, got 5");
    row(R"({"step": []})", R"(: unknown field "step"; known here are repeat, steps)");
    row(R"({"repeat": 1, "steps": [{"at": 1}]})", ": repeat: expected true or false, got 1");
    row(R"({"repeat": true, "steps": [{"at": 0.09}]})",
        ": repeat: expected a last step at 0.1 seconds or later, got 0.09");
    row(R"({"steps": [7]})", ": steps[0]: expected an object, got 7");
    row(R"({"steps": [{"at": 1}, {"reel": {}}]})",
        ": steps[1].at: expected seconds from 1 (the step before) to 604800, got nothing");
    row(R"({"steps": [{"at": -1}]})", ": steps[0].at: expected seconds from 0 to 604800, got -1");
    row(R"({"steps": [{"at": 604801}]})", ": steps[0].at: expected seconds from 0 to 604800, got 604801");
    row(R"({"steps": [{"at": "now"}]})", ": steps[0].at: expected seconds from 0 to 604800, got \"now\"");
    row(R"({"steps": [{"at": 2}, {"at": 1}]})",
        ": steps[1].at: expected seconds from 2 (the step before) to 604800, got 1");
    row(R"({"steps": [{"at": 0, "boat": {}}]})",
        R"(: steps[0]: unknown field "boat"; known here are at, reel, rts, crawler, camera, positionSensor)");
    row(R"({"steps": [{"at": 0}, {"at": 1, "camera": {"pan": 1e5}}]})",
        ": steps[1].camera.pan: expected an integer from -32768 to 32767, got 100000");
}

void tst_DeviceScript::badFileIsToldWithPlaceAndReason()
{
    QFETCH(QByteArray, json);
    QFETCH(QString, expected);
    const QString file = write(json);
    QString error;
    QVERIFY(!DeviceScript::readFile(file, &error));
    QCOMPARE(error, file + expected);
}

void tst_DeviceScript::fileThatCannotBeReadIsTold()
{
    QString error;
    QVERIFY(!DeviceScript::readFile(QStringLiteral("/nowhere/devices.json"), &error));
    QCOMPARE(error, QStringLiteral("/nowhere/devices.json: cannot be read: No such file or directory"));
    QVERIFY(!DeviceScript::readFile(m_dir.path(), &error));
    QVERIFY2(error.startsWith(m_dir.path() + QStringLiteral(": cannot be read: ")), qPrintable(error));
}

void tst_DeviceScript::oversizedFileIsRefused()
{
    const QString file = write(QByteArray(DeviceScript::MaxBytes + 1, ' '));
    QString error;
    QVERIFY(!DeviceScript::readFile(file, &error));
    QCOMPARE(error, file + QStringLiteral(": larger than 8388608 bytes"));
    write("{\"steps\": [" + QByteArray("{\"at\":1},").repeated(DeviceScript::MaxSteps) + "{\"at\":1}]}");
    QVERIFY(!DeviceScript::readFile(file, &error));
    QCOMPARE(error, file + QStringLiteral(": steps: expected 100000 at most, got 100001"));
}

void tst_DeviceScript::moverMakesEachStepAtItsTime()
{
    SimulatedDevices devices;
    const QSignalSpy told(&devices.rts(), &ITolvarRts::rtsTemperatureChanged);
    DeviceMover mover(script(R"({"steps": [{"at": 0, "rts": {"temperature": 1}},
        {"at": 0.15, "rts": {"temperature": 2}}, {"at": 0.3, "rts": {"temperature": 3}}]})"),
                      devices);
    QElapsedTimer timer;
    timer.start();
    mover.start();
    QTRY_COMPARE(told.size(), 2);
    QVERIFY(timer.elapsed() >= 150);
    QTRY_COMPARE(told.size(), 3);
    QVERIFY(timer.elapsed() >= 300);
    QTest::qWait(50);
    QCOMPARE(told.size(), 3); // once only
    QCOMPARE(devices.rts().temperature(), 3.0F);
}

void tst_DeviceScript::moverThatRepeatsStartsAgainAfterTheLastStep()
{
    SimulatedDevices devices;
    const QSignalSpy told(&devices.rts(), &ITolvarRts::rtsTemperatureChanged);
    DeviceMover mover(script(R"({"repeat": true, "steps": [{"at": 0.05, "rts": {"temperature": 1}},
        {"at": 0.1, "rts": {"temperature": 2}}]})"),
                      devices);
    QElapsedTimer timer;
    timer.start();
    mover.start();
    QTRY_VERIFY(told.size() >= 6);
    QVERIFY(timer.elapsed() >= 300); // three rounds of a tenth of a second
    for (int i = 0; i < 6; ++i) {
        QCOMPARE(told.at(i).constFirst().toFloat(), i % 2 == 0 ? 1.0F : 2.0F);
    }
}

void tst_DeviceScript::stepsThatAreLateAreMadeInOrder()
{
    SimulatedDevices devices;
    const QSignalSpy told(&devices.rts(), &ITolvarRts::rtsTemperatureChanged);
    DeviceMover mover(script(R"({"steps": [{"at": 0.01, "rts": {"temperature": 1}},
        {"at": 0.02, "rts": {"temperature": 2}}, {"at": 0.03, "rts": {"temperature": 3}}]})"),
                      devices);
    mover.start();
    QTest::qSleep(60); // the event loop is busy elsewhere
    QCoreApplication::processEvents();
    QCOMPARE(told.size(), 3);
    QCOMPARE(told.at(0).constFirst().toFloat(), 1.0F);
    QCOMPARE(told.at(2).constFirst().toFloat(), 3.0F);
}

QTEST_GUILESS_MAIN(tst_DeviceScript)
#include "tst_devicescript.moc"
