#include "SimulatedDevices.h"

#include <CTolvarLibrary.h>

namespace Tolvar::Varundo::Simulator {

SimulatedDevices::SimulatedDevices()
{
    CTolvarLibrary::setReel(&m_reel);
    CTolvarLibrary::setRts(&m_rts);
    CTolvarLibrary::setCrawler(&m_crawler);
    CTolvarLibrary::setCamera(&m_camera);
    setPositionSensorPresent(true);
}

SimulatedDevices::~SimulatedDevices()
{
    CTolvarLibrary::setReel(nullptr);
    CTolvarLibrary::setRts(nullptr);
    CTolvarLibrary::setCrawler(nullptr);
    CTolvarLibrary::setCamera(nullptr);
    CTolvarLibrary::setCameraPositionSensor(nullptr);
}

void SimulatedDevices::setPositionSensorPresent(bool present)
{
    if (present == (m_positionSensor != nullptr)) {
        return;
    }
    CTolvarLibrary::setCameraPositionSensor(nullptr);
    m_positionSensor = present ? std::make_unique<SimulatedCameraPositionSensor>() : nullptr;
    CTolvarLibrary::setCameraPositionSensor(m_positionSensor.get());
}

void SimulatedDevices::announce()
{
    m_reel.announce();
    m_rts.announce();
    m_crawler.announce();
    m_camera.announce();
}

} // namespace Tolvar::Varundo::Simulator
