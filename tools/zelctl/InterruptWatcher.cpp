#include "InterruptWatcher.h"

#include <QSocketNotifier>

#include <sys/signalfd.h>
#include <unistd.h>

namespace Tolvar::Varundo::Zelctl {

InterruptWatcher::InterruptWatcher(QObject* parent)
    : QObject(parent)
{
    sigset_t mask;
    sigemptyset(&mask);
    sigaddset(&mask, SIGINT);
    sigaddset(&mask, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &mask, &m_oldMask);
    m_descriptor = signalfd(-1, &mask, SFD_NONBLOCK | SFD_CLOEXEC);
    if (m_descriptor < 0) {
        pthread_sigmask(SIG_SETMASK, &m_oldMask, nullptr); // then they end the program, as ever
        return;
    }
    m_notifier = new QSocketNotifier(m_descriptor, QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &InterruptWatcher::take);
}

InterruptWatcher::~InterruptWatcher()
{
    if (m_descriptor >= 0) {
        delete m_notifier;
        take(); // a signal that is still pending would end the program as soon as the mask is lifted
        close(m_descriptor);
        pthread_sigmask(SIG_SETMASK, &m_oldMask, nullptr);
    }
}

void InterruptWatcher::take()
{
    signalfd_siginfo info;
    while (read(m_descriptor, &info, sizeof info) == static_cast<ssize_t>(sizeof info)) {
        m_interrupted = true;
    }
    if (m_interrupted) {
        emit interrupted();
    }
}

} // namespace Tolvar::Varundo::Zelctl
