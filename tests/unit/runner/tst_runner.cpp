// What one constructor call sets up, the face that the Runner shows to the host, and the transports'
// settings.

#include "CaughtWarnings.h"
#include "HostedUnit.h"
#include "ZelPeer.h"

#include <Tolvar/Varundo/ExecuteCommandParser.h>
#include <Tolvar/Varundo/ReadCommandParser.h>
#include <Tolvar/Varundo/ReadCommandResponder.h>
#include <Tolvar/Varundo/SerialAdaptor.h>
#include <Tolvar/Varundo/TcpServer.h>
#include <Tolvar/Varundo/WriteCommandParser.h>

#include <QMetaMethod>
#include <QMetaProperty>
#include <QPointer>
#include <QSignalSpy>
#include <QTimer>
#include <QtTest>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

using FormatGetter = int (*)(const DataManager&);
Q_DECLARE_METATYPE(FormatGetter)

class TestRunner : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void interfacesAreSerialTcpUdp();
    void propertiesStandInOrder();
    void signalsStandInOrder();
    void slotThenOperationsStandInOrder();

    void partsAreChildrenAndTransportsAreNot();
    void childrenGoWithTheRunner();
    void runnerGoesWithItsParent();
    void emptyTextsAreClearedEvery200Ms();
    void formatsStartAtTheirValues_data();
    void formatsStartAtTheirValues();
    void videoCounterStartsAt10h20m30s40f();
    void softwareIdNamesTheHostsVersion_data();
    void softwareIdNamesTheHostsVersion();

    void portIs9998UntilItIsSet();
    void setPortIsListenedOn();
    void baudrateIs9600UntilItIsSet();
    void transportSettingsAnnounceAndStoreNothing();
    void portNamesBeginWithDisabled();
    void operationsAreReachedThroughTheMetaObject();

    void missingHostObjectsAreDoneWithout_data();
    void missingHostObjectsAreDoneWithout();

private:
    static QStringList methods(int kind);
};

void TestRunner::initTestCase()
{
    if (!hasOwn("net")) {
        QSKIP(NeedsOwnNetwork);
    }
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
}

QStringList TestRunner::methods(int kind)
{
    const QMetaObject& meta = Runner::staticMetaObject;
    QStringList found;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        if (method.methodType() == kind) {
            found.append(QStringLiteral("%1 %2").arg(QLatin1String(method.typeName()),
                                                     QLatin1String(method.methodSignature())));
        }
    }
    return found;
}

void TestRunner::interfacesAreSerialTcpUdp()
{
    const QMetaObject& meta = Runner::staticMetaObject;
    const QMetaEnum keys = meta.enumerator(meta.indexOfEnumerator("SelectedInterface"));
    QVERIFY(keys.isValid());
    QCOMPARE(keys.keyCount(), 3);
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(keys.value(i), i);
    }
    QCOMPARE(QByteArray(keys.key(0)), QByteArray("Serial"));
    QCOMPARE(QByteArray(keys.key(1)), QByteArray("Tcp"));
    QCOMPARE(QByteArray(keys.key(2)), QByteArray("Udp"));
}

void TestRunner::propertiesStandInOrder()
{
    const QMetaObject& meta = Runner::staticMetaObject;
    QStringList found;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        QVERIFY(property.isReadable() && property.isWritable());
        found.append(QStringLiteral("%1 %2, %3")
                         .arg(QLatin1String(property.typeName()), QLatin1String(property.name()),
                              QLatin1String(property.notifySignal().name())));
    }
    QCOMPARE(found, inOrder("int baudrate, baudrateChanged", "int zelTcpPort, zelTcpPortChanged",
                            "SelectedInterface interface, interfaceChanged"));
}

void TestRunner::signalsStandInOrder()
{
    QCOMPARE(methods(QMetaMethod::Signal),
             inOrder("void baudrateChanged(int)", "void execute3dMeasurementMainPipeActivate()",
                     "void execute3dMeasurementLateralActivate()", "void execute3dMeasurementDeactivate()",
                     "void zelTcpPortChanged()", "void setDistanceCounterSection(float)",
                     "void setDistanceCounterTotal(float)", "void setDistanceCounterSat(float)",
                     "void interfaceChanged(SelectedInterface)", "void writeVideoCounter(int,int,int)",
                     "void writeMeasurement3DPosition(double,double,double)",
                     "void writeMeasurement3DOrientation(float,float)"));
}

