#include "FakeSerialUnit.h"

#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace Tolvar::Varundo::Tests {

FakeSerialUnit::FakeSerialUnit()
    : m_line(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC))
{
    if (m_line < 0 || grantpt(m_line) != 0 || unlockpt(m_line) != 0) {
        qFatal("no pseudo-terminal");
    }
    m_device = QString::fromLocal8Bit(ptsname(m_line));
    m_otherEnd = open(m_device.toLocal8Bit().constData(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios settings = lineSettings();
    cfmakeraw(&settings);
    tcsetattr(m_line, TCSANOW, &settings);
    m_notifier = std::make_unique<QSocketNotifier>(m_line, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &FakeSerialUnit::read);
}

FakeSerialUnit::~FakeSerialUnit()
{
    FakeSerialUnit::hangUp();
    close(m_otherEnd);
}

termios FakeSerialUnit::lineSettings() const
{
    termios settings{};
    tcgetattr(m_line, &settings);
    return settings;
}

void FakeSerialUnit::say(const QByteArray& bytes)
{
    if (m_line >= 0 && write(m_line, bytes.constData(), static_cast<std::size_t>(bytes.size())) !=
                           static_cast<ssize_t>(bytes.size())) {
        qFatal("the line does not take %d bytes", bytes.size());
    }
}

void FakeSerialUnit::hangUp()
{
    if (m_line >= 0) {
        // The notifier may be the one that is being served.
        m_notifier->setEnabled(false);
        close(m_line);
        m_line = -1;
    }
}

void FakeSerialUnit::read()
{
    char block[4096];
    const ssize_t size = m_line >= 0 ? ::read(m_line, block, sizeof block) : 0;
    if (size > 0) {
        take(QByteArray(block, static_cast<int>(size)));
    }
}

} // namespace Tolvar::Varundo::Tests
