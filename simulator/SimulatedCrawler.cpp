#include "SimulatedCrawler.h"

namespace Tolvar::Varundo::Simulator {

SimulatedCrawler::SimulatedCrawler(QObject* parent)
    : ITolvarCrawler(parent)
{}

void SimulatedCrawler::setPitch(float degrees)
{
    m_pitch = degrees;
    emit crawlerPitchChanged();
}

void SimulatedCrawler::setTemperature(int celsius)
{
    m_temperature = celsius;
    emit crawlerTemperatureChanged(celsius);
}

void SimulatedCrawler::setPressure(int pressure)
{
    m_pressure = pressure;
    emit crawlerPressureChanged(pressure);
}

void SimulatedCrawler::setRoll(float degrees)
{
    m_roll = degrees;
    emit crawlerRollChanged(degrees);
}

void SimulatedCrawler::announce()
{
    setTemperature(m_temperature);
    setPressure(m_pressure);
    setRoll(m_roll);
    setPitch(m_pitch);
}

} // namespace Tolvar::Varundo::Simulator
