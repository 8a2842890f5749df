#ifndef TOLVAR_VARUNDO_SIMULATOR_SIMULATEDRTS_H
#define TOLVAR_VARUNDO_SIMULATOR_SIMULATEDRTS_H

#include <ITolvarRts.h>

namespace Tolvar::Varundo::Simulator {

/// The RTS sensor, which measures the temperature outside the unit. GUI thread; owned by SimulatedDevices.
class SimulatedRts final : public ITolvarRts
{
    Q_OBJECT

public:
    explicit SimulatedRts(QObject* parent = nullptr);

    float temperature() const { return m_temperature; }
    void setTemperature(float celsius);

    void announce(); ///< reports every reading as it stands

private:
    float m_temperature = 14.5F;
};

} // namespace Tolvar::Varundo::Simulator

#endif
