#ifndef TOLVAR_VARUNDO_TEST_SIMULATORUNDERLOAD_H
#define TOLVAR_VARUNDO_TEST_SIMULATORUNDERLOAD_H

#include <QByteArray>
#include <QObject>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace Tolvar::Varundo::Test {

/// The simulator as a process of its own, with a serial line and a command door, and what can be seen of it
/// from outside.
class SimulatorUnderLoad final : public QObject
{
    Q_OBJECT

public:
    SimulatorUnderLoad();
    ~SimulatorUnderLoad() override;

    bool start(QString* error);
    /// Carried out at once; false, and noted among the complaints, if the unit did not say "ok".
    bool command(const QByteArray& line);
    int end(); ///< the exit status, or -1

    quint16 port() const { return m_port; }
    QString controllerDevice() const { return m_controllerDevice; }
    bool isRunning() const { return m_process.state() == QProcess::Running; }

    int residentKiB() const;
    int descriptors() const;
    int threads() const;

    /// What the unit said on its standard error that it should not have, and commands that failed.
    QStringList complaints();

private:
    QByteArray status(const char* field) const;

    QTemporaryDir m_dir;
    QProcess m_process;
    QString m_controllerDevice;
    QStringList m_complaints;
    quint16 m_port = 0;
};

} // namespace Tolvar::Varundo::Test

#endif
