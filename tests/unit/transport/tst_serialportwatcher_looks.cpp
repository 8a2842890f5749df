#include <Tolvar/Varundo/SerialPortWatcher.h>

#include "Isolation.h"

#include <QFile>
#include <QSignalSpy>
#include <QtTest>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

QString node(const QString& name)
{
    return QStringLiteral("/dev/") + name;
}

/// Makes the nodes of /dev be these adapters, and no others.
bool plug(const QStringList& names)
{
    bool done = true;
    for (const char* const known : {"ttyUSB0", "ttyUSB1", "ttyUSB2", "ttyUSB10", "ttyusb0", "ttyS0"}) {
        const QString name = QString::fromLatin1(known);
        QFile file(node(name));
        if (names.contains(name)) {
            done = done && file.open(QIODevice::WriteOnly);
        } else {
            done = done && (!file.exists() || file.remove());
        }
    }
    return done;
}

} // namespace

/// The watcher's looks at /dev, one by one, without its timer.
class TestSerialPortWatcherLooks : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void aNewWatcherHasTheGivenNameAndHasNotLooked();
    void eachLookReportsEdgesOnly_data();
    void eachLookReportsEdgesOnly();
    void aNodeThatCannotBeOpenedIsReportedAllTheSame();
    void theNameMayBeReplaced();
};

void TestSerialPortWatcherLooks::init()
{
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
    QVERIFY(plug({}));
}

void TestSerialPortWatcherLooks::cleanup()
{
    if (hasOwn("dev")) {
        QVERIFY(plug({}));
    }
}

void TestSerialPortWatcherLooks::aNewWatcherHasTheGivenNameAndHasNotLooked()
{
    QVERIFY(plug({QStringLiteral("ttyUSB0")}));
    const SerialPortWatcher watcher(QStringLiteral("ttyUSB1"));
    QCOMPARE(watcher.portName(), QStringLiteral("ttyUSB1"));
}

void TestSerialPortWatcherLooks::eachLookReportsEdgesOnly_data()
{
    // Adapters at each look, what each look tells ("-": nothing), and the name it leaves.
    QTest::addColumn<QList<QByteArray>>("adapters");
    QTest::addColumn<QList<QByteArray>>("told");
    QTest::addColumn<QByteArray>("name");
    using Looks = QList<QByteArray>;

    QTest::newRow("none") << Looks{"", "", ""} << Looks{"-", "-", "-"} << QByteArray("start");
    QTest::newRow("ttyUSB0 from the start")
        << Looks{"ttyUSB0", "ttyUSB0", "ttyUSB0"} << Looks{"+ttyUSB0", "-", "-"} << QByteArray("ttyUSB0");
    QTest::newRow("ttyUSB1 from the start")
        << Looks{"ttyUSB1", "ttyUSB1"} << Looks{"+ttyUSB1", "-"} << QByteArray("ttyUSB1");
    QTest::newRow("both: ttyUSB1 wins")
        << Looks{"ttyUSB0 ttyUSB1", "ttyUSB0 ttyUSB1"} << Looks{"+ttyUSB1", "-"} << QByteArray("ttyUSB1");
    QTest::newRow("ttyUSB1 is added: the name only")
        << Looks{"ttyUSB0", "ttyUSB0 ttyUSB1"} << Looks{"+ttyUSB0", "-"} << QByteArray("ttyUSB1");
    QTest::newRow("ttyUSB1 of both goes: the name only")
        << Looks{"ttyUSB0 ttyUSB1", "ttyUSB0"} << Looks{"+ttyUSB1", "-"} << QByteArray("ttyUSB0");
    QTest::newRow("one is swapped for the other: the name only")
        << Looks{"ttyUSB1", "ttyUSB0", "ttyUSB1"} << Looks{"+ttyUSB1", "-", "-"} << QByteArray("ttyUSB1");
    QTest::newRow("both go, once") << Looks{"ttyUSB0 ttyUSB1", "", "", ""}
                                   << Looks{"+ttyUSB1", "gone", "-", "-"} << QByteArray("ttyUSB1");
    QTest::newRow("it comes again") << Looks{"ttyUSB0", "", "ttyUSB0", "", "ttyUSB1", "ttyUSB1"}
                                    << Looks{"+ttyUSB0", "gone", "+ttyUSB0", "gone", "+ttyUSB1", "-"}
                                    << QByteArray("ttyUSB1");
    QTest::newRow("others are not looked at") << Looks{"ttyUSB2", "ttyUSB10 ttyUSB2", "ttyS0", "ttyusb0"}
                                              << Looks{"-", "-", "-", "-"} << QByteArray("start");
    QTest::newRow("another one does not keep it connected")
        << Looks{"ttyUSB0 ttyUSB2", "ttyUSB2"} << Looks{"+ttyUSB0", "gone"} << QByteArray("ttyUSB0");
}

void TestSerialPortWatcherLooks::eachLookReportsEdgesOnly()
{
    QFETCH(QList<QByteArray>, adapters);
    QFETCH(QList<QByteArray>, told);
    QFETCH(QByteArray, name);
    QCOMPARE(adapters.size(), told.size());

    SerialPortWatcher watcher(QStringLiteral("start"));
    QByteArray heard;
    connect(&watcher, &SerialPortWatcher::serialPortConnected, this,
            [&](const QString& port) { heard += '+' + port.toLatin1(); });
    connect(&watcher, &SerialPortWatcher::serialPortDisconnected, this, [&] { heard += "gone"; });
    for (int look = 0; look < adapters.size(); ++look) {
        QVERIFY(plug(QString::fromLatin1(adapters.at(look)).split(QLatin1Char(' '))));
        heard.clear();
        watcher.checkPorts();
        QCOMPARE(heard.isEmpty() ? QByteArray("-") : heard, told.at(look));
    }
    QCOMPARE(watcher.portName().toLatin1(), name);
}

void TestSerialPortWatcherLooks::aNodeThatCannotBeOpenedIsReportedAllTheSame()
{
    QVERIFY(plug({QStringLiteral("ttyUSB1")}));
    QVERIFY(QFile::setPermissions(node(QStringLiteral("ttyUSB1")), QFileDevice::Permissions()));
    SerialPortWatcher watcher(QString{});
    QSignalSpy connected(&watcher, &SerialPortWatcher::serialPortConnected);
    watcher.checkPorts();
    QCOMPARE(connected.count(), 1);
    QCOMPARE(connected.first().first().toString(), QStringLiteral("ttyUSB1"));
}

void TestSerialPortWatcherLooks::theNameMayBeReplaced()
{
    SerialPortWatcher watcher(QStringLiteral("ttyUSB1"));
    watcher.setPortName(QStringLiteral("ttyUSB0"));
    QCOMPARE(watcher.portName(), QStringLiteral("ttyUSB0"));
    watcher.checkPorts();
    QCOMPARE(watcher.portName(), QStringLiteral("ttyUSB0")); // a look that finds nothing leaves it
    QVERIFY(plug({QStringLiteral("ttyUSB1")}));
    watcher.checkPorts();
    QCOMPARE(watcher.portName(), QStringLiteral("ttyUSB1"));
}

QTEST_GUILESS_MAIN(TestSerialPortWatcherLooks)

#include "tst_serialportwatcher_looks.moc"
