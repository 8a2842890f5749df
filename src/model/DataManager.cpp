#include <Tolvar/Varundo/DataManager.h>

#include <Mavril/VideoOverlay/ElementParam.h>

namespace Tolvar::Varundo {

using Mavril::VideoOverlay::ElementParam;

namespace {

// The rules by which a setter decides whether its value is a change. Each stands here once; the arguments in
// front of the value in a signal (the element's name, or none) are what the setters differ in.

/// Formats, visibility, counter fields, positions, colours, texts: different is different. What is announced
/// is a copy: a listener may set the value anew, or destroy the model, while others still look at it.
template <class T, class Signal, class... Name>
void change(DataManager& model, T& stored, const T value, Signal changed, const Name... name)
{
    if (stored == value) {
        return;
    }
    stored = value;
    (model.*changed)(name..., value);
}

using ValueChanged = void (DataManager::*)(float);

/// Measured values: a difference of less than one part in 100,000 is none. From 0, every difference counts.
void changeMeasured(DataManager& model, float& stored, float value, ValueChanged changed)
{
    if (qFuzzyCompare(stored, value)) {
        return;
    }
    stored = value;
    (model.*changed)(stored);
}

/// Pressures are compared with a thousandth of the new value, but kept and announced unscaled. Deliberate:
/// controllers count on a steady pressure being announced again and again.
void changePressure(DataManager& model, float& stored, float value, ValueChanged changed)
{
    if (qFuzzyCompare(stored, value / 1000.0F)) {
        return;
    }
    stored = value;
    (model.*changed)(stored);
}

} // namespace

DataManager::DataManager(QObject* parent)
    : QObject(parent)
    , m_lineColorPair(Qt::white, Qt::blue)
{
    m_meterCounter1.name = ElementParam::NAME_SECTION_DISTANCE_COUNTER;
    m_meterCounter2.name = ElementParam::NAME_SAT_DISTANCE_COUNTER;
    m_meterCounter3.name = ElementParam::NAME_TOTAL_DISTANCE_COUNTER;
    m_date.name = ElementParam::NAME_DATE;
    m_time.name = ElementParam::NAME_TIME;
    m_videoCounter.name = ElementParam::NAME_VIDEO_TIME_COUNTER;
    m_statusLine1.name = ElementParam::NAME_STATUS_TEXT_1;
    m_statusLine2.name = ElementParam::NAME_STATUS_TEXT_2;
    m_statusLine3.name = ElementParam::NAME_STATUS_TEXT_3;
    m_statusLine4.name = ElementParam::NAME_STATUS_TEXT_4;
    m_crawlerTemperature.name = ElementParam::NAME_CRAWLER_TEMPERATURE;
    m_crawlerPressure.name = ElementParam::NAME_CRAWLER_PRESSURE;
    m_crawlerRoll.name = ElementParam::NAME_CRAWLER_ROLL;
    m_tilt.name = ElementParam::NAME_CAMERA_TILT;
    m_extTemperature.name = ElementParam::NAME_OBJECT_TEMPERATURE;
    m_cameraTemperature.name = ElementParam::NAME_CAMERA_TEMPERATURE;
    m_pressure.name = ElementParam::NAME_CAMERA_PRESSURE;
    m_inclination.name = ElementParam::NAME_CRAWLER_PITCH;
    m_pan.name = ElementParam::NAME_CAMERA_PAN;
    m_cableSpeed.name = ElementParam::NAME_SPEED;
}

// Meter counter 1

void DataManager::setMeterCounter1Format(int format)
{
    change(*this, m_meterCounter1.format, format, &DataManager::meterCounter1FormatChanged);
}

void DataManager::setMeterCounter1Visible(bool visible)
{
    change(*this, m_meterCounter1.visible, visible, &DataManager::meterCounter1VisibleChanged,
           m_meterCounter1.name);
}

void DataManager::setMeterCounter1Position(QPoint const& position)
{
    change(*this, m_meterCounter1.position, position, &DataManager::meterCounter1PositionChanged,
           m_meterCounter1.name);
}

void DataManager::setMeterCounter1ColorPair(ColorPair const& colorPair)
{
    change(*this, m_meterCounter1.colorPair, colorPair, &DataManager::meterCounter1ColorPairChanged,
           m_meterCounter1.name);
}

// Meter counter 2

void DataManager::setMeterCounter2Format(int format)
{
    change(*this, m_meterCounter2.format, format, &DataManager::meterCounter2FormatChanged);
}

void DataManager::setMeterCounter2Visible(bool visible)
{
    change(*this, m_meterCounter2.visible, visible, &DataManager::meterCounter2VisibleChanged,
           m_meterCounter2.name);
}

void DataManager::setMeterCounter2Position(QPoint const& position)
{
    change(*this, m_meterCounter2.position, position, &DataManager::meterCounter2PositionChanged,
           m_meterCounter2.name);
}

void DataManager::setMeterCounter2ColorPair(ColorPair const& colorPair)
{
    change(*this, m_meterCounter2.colorPair, colorPair, &DataManager::meterCounter2ColorPairChanged,
           m_meterCounter2.name);
}

// Meter counter 3

void DataManager::setMeterCounter3Format(int format)
{
    change(*this, m_meterCounter3.format, format, &DataManager::meterCounter3FormatChanged);
}

void DataManager::setMeterCounter3Visible(bool visible)
{
    change(*this, m_meterCounter3.visible, visible, &DataManager::meterCounter3VisibleChanged,
           m_meterCounter3.name);
}

void DataManager::setMeterCounter3Position(QPoint const& position)
{
    change(*this, m_meterCounter3.position, position, &DataManager::meterCounter3PositionChanged,
           m_meterCounter3.name);
}

void DataManager::setMeterCounter3ColorPair(ColorPair const& colorPair)
{
    change(*this, m_meterCounter3.colorPair, colorPair, &DataManager::meterCounter3ColorPairChanged,
           m_meterCounter3.name);
}

// Date

void DataManager::setDateFormat(int format)
{
    change(*this, m_date.format, format, &DataManager::dateFormatChanged);
}

void DataManager::setDateVisible(bool visible)
{
    change(*this, m_date.visible, visible, &DataManager::dateVisibleChanged, m_date.name);
}

void DataManager::setDatePosition(QPoint const& position)
{
    change(*this, m_date.position, position, &DataManager::datePositionChanged, m_date.name);
}

void DataManager::setDateColorPair(ColorPair const& colorPair)
{
    change(*this, m_date.colorPair, colorPair, &DataManager::dateColorPairChanged, m_date.name);
}

// Time

void DataManager::setTimeFormat(int format)
{
    change(*this, m_time.format, format, &DataManager::timeFormatChanged);
}

void DataManager::setTimeVisible(bool visible)
{
    change(*this, m_time.visible, visible, &DataManager::timeVisibleChanged, m_time.name);
}

void DataManager::setTimePosition(QPoint const& position)
{
    change(*this, m_time.position, position, &DataManager::timePositionChanged, m_time.name);
}

void DataManager::setTimeColorPair(ColorPair const& colorPair)
{
    change(*this, m_time.colorPair, colorPair, &DataManager::timeColorPairChanged, m_time.name);
}

// Video counter

void DataManager::setVideoCounterHours(int hours)
{
    change(*this, m_videoCounter.hours, hours, &DataManager::videoCounterHoursChanged);
}

void DataManager::setVideoCounterMinutes(int minutes)
{
    change(*this, m_videoCounter.minutes, minutes, &DataManager::videoCounterMinutesChanged);
}

void DataManager::setVideoCounterSeconds(int seconds)
{
    change(*this, m_videoCounter.seconds, seconds, &DataManager::videoCounterSecondsChanged);
}

void DataManager::setVideoCounterFrames(int frames)
{
    change(*this, m_videoCounter.frames, frames, &DataManager::videoCounterFramesChanged);
}

void DataManager::setVideoCounterFormat(int format)
{
    change(*this, m_videoCounter.format, format, &DataManager::videoCounterFormatChanged);
}

void DataManager::setVideoCounterVisible(bool visible)
{
    change(*this, m_videoCounter.visible, visible, &DataManager::videoCounterVisibleChanged,
           m_videoCounter.name);
}

void DataManager::setVideoCounterPosition(QPoint const& position)
{
    change(*this, m_videoCounter.position, position, &DataManager::videoCounterPositionChanged,
           m_videoCounter.name);
}

void DataManager::setVideoCounterColorPair(ColorPair const& colorPair)
{
    change(*this, m_videoCounter.colorPair, colorPair, &DataManager::videoCounterColorPairChanged,
           m_videoCounter.name);
}

// Status line 1

void DataManager::setStatusLine1Text(QString text)
{
    change(*this, m_statusLine1.text, text, &DataManager::statusLine1TextChanged, m_statusLine1.name);
}

void DataManager::setStatusLine1ColorPair(ColorPair const& colorPair)
{
    change(*this, m_statusLine1.colorPair, colorPair, &DataManager::statusLine1ColorPairChanged,
           m_statusLine1.name);
}

void DataManager::setStatusLine1Visible(bool visible)
{
    change(*this, m_statusLine1.visible, visible, &DataManager::statusLine1VisibleChanged,
           m_statusLine1.name);
}

// Status line 2

void DataManager::setStatusLine2Text(QString text)
{
    change(*this, m_statusLine2.text, text, &DataManager::statusLine2TextChanged, m_statusLine2.name);
}

void DataManager::setStatusLine2ColorPair(ColorPair const& colorPair)
{
    change(*this, m_statusLine2.colorPair, colorPair, &DataManager::statusLine2ColorPairChanged,
           m_statusLine2.name);
}

void DataManager::setStatusLine2Visible(bool visible)
{
    change(*this, m_statusLine2.visible, visible, &DataManager::statusLine2VisibleChanged,
           m_statusLine2.name);
}

// Status line 3

void DataManager::setStatusLine3Text(QString text)
{
    change(*this, m_statusLine3.text, text, &DataManager::statusLine3TextChanged, m_statusLine3.name);
}

void DataManager::setStatusLine3ColorPair(ColorPair const& colorPair)
{
    change(*this, m_statusLine3.colorPair, colorPair, &DataManager::statusLine3ColorPairChanged,
           m_statusLine3.name);
}

void DataManager::setStatusLine3Visible(bool visible)
{
    change(*this, m_statusLine3.visible, visible, &DataManager::statusLine3VisibleChanged,
           m_statusLine3.name);
}

// Status line 4

void DataManager::setStatusLine4Text(QString text)
{
    change(*this, m_statusLine4.text, text, &DataManager::statusLine4TextChanged, m_statusLine4.name);
}

void DataManager::setStatusLine4ColorPair(ColorPair const& colorPair)
{
    change(*this, m_statusLine4.colorPair, colorPair, &DataManager::statusLine4ColorPairChanged,
           m_statusLine4.name);
}

void DataManager::setStatusLine4Visible(bool visible)
{
    change(*this, m_statusLine4.visible, visible, &DataManager::statusLine4VisibleChanged,
           m_statusLine4.name);
}

// Crawler temperature

void DataManager::setCrawlerTemperature(float value)
{
    changeMeasured(*this, m_crawlerTemperature.value, value, &DataManager::crawlerTemperatureChanged);
}

void DataManager::setCrawlerTemperatureFormat(int format)
{
    change(*this, m_crawlerTemperature.format, format, &DataManager::crawlerTemperatureFormatChanged);
}

void DataManager::setCrawlerTemperatureVisible(bool visible)
{
    change(*this, m_crawlerTemperature.visible, visible, &DataManager::crawlerTemperatureVisibleChanged,
           m_crawlerTemperature.name);
}

void DataManager::setCrawlerTemperaturePosition(QPoint const& position)
{
    change(*this, m_crawlerTemperature.position, position, &DataManager::crawlerTemperaturePositionChanged,
           m_crawlerTemperature.name);
}

void DataManager::setCrawlerTemperatureColorPair(ColorPair const& colorPair)
{
    change(*this, m_crawlerTemperature.colorPair, colorPair, &DataManager::crawlerTemperatureColorPairChanged,
           m_crawlerTemperature.name);
}

// Crawler pressure

void DataManager::setCrawlerPressure(float value)
{
    changePressure(*this, m_crawlerPressure.value, value, &DataManager::crawlerPressureChanged);
}

void DataManager::setCrawlerPressureFormat(int format)
{
    change(*this, m_crawlerPressure.format, format, &DataManager::crawlerPressureFormatChanged);
}

void DataManager::setCrawlerPressureVisible(bool visible)
{
    change(*this, m_crawlerPressure.visible, visible, &DataManager::crawlerPressureVisibleChanged,
           m_crawlerPressure.name);
}

void DataManager::setCrawlerPressurePosition(QPoint const& position)
{
    change(*this, m_crawlerPressure.position, position, &DataManager::crawlerPressurePositionChanged,
           m_crawlerPressure.name);
}

void DataManager::setCrawlerPressureColorPair(ColorPair const& colorPair)
{
    change(*this, m_crawlerPressure.colorPair, colorPair, &DataManager::crawlerPressureColorPairChanged,
           m_crawlerPressure.name);
}

// Crawler roll

void DataManager::setCrawlerRollValue(float value)
{
    changeMeasured(*this, m_crawlerRoll.value, value, &DataManager::crawlerRollValueChanged);
}

void DataManager::setCrawlerRollFormat(int format)
{
    change(*this, m_crawlerRoll.format, format, &DataManager::crawlerRollFormatChanged);
}

void DataManager::setCrawlerRollVisible(bool visible)
{
    change(*this, m_crawlerRoll.visible, visible, &DataManager::crawlerRollVisibleChanged,
           m_crawlerRoll.name);
}

void DataManager::setCrawlerRollPosition(QPoint const& position)
{
    change(*this, m_crawlerRoll.position, position, &DataManager::crawlerRollPositionChanged,
           m_crawlerRoll.name);
}

void DataManager::setCrawlerRollColorPair(ColorPair const& colorPair)
{
    change(*this, m_crawlerRoll.colorPair, colorPair, &DataManager::crawlerRollColorPairChanged,
           m_crawlerRoll.name);
}

// Camera tilt

void DataManager::setTiltValue(float value)
{
    changeMeasured(*this, m_tilt.value, value, &DataManager::tiltValueChanged);
}

void DataManager::setTiltFormat(int format)
{
    change(*this, m_tilt.format, format, &DataManager::tiltFormatChanged);
}

void DataManager::setTiltVisible(bool visible)
{
    change(*this, m_tilt.visible, visible, &DataManager::tiltVisibleChanged, m_tilt.name);
}

void DataManager::setTiltPosition(QPoint const& position)
{
    change(*this, m_tilt.position, position, &DataManager::tiltPositionChanged, m_tilt.name);
}

void DataManager::setTiltColorPair(ColorPair const& colorPair)
{
    change(*this, m_tilt.colorPair, colorPair, &DataManager::tiltColorPairChanged, m_tilt.name);
}

// External temperature

void DataManager::setExtTemperatureValue(float value)
{
    changeMeasured(*this, m_extTemperature.value, value, &DataManager::extTemperatureValueChanged);
}

void DataManager::setExtTemperatureFormat(int format)
{
    change(*this, m_extTemperature.format, format, &DataManager::extTemperatureFormatChanged,
           m_extTemperature.name);
}

void DataManager::setExtTemperatureVisible(bool visible)
{
    change(*this, m_extTemperature.visible, visible, &DataManager::extTemperatureVisibleChanged,
           m_extTemperature.name);
}

void DataManager::setExtTemperaturePosition(QPoint const& position)
{
    change(*this, m_extTemperature.position, position, &DataManager::extTemperaturePositionChanged,
           m_extTemperature.name);
}

void DataManager::setExtTemperatureColorPair(ColorPair const& colorPair)
{
    change(*this, m_extTemperature.colorPair, colorPair, &DataManager::extTemperatureColorPairChanged,
           m_extTemperature.name);
}

// Camera temperature

void DataManager::setCameraTemperatureValue(float value)
{
    changeMeasured(*this, m_cameraTemperature.value, value, &DataManager::cameraTemperatureValueChanged);
}

void DataManager::setCameraTemperatureFormat(int format)
{
    change(*this, m_cameraTemperature.format, format, &DataManager::cameraTemperatureFormatChanged);
}

void DataManager::setCameraTemperatureVisible(bool visible)
{
    change(*this, m_cameraTemperature.visible, visible, &DataManager::cameraTemperatureVisibleChanged,
           m_cameraTemperature.name);
}

void DataManager::setCameraTemperaturePosition(QPoint const& position)
{
    change(*this, m_cameraTemperature.position, position, &DataManager::cameraTemperaturePositionChanged,
           m_cameraTemperature.name);
}

void DataManager::setCameraTemperatureColorPair(ColorPair const& colorPair)
{
    change(*this, m_cameraTemperature.colorPair, colorPair, &DataManager::cameraTemperatureColorPairChanged,
           m_cameraTemperature.name);
}

// Camera pressure

void DataManager::setPressureValue(float value)
{
    changePressure(*this, m_pressure.value, value, &DataManager::pressureValueChanged);
}

void DataManager::setPressureFormat(int format)
{
    change(*this, m_pressure.format, format, &DataManager::pressureFormatChanged);
}

void DataManager::setPressureVisible(bool visible)
{
    change(*this, m_pressure.visible, visible, &DataManager::pressureVisibleChanged, m_pressure.name);
}

void DataManager::setPressurePosition(QPoint const& position)
{
    change(*this, m_pressure.position, position, &DataManager::pressurePositionChanged, m_pressure.name);
}

void DataManager::setPressureColorPair(ColorPair const& colorPair)
{
    change(*this, m_pressure.colorPair, colorPair, &DataManager::pressureColorPairChanged, m_pressure.name);
}

// Inclination

void DataManager::setInclinationValue(float value)
{
    changeMeasured(*this, m_inclination.value, value, &DataManager::inclinationValueChanged);
}

void DataManager::setInclinationFormat(int format)
{
    change(*this, m_inclination.format, format, &DataManager::inclinationFormatChanged);
}

void DataManager::setInclinationVisible(bool visible)
{
    change(*this, m_inclination.visible, visible, &DataManager::inclinationVisibleChanged,
           m_inclination.name);
}

void DataManager::setInclinationPosition(QPoint const& position)
{
    change(*this, m_inclination.position, position, &DataManager::inclinationPositionChanged,
           m_inclination.name);
}

void DataManager::setInclinationColorPair(ColorPair const& colorPair)
{
    change(*this, m_inclination.colorPair, colorPair, &DataManager::inclinationColorPairChanged,
           m_inclination.name);
}

// Camera pan

void DataManager::setPanPositionValue(float value)
{
    changeMeasured(*this, m_pan.value, value, &DataManager::panPositionVvalueChanged);
}

void DataManager::setPanPositionFormat(int format)
{
    change(*this, m_pan.format, format, &DataManager::panPositionFormatChanged);
}

void DataManager::setPanVisible(bool visible)
{
    change(*this, m_pan.visible, visible, &DataManager::panPositionVisibleChanged, m_pan.name);
}

void DataManager::setPanPosition(QPoint const& position)
{
    change(*this, m_pan.position, position, &DataManager::panPositionChanged, m_pan.name);
}

void DataManager::setPanPositionColorPair(ColorPair const& colorPair)
{
    change(*this, m_pan.colorPair, colorPair, &DataManager::panPositionColorPairChanged, m_pan.name);
}

// Cable speed

void DataManager::setCableSpeedValue(float value)
{
    changeMeasured(*this, m_cableSpeed.value, value, &DataManager::cableSpeedValueChanged);
}

void DataManager::setCableSpeedFormat(int format)
{
    change(*this, m_cableSpeed.format, format, &DataManager::cableSpeedFormatChanged);
}

void DataManager::setCableSpeedVisible(bool visible)
{
    change(*this, m_cableSpeed.visible, visible, &DataManager::cableSpeedVisibleChanged, m_cableSpeed.name);
}

void DataManager::setCableSpeedPosition(QPoint const& position)
{
    change(*this, m_cableSpeed.position, position, &DataManager::cableSpeedPositionChanged,
           m_cableSpeed.name);
}

void DataManager::setCableSpeedColorPair(ColorPair const& colorPair)
{
    change(*this, m_cableSpeed.colorPair, colorPair, &DataManager::cableSpeedColorPairChanged,
           m_cableSpeed.name);
}

// Free text, cursor, identification, codec

void DataManager::setLineText(QStringList lineText, int duration)
{
    // The duration is compared with a field that nothing writes. Deliberate: the same text with a time-out is
    // shown anew, and its time begins anew, each time it is written.
    if (m_lineText == lineText && m_lineTextDuration == duration) {
        return;
    }
    m_lineText = lineText;
    emit lineTextChanged(ElementParam::NAME_OSD_FREE_TEXT_BOX, lineText, duration);
}

void DataManager::setLineColorPair(ColorPair colorPair)
{
    m_lineColorPair = colorPair;
}

void DataManager::setSoftwareID(QString softwareID)
{
    change(*this, m_softwareID, softwareID, &DataManager::softwareIDChanged);
}

void DataManager::setCursorPosition(int x, int y)
{
    // Announced even if it stays where it is: moving the cursor is what makes the next typed text start
    // afresh.
    m_cursorPosition = QPoint(x, y);
    emit cursorPositionChanged(m_cursorPosition);
}

void DataManager::setTextCodec(TextCodec codec)
{
    m_textCodec = codec;
}

} // namespace Tolvar::Varundo