void TestRunner::slotThenOperationsStandInOrder()
{
    QCOMPARE(methods(QMetaMethod::Slot), inOrder("void onPrintableCharReceived(char)"));
    QCOMPARE(methods(QMetaMethod::Method),
             inOrder("void setBaudrate(int)", "int baudrate()", "QStringList getPortNames()",
                     "void setZelTcpPort(int)", "int zelTcpPort()", "void setInterface(SelectedInterface)",
                     "SelectedInterface interface()"));
    QVERIFY(Runner::staticMetaObject.indexOfMethod("onPrintableCharReceived(char)") <
            Runner::staticMetaObject.indexOfMethod("setBaudrate(int)"));
}

void TestRunner::partsAreChildrenAndTransportsAreNot()
{
    const HostedUnit unit;
    const QObject& runner = *unit.runner;
    QCOMPARE(runner.findChildren<DataManager*>().size(), 1);
    QCOMPARE(runner.findChild<DataManager*>(), unit.runner->getDataManager());
    QCOMPARE(runner.findChildren<CommandParser*>().size(), 1);
    QCOMPARE(runner.findChildren<ExecuteCommandParser*>().size(), 1);
    QCOMPARE(runner.findChildren<ReadCommandParser*>().size(), 1);
    QCOMPARE(runner.findChildren<WriteCommandParser*>().size(), 1);
    QCOMPARE(runner.findChildren<ReadCommandResponder*>().size(), 1);
    QCOMPARE(runner.findChildren<SerialAdaptor*>().size(), 0);
    QCOMPARE(runner.findChildren<TcpServer*>().size(), 0);
}

void TestRunner::childrenGoWithTheRunner()
{
    HostedUnit unit;
    const QPointer<DataManager> model = unit.runner->getDataManager();
    const QPointer<CommandParser> parser = unit.runner->findChild<CommandParser*>();
    const QPointer<ReadCommandResponder> responder = unit.runner->findChild<ReadCommandResponder*>();
    const QPointer<QTimer> timer = unit.runner->findChild<QTimer*>();
    QVERIFY(model && parser && responder && timer);
    unit.runner.reset();
    QVERIFY(!model && !parser && !responder && !timer);
}

void TestRunner::runnerGoesWithItsParent()
{
    HostedUnit unit;
    auto parent = std::make_unique<QObject>();
    const QPointer<Runner> runner = new Runner(&unit.backend, &unit.manager, &unit.accessor, parent.get());
    QCOMPARE(runner->parent(), parent.get());
    parent.reset();
    QVERIFY(!runner);
}

void TestRunner::emptyTextsAreClearedEvery200Ms()
{
    const HostedUnit unit;
    const auto timers = unit.runner->findChildren<QTimer*>(QString(), Qt::FindDirectChildrenOnly);
    QCOMPARE(timers.size(), 1);
    QCOMPARE(timers.first()->interval(), 200);
    QVERIFY(timers.first()->isActive());
    QVERIFY(!timers.first()->isSingleShot());
}

void TestRunner::formatsStartAtTheirValues_data()
{
    QTest::addColumn<FormatGetter>("format");
    QTest::addColumn<int>("start");
    const auto row = [](const char* name, FormatGetter format, int start) {
        QTest::newRow(name) << format << start;
    };
    using Model = const DataManager&;
    row(
        "meter counter 1", [](Model m) { return m.meterCounter1Format(); }, 0);
    row(
        "meter counter 2", [](Model m) { return m.meterCounter2Format(); }, 0);
    row(
        "meter counter 3", [](Model m) { return m.meterCounter3Format(); }, 0);
    row(
        "date", [](Model m) { return m.dateFormat(); }, 0);
    row(
        "time", [](Model m) { return m.timeFormat(); }, 0);
    row(
        "video counter", [](Model m) { return m.videoCounterFormat(); }, 0);
    row(
        "crawler temperature", [](Model m) { return m.crawlerTemperatureFormat(); }, 0);
    row(
        "crawler pressure", [](Model m) { return m.crawlerPressureFormat(); }, 0);
    row(
        "crawler roll", [](Model m) { return m.crawlerRollFormat(); }, 0);
    row(
        "tilt alone with cable speed", [](Model m) { return m.tiltPositionFormat(); }, 1);
    row(
        "external temperature", [](Model m) { return m.extTemperatureFormat(); }, 0);
    row(
        "camera temperature", [](Model m) { return m.cameraTemperatureFormat(); }, 0);
    row(
        "pressure", [](Model m) { return m.pressureFormat(); }, 0);
    row(
        "inclination", [](Model m) { return m.inclinationFormat(); }, 0);
    row(
        "pan position", [](Model m) { return m.panPositionFormat(); }, 0);
    row(
        "cable speed alone with tilt", [](Model m) { return m.cableSpeedFormat(); }, 1);
    row(
        "text codec", [](Model m) { return static_cast<int>(m.textCodec()); }, 0);
}

