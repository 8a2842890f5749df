#ifndef TOLVAR_VARUNDO_SIMULATOR_BYTEPUMP_H
#define TOLVAR_VARUNDO_SIMULATOR_BYTEPUMP_H

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>

namespace Tolvar::Varundo::Simulator {

/// Carries bytes from one descriptor to another, in one direction. It takes no more while the other end does
/// not keep up, so that the sender has to wait as well. GUI thread; owned by the VirtualSerialLine, and must
/// not outlive the descriptors, neither of which may block.
class BytePump final : public QObject
{
    Q_OBJECT

public:
    static constexpr int MaxBytes = 4096; ///< under way here

    BytePump(int from, int to, QObject* parent = nullptr);
    explicit BytePump(int from, QObject* parent = nullptr); ///< throws away what comes

signals:
    void taken(); ///< some bytes have come

private:
    void take();
    void give();

    static constexpr int Nowhere = -1;

    int m_from;
    int m_to;
    QByteArray m_pending;
    QSocketNotifier m_readable;
    QSocketNotifier m_writable;
};

} // namespace Tolvar::Varundo::Simulator

#endif
