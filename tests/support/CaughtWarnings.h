#ifndef TOLVAR_VARUNDO_TEST_CAUGHTWARNINGS_H
#define TOLVAR_VARUNDO_TEST_CAUGHTWARNINGS_H

#include <QStringList>
#include <QtGlobal>

namespace Tolvar::Varundo::Test {

/// Catches what is logged at warning level and above while it exists. One at a time.
class CaughtWarnings
{
public:
    CaughtWarnings()
    {
        texts().clear();
        m_before = qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
            if (type != QtDebugMsg && type != QtInfoMsg) {
                texts().append(text);
            }
        });
    }
    ~CaughtWarnings() { qInstallMessageHandler(m_before); }
    CaughtWarnings(const CaughtWarnings&) = delete;
    CaughtWarnings& operator=(const CaughtWarnings&) = delete;

    [[nodiscard]] static QStringList& texts()
    {
        static QStringList caught;
        return caught;
    }

private:
    QtMessageHandler m_before = nullptr;
};

} // namespace Tolvar::Varundo::Test

#endif