void TestRunner::formatsStartAtTheirValues()
{
    QFETCH(FormatGetter, format);
    const HostedUnit unit;
    QTEST(format(unit.model()), "start");
}

void TestRunner::videoCounterStartsAt10h20m30s40f()
{
    const HostedUnit unit;
    QCOMPARE(unit.model().videoCounterHours(), 10);
    QCOMPARE(unit.model().videoCounterMinutes(), 20);
    QCOMPARE(unit.model().videoCounterSeconds(), 30);
    QCOMPARE(unit.model().videoCounterFrames(), 40);
}

void TestRunner::softwareIdNamesTheHostsVersion_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("softwareId");
    QTest::newRow("number") << "4.2"
                            << "Tolvar QR740 ZEL-interface: V4.2 - 20180828 - 12:00";
    QTest::newRow("words") << "4.2 beta é"
                           << "Tolvar QR740 ZEL-interface: V4.2 beta é - 20180828 - 12:00";
    QTest::newRow("none") << ""
                          << "Tolvar QR740 ZEL-interface: V - 20180828 - 12:00";
}

void TestRunner::softwareIdNamesTheHostsVersion()
{
    QFETCH(QString, version);
    QCoreApplication::setApplicationVersion(version);
    const HostedUnit unit;
    QTEST(unit.model().softwareID(), "softwareId");
}

void TestRunner::portIs9998UntilItIsSet()
{
    HostedUnit unit;
    const Runner runner(&unit.backend, &unit.manager, &unit.accessor);
    QCOMPARE(runner.zelTcpPort(), 9998);
    QCOMPARE(runner.property("zelTcpPort").toInt(), 9998);
}

void TestRunner::setPortIsListenedOn()
{
    const HostedUnit unit;
    QCOMPARE(unit.runner->zelTcpPort(), unit.port);
    QVERIFY(ZelPeer(unit.port).isConnected());

    const int other = portOfItsOwn();
    unit.runner->setZelTcpPort(other);
    QCOMPARE(unit.runner->zelTcpPort(), other);
    QVERIFY(ZelPeer(other).isConnected());
    QTcpSocket late;
    late.connectToHost(QHostAddress(QHostAddress::LocalHost), static_cast<quint16>(unit.port));
    QVERIFY(!late.waitForConnected(2000));
    QCOMPARE(late.error(), QAbstractSocket::ConnectionRefusedError);
}

void TestRunner::baudrateIs9600UntilItIsSet()
{
    const HostedUnit unit;
    QCOMPARE(unit.runner->baudrate(), 9600);
    unit.runner->setBaudrate(115200);
    QCOMPARE(unit.runner->baudrate(), 115200);
    unit.runner->setProperty("baudrate", 19200);
    QCOMPARE(unit.runner->baudrate(), 19200);
}

void TestRunner::transportSettingsAnnounceAndStoreNothing()
{
    HostedUnit unit;
    const QSignalSpy baudrateChanged(unit.runner.get(), &Runner::baudrateChanged);
    const QSignalSpy portChanged(unit.runner.get(), &Runner::zelTcpPortChanged);
    unit.settings.storeInterface(QStringLiteral("marked"));
    unit.runner->setBaudrate(115200);
    unit.runner->setZelTcpPort(portOfItsOwn());
    QCOMPARE(baudrateChanged.count(), 0);
    QCOMPARE(portChanged.count(), 0);
    QCOMPARE(unit.settings.storedInterface(), QStringLiteral("marked"));

    const Runner next(&unit.backend, &unit.manager, &unit.accessor);
    QCOMPARE(next.baudrate(), 9600);
    QCOMPARE(next.zelTcpPort(), 9998);
}

