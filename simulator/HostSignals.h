#ifndef TOLVAR_VARUNDO_SIMULATOR_HOSTSIGNALS_H
#define TOLVAR_VARUNDO_SIMULATOR_HOSTSIGNALS_H

#include <QJsonArray>
#include <QObject>
#include <QString>
#include <QVector>

namespace Tolvar::Varundo {
class Runner;
} // namespace Tolvar::Varundo

namespace Tolvar::Varundo::Simulator {

/// Keeps what the Runner told its host, so that a controller's developer sees what arrived. GUI thread; owned
/// by the SimulatedUnit.
class HostSignals final : public QObject
{
    Q_OBJECT

public:
    /// Controllers may send for months; so many of the newest are kept.
    static constexpr int MaxEntries = 200;

    struct Entry
    {
        QString name; ///< the signal's own name
        QJsonArray arguments;
    };

    /// The Runner is only listened to; it may go first.
    explicit HostSignals(const Runner& runner, QObject* parent = nullptr);

    const QVector<Entry>& entries() const { return m_entries; } ///< newest last

private:
    void record(const QString& name, const QJsonArray& arguments = {});

    QVector<Entry> m_entries;
};

} // namespace Tolvar::Varundo::Simulator

#endif
