#ifndef TOLVAR_VARUNDO_TEST_BOUNDITEM_H
#define TOLVAR_VARUNDO_TEST_BOUNDITEM_H

#include <Mavril/VideoOverlay/ElementParam.h>
#include <Tolvar/Varundo/DataManager.h>
#include <Tolvar/Varundo/Runner.h>

#include <array>

namespace Tolvar::Varundo::Test {

/// A column that an overlay element can be bound to, and the data model's item that it is bound to by it.
struct BoundItem
{
    const char* item;
    const QString& column;
    void (Runner::*bind)(Mavril::VideoOverlay::CVideoOverlayText*);
    QPoint (DataManager::*position)() const;
    bool (DataManager::*visible)() const;
    ColorPair (DataManager::*colours)() const;
    void (DataManager::*setPosition)(const QPoint&);
    void (DataManager::*setVisible)(bool);
    void (DataManager::*setColours)(const ColorPair&);
};

/// In the order in which an element's column is compared with them.
inline const std::array<BoundItem, 16>& boundItems()
{
    using E = Mavril::VideoOverlay::ElementParam;
    using R = Runner;
    using D = DataManager;
    static const std::array<BoundItem, 16> items{{
        {"meter counter 3", E::NAME_TOTAL_DISTANCE_COUNTER, &R::connectTotalDistanceCounter,
         &D::meterCounter3Position, &D::meterCounter3Visible, &D::meterCounter3ColorPair,
         &D::setMeterCounter3Position, &D::setMeterCounter3Visible, &D::setMeterCounter3ColorPair},
        {"meter counter 1", E::NAME_SECTION_DISTANCE_COUNTER, &R::connectSectionDistanceCounter,
         &D::meterCounter1Position, &D::meterCounter1Visible, &D::meterCounter1ColorPair,
         &D::setMeterCounter1Position, &D::setMeterCounter1Visible, &D::setMeterCounter1ColorPair},
        {"meter counter 2", E::NAME_SAT_DISTANCE_COUNTER, &R::connectSATDistanceCounter,
         &D::meterCounter2Position, &D::meterCounter2Visible, &D::meterCounter2ColorPair,
         &D::setMeterCounter2Position, &D::setMeterCounter2Visible, &D::setMeterCounter2ColorPair},
        {"cable speed", E::NAME_SPEED, &R::connectCableSpeed, &D::cableSpeedPosition, &D::cableSpeedVisible,
         &D::cableSpeedColorPair, &D::setCableSpeedPosition, &D::setCableSpeedVisible,
         &D::setCableSpeedColorPair},
        {"date", E::NAME_DATE, &R::connectDate, &D::datePosition, &D::dateVisible, &D::dateColorPair,
         &D::setDatePosition, &D::setDateVisible, &D::setDateColorPair},
        {"time", E::NAME_TIME, &R::connectTime, &D::timePosition, &D::timeVisible, &D::timeColorPair,
         &D::setTimePosition, &D::setTimeVisible, &D::setTimeColorPair},
        {"video counter", E::NAME_VIDEO_TIME_COUNTER, &R::connectVideoTimeCounter, &D::videoCounterPosition,
         &D::videoCounterVisible, &D::videoCounterColorPair, &D::setVideoCounterPosition,
         &D::setVideoCounterVisible, &D::setVideoCounterColorPair},
        {"tilt", E::NAME_CAMERA_TILT, &R::connectCameraTilt, &D::tiltPosition, &D::tiltVisible,
         &D::tiltColorPair, &D::setTiltPosition, &D::setTiltVisible, &D::setTiltColorPair},
        {"camera temperature", E::NAME_CAMERA_TEMPERATURE, &R::connectCameraTemperature,
         &D::cameraTemperaturePosition, &D::cameraTemperatureVisible, &D::cameraTemperatureColorPair,
         &D::setCameraTemperaturePosition, &D::setCameraTemperatureVisible,
         &D::setCameraTemperatureColorPair},
        {"pan position", E::NAME_CAMERA_PAN, &R::connectCameraPan, &D::panPosition, &D::panVisible,
         &D::panPositionColorPair, &D::setPanPosition, &D::setPanVisible, &D::setPanPositionColorPair},
        {"pressure", E::NAME_CAMERA_PRESSURE, &R::connectCameraPressure, &D::pressurePosition,
         &D::pressureVisible, &D::pressureColorPair, &D::setPressurePosition, &D::setPressureVisible,
         &D::setPressureColorPair},
        {"inclination", E::NAME_CRAWLER_PITCH, &R::connectCrawlerPitch, &D::inclinationPosition,
         &D::inclinationVisible, &D::inclinationColorPair, &D::setInclinationPosition,
         &D::setInclinationVisible, &D::setInclinationColorPair},
        {"crawler roll", E::NAME_CRAWLER_ROLL, &R::connectCrawlerRoll, &D::crawlerRollPosition,
         &D::crawlerRollVisible, &D::crawlerRollColorPair, &D::setCrawlerRollPosition,
         &D::setCrawlerRollVisible, &D::setCrawlerRollColorPair},
        {"crawler temperature", E::NAME_CRAWLER_TEMPERATURE, &R::connectCrawlerTemperature,
         &D::crawlerTemperaturePosition, &D::crawlerTemperatureVisible, &D::crawlerTemperatureColorPair,
         &D::setCrawlerTemperaturePosition, &D::setCrawlerTemperatureVisible,
         &D::setCrawlerTemperatureColorPair},
        {"crawler pressure", E::NAME_CRAWLER_PRESSURE, &R::connectCrawlerPressure,
         &D::crawlerPressurePosition, &D::crawlerPressureVisible, &D::crawlerPressureColorPair,
         &D::setCrawlerPressurePosition, &D::setCrawlerPressureVisible, &D::setCrawlerPressureColorPair},
        {"external temperature", E::NAME_OBJECT_TEMPERATURE, &R::connectObjectTemperature,
         &D::extTemperaturePosition, &D::extTemperatureVisible, &D::extTemperatureColorPair,
         &D::setExtTemperaturePosition, &D::setExtTemperatureVisible, &D::setExtTemperatureColorPair},
    }};
    return items;
}

} // namespace Tolvar::Varundo::Test

#endif
