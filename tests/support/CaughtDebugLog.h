#ifndef TOLVAR_VARUNDO_TEST_CAUGHTDEBUGLOG_H
#define TOLVAR_VARUNDO_TEST_CAUGHTDEBUGLOG_H

#include <QLoggingCategory>
#include <QStringList>
#include <QtGlobal>

namespace Tolvar::Varundo::Test {

/// Switches a category's debug log on, which is off otherwise, and catches everything that is logged while it
/// exists. One at a time.
class CaughtDebugLog
{
public:
    explicit CaughtDebugLog(const char* category)
    {
        QLoggingCategory::setFilterRules(QLatin1String(category) + QStringLiteral(".debug=true"));
        lines().clear();
        m_before = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext&, const QString& text) { lines().append(text); });
    }
    ~CaughtDebugLog()
    {
        qInstallMessageHandler(m_before);
        QLoggingCategory::setFilterRules(QString());
    }
    CaughtDebugLog(const CaughtDebugLog&) = delete;
    CaughtDebugLog& operator=(const CaughtDebugLog&) = delete;

    [[nodiscard]] static QStringList& lines()
    {
        static QStringList caught;
        return caught;
    }

private:
    QtMessageHandler m_before;
};

} // namespace Tolvar::Varundo::Test

#endif
