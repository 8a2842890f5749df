// The devices' interfaces have little to define: what they report, a unit's own classes say.

#include <ITolvarCamera.h>
#include <ITolvarCameraPositionSensor.h>
#include <ITolvarCrawler.h>
#include <ITolvarReel.h>
#include <ITolvarRts.h>

ITolvarReel::ITolvarReel(QObject* parent)
    : QObject(parent)
{}

ITolvarReel::~ITolvarReel() = default;

ITolvarRts::ITolvarRts(QObject* parent)
    : QObject(parent)
{}

ITolvarRts::~ITolvarRts() = default;

ITolvarCrawler::ITolvarCrawler(QObject* parent)
    : QObject(parent)
{}

ITolvarCrawler::~ITolvarCrawler() = default;

ITolvarCamera::ITolvarCamera(QObject* parent)
    : QObject(parent)
{}

ITolvarCamera::~ITolvarCamera() = default;

ITolvarCameraPositionSensor::ITolvarCameraPositionSensor(QObject* parent)
    : QObject(parent)
{}

ITolvarCameraPositionSensor::~ITolvarCameraPositionSensor() = default;
