#ifndef TOLVAR_VARUNDO_TEST_PROCESSFIGURES_H
#define TOLVAR_VARUNDO_TEST_PROCESSFIGURES_H

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QStringList>

namespace Tolvar::Varundo::Test {

/// One file of each thread of a process, for example its "comm" or "status".
inline QList<QByteArray> ofEachThread(const QString& file, const QString& process = QStringLiteral("self"))
{
    QList<QByteArray> contents;
    const QDir tasks(QStringLiteral("/proc/%1/task").arg(process));
    for (const QString& task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile of(tasks.filePath(task + QLatin1Char('/') + file));
        if (of.open(QIODevice::ReadOnly)) {
            contents.append(of.readAll().trimmed());
        }
    }
    return contents;
}

inline int threadCount()
{
    return ofEachThread(QStringLiteral("comm")).size();
}

/// The adaptors' threads. The kernel keeps fifteen characters of a name.
inline int watcherThreadCount()
{
    return ofEachThread(QStringLiteral("comm")).count(QByteArray("varundo-watcher").left(15));
}

} // namespace Tolvar::Varundo::Test

#endif
