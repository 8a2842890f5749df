#ifndef TOLVAR_VARUNDO_TEST_CHILDPROCESS_H
#define TOLVAR_VARUNDO_TEST_CHILDPROCESS_H

#include <QByteArray>
#include <QList>

#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace Tolvar::Varundo::Test {

/// A program that runs beside the test, without the event loop's help. What it prints is thrown away. Ended
/// when this object goes, if it has not ended by then.
class ChildProcess
{
public:
    explicit ChildProcess(QList<QByteArray> command)
    {
        std::vector<char*> arguments;
        for (QByteArray& argument : command) {
            arguments.push_back(argument.data());
        }
        arguments.push_back(nullptr);
        posix_spawn_file_actions_t output;
        posix_spawn_file_actions_init(&output);
        posix_spawn_file_actions_addopen(&output, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addopen(&output, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        if (posix_spawn(&m_pid, arguments.front(), &output, nullptr, arguments.data(), environ) != 0) {
            m_pid = -1;
        }
        posix_spawn_file_actions_destroy(&output);
    }
    ~ChildProcess()
    {
        if (isStarted() && !m_ended) {
            kill(m_pid, SIGKILL);
            waitForEnd();
        }
    }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    [[nodiscard]] bool isStarted() const { return m_pid > 0; }
    [[nodiscard]] pid_t id() const { return m_pid; }

    /// How it ended: "exit 0", "signal 11", ...
    QByteArray waitForEnd()
    {
        int status = 0;
        if (!isStarted() || waitpid(m_pid, &status, 0) != m_pid) {
            return "not run";
        }
        m_ended = true;
        return WIFEXITED(status) ? "exit " + QByteArray::number(WEXITSTATUS(status))
                                 : "signal " + QByteArray::number(WTERMSIG(status));
    }

private:
    pid_t m_pid = -1;
    bool m_ended = false;
};

} // namespace Tolvar::Varundo::Test

#endif
