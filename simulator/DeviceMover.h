#ifndef TOLVAR_VARUNDO_SIMULATOR_DEVICEMOVER_H
#define TOLVAR_VARUNDO_SIMULATOR_DEVICEMOVER_H

#include "DeviceScript.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

namespace Tolvar::Varundo::Simulator {

class SimulatedDevices;

/// Moves the devices as a script says. A step that comes late does not make the following ones late. GUI
/// thread; owned by main(), and must not outlive the devices.
class DeviceMover final : public QObject
{
    Q_OBJECT

public:
    DeviceMover(DeviceScript script, SimulatedDevices& devices, QObject* parent = nullptr);

    void start(); ///< the script's time is 0 now

private:
    void makeDueSteps();
    void startNextRound();
    void waitForNextStep();

    DeviceScript m_script;
    SimulatedDevices& m_devices;
    QTimer m_timer;
    QElapsedTimer m_clock;
    qint64 m_roundStartMs = 0;
    int m_next = 0;
};

} // namespace Tolvar::Varundo::Simulator

#endif
