#include "DeviceMover.h"

#include "SimulatedDevices.h"

#include <utility>

namespace Tolvar::Varundo::Simulator {

DeviceMover::DeviceMover(DeviceScript script, SimulatedDevices& devices, QObject* parent)
    : QObject(parent)
    , m_script(std::move(script))
    , m_devices(devices)
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer); // others are off by a twentieth, which is seconds in a long pause
    connect(&m_timer, &QTimer::timeout, this, &DeviceMover::makeDueSteps);
}

void DeviceMover::start()
{
    m_clock.start();
    m_roundStartMs = 0;
    m_next = 0;
    waitForNextStep();
}

void DeviceMover::makeDueSteps()
{
    const qint64 now = m_clock.elapsed() - m_roundStartMs;
    const auto& steps = m_script.steps();
    while (m_next < steps.size() && steps.at(m_next).atMs <= now) {
        steps.at(m_next++).settings.applyTo(m_devices);
    }
    if (m_next == steps.size()) {
        if (!m_script.repeats()) {
            return;
        }
        startNextRound();
    }
    waitForNextStep();
}

/// From the moment at which the last step was due. Rounds that a stopped process has missed are not made up
/// for: nobody wants to see an hour's movement in a moment.
void DeviceMover::startNextRound()
{
    const qint64 round = m_script.steps().constLast().atMs;
    const qint64 now = m_clock.elapsed();
    m_roundStartMs += round;
    if (now - m_roundStartMs >= round) {
        m_roundStartMs = now;
    }
    m_next = 0;
}

void DeviceMover::waitForNextStep()
{
    const qint64 due = m_roundStartMs + m_script.steps().at(m_next).atMs;
    m_timer.start(static_cast<int>(qMax<qint64>(due - m_clock.elapsed(), 0)));
}

} // namespace Tolvar::Varundo::Simulator
