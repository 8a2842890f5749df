#include "SimulatedReel.h"

namespace Tolvar::Varundo::Simulator {

SimulatedReel::SimulatedReel(QObject* parent)
    : ITolvarReel(parent)
{}

void SimulatedReel::setSpeed(float speed)
{
    m_speed = speed;
    emit calculatedReelSpeedChanged(speed);
}

void SimulatedReel::announce()
{
    setSpeed(m_speed);
}

} // namespace Tolvar::Varundo::Simulator
