#ifndef TOLVAR_VARUNDO_TEST_CAUGHTLOG_H
#define TOLVAR_VARUNDO_TEST_CAUGHTLOG_H

#include <QStringList>
#include <QtGlobal>

#include <mutex>

namespace Tolvar::Varundo::Test {

/// Catches what the library's transports log at warning level and above while it exists, from whatever
/// thread. One at a time.
class CaughtLog
{
public:
    CaughtLog()
    {
        {
            const std::lock_guard<std::mutex> lock(mutex());
            texts().clear();
        }
        before() = qInstallMessageHandler(&CaughtLog::handle);
    }
    ~CaughtLog() { qInstallMessageHandler(before()); }
    CaughtLog(const CaughtLog&) = delete;
    CaughtLog& operator=(const CaughtLog&) = delete;

    [[nodiscard]] QStringList lines() const
    {
        const std::lock_guard<std::mutex> lock(mutex());
        return texts();
    }

private:
    static void handle(QtMsgType type, const QMessageLogContext& context, const QString& text)
    {
        if ((type == QtWarningMsg || type == QtCriticalMsg) &&
            qstrcmp(context.category, "varundo.transport") == 0) {
            const std::lock_guard<std::mutex> lock(mutex());
            texts().append(text);
        } else if (before()) {
            before()(type, context, text);
        }
    }
    static QtMessageHandler& before()
    {
        static QtMessageHandler handler = nullptr;
        return handler;
    }
    static std::mutex& mutex()
    {
        static std::mutex guard;
        return guard;
    }
    static QStringList& texts()
    {
        static QStringList caught;
        return caught;
    }
};

} // namespace Tolvar::Varundo::Test

#endif
