#ifndef TOLVAR_VARUNDO_ZELCTL_INTERRUPTWATCHER_H
#define TOLVAR_VARUNDO_ZELCTL_INTERRUPTWATCHER_H

#include <QObject>

#include <csignal>

class QSocketNotifier;

namespace Tolvar::Varundo::Zelctl {

/// While it exists, SIGINT and SIGTERM end nothing, but are told in the event loop. Main thread only, before
/// any other thread is started.
class InterruptWatcher : public QObject
{
    Q_OBJECT

public:
    explicit InterruptWatcher(QObject* parent = nullptr);
    ~InterruptWatcher() override;

    [[nodiscard]] bool isInterrupted() const { return m_interrupted; }

signals:
    void interrupted();

private:
    void take();

    sigset_t m_oldMask{};
    int m_descriptor = -1;
    QSocketNotifier* m_notifier = nullptr;
    bool m_interrupted = false;
};

} // namespace Tolvar::Varundo::Zelctl

#endif
