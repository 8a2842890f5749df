#ifndef TOLVAR_VARUNDO_SIMULATOR_SIMULATEDDEVICES_H
#define TOLVAR_VARUNDO_SIMULATOR_SIMULATEDDEVICES_H

#include "SimulatedCamera.h"
#include "SimulatedCameraPositionSensor.h"
#include "SimulatedCrawler.h"
#include "SimulatedReel.h"
#include "SimulatedRts.h"

#include <memory>

namespace Tolvar::Varundo::Simulator {

/// The unit's devices: what CTolvarLibrary gives out as long as this lives. Lives in the GUI thread; owned by
/// the SimulatedUnit, and made before its Runner, which looks for devices once.
class SimulatedDevices
{
public:
    SimulatedDevices();
    ~SimulatedDevices();
    Q_DISABLE_COPY_MOVE(SimulatedDevices)

    SimulatedReel& reel() { return m_reel; }
    const SimulatedReel& reel() const { return m_reel; }
    SimulatedRts& rts() { return m_rts; }
    const SimulatedRts& rts() const { return m_rts; }
    SimulatedCrawler& crawler() { return m_crawler; }
    const SimulatedCrawler& crawler() const { return m_crawler; }
    SimulatedCamera& camera() { return m_camera; }
    const SimulatedCamera& camera() const { return m_camera; }
    /// Null while the unit is without one.
    SimulatedCameraPositionSensor* positionSensor() { return m_positionSensor.get(); }
    const SimulatedCameraPositionSensor* positionSensor() const { return m_positionSensor.get(); }

    /// Puts a fresh position sensor in, if there is none, or takes it out.
    void setPositionSensorPresent(bool present);

    /// Every device reports what it reads: the library knows no reading that was not reported.
    void announce();

private:
    SimulatedReel m_reel;
    SimulatedRts m_rts;
    SimulatedCrawler m_crawler;
    SimulatedCamera m_camera;
    std::unique_ptr<SimulatedCameraPositionSensor> m_positionSensor;
};

} // namespace Tolvar::Varundo::Simulator

#endif
