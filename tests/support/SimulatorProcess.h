#ifndef TOLVAR_VARUNDO_TEST_SIMULATORPROCESS_H
#define TOLVAR_VARUNDO_TEST_SIMULATORPROCESS_H

#include "PipedProcess.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

namespace Tolvar::Varundo::Test {

/// The program itself, as its users start it: with settings and output files of its own, on a free port.
class SimulatorProcess
{
public:
    SimulatorProcess();
    ~SimulatorProcess();

    /// Waits for the ready line; false if the program ended or was silent instead.
    bool start(const QStringList& further = {});
    /// Runs the program to its end with these arguments alone.
    void run(const QStringList& arguments);
    void sendSignal(int number) const;
    /// One line to the program's standard input, under --control; its answer without the line's end.
    QString command(const QByteArray& line);
    void closeInput(const QByteArray& lastWords);
    /// Sends SIGTERM unless told otherwise, and waits; the exit status, or -1 after a crash.
    int end(int signalNumber);

    QString readyLine() const { return m_readyLine; }
    int port() const;
    QString controllerDevice() const; ///< the controller's end of the serial line; empty without one
    int exitStatus() const { return m_process.exitStatus(); }
    QString errors(); ///< all so far

    int residentKiB() const;
    int descriptors() const;
    int threads() const;
    QString output() { return QString::fromUtf8(m_process.readOutput()); }
    bool isRunning() { return m_process.isRunning(); }

    QString pictureFile() const { return m_dir.filePath(QStringLiteral("picture.png")); }
    QString stateFile() const { return m_dir.filePath(QStringLiteral("state.json")); }
    /// A file for the program to read; empty if it cannot be written.
    QString write(const QString& name, const QByteArray& content) const;
    QString settingsFile() const { return m_dir.filePath(QStringLiteral("settings.json")); }

    /// As the program wrote it on SIGUSR1 just now; empty if it did not.
    QJsonObject freshState();
    QJsonObject stateOnDisk() const;

private:
    QByteArray status(const char* field) const;

    QTemporaryDir m_dir;
    PipedProcess m_process;
    QString m_readyLine;
    QString m_errors;
};

} // namespace Tolvar::Varundo::Test

#endif
