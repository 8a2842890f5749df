#ifndef TOLVAR_VARUNDO_TEST_FAIRTIMES_H
#define TOLVAR_VARUNDO_TEST_FAIRTIMES_H

#include <QHash>
#include <QString>
#include <QStringList>

#include <utility>

namespace Tolvar::Varundo::Test {

/// The times in which a road is left alone after something that had disturbed it, and whether it was served
/// in each of them. A count over the whole run would not tell a road that died half-way.
class FairTimes
{
public:
    static constexpr qint64 ShortestMs = 2000; ///< a shorter one, at the end of a run, decides nothing

    explicit FairTimes(QString road)
        : m_road(std::move(road))
    {}

    /// The road has settled; done: requests so far.
    void begin(const QString& cause, qint64 done, qint64 ms)
    {
        m_cause = cause;
        m_doneAtBegin = done;
        m_beginMs = ms;
        ++m_begun[cause];
    }

    /// Whatever disturbs the road next; changes nothing when it is being disturbed already.
    void end(qint64 done, qint64 ms)
    {
        const QString cause = std::exchange(m_cause, QString());
        if (cause.isEmpty() || ms - m_beginMs < ShortestMs) {
            return;
        }
        ++m_judged[cause];
        if (done <= m_doneAtBegin) {
            m_faults.append(QStringLiteral("the %1 road was not served after %2 %3")
                                .arg(m_road, cause)
                                .arg(m_begun[cause]));
        }
    }

    int judged(const QString& cause) const { return m_judged.value(cause); }

    /// Also those that nothing can be said of.
    QStringList faults(const QStringList& wanted) const
    {
        QStringList all = m_faults;
        for (const QString& cause : wanted) {
            if (judged(cause) == 0) {
                all.append(QStringLiteral("the %1 road was never judged after a %2").arg(m_road, cause));
            }
        }
        return all;
    }

private:
    QString m_road;
    QString m_cause; // empty while the road is disturbed
    qint64 m_doneAtBegin = 0;
    qint64 m_beginMs = 0;
    QHash<QString, int> m_begun;
    QHash<QString, int> m_judged;
    QStringList m_faults;
};

} // namespace Tolvar::Varundo::Test

#endif
