#ifndef TOLVAR_VARUNDO_SIMULATOR_PSEUDOTERMINAL_H
#define TOLVAR_VARUNDO_SIMULATOR_PSEUDOTERMINAL_H

#include <QString>

namespace Tolvar::Varundo::Simulator {

/// A pseudo-terminal that passes bytes as they are. Its device end is also held open here: without that, the
/// master's end would report a hang-up without end whenever nobody else has the device open. Hangs up when it
/// is destroyed. Owned by the VirtualSerialLine.
class PseudoTerminal
{
public:
    PseudoTerminal();
    ~PseudoTerminal();
    Q_DISABLE_COPY_MOVE(PseudoTerminal)

    bool isOpen() const { return m_device >= 0; }
    QString error() const { return m_error; } ///< why it is not open

    int master() const { return m_master; } ///< does not block
    const QString& deviceName() const { return m_deviceName; }

    /// A program that was killed leaves its claim on the device behind; others may use it again after this.
    void liftClaim() const;

private:
    bool open();

    int m_master = -1;
    int m_device = -1;
    QString m_deviceName;
    QString m_error;
};

} // namespace Tolvar::Varundo::Simulator

#endif
