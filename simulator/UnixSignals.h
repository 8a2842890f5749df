#ifndef TOLVAR_VARUNDO_SIMULATOR_UNIXSIGNALS_H
#define TOLVAR_VARUNDO_SIMULATOR_UNIXSIGNALS_H

#include <QObject>

namespace Tolvar::Varundo::Simulator {

/// Turns the signals of the system into Qt's. GUI thread; owned by main().
class UnixSignals final : public QObject
{
    Q_OBJECT

public:
    /// To be called before there is any other thread: from then on signals wait until they are asked for.
    static void block();

    explicit UnixSignals(QObject* parent = nullptr);
    ~UnixSignals() override;

signals:
    void endRequested();      ///< SIGINT or SIGTERM, or the terminal was closed
    void snapshotRequested(); ///< SIGUSR1
    void plugRequested();     ///< SIGUSR2: in if it is out, out if it is in

private:
    void readPending();

    int m_descriptor;
};

} // namespace Tolvar::Varundo::Simulator

#endif
