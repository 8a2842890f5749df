#ifndef TOLVAR_VARUNDO_TEST_PIPEDPROCESS_H
#define TOLVAR_VARUNDO_TEST_PIPEDPROCESS_H

#include <QByteArray>
#include <QMap>
#include <QSocketNotifier>
#include <QString>
#include <QStringList>

#include <memory>
#include <sys/types.h>

namespace Tolvar::Varundo::Test {

/// A program whose input and output are in the test's hands. It is started with posix_spawn(), which also
/// works where programs of another processor run in an emulator; QProcess does not work there. Killed when
/// this object goes, if it has not ended by then.
///
/// Only waitForEnd() runs the event loop meanwhile, for what the program talks to may live in the test's
/// thread.
class PipedProcess
{
public:
    PipedProcess();
    ~PipedProcess();
    PipedProcess(const PipedProcess&) = delete;
    PipedProcess& operator=(const PipedProcess&) = delete;

    void setVariable(const QByteArray& name, const QByteArray& value) { m_variables.insert(name, value); }
    void removeVariable(const QByteArray& name) { m_variables.remove(name); }

    bool start(const QString& program, const QStringList& arguments);
    [[nodiscard]] bool isRunning();
    [[nodiscard]] pid_t id() const { return m_pid; }
    void sendSignal(int number) const;
    bool waitForEnd(int milliseconds);
    [[nodiscard]] int exitStatus() const { return m_exitStatus; } ///< -1 before the end and after a crash

    void write(const QByteArray& bytes);
    void closeInput(); ///< once all that was written is through

    bool waitForLine(int milliseconds); ///< false at the end of the output, too
    QByteArray readLine();              ///< with its line feed; empty without a whole line
    QByteArray readOutput();
    QByteArray readErrors();

private:
    std::unique_ptr<QSocketNotifier> whenReadable(int end);
    void exchange();
    void sendInput();
    void noticeEnd();

    QMap<QByteArray, QByteArray> m_variables;
    pid_t m_pid = -1;
    int m_exitStatus = -1;
    bool m_ended = true;
    bool m_closesInput = false;
    int m_inputEnd = -1;
    int m_outputEnd = -1;
    int m_errorEnd = -1;
    std::unique_ptr<QSocketNotifier> m_outputNotifier;
    std::unique_ptr<QSocketNotifier> m_errorNotifier;
    QByteArray m_unsent;
    QByteArray m_output;
    QByteArray m_errors;
};

} // namespace Tolvar::Varundo::Test

#endif
