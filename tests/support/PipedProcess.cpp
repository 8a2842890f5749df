#include "PipedProcess.h"

#include <QElapsedTimer>
#include <QTest>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace Tolvar::Varundo::Test {

namespace {

/// Both ends are closed in the program by themselves; the one that it gets is duplicated onto its descriptor.
struct Pipe
{
    Pipe() { made = pipe2(ends.data(), O_CLOEXEC) == 0; }

    /// The end that stays here does not block.
    [[nodiscard]] int keep(int kept, int given) const
    {
        close(ends[static_cast<size_t>(given)]);
        fcntl(ends[static_cast<size_t>(kept)], F_SETFL, O_NONBLOCK);
        return ends[static_cast<size_t>(kept)];
    }

    std::array<int, 2> ends{-1, -1};
    bool made = false;
};

void closeEnd(int* end)
{
    if (*end >= 0) {
        close(*end);
        *end = -1;
    }
}

/// Takes what is there, and closes the end when nothing can follow.
void receive(int* end, QSocketNotifier* notifier, QByteArray* into)
{
    std::array<char, 4096> block{};
    while (*end >= 0) {
        const ssize_t count = read(*end, block.data(), block.size());
        if (count > 0) {
            into->append(block.data(), static_cast<int>(count));
        } else if (count == 0) {
            notifier->setEnabled(false);
            closeEnd(end);
        } else if (errno != EINTR) {
            return;
        }
    }
}

std::vector<char*> pointersTo(QList<QByteArray>* words)
{
    std::vector<char*> pointers;
    for (QByteArray& word : *words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

PipedProcess::PipedProcess()
{
    // A program that is gone is told by its end, not by killing the test that writes to it.
    std::signal(SIGPIPE, SIG_IGN);
    for (char** variable = environ; *variable; ++variable) {
        const QByteArray text(*variable);
        const int equals = text.indexOf('=');
        m_variables.insert(text.left(equals), text.mid(equals + 1));
    }
}

PipedProcess::~PipedProcess()
{
    if (isRunning()) {
        sendSignal(SIGKILL);
        waitpid(m_pid, nullptr, 0);
    }
    m_outputNotifier.reset();
    m_errorNotifier.reset();
    for (int* end : {&m_inputEnd, &m_outputEnd, &m_errorEnd}) {
        closeEnd(end);
    }
}

bool PipedProcess::start(const QString& program, const QStringList& arguments)
{
    QList<QByteArray> words{program.toLocal8Bit()};
    for (const QString& argument : arguments) {
        words.append(argument.toLocal8Bit());
    }
    QList<QByteArray> settings;
    for (auto variable = m_variables.cbegin(); variable != m_variables.cend(); ++variable) {
        settings.append(variable.key() + '=' + variable.value());
    }
    const Pipe input;
    const Pipe output;
    const Pipe errors;
    if (!input.made || !output.made || !errors.made) {
        return false;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input.ends[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output.ends[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, errors.ends[1], STDERR_FILENO);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t defaults;
    sigemptyset(&defaults);
    sigaddset(&defaults, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);

    m_ended = posix_spawn(&m_pid, words.constFirst().constData(), &actions, &attributes,
                          pointersTo(&words).data(), pointersTo(&settings).data()) != 0;
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    m_inputEnd = input.keep(1, 0);
    m_outputEnd = output.keep(0, 1);
    m_errorEnd = errors.keep(0, 1);
    m_outputNotifier = whenReadable(m_outputEnd);
    m_errorNotifier = whenReadable(m_errorEnd);
    return !m_ended;
}

bool PipedProcess::isRunning()
{
    noticeEnd();
    return !m_ended;
}

void PipedProcess::sendSignal(int number) const
{
    if (!m_ended) {
        kill(m_pid, number);
    }
}

bool PipedProcess::waitForEnd(int milliseconds)
{
    return QTest::qWaitFor(
        [this] {
            exchange();
            return !isRunning();
        },
        milliseconds);
}

void PipedProcess::write(const QByteArray& bytes)
{
    m_unsent += bytes;
    sendInput();
}

void PipedProcess::closeInput()
{
    m_closesInput = true;
    sendInput();
}

bool PipedProcess::waitForLine(int milliseconds)
{
    QElapsedTimer waiting;
    waiting.start();
    exchange();
    while (!m_output.contains('\n') && m_outputEnd >= 0 && !waiting.hasExpired(milliseconds)) {
        // An end that was closed has a negative number, which poll() passes over.
        std::array<pollfd, 3> ends{{{m_outputEnd, POLLIN, 0},
                                    {m_errorEnd, POLLIN, 0},
                                    {m_unsent.isEmpty() ? -1 : m_inputEnd, POLLOUT, 0}}};
        poll(ends.data(), ends.size(), 100);
        exchange();
    }
    return m_output.contains('\n');
}

QByteArray PipedProcess::readLine()
{
    exchange();
    const int length = m_output.indexOf('\n') + 1;
    QByteArray line = m_output.left(length);
    m_output.remove(0, length);
    return line;
}

QByteArray PipedProcess::readOutput()
{
    exchange();
    return std::exchange(m_output, {});
}

QByteArray PipedProcess::readErrors()
{
    exchange();
    return std::exchange(m_errors, {});
}

std::unique_ptr<QSocketNotifier> PipedProcess::whenReadable(int end)
{
    auto notifier = std::make_unique<QSocketNotifier>(end, QSocketNotifier::Read);
    QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(), [this] { exchange(); });
    return notifier;
}

void PipedProcess::exchange()
{
    sendInput();
    receive(&m_outputEnd, m_outputNotifier.get(), &m_output);
    receive(&m_errorEnd, m_errorNotifier.get(), &m_errors);
}

void PipedProcess::sendInput()
{
    if (m_inputEnd >= 0 && !m_unsent.isEmpty()) {
        const ssize_t count = ::write(m_inputEnd, m_unsent.constData(), static_cast<size_t>(m_unsent.size()));
        if (count > 0) {
            m_unsent.remove(0, static_cast<int>(count));
        } else if (count < 0 && errno == EPIPE) {
            m_unsent.clear();
        }
    }
    if (m_closesInput && m_unsent.isEmpty()) {
        closeEnd(&m_inputEnd);
    }
}

void PipedProcess::noticeEnd()
{
    int status = 0;
    if (!m_ended && waitpid(m_pid, &status, WNOHANG) == m_pid) {
        m_ended = true;
        m_exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
}

} // namespace Tolvar::Varundo::Test
