#ifndef TOLVAR_VARUNDO_TEST_MODELTABLE_H
#define TOLVAR_VARUNDO_TEST_MODELTABLE_H

#include <Mavril/VideoOverlay/ElementParam.h>
#include <Tolvar/Varundo/DataManager.h>

/// Every property of the data model that announces its changes, with the names as the protocol fixes them,
/// the irregular ones included. The four without such a signal (free text lines, their colours, the cursor,
/// the text codec) have rules of their own and stand elsewhere.
namespace Tolvar::Varundo::Test {

template <class Value, class Argument, class... Announced>
struct PropertyRow
{
    const char* property;   // the getter's name
    const QString* element; // what the signal carries first; null where it carries none
    Value (DataManager::*get)() const;
    void (DataManager::*set)(Argument);
    void (DataManager::*changed)(Announced...);
};

using FormatRow = PropertyRow<int, int, int>;
using NamedFormatRow = PropertyRow<int, int, const QString&, int>;
using VisibleRow = PropertyRow<bool, bool, const QString&, bool>;
using PositionRow = PropertyRow<QPoint, const QPoint&, const QString&, const QPoint&>;
using ColorPairRow = PropertyRow<ColorPair, const ColorPair&, const QString&, const ColorPair&>;
using ValueRow = PropertyRow<float, float, float>;
using CounterRow = PropertyRow<int, int, int>;
using StatusTextRow = PropertyRow<QString, QString, const QString&, const QString&>;
using TextRow = PropertyRow<QString, QString, QString>;

using Name = Mavril::VideoOverlay::ElementParam;

inline constexpr FormatRow FormatRows[] = {
    {"meterCounter1Format", nullptr, &DataManager::meterCounter1Format, &DataManager::setMeterCounter1Format,
     &DataManager::meterCounter1FormatChanged},
    {"meterCounter2Format", nullptr, &DataManager::meterCounter2Format, &DataManager::setMeterCounter2Format,
     &DataManager::meterCounter2FormatChanged},
    {"meterCounter3Format", nullptr, &DataManager::meterCounter3Format, &DataManager::setMeterCounter3Format,
     &DataManager::meterCounter3FormatChanged},
    {"dateFormat", nullptr, &DataManager::dateFormat, &DataManager::setDateFormat,
     &DataManager::dateFormatChanged},
    {"timeFormat", nullptr, &DataManager::timeFormat, &DataManager::setTimeFormat,
     &DataManager::timeFormatChanged},
    {"videoCounterFormat", nullptr, &DataManager::videoCounterFormat, &DataManager::setVideoCounterFormat,
     &DataManager::videoCounterFormatChanged},
    {"crawlerTemperatureFormat", nullptr, &DataManager::crawlerTemperatureFormat,
     &DataManager::setCrawlerTemperatureFormat, &DataManager::crawlerTemperatureFormatChanged},
    {"crawlerPressureFormat", nullptr, &DataManager::crawlerPressureFormat,
     &DataManager::setCrawlerPressureFormat, &DataManager::crawlerPressureFormatChanged},
    {"crawlerRollFormat", nullptr, &DataManager::crawlerRollFormat, &DataManager::setCrawlerRollFormat,
     &DataManager::crawlerRollFormatChanged},
    {"tiltPositionFormat", nullptr, &DataManager::tiltPositionFormat, &DataManager::setTiltFormat,
     &DataManager::tiltFormatChanged},
    {"cameraTemperatureFormat", nullptr, &DataManager::cameraTemperatureFormat,
     &DataManager::setCameraTemperatureFormat, &DataManager::cameraTemperatureFormatChanged},
    {"pressureFormat", nullptr, &DataManager::pressureFormat, &DataManager::setPressureFormat,
     &DataManager::pressureFormatChanged},
    {"inclinationFormat", nullptr, &DataManager::inclinationFormat, &DataManager::setInclinationFormat,
     &DataManager::inclinationFormatChanged},
    {"panPositionFormat", nullptr, &DataManager::panPositionFormat, &DataManager::setPanPositionFormat,
     &DataManager::panPositionFormatChanged},
    {"cableSpeedFormat", nullptr, &DataManager::cableSpeedFormat, &DataManager::setCableSpeedFormat,
     &DataManager::cableSpeedFormatChanged},
};

// The one format whose signal carries the element name: the unit on the screen hangs on it.
inline constexpr NamedFormatRow NamedFormatRows[] = {
    {"extTemperatureFormat", &Name::NAME_OBJECT_TEMPERATURE, &DataManager::extTemperatureFormat,
     &DataManager::setExtTemperatureFormat, &DataManager::extTemperatureFormatChanged},
};

inline constexpr VisibleRow VisibleRows[] = {
    {"meterCounter1Visible", &Name::NAME_SECTION_DISTANCE_COUNTER, &DataManager::meterCounter1Visible,
     &DataManager::setMeterCounter1Visible, &DataManager::meterCounter1VisibleChanged},
    {"meterCounter2Visible", &Name::NAME_SAT_DISTANCE_COUNTER, &DataManager::meterCounter2Visible,
     &DataManager::setMeterCounter2Visible, &DataManager::meterCounter2VisibleChanged},
    {"meterCounter3Visible", &Name::NAME_TOTAL_DISTANCE_COUNTER, &DataManager::meterCounter3Visible,
     &DataManager::setMeterCounter3Visible, &DataManager::meterCounter3VisibleChanged},
    {"dateVisible", &Name::NAME_DATE, &DataManager::dateVisible, &DataManager::setDateVisible,
     &DataManager::dateVisibleChanged},
    {"timeVisible", &Name::NAME_TIME, &DataManager::timeVisible, &DataManager::setTimeVisible,
     &DataManager::timeVisibleChanged},
    {"videoCounterVisible", &Name::NAME_VIDEO_TIME_COUNTER, &DataManager::videoCounterVisible,
     &DataManager::setVideoCounterVisible, &DataManager::videoCounterVisibleChanged},
    {"crawlerTemperatureVisible", &Name::NAME_CRAWLER_TEMPERATURE, &DataManager::crawlerTemperatureVisible,
     &DataManager::setCrawlerTemperatureVisible, &DataManager::crawlerTemperatureVisibleChanged},
    {"crawlerPressureVisible", &Name::NAME_CRAWLER_PRESSURE, &DataManager::crawlerPressureVisible,
     &DataManager::setCrawlerPressureVisible, &DataManager::crawlerPressureVisibleChanged},
    {"crawlerRollVisible", &Name::NAME_CRAWLER_ROLL, &DataManager::crawlerRollVisible,
     &DataManager::setCrawlerRollVisible, &DataManager::crawlerRollVisibleChanged},
    {"tiltVisible", &Name::NAME_CAMERA_TILT, &DataManager::tiltVisible, &DataManager::setTiltVisible,
     &DataManager::tiltVisibleChanged},
    {"extTemperatureVisible", &Name::NAME_OBJECT_TEMPERATURE, &DataManager::extTemperatureVisible,
     &DataManager::setExtTemperatureVisible, &DataManager::extTemperatureVisibleChanged},
    {"cameraTemperatureVisible", &Name::NAME_CAMERA_TEMPERATURE, &DataManager::cameraTemperatureVisible,
     &DataManager::setCameraTemperatureVisible, &DataManager::cameraTemperatureVisibleChanged},
    {"pressureVisible", &Name::NAME_CAMERA_PRESSURE, &DataManager::pressureVisible,
     &DataManager::setPressureVisible, &DataManager::pressureVisibleChanged},
    {"inclinationVisible", &Name::NAME_CRAWLER_PITCH, &DataManager::inclinationVisible,
     &DataManager::setInclinationVisible, &DataManager::inclinationVisibleChanged},
    {"panVisible", &Name::NAME_CAMERA_PAN, &DataManager::panVisible, &DataManager::setPanVisible,
     &DataManager::panPositionVisibleChanged},
    {"cableSpeedVisible", &Name::NAME_SPEED, &DataManager::cableSpeedVisible,
     &DataManager::setCableSpeedVisible, &DataManager::cableSpeedVisibleChanged},
    {"statusLine1Visible", &Name::NAME_STATUS_TEXT_1, &DataManager::statusLine1Visible,
     &DataManager::setStatusLine1Visible, &DataManager::statusLine1VisibleChanged},
    {"statusLine2Visible", &Name::NAME_STATUS_TEXT_2, &DataManager::statusLine2Visible,
     &DataManager::setStatusLine2Visible, &DataManager::statusLine2VisibleChanged},
    {"statusLine3Visible", &Name::NAME_STATUS_TEXT_3, &DataManager::statusLine3Visible,
     &DataManager::setStatusLine3Visible, &DataManager::statusLine3VisibleChanged},
    {"statusLine4Visible", &Name::NAME_STATUS_TEXT_4, &DataManager::statusLine4Visible,
     &DataManager::setStatusLine4Visible, &DataManager::statusLine4VisibleChanged},
};

inline constexpr PositionRow PositionRows[] = {
    {"meterCounter1Position", &Name::NAME_SECTION_DISTANCE_COUNTER, &DataManager::meterCounter1Position,
     &DataManager::setMeterCounter1Position, &DataManager::meterCounter1PositionChanged},
    {"meterCounter2Position", &Name::NAME_SAT_DISTANCE_COUNTER, &DataManager::meterCounter2Position,
     &DataManager::setMeterCounter2Position, &DataManager::meterCounter2PositionChanged},
    {"meterCounter3Position", &Name::NAME_TOTAL_DISTANCE_COUNTER, &DataManager::meterCounter3Position,
     &DataManager::setMeterCounter3Position, &DataManager::meterCounter3PositionChanged},
    {"datePosition", &Name::NAME_DATE, &DataManager::datePosition, &DataManager::setDatePosition,
     &DataManager::datePositionChanged},
    {"timePosition", &Name::NAME_TIME, &DataManager::timePosition, &DataManager::setTimePosition,
     &DataManager::timePositionChanged},
    {"videoCounterPosition", &Name::NAME_VIDEO_TIME_COUNTER, &DataManager::videoCounterPosition,
     &DataManager::setVideoCounterPosition, &DataManager::videoCounterPositionChanged},
    {"crawlerTemperaturePosition", &Name::NAME_CRAWLER_TEMPERATURE, &DataManager::crawlerTemperaturePosition,
     &DataManager::setCrawlerTemperaturePosition, &DataManager::crawlerTemperaturePositionChanged},
    {"crawlerPressurePosition", &Name::NAME_CRAWLER_PRESSURE, &DataManager::crawlerPressurePosition,
     &DataManager::setCrawlerPressurePosition, &DataManager::crawlerPressurePositionChanged},
    {"crawlerRollPosition", &Name::NAME_CRAWLER_ROLL, &DataManager::crawlerRollPosition,
     &DataManager::setCrawlerRollPosition, &DataManager::crawlerRollPositionChanged},
    {"tiltPosition", &Name::NAME_CAMERA_TILT, &DataManager::tiltPosition, &DataManager::setTiltPosition,
     &DataManager::tiltPositionChanged},
    {"extTemperaturePosition", &Name::NAME_OBJECT_TEMPERATURE, &DataManager::extTemperaturePosition,
     &DataManager::setExtTemperaturePosition, &DataManager::extTemperaturePositionChanged},
    {"cameraTemperaturePosition", &Name::NAME_CAMERA_TEMPERATURE, &DataManager::cameraTemperaturePosition,
     &DataManager::setCameraTemperaturePosition, &DataManager::cameraTemperaturePositionChanged},
    {"pressurePosition", &Name::NAME_CAMERA_PRESSURE, &DataManager::pressurePosition,
     &DataManager::setPressurePosition, &DataManager::pressurePositionChanged},
    {"inclinationPosition", &Name::NAME_CRAWLER_PITCH, &DataManager::inclinationPosition,
     &DataManager::setInclinationPosition, &DataManager::inclinationPositionChanged},
    {"panPosition", &Name::NAME_CAMERA_PAN, &DataManager::panPosition, &DataManager::setPanPosition,
     &DataManager::panPositionChanged},
    {"cableSpeedPosition", &Name::NAME_SPEED, &DataManager::cableSpeedPosition,
     &DataManager::setCableSpeedPosition, &DataManager::cableSpeedPositionChanged},
};

inline constexpr ColorPairRow ColorPairRows[] = {
    {"meterCounter1ColorPair", &Name::NAME_SECTION_DISTANCE_COUNTER, &DataManager::meterCounter1ColorPair,
     &DataManager::setMeterCounter1ColorPair, &DataManager::meterCounter1ColorPairChanged},
    {"meterCounter2ColorPair", &Name::NAME_SAT_DISTANCE_COUNTER, &DataManager::meterCounter2ColorPair,
     &DataManager::setMeterCounter2ColorPair, &DataManager::meterCounter2ColorPairChanged},
    {"meterCounter3ColorPair", &Name::NAME_TOTAL_DISTANCE_COUNTER, &DataManager::meterCounter3ColorPair,
     &DataManager::setMeterCounter3ColorPair, &DataManager::meterCounter3ColorPairChanged},
    {"dateColorPair", &Name::NAME_DATE, &DataManager::dateColorPair, &DataManager::setDateColorPair,
     &DataManager::dateColorPairChanged},
    {"timeColorPair", &Name::NAME_TIME, &DataManager::timeColorPair, &DataManager::setTimeColorPair,
     &DataManager::timeColorPairChanged},
    {"videoCounterColorPair", &Name::NAME_VIDEO_TIME_COUNTER, &DataManager::videoCounterColorPair,
     &DataManager::setVideoCounterColorPair, &DataManager::videoCounterColorPairChanged},
    {"crawlerTemperatureColorPair", &Name::NAME_CRAWLER_TEMPERATURE,
     &DataManager::crawlerTemperatureColorPair, &DataManager::setCrawlerTemperatureColorPair,
     &DataManager::crawlerTemperatureColorPairChanged},
    {"crawlerPressureColorPair", &Name::NAME_CRAWLER_PRESSURE, &DataManager::crawlerPressureColorPair,
     &DataManager::setCrawlerPressureColorPair, &DataManager::crawlerPressureColorPairChanged},
    {"crawlerRollColorPair", &Name::NAME_CRAWLER_ROLL, &DataManager::crawlerRollColorPair,
     &DataManager::setCrawlerRollColorPair, &DataManager::crawlerRollColorPairChanged},
    {"tiltColorPair", &Name::NAME_CAMERA_TILT, &DataManager::tiltColorPair, &DataManager::setTiltColorPair,
     &DataManager::tiltColorPairChanged},
    {"extTemperatureColorPair", &Name::NAME_OBJECT_TEMPERATURE, &DataManager::extTemperatureColorPair,
     &DataManager::setExtTemperatureColorPair, &DataManager::extTemperatureColorPairChanged},
    {"cameraTemperatureColorPair", &Name::NAME_CAMERA_TEMPERATURE, &DataManager::cameraTemperatureColorPair,
     &DataManager::setCameraTemperatureColorPair, &DataManager::cameraTemperatureColorPairChanged},
    {"pressureColorPair", &Name::NAME_CAMERA_PRESSURE, &DataManager::pressureColorPair,
     &DataManager::setPressureColorPair, &DataManager::pressureColorPairChanged},
    {"inclinationColorPair", &Name::NAME_CRAWLER_PITCH, &DataManager::inclinationColorPair,
     &DataManager::setInclinationColorPair, &DataManager::inclinationColorPairChanged},
    {"panPositionColorPair", &Name::NAME_CAMERA_PAN, &DataManager::panPositionColorPair,
     &DataManager::setPanPositionColorPair, &DataManager::panPositionColorPairChanged},
    {"cableSpeedColorPair", &Name::NAME_SPEED, &DataManager::cableSpeedColorPair,
     &DataManager::setCableSpeedColorPair, &DataManager::cableSpeedColorPairChanged},
    {"statusLine1ColorPair", &Name::NAME_STATUS_TEXT_1, &DataManager::statusLine1ColorPair,
     &DataManager::setStatusLine1ColorPair, &DataManager::statusLine1ColorPairChanged},
    {"statusLine2ColorPair", &Name::NAME_STATUS_TEXT_2, &DataManager::statusLine2ColorPair,
     &DataManager::setStatusLine2ColorPair, &DataManager::statusLine2ColorPairChanged},
    {"statusLine3ColorPair", &Name::NAME_STATUS_TEXT_3, &DataManager::statusLine3ColorPair,
     &DataManager::setStatusLine3ColorPair, &DataManager::statusLine3ColorPairChanged},
    {"statusLine4ColorPair", &Name::NAME_STATUS_TEXT_4, &DataManager::statusLine4ColorPair,
     &DataManager::setStatusLine4ColorPair, &DataManager::statusLine4ColorPairChanged},
};

inline constexpr ValueRow ValueRows[] = {
    {"crawlerRollValue", nullptr, &DataManager::crawlerRollValue, &DataManager::setCrawlerRollValue,
     &DataManager::crawlerRollValueChanged},
    {"tiltPositionValue", nullptr, &DataManager::tiltPositionValue, &DataManager::setTiltValue,
     &DataManager::tiltValueChanged},
    {"extTemperatureValue", nullptr, &DataManager::extTemperatureValue, &DataManager::setExtTemperatureValue,
     &DataManager::extTemperatureValueChanged},
    {"cameraTemperatureValue", nullptr, &DataManager::cameraTemperatureValue,
     &DataManager::setCameraTemperatureValue, &DataManager::cameraTemperatureValueChanged},
    {"inclinationValue", nullptr, &DataManager::inclinationValue, &DataManager::setInclinationValue,
     &DataManager::inclinationValueChanged},
    {"panPositionValue", nullptr, &DataManager::panPositionValue, &DataManager::setPanPositionValue,
     &DataManager::panPositionVvalueChanged},
    {"cableSpeedValue", nullptr, &DataManager::cableSpeedValue, &DataManager::setCableSpeedValue,
     &DataManager::cableSpeedValueChanged},
    {"crawlerTemperature", nullptr, &DataManager::crawlerTemperature, &DataManager::setCrawlerTemperature,
     &DataManager::crawlerTemperatureChanged},
};

// The two values that are compared in another unit than they are kept in.
inline constexpr ValueRow PressureRows[] = {
    {"crawlerPressure", nullptr, &DataManager::crawlerPressure, &DataManager::setCrawlerPressure,
     &DataManager::crawlerPressureChanged},
    {"pressureValue", nullptr, &DataManager::pressureValue, &DataManager::setPressureValue,
     &DataManager::pressureValueChanged},
};

inline constexpr CounterRow CounterRows[] = {
    {"videoCounterHours", nullptr, &DataManager::videoCounterHours, &DataManager::setVideoCounterHours,
     &DataManager::videoCounterHoursChanged},
    {"videoCounterMinutes", nullptr, &DataManager::videoCounterMinutes, &DataManager::setVideoCounterMinutes,
     &DataManager::videoCounterMinutesChanged},
    {"videoCounterSeconds", nullptr, &DataManager::videoCounterSeconds, &DataManager::setVideoCounterSeconds,
     &DataManager::videoCounterSecondsChanged},
    {"videoCounterFrames", nullptr, &DataManager::videoCounterFrames, &DataManager::setVideoCounterFrames,
     &DataManager::videoCounterFramesChanged},
};

inline constexpr StatusTextRow StatusTextRows[] = {
    {"statusLine1Text", &Name::NAME_STATUS_TEXT_1, &DataManager::statusLine1Text,
     &DataManager::setStatusLine1Text, &DataManager::statusLine1TextChanged},
    {"statusLine2Text", &Name::NAME_STATUS_TEXT_2, &DataManager::statusLine2Text,
     &DataManager::setStatusLine2Text, &DataManager::statusLine2TextChanged},
    {"statusLine3Text", &Name::NAME_STATUS_TEXT_3, &DataManager::statusLine3Text,
     &DataManager::setStatusLine3Text, &DataManager::statusLine3TextChanged},
    {"statusLine4Text", &Name::NAME_STATUS_TEXT_4, &DataManager::statusLine4Text,
     &DataManager::setStatusLine4Text, &DataManager::statusLine4TextChanged},
};

inline constexpr TextRow TextRows[] = {
    {"softwareID", nullptr, &DataManager::softwareID, &DataManager::setSoftwareID,
     &DataManager::softwareIDChanged},
};
/// Calls the visitor with every row of every table.
template <class Visitor>
void forEachProperty(Visitor visit)
{
    const auto visitAll = [&visit](const auto& rows) {
        for (const auto& row : rows) {
            visit(row);
        }
    };
    visitAll(FormatRows);
    visitAll(NamedFormatRows);
    visitAll(VisibleRows);
    visitAll(PositionRows);
    visitAll(ColorPairRows);
    visitAll(ValueRows);
    visitAll(PressureRows);
    visitAll(CounterRows);
    visitAll(StatusTextRows);
    visitAll(TextRows);
}

} // namespace Tolvar::Varundo::Test

#endif
