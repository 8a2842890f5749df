#ifndef TOLVAR_VARUNDO_SIMULATOR_SIMULATEDCRAWLER_H
#define TOLVAR_VARUNDO_SIMULATOR_SIMULATEDCRAWLER_H

#include <ITolvarCrawler.h>

namespace Tolvar::Varundo::Simulator {

/// The crawler that carries the camera. Every setter reports, also what has not changed. GUI thread; owned by
/// SimulatedDevices.
class SimulatedCrawler final : public ITolvarCrawler
{
    Q_OBJECT

public:
    explicit SimulatedCrawler(QObject* parent = nullptr);

    float crawlerPitch() const override { return m_pitch; }
    int temperature() const { return m_temperature; }
    int pressure() const { return m_pressure; }
    float roll() const { return m_roll; }

    void setPitch(float degrees);
    void setTemperature(int celsius);
    void setPressure(int pressure);
    void setRoll(float degrees);

    void announce(); ///< reports every reading as it stands

private:
    float m_pitch = 0.8F;
    float m_roll = -2.4F;
    int m_temperature = 31;
    int m_pressure = 1180;
};

} // namespace Tolvar::Varundo::Simulator

#endif
