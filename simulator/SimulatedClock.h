#ifndef TOLVAR_VARUNDO_SIMULATOR_SIMULATEDCLOCK_H
#define TOLVAR_VARUNDO_SIMULATOR_SIMULATEDCLOCK_H

#include <Mavril/SystemClock.h>

#include <QDateTime>
#include <QElapsedTimer>
#include <QTime>

#include <optional>

namespace Tolvar::Varundo::Simulator {

/// The unit's clock: what a controller sets, and what the picture's date and time are drawn from. It runs on
/// from where it was set; the machine's own clock is left alone.
///
/// Lives in the GUI thread; owned by the SimulatedUnit. It is the installed clock as long as it lives.
class SimulatedClock final : public Mavril::SystemClock
{
public:
    /// The drawn clock starts there; with an invalid one, at the machine's time.
    explicit SimulatedClock(const QDateTime& start = {});
    ~SimulatedClock() override;
    Q_DISABLE_COPY_MOVE(SimulatedClock)

    void setDateTime(const QDateTime& dateTime) override;
    void setTime(const QTime& time) override;

    QDateTime now() const; ///< as drawn

    // What the clock was told last, invalid values included; nothing if it was never told.
    const std::optional<QDateTime>& toldDateTime() const { return m_toldDateTime; }
    const std::optional<QTime>& toldTime() const { return m_toldTime; }

private:
    void runFrom(const QDateTime& start);

    QDateTime m_start;
    QElapsedTimer m_sinceStart;
    std::optional<QDateTime> m_toldDateTime;
    std::optional<QTime> m_toldTime;
};

} // namespace Tolvar::Varundo::Simulator

#endif
