#ifndef TOLVAR_VARUNDO_TEST_FAIRTIMES_H
#define TOLVAR_VARUNDO_TEST_FAIRTIMES_H

#include <QMap>
#include <QString>
#include <QStringList>

#include <initializer_list>
#include <utility>

namespace Tolvar::Varundo::Test {

/// The times in which a road is left alone after something that had disturbed it, and whether it was served
/// in each of them. A count over the whole run would not tell a road that died half-way.
class FairTimes
{
public:
    enum class Cause {
        None, // the road is disturbed
        Switch,
        Pull,
    };

    static constexpr qint64 ShortestMs = 2000; ///< a shorter one, at the end of a run, decides nothing

    explicit FairTimes(QString road)
        : m_road(std::move(road))
    {}

    /// The road has settled; done: requests so far.
    void begin(Cause cause, qint64 done, qint64 ms)
    {
        m_cause = cause;
        m_doneAtBegin = done;
        m_beginMs = ms;
        ++m_begun[cause];
    }

    /// Whatever disturbs the road next; changes nothing when it is being disturbed already.
    void end(qint64 done, qint64 ms)
    {
        const Cause cause = std::exchange(m_cause, Cause::None);
        if (cause == Cause::None || ms - m_beginMs < ShortestMs) {
            return;
        }
        ++m_judged[cause];
        if (done <= m_doneAtBegin) {
            m_faults.append(QStringLiteral("the %1 road was not served after %2 %3")
                                .arg(m_road, nameOf(cause))
                                .arg(m_begun[cause]));
        }
    }

    int judged(Cause cause) const { return m_judged.value(cause); }

    /// Also those that nothing can be said of.
    QStringList faults(std::initializer_list<Cause> wanted) const
    {
        QStringList all = m_faults;
        for (const Cause cause : wanted) {
            if (judged(cause) == 0) {
                all.append(
                    QStringLiteral("the %1 road was never judged after a %2").arg(m_road, nameOf(cause)));
            }
        }
        return all;
    }

private:
    static QString nameOf(Cause cause)
    {
        return cause == Cause::Pull ? QStringLiteral("pull") : QStringLiteral("switch");
    }

    QString m_road;
    Cause m_cause = Cause::None;
    qint64 m_doneAtBegin = 0;
    qint64 m_beginMs = 0;
    QMap<Cause, int> m_begun;
    QMap<Cause, int> m_judged;
    QStringList m_faults;
};

} // namespace Tolvar::Varundo::Test

#endif
