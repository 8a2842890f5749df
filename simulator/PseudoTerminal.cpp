#include "PseudoTerminal.h"

#include <QFile>

#include <cstdlib>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace Tolvar::Varundo::Simulator {

PseudoTerminal::PseudoTerminal()
{
    if (!open()) {
        m_error = QStringLiteral("cannot make a pseudo-terminal: ") + qt_error_string();
    }
}

PseudoTerminal::~PseudoTerminal()
{
    for (const int descriptor : {m_device, m_master}) {
        if (descriptor >= 0) {
            close(descriptor);
        }
    }
}

void PseudoTerminal::liftClaim() const
{
    ioctl(m_device, TIOCNXCL);
}

bool PseudoTerminal::open()
{
    m_master = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (m_master < 0 || grantpt(m_master) != 0 || unlockpt(m_master) != 0) {
        return false;
    }
    char name[64];
    if (ptsname_r(m_master, name, sizeof name) != 0) {
        return false;
    }
    m_device = ::open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (m_device < 0) {
        return false;
    }
    termios settings{};
    tcgetattr(m_device, &settings);
    cfmakeraw(&settings);
    tcsetattr(m_device, TCSANOW, &settings);
    m_deviceName = QFile::decodeName(name);
    return true;
}

} // namespace Tolvar::Varundo::Simulator
