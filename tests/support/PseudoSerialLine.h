#ifndef TOLVAR_VARUNDO_TEST_PSEUDOSERIALLINE_H
#define TOLVAR_VARUNDO_TEST_PSEUDOSERIALLINE_H

#include <QByteArray>
#include <QFile>
#include <QString>

#include <cstdlib>
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

namespace Tolvar::Varundo::Test {

/// A serial adapter with its line and the controller's end of it: a pseudo-terminal that is linked under an
/// adapter's name in /dev. Only for programs with a /dev of their own.
class PseudoSerialLine
{
public:
    explicit PseudoSerialLine(const char* name)
        : m_node(QStringLiteral("/dev/") + QLatin1String(name))
        , m_controller(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK))
    {
        if (m_controller >= 0 && grantpt(m_controller) == 0 && unlockpt(m_controller) == 0) {
            const QString device = QString::fromLocal8Bit(ptsname(m_controller));
            // Held open, so that the line outlives an adaptor that closes its end.
            m_otherEnd = ::open(device.toLocal8Bit().constData(), O_RDWR | O_NOCTTY | O_CLOEXEC);
            termios settings = lineSettings();
            cfmakeraw(&settings);
            tcsetattr(m_controller, TCSANOW, &settings);
            m_plugged = m_otherEnd >= 0 && QFile::link(device, m_node);
        }
    }
    ~PseudoSerialLine()
    {
        unplug();
        ::close(m_otherEnd);
        ::close(m_controller);
    }
    PseudoSerialLine(const PseudoSerialLine&) = delete;
    PseudoSerialLine& operator=(const PseudoSerialLine&) = delete;

    [[nodiscard]] bool isPlugged() const { return m_plugged; }
    /// Takes the node away, as udev does; the line itself stays.
    void unplug()
    {
        if (m_plugged) {
            QFile::remove(m_node);
            m_plugged = false;
        }
    }

    /// False if the line did not take all of it.
    bool send(const QByteArray& bytes)
    {
        return ::write(m_controller, bytes.constData(), static_cast<std::size_t>(bytes.size())) ==
               bytes.size();
    }
    bool sendHex(const char* digits) { return send(QByteArray::fromHex(digits)); }

    /// All that the adaptor has sent so far.
    [[nodiscard]] const QByteArray& received()
    {
        char block[4096];
        for (ssize_t size = 0; (size = ::read(m_controller, block, sizeof(block))) > 0;) {
            m_received.append(block, static_cast<int>(size));
        }
        return m_received;
    }
    [[nodiscard]] QByteArray receivedHex() { return received().toHex(); }

    [[nodiscard]] termios lineSettings() const
    {
        termios settings{};
        tcgetattr(m_controller, &settings);
        return settings;
    }

private:
    QString m_node;
    int m_controller = -1;
    int m_otherEnd = -1;
    bool m_plugged = false;
    QByteArray m_received;
};

} // namespace Tolvar::Varundo::Test

#endif
