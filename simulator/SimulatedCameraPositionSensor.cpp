#include "SimulatedCameraPositionSensor.h"

namespace Tolvar::Varundo::Simulator {

SimulatedCameraPositionSensor::SimulatedCameraPositionSensor(QObject* parent)
    : ITolvarCameraPositionSensor(parent)
{}

} // namespace Tolvar::Varundo::Simulator
