#include "SimulatedCamera.h"

namespace Tolvar::Varundo::Simulator {

SimulatedCamera::SimulatedCamera(QObject* parent)
    : ITolvarCamera(parent)
{}

void SimulatedCamera::laserCalibration(double& first, double& second) const
{
    first = m_firstLaser;
    second = m_secondLaser;
}

void SimulatedCamera::setLaserCalibration(double first, double second)
{
    m_firstLaser = first;
    m_secondLaser = second;
}

void SimulatedCamera::setPan(short degrees)
{
    m_pan = degrees;
    emit panPositionChanged(degrees);
}

void SimulatedCamera::setTilt(short degrees)
{
    m_tilt = degrees;
    emit tiltPositionChanged(degrees);
}

void SimulatedCamera::setTemperature(int celsius)
{
    m_temperature = celsius;
    emit cameraTemperatureChanged(celsius);
}

void SimulatedCamera::setPressure(int pressure)
{
    m_pressure = pressure;
    emit cameraPressureChanged(pressure);
}

void SimulatedCamera::announce()
{
    setPan(m_pan);
    setTilt(m_tilt);
    setTemperature(m_temperature);
    setPressure(m_pressure);
}

} // namespace Tolvar::Varundo::Simulator