void TestRunner::portNamesBeginWithDisabled()
{
    const HostedUnit unit;
    const QStringList names = unit.runner->getPortNames();
    QVERIFY(!names.isEmpty());
    QCOMPARE(names.first(), QStringLiteral("disabled"));
    for (const QString& name : names.mid(1)) {
        QVERIFY2(name.contains(QLatin1String("ttyUSB")), qPrintable(name));
    }
}

void TestRunner::operationsAreReachedThroughTheMetaObject()
{
    const HostedUnit unit;
    Runner* const runner = unit.runner.get();
    int baudrate = 0;
    QVERIFY(QMetaObject::invokeMethod(runner, "setBaudrate", Q_ARG(int, 38400)));
    QVERIFY(QMetaObject::invokeMethod(runner, "baudrate", Q_RETURN_ARG(int, baudrate)));
    QCOMPARE(baudrate, 38400);

    const int port = portOfItsOwn();
    QVERIFY(runner->setProperty("zelTcpPort", port));
    int portNow = 0;
    QVERIFY(QMetaObject::invokeMethod(runner, "zelTcpPort", Q_RETURN_ARG(int, portNow)));
    QCOMPARE(portNow, port);

    QStringList names;
    QVERIFY(QMetaObject::invokeMethod(runner, "getPortNames", Q_RETURN_ARG(QStringList, names)));
    QCOMPARE(names, runner->getPortNames());

    QVERIFY(runner->setProperty("interface", QVariant::fromValue(Runner::Udp)));
    QCOMPARE(runner->interface(), Runner::Udp);
    QCOMPARE(runner->property("interface").value<Runner::SelectedInterface>(), Runner::Udp);
}

void TestRunner::missingHostObjectsAreDoneWithout_data()
{
    QTest::addColumn<bool>("backend");
    QTest::addColumn<bool>("manager");
    QTest::addColumn<bool>("accessor");
    QTest::newRow("no control back-end") << false << true << true;
    QTest::newRow("no overlay manager") << true << false << true;
    QTest::newRow("no element accessor") << true << true << false;
    QTest::newRow("nothing at all") << false << false << false;
}

void TestRunner::missingHostObjectsAreDoneWithout()
{
    QFETCH(bool, backend);
    QFETCH(bool, manager);
    QFETCH(bool, accessor);
    HostedUnit unit;
    unit.addBoundText(Mavril::VideoOverlay::ElementParam::NAME_SPEED);
    const CaughtWarnings caught;
    unit.runner =
        std::make_unique<Runner>(backend ? &unit.backend : nullptr, manager ? &unit.manager : nullptr,
                                 accessor ? &unit.accessor : nullptr);
    unit.loadProfile();
    unit.runner->connectVarundo();
    unit.runner->connectFreeText();
    for (int id = 0; id <= 0xFF; ++id) {
        unit.command(Protocol::Write, static_cast<quint8>(id), QByteArray("\x01\x02 text", 7));
    }
    unit.runner->onPrintableCharReceived('x');
    unit.runner->clearEmptyTexts();
    for (int id = 0; id <= 0xFF; ++id) {
        unit.command(Protocol::Execute, static_cast<quint8>(id));
    }
    unit.runner->disconnectVarundo();

    // What needs the missing part is left out, all else goes on.
    QCOMPARE(unit.model().cableSpeedPosition(), QPoint(1, 2));
    QCOMPARE(unit.backend.switched, backend ? QList<bool>({true, false}) : QList<bool>());
    QCOMPARE(unit.log.take().contains(QStringLiteral("delete(custom1)")), manager);
    // Nor is anything attempted with a part that is not there; Qt would say so.
    QCOMPARE(CaughtWarnings::texts().filter(QStringLiteral("QObject::")), QStringList());
}

QTEST_MAIN(TestRunner)
#include "tst_runner.moc"
