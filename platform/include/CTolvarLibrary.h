#ifndef CTOLVARLIBRARY_H
#define CTOLVARLIBRARY_H

#include <VarundoPlatformExport.h>

class ITolvarCamera;
class ITolvarCameraPositionSensor;
class ITolvarCrawler;
class ITolvarReel;
class ITolvarRts;

/// Access to the unit's devices; null for what the unit does not have, or has no longer. Devices are not
/// owned. GUI thread only.
class VARUNDO_PLATFORM_EXPORT CTolvarLibrary
{
public:
    static ITolvarReel* getReel();
    static void setReel(ITolvarReel* reel);
    static ITolvarRts* getRts();
    static void setRts(ITolvarRts* rts);
    static ITolvarCrawler* getCrawler();
    static void setCrawler(ITolvarCrawler* crawler);
    static ITolvarCamera* getCamera();
    static void setCamera(ITolvarCamera* camera);
    static ITolvarCameraPositionSensor* getCameraPositionSensor();
    static void setCameraPositionSensor(ITolvarCameraPositionSensor* sensor);
};

#endif
