#ifndef TOLVAR_VARUNDO_SIMULATOR_SIMULATEDREEL_H
#define TOLVAR_VARUNDO_SIMULATOR_SIMULATEDREEL_H

#include <ITolvarReel.h>

namespace Tolvar::Varundo::Simulator {

/// The cable reel. Its counters stand where they were put: the speed is only reported and moves none of them,
/// so that a counter reads back exactly what was written. GUI thread; owned by SimulatedDevices.
class SimulatedReel final : public ITolvarReel
{
    Q_OBJECT

public:
    explicit SimulatedReel(QObject* parent = nullptr);

    float sectionDistance() const override { return m_section; }
    float satDistance() const override { return m_sat; }
    float totalDistance() const override { return m_total; }
    float speed() const { return m_speed; }

    void setSectionDistance(float metres) { m_section = metres; }
    void setSatDistance(float metres) { m_sat = metres; }
    void setTotalDistance(float metres) { m_total = metres; }
    void setSpeed(float speed);

    void announce(); ///< reports every reading as it stands

private:
    float m_section = 12.5F;
    float m_sat = 0.0F;
    float m_total = 148.75F;
    float m_speed = 0.0F;
};

} // namespace Tolvar::Varundo::Simulator

#endif
