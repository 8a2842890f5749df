#include "UnitElement.h"

#include <Mavril/VideoOverlay/ElementParam.h>

#include <algorithm>
#include <iterator>

namespace Tolvar::Varundo::Tests {

namespace {

using D = DataManager;
using E = Mavril::VideoOverlay::ElementParam;

// clang-format off
const UnitElement Elements[] = {
    {"meter-counter-1",      &E::NAME_SECTION_DISTANCE_COUNTER, 2,  1, true,  &D::meterCounter1Visible,      &D::meterCounter1Position,      &D::meterCounter1ColorPair,      &D::meterCounter1Format,      nullptr},
    {"meter-counter-2",      &E::NAME_SAT_DISTANCE_COUNTER,     2,  2, true,  &D::meterCounter2Visible,      &D::meterCounter2Position,      &D::meterCounter2ColorPair,      &D::meterCounter2Format,      nullptr},
    {"meter-counter-3",      &E::NAME_TOTAL_DISTANCE_COUNTER,   2,  3, true,  &D::meterCounter3Visible,      &D::meterCounter3Position,      &D::meterCounter3ColorPair,      &D::meterCounter3Format,      nullptr},
    {"date",                 &E::NAME_DATE,                     2,  4, true,  &D::dateVisible,               &D::datePosition,               &D::dateColorPair,               &D::dateFormat,               nullptr},
    {"time",                 &E::NAME_TIME,                     2,  5, true,  &D::timeVisible,               &D::timePosition,               &D::timeColorPair,               &D::timeFormat,               nullptr},
    {"video-counter",        &E::NAME_VIDEO_TIME_COUNTER,       2,  6, true,  &D::videoCounterVisible,       &D::videoCounterPosition,       &D::videoCounterColorPair,       &D::videoCounterFormat,       nullptr},
    {"cable-speed",          &E::NAME_SPEED,                    2,  7, true,  &D::cableSpeedVisible,         &D::cableSpeedPosition,         &D::cableSpeedColorPair,         &D::cableSpeedFormat,         nullptr},
    {"external-temperature", &E::NAME_OBJECT_TEMPERATURE,       2,  8, true,  &D::extTemperatureVisible,     &D::extTemperaturePosition,     &D::extTemperatureColorPair,     &D::extTemperatureFormat,     nullptr},
    {"crawler-temperature",  &E::NAME_CRAWLER_TEMPERATURE,     20,  1, true,  &D::crawlerTemperatureVisible, &D::crawlerTemperaturePosition, &D::crawlerTemperatureColorPair, &D::crawlerTemperatureFormat, nullptr},
    {"crawler-pressure",     &E::NAME_CRAWLER_PRESSURE,        20,  2, true,  &D::crawlerPressureVisible,    &D::crawlerPressurePosition,    &D::crawlerPressureColorPair,    &D::crawlerPressureFormat,    nullptr},
    {"crawler-roll",         &E::NAME_CRAWLER_ROLL,            20,  3, true,  &D::crawlerRollVisible,        &D::crawlerRollPosition,        &D::crawlerRollColorPair,        &D::crawlerRollFormat,        nullptr},
    {"inclination",          &E::NAME_CRAWLER_PITCH,           20,  4, true,  &D::inclinationVisible,        &D::inclinationPosition,        &D::inclinationColorPair,        &D::inclinationFormat,        nullptr},
    {"pan",                  &E::NAME_CAMERA_PAN,              20,  5, true,  &D::panVisible,                &D::panPosition,                &D::panPositionColorPair,        &D::panPositionFormat,        nullptr},
    {"tilt",                 &E::NAME_CAMERA_TILT,             20,  6, true,  &D::tiltVisible,               &D::tiltPosition,               &D::tiltColorPair,               &D::tiltPositionFormat,       nullptr},
    {"camera-temperature",   &E::NAME_CAMERA_TEMPERATURE,      20,  7, true,  &D::cameraTemperatureVisible,  &D::cameraTemperaturePosition,  &D::cameraTemperatureColorPair,  &D::cameraTemperatureFormat,  nullptr},
    {"pressure",             &E::NAME_CAMERA_PRESSURE,         20,  8, false, &D::pressureVisible,           &D::pressurePosition,           &D::pressureColorPair,           &D::pressureFormat,           nullptr},
    {"status-line-1",        &E::NAME_STATUS_TEXT_1,            0, 19, true,  &D::statusLine1Visible,        nullptr,                        &D::statusLine1ColorPair,        nullptr,                      &D::statusLine1Text},
    {"status-line-2",        &E::NAME_STATUS_TEXT_2,            0, 20, true,  &D::statusLine2Visible,        nullptr,                        &D::statusLine2ColorPair,        nullptr,                      &D::statusLine2Text},
    {"status-line-3",        &E::NAME_STATUS_TEXT_3,            0, 21, true,  &D::statusLine3Visible,        nullptr,                        &D::statusLine3ColorPair,        nullptr,                      &D::statusLine3Text},
    {"status-line-4",        &E::NAME_STATUS_TEXT_4,            0, 22, false, &D::statusLine4Visible,        nullptr,                        &D::statusLine4ColorPair,        nullptr,                      &D::statusLine4Text},
};
// clang-format on

} // namespace

UnitElement::Range UnitElement::all()
{
    return {std::begin(Elements), std::end(Elements)};
}

const UnitElement* UnitElement::find(const QString& name)
{
    const auto* const found =
        std::find_if(std::begin(Elements), std::end(Elements),
                     [&](const UnitElement& element) { return name == QLatin1String(element.name); });
    return found != std::end(Elements) ? found : nullptr;
}

} // namespace Tolvar::Varundo::Tests
