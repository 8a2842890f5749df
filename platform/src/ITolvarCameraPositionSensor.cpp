#include <ITolvarCameraPositionSensor.h>

ITolvarCameraPositionSensor::ITolvarCameraPositionSensor(QObject* parent)
    : QObject(parent)
{}

ITolvarCameraPositionSensor::~ITolvarCameraPositionSensor() = default;
