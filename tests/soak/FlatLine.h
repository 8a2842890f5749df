#ifndef TOLVAR_VARUNDO_TEST_FLATLINE_H
#define TOLVAR_VARUNDO_TEST_FLATLINE_H

#include <QPointF>
#include <QVector>

#include <algorithm>

namespace Tolvar::Varundo::Test {

/// How fast a figure grew over the last half of its samples: the slope of the line that fits them best.
/// x: seconds, y: the figure.
class FlatLine
{
public:
    void add(double seconds, double figure) { m_samples.append({seconds, figure}); }

    double slope() const
    {
        const QVector<QPointF> half = m_samples.mid(m_samples.size() / 2);
        QPointF mean;
        for (const QPointF& sample : half) {
            mean += sample / half.size();
        }
        double together = 0;
        double alone = 0;
        for (const QPointF& sample : half) {
            const QPointF off = sample - mean;
            together += off.x() * off.y();
            alone += off.x() * off.x();
        }
        return alone > 0 ? together / alone : 0;
    }

    /// What the slope may be where steps of the noise's height mean nothing: more than wanted in a run that
    /// is too short to tell the two apart.
    double bound(double wanted, double noise) const
    {
        return std::max(wanted, noise / std::max(1.0, span() / 2));
    }
    static constexpr double decidingSeconds(double wanted, double noise) { return 2 * noise / wanted; }

    double span() const { return m_samples.isEmpty() ? 0 : m_samples.last().x() - m_samples.first().x(); }
    double highestOfFirstHalf() const { return highest(m_samples.mid(0, m_samples.size() / 2)); }
    double highestOfLastHalf() const { return highest(m_samples.mid(m_samples.size() / 2)); }

private:
    static double highest(const QVector<QPointF>& samples)
    {
        double found = 0;
        for (const QPointF& sample : samples) {
            found = std::max(found, sample.y());
        }
        return found;
    }

    QVector<QPointF> m_samples;
};

} // namespace Tolvar::Varundo::Test

#endif
