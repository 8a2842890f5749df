#include <CTolvarLibrary.h>

#include <ITolvarCamera.h>
#include <ITolvarCameraPositionSensor.h>
#include <ITolvarCrawler.h>
#include <ITolvarReel.h>
#include <ITolvarRts.h>

#include <QPointer>

namespace {

/// A device that is destroyed is absent from then on.
struct Devices
{
    QPointer<ITolvarReel> reel;
    QPointer<ITolvarRts> rts;
    QPointer<ITolvarCrawler> crawler;
    QPointer<ITolvarCamera> camera;
    QPointer<ITolvarCameraPositionSensor> cameraPositionSensor;
};

Devices& devices()
{
    static Devices theDevices;
    return theDevices;
}

} // namespace

ITolvarReel* CTolvarLibrary::getReel()
{
    return devices().reel;
}

void CTolvarLibrary::setReel(ITolvarReel* reel)
{
    devices().reel = reel;
}

ITolvarRts* CTolvarLibrary::getRts()
{
    return devices().rts;
}

void CTolvarLibrary::setRts(ITolvarRts* rts)
{
    devices().rts = rts;
}

ITolvarCrawler* CTolvarLibrary::getCrawler()
{
    return devices().crawler;
}

void CTolvarLibrary::setCrawler(ITolvarCrawler* crawler)
{
    devices().crawler = crawler;
}

ITolvarCamera* CTolvarLibrary::getCamera()
{
    return devices().camera;
}

void CTolvarLibrary::setCamera(ITolvarCamera* camera)
{
    devices().camera = camera;
}

ITolvarCameraPositionSensor* CTolvarLibrary::getCameraPositionSensor()
{
    return devices().cameraPositionSensor;
}

void CTolvarLibrary::setCameraPositionSensor(ITolvarCameraPositionSensor* sensor)
{
    devices().cameraPositionSensor = sensor;
}
