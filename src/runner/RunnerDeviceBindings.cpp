#include <Tolvar/Varundo/Runner.h>

#include "RunnerLog.h"

#include <CTolvarLibrary.h>
#include <ITolvarCamera.h>
#include <ITolvarCrawler.h>
#include <ITolvarReel.h>
#include <ITolvarRts.h>

#include <Tolvar/Varundo/DataManager.h>

#include <QPointer>

namespace Tolvar::Varundo {

// Devices outlive the Runner. The context of each connection is therefore the data model, so that the
// connection goes with it; direct ones run in whatever thread the device reports from, as its host wants it.

namespace {

template <class Device>
Device* presentDevice(Device* device, const char* name)
{
    if (!device) {
        qCWarning(runnerLog, "the unit has no %s; its readings stay as they are", name);
    }
    return device;
}

} // namespace

void Runner::connectNEX()
{
    connectNEXReel();
    connectNEXRTS();
    connectNEXCrawler();
    connectNEXCamera();
}

/// The reel's speed is the cable speed.
void Runner::connectNEXReel()
{
    if (ITolvarReel* const reel = presentDevice(CTolvarLibrary::getReel(), "reel")) {
        connect(reel, &ITolvarReel::calculatedReelSpeedChanged, m_dataManager,
                &DataManager::setCableSpeedValue, Qt::DirectConnection);
    }
}

/// The RTS temperature is the external temperature.
void Runner::connectNEXRTS()
{
    if (ITolvarRts* const rts = presentDevice(CTolvarLibrary::getRts(), "RTS sensor")) {
        connect(rts, &ITolvarRts::rtsTemperatureChanged, m_dataManager, &DataManager::setExtTemperatureValue,
                Qt::DirectConnection);
    }
}

/// The crawler's pitch is the inclination; its signal carries no value.
void Runner::connectNEXCrawler()
{
    ITolvarCrawler* const crawler = presentDevice(CTolvarLibrary::getCrawler(), "crawler");
    if (!crawler) {
        return;
    }
    DataManager* const model = m_dataManager;
    connect(
        crawler, &ITolvarCrawler::crawlerTemperatureChanged, model,
        [model](int temperature) { model->setCrawlerTemperature(static_cast<float>(temperature)); },
        Qt::DirectConnection);
    connect(
        crawler, &ITolvarCrawler::crawlerPressureChanged, model,
        [model](int pressure) { model->setCrawlerPressure(static_cast<float>(pressure)); },
        Qt::DirectConnection);
    connect(crawler, &ITolvarCrawler::crawlerRollChanged, model, &DataManager::setCrawlerRollValue,
            Qt::DirectConnection);
    connect(
        crawler, &ITolvarCrawler::crawlerPitchChanged, model,
        [model = QPointer<DataManager>(model), crawler] {
            const float pitch = crawler->crawlerPitch();
            if (model) { // the host was asked, and may have destroyed the Runner
                model->setInclinationValue(pitch);
            }
        },
        Qt::DirectConnection);
}

/// Each pan reading is deliberately handed on twice: what a repeated value means is the data model's affair.
/// The camera's pressure is the plain pressure.
void Runner::connectNEXCamera()
{
    ITolvarCamera* const camera = presentDevice(CTolvarLibrary::getCamera(), "camera");
    if (!camera) {
        return;
    }
    connect(camera, &ITolvarCamera::panPositionChanged, m_dataManager, &DataManager::setPanPositionValue);
    connect(camera, &ITolvarCamera::panPositionChanged, this,
            [this](short pan) { m_dataManager->setPanPositionValue(pan); });
    connect(camera, &ITolvarCamera::tiltPositionChanged, this,
            [this](short tilt) { m_dataManager->setTiltValue(tilt); });
    connect(camera, &ITolvarCamera::cameraTemperatureChanged, m_dataManager,
            &DataManager::setCameraTemperatureValue);
    connect(camera, &ITolvarCamera::cameraPressureChanged, m_dataManager, &DataManager::setPressureValue);
}

} // namespace Tolvar::Varundo
