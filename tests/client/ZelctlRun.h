#ifndef TOLVAR_VARUNDO_TESTS_ZELCTLRUN_H
#define TOLVAR_VARUNDO_TESTS_ZELCTLRUN_H

#include "PipedProcess.h"

#include <QByteArray>
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
    Test::PipedProcess process;
    if (!process.start(QStringLiteral(ZELCTL_PROGRAM), words)) {
        return {-1, QString(), QStringLiteral("did not start")};
    }
    process.write(input);
    process.closeInput();
    if (!process.waitForEnd(ZelctlRun::Timeout)) {
        return {-1, QString(), QStringLiteral("did not end")};
    }
    return {process.exitStatus(), QString::fromUtf8(process.readOutput()),
            QString::fromUtf8(process.readErrors())};
}

} // namespace Tolvar::Varundo::Tests

#endif
