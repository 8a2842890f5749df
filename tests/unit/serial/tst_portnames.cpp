// The list of ports, against a made-up /sys in the test's own namespace.

#include "Isolation.h"

#include <Tolvar/Varundo/SerialAdaptor.h>

#include <QDir>
#include <QFile>
#include <QSerialPortInfo>
#include <QtTest>

#include <sys/mount.h>
#include <unistd.h>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

/// An empty /sys, for as long as it lives, to put serial ports in.
class MadeUpSys
{
public:
    MadeUpSys()
        : m_mounted(mount("tmpfs", "/sys", "tmpfs", MS_NOSUID, "mode=0755") == 0)
    {
        make(QStringLiteral("class/tty"));
        make(QStringLiteral("bus/usb-serial/drivers/ftdi_sio"));
        make(QStringLiteral("bus/pnp/drivers/serial"));
    }
    ~MadeUpSys()
    {
        if (m_mounted) {
            umount2("/sys", MNT_DETACH);
        }
    }
    MadeUpSys(const MadeUpSys&) = delete;
    MadeUpSys& operator=(const MadeUpSys&) = delete;

    [[nodiscard]] bool isMounted() const { return m_mounted; }

    void addUsbAdapter(const QString& name, int number)
    {
        const QString usb = QStringLiteral("devices/pci0000:00/usb1/1-%1").arg(number + 1);
        const QString device = QStringLiteral("%1/1-%2:1.0/%3").arg(usb).arg(number + 1).arg(name);
        addPort(device, name, QStringLiteral("188:%1").arg(number), QStringLiteral("usb-serial"),
                QStringLiteral("ftdi_sio"));
        write(usb + QStringLiteral("/idVendor"), "0403\n");
        write(usb + QStringLiteral("/idProduct"), "6001\n");
    }
    void addBoardPort(const QString& name)
    {
        addPort(QStringLiteral("devices/pnp0/00:01"), name, QStringLiteral("4:64"), QStringLiteral("pnp"),
                QStringLiteral("serial"));
    }

private:
    static QString path(const QString& name) { return QStringLiteral("/sys/") + name; }
    static void make(const QString& directory) { QDir().mkpath(path(directory)); }
    static void write(const QString& name, const QByteArray& text)
    {
        QFile file(path(name));
        if (file.open(QIODevice::WriteOnly)) {
            file.write(text);
        }
    }
    static void link(const QString& target, const QString& name) { QFile::link(path(target), path(name)); }

    static void addPort(const QString& device, const QString& name, const QString& number, const QString& bus,
                        const QString& driver)
    {
        const QString port = QStringLiteral("%1/tty/%2").arg(device, name);
        make(port);
        write(port + QStringLiteral("/dev"), number.toLatin1() + '\n');
        write(port + QStringLiteral("/uevent"),
              "MAJOR=" + number.toLatin1().replace(":", "\nMINOR=") + "\nDEVNAME=" + name.toLatin1() + '\n');
        link(QStringLiteral("class/tty"), port + QStringLiteral("/subsystem"));
        link(device, port + QStringLiteral("/device"));
        write(device + QStringLiteral("/uevent"), "DRIVER=" + driver.toLatin1() + '\n');
        link(QStringLiteral("bus/") + bus, device + QStringLiteral("/subsystem"));
        link(QStringLiteral("bus/%1/drivers/%2").arg(bus, driver), device + QStringLiteral("/driver"));
        link(port, QStringLiteral("class/tty/") + name);
    }

    bool m_mounted;
};

QStringList enumerated()
{
    QStringList names;
    const auto ports = QSerialPortInfo::availablePorts();
    for (const QSerialPortInfo& port : ports) {
        names.append(port.portName());
    }
    return names;
}

} // namespace

class TestPortNames : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void onlyDisabledWithoutAnyPort();
    void onlyDisabledWithoutAUsbAdapter();
    void disabledAndThenTheUsbAdaptersInTheirOrder();
    void listIsMadeAnewEachTime();
};

void TestPortNames::initTestCase()
{
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
    if (!MadeUpSys().isMounted()) {
        QSKIP("needs a /sys of its own, which this machine does not permit");
    }
}

void TestPortNames::onlyDisabledWithoutAnyPort()
{
    const MadeUpSys sys;
    SerialAdaptor adaptor(QStringLiteral("/dev/ttyUSB1"));
    QCOMPARE(enumerated(), QStringList());
    QCOMPARE(adaptor.getPortNames(), QStringList(QStringLiteral("disabled")));
}

void TestPortNames::onlyDisabledWithoutAUsbAdapter()
{
    MadeUpSys sys;
    sys.addBoardPort(QStringLiteral("ttyS0"));
    SerialAdaptor adaptor(QStringLiteral("/dev/ttyUSB1"));
    QCOMPARE(enumerated(), QStringList(QStringLiteral("ttyS0")));
    QCOMPARE(adaptor.getPortNames(), QStringList(QStringLiteral("disabled")));
}

void TestPortNames::disabledAndThenTheUsbAdaptersInTheirOrder()
{
    MadeUpSys sys;
    sys.addUsbAdapter(QStringLiteral("ttyUSB0"), 0);
    sys.addUsbAdapter(QStringLiteral("ttyUSB3"), 3);
    sys.addBoardPort(QStringLiteral("ttyS0"));
    SerialAdaptor adaptor(QStringLiteral("/dev/ttyUSB1"));
    QStringList expected = enumerated();
    QCOMPARE(expected.size(), 3);
    expected.removeOne(QStringLiteral("ttyS0"));
    expected.prepend(QStringLiteral("disabled"));
    QCOMPARE(adaptor.getPortNames(), expected);
    expected.sort();
    QCOMPARE(expected,
             QStringList({QStringLiteral("disabled"), QStringLiteral("ttyUSB0"), QStringLiteral("ttyUSB3")}));
}

void TestPortNames::listIsMadeAnewEachTime()
{
    MadeUpSys sys;
    SerialAdaptor adaptor(QStringLiteral("/dev/ttyUSB1"));
    adaptor.portListUpdated({QStringLiteral("ttyUSB9")}); // is only kept
    QCOMPARE(adaptor.getPortNames(), QStringList(QStringLiteral("disabled")));
    sys.addUsbAdapter(QStringLiteral("ttyUSB1"), 1);
    const QStringList expected{QStringLiteral("disabled"), QStringLiteral("ttyUSB1")};
    QCOMPARE(adaptor.getPortNames(), expected);
    QCOMPARE(adaptor.getPortNames(), expected);
}

QTEST_GUILESS_MAIN(TestPortNames)
#include "tst_portnames.moc"
