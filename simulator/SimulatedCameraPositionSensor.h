#ifndef TOLVAR_VARUNDO_SIMULATOR_SIMULATEDCAMERAPOSITIONSENSOR_H
#define TOLVAR_VARUNDO_SIMULATOR_SIMULATEDCAMERAPOSITIONSENSOR_H

#include <ITolvarCameraPositionSensor.h>

namespace Tolvar::Varundo::Simulator {

/// Tells where the camera is in space. GUI thread; owned by SimulatedDevices, which may be without one.
class SimulatedCameraPositionSensor final : public ITolvarCameraPositionSensor
{
    Q_OBJECT

public:
    explicit SimulatedCameraPositionSensor(QObject* parent = nullptr);

    Position3D position() const override { return m_position; }
    float angle() const override { return m_angle; }

    void setPosition(const Position3D& position) { m_position = position; }
    void setAngle(float degrees) { m_angle = degrees; }

private:
    Position3D m_position{0.0, 0.0, 0.0};
    float m_angle = 0.0F;
};

} // namespace Tolvar::Varundo::Simulator

#endif
