#include "SimulatedRts.h"

namespace Tolvar::Varundo::Simulator {

SimulatedRts::SimulatedRts(QObject* parent)
    : ITolvarRts(parent)
{}

void SimulatedRts::setTemperature(float celsius)
{
    m_temperature = celsius;
    emit rtsTemperatureChanged(celsius);
}

void SimulatedRts::announce()
{
    setTemperature(m_temperature);
}

} // namespace Tolvar::Varundo::Simulator
