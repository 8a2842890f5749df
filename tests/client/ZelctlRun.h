#ifndef TOLVAR_VARUNDO_TESTS_ZELCTLRUN_H
#define TOLVAR_VARUNDO_TESTS_ZELCTLRUN_H

#include <QByteArray>
#include <QProcess>
#include <QSignalSpy>
#include <QString>
#include <QStringList>

namespace Tolvar::Varundo::Tests {

/// What came of running the program once.
struct ZelctlRun
{
    static constexpr int Timeout = 20000; ///< milliseconds

    int status = -1;
    QString out;
    QString err;
};

/// Runs the program to its end, in an event loop, so that the unit that it talks to may live in this thread.
inline ZelctlRun runZelctl(const QStringList& words, const QByteArray& input = QByteArray())
{
    qRegisterMetaType<QProcess::ExitStatus>();
    QProcess process;
    QSignalSpy finished(&process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished));
    process.start(QStringLiteral(ZELCTL_PROGRAM), words);
    process.write(input);
    process.closeWriteChannel();
    if (finished.isEmpty() && !finished.wait(ZelctlRun::Timeout)) {
        process.kill();
        process.waitForFinished();
        return {-1, QString(), QStringLiteral("did not end")};
    }
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

} // namespace Tolvar::Varundo::Tests

#endif
