#include <CTolvarLibrary.h>

namespace {

/// Whoever destroys a device takes it out first.
struct Devices
{
    ITolvarReel* reel = nullptr;
    ITolvarRts* rts = nullptr;
    ITolvarCrawler* crawler = nullptr;
    ITolvarCamera* camera = nullptr;
    ITolvarCameraPositionSensor* sensor = nullptr;
};

Devices devices;

} // namespace

ITolvarReel* CTolvarLibrary::getReel()
{
    return devices.reel;
}

void CTolvarLibrary::setReel(ITolvarReel* reel)
{
    devices.reel = reel;
}

ITolvarRts* CTolvarLibrary::getRts()
{
    return devices.rts;
}

void CTolvarLibrary::setRts(ITolvarRts* rts)
{
    devices.rts = rts;
}

ITolvarCrawler* CTolvarLibrary::getCrawler()
{
    return devices.crawler;
}

void CTolvarLibrary::setCrawler(ITolvarCrawler* crawler)
{
    devices.crawler = crawler;
}

ITolvarCamera* CTolvarLibrary::getCamera()
{
    return devices.camera;
}

void CTolvarLibrary::setCamera(ITolvarCamera* camera)
{
    devices.camera = camera;
}

ITolvarCameraPositionSensor* CTolvarLibrary::getCameraPositionSensor()
{
    return devices.sensor;
}

void CTolvarLibrary::setCameraPositionSensor(ITolvarCameraPositionSensor* sensor)
{
    devices.sensor = sensor;
}
