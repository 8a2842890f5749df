#ifndef TOLVAR_VARUNDO_TEST_MADEUPPORTS_H
#define TOLVAR_VARUNDO_TEST_MADEUPPORTS_H

#include <QDir>
#include <QFile>
#include <QString>

#include <sys/mount.h>

namespace Tolvar::Varundo::Test {

/// A /sys that lists serial ports of the test's choice while it exists. Only for programs that are isolated:
/// others would see it too.
class MadeUpPorts
{
public:
    MadeUpPorts()
        : m_mounted(mount("tmpfs", "/sys", "tmpfs", MS_NOSUID, "mode=0755") == 0)
    {
        // What enumerates devices asks whether this is the kernel's own list.
        qputenv("SYSTEMD_DEVICE_VERIFY_SYSFS", "0");
        QDir().mkpath(QStringLiteral("/sys/class/tty"));
        QDir().mkpath(QStringLiteral("/sys/bus/usb/drivers/ftdi_sio"));
        QDir().mkpath(QStringLiteral("/sys/bus/pci/drivers/serial"));
    }
    ~MadeUpPorts()
    {
        if (m_mounted) {
            umount2("/sys", MNT_DETACH);
        }
    }
    MadeUpPorts(const MadeUpPorts&) = delete;
    MadeUpPorts& operator=(const MadeUpPorts&) = delete;

    [[nodiscard]] bool isMounted() const { return m_mounted; }

    /// An adapter in the numbered USB socket.
    void addUsbPort(const QString& name, int socket)
    {
        const QString usb = QStringLiteral("/sys/devices/pci0000:00/0000:00:14.0/usb1/1-%1").arg(socket);
        const QString interface = QStringLiteral("%1/1-%2:1.0").arg(usb).arg(socket);
        addPort(name, interface + QLatin1Char('/') + name, QStringLiteral("/sys/bus/usb/drivers/ftdi_sio"));
        write(usb + QStringLiteral("/idVendor"), "0403\n");
        write(usb + QStringLiteral("/idProduct"), "6001\n");
        write(usb + QStringLiteral("/uevent"), "DEVTYPE=usb_device\n");
        write(interface + QStringLiteral("/uevent"), "DEVTYPE=usb_interface\n");
    }

    /// A port on the board.
    void addBoardPort(const QString& name)
    {
        addPort(name, QStringLiteral("/sys/devices/pci0000:00/0000:00:1e.0"),
                QStringLiteral("/sys/bus/pci/drivers/serial"));
    }

private:
    void addPort(const QString& name, const QString& device, const QString& driver)
    {
        const QString tty = device + QStringLiteral("/tty/") + name;
        QDir().mkpath(tty);
        write(tty + QStringLiteral("/uevent"),
              "MAJOR=188\nMINOR=" + QByteArray::number(m_minor) + "\nDEVNAME=" + name.toLatin1() + '\n');
        write(tty + QStringLiteral("/dev"), "188:" + QByteArray::number(m_minor++) + '\n');
        QFile::link(QStringLiteral("/sys/class/tty"), tty + QStringLiteral("/subsystem"));
        QFile::link(device, tty + QStringLiteral("/device"));
        QFile::link(driver, device + QStringLiteral("/driver"));
        write(device + QStringLiteral("/uevent"),
              "DRIVER=" + driver.section(QLatin1Char('/'), -1).toLatin1() + '\n');
        QFile::link(tty, QStringLiteral("/sys/class/tty/") + name);
    }

    static void write(const QString& fileName, const QByteArray& text)
    {
        QFile file(fileName);
        if (file.open(QIODevice::WriteOnly)) {
            file.write(text);
        }
    }

    bool m_mounted = false;
    int m_minor = 0;
};

} // namespace Tolvar::Varundo::Test

#endif
