#include "UnixSignals.h"

#include <QSocketNotifier>

#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>

namespace Tolvar::Varundo::Simulator {

namespace {

sigset_t handledSignals()
{
    sigset_t handled;
    sigemptyset(&handled);
    sigaddset(&handled, SIGINT);
    sigaddset(&handled, SIGTERM);
    sigaddset(&handled, SIGUSR1);
    sigaddset(&handled, SIGUSR2);
    // Whoever was told to survive its terminal shall; blocked, the signal would come all the same.
    struct sigaction hangUp
    {};
    if (sigaction(SIGHUP, nullptr, &hangUp) == 0 && hangUp.sa_handler != SIG_IGN) {
        sigaddset(&handled, SIGHUP);
    }
    return handled;
}

} // namespace

void UnixSignals::block()
{
    const sigset_t handled = handledSignals();
    pthread_sigmask(SIG_BLOCK, &handled, nullptr);
}

UnixSignals::UnixSignals(QObject* parent)
    : QObject(parent)
{
    const sigset_t handled = handledSignals();
    m_descriptor = signalfd(-1, &handled, SFD_CLOEXEC | SFD_NONBLOCK);
    auto* const notifier = new QSocketNotifier(m_descriptor, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, &UnixSignals::readPending);
}

UnixSignals::~UnixSignals()
{
    close(m_descriptor);
}

void UnixSignals::readPending()
{
    signalfd_siginfo info{};
    while (read(m_descriptor, &info, sizeof info) == static_cast<ssize_t>(sizeof info)) {
        if (info.ssi_signo == SIGUSR1) {
            emit snapshotRequested();
        } else if (info.ssi_signo == SIGUSR2) {
            emit plugRequested();
        } else {
            emit endRequested();
        }
    }
}

} // namespace Tolvar::Varundo::Simulator
