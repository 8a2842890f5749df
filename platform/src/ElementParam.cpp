#include <Mavril/VideoOverlay/ElementParam.h>

namespace Mavril::VideoOverlay {

const QString ElementParam::NAME_COLUMNBOUND = QStringLiteral("ColumnBound");
const QString ElementParam::NAME_STATIC_ID = QStringLiteral("StaticId");
const QString ElementParam::NAME_COLUMNCAPTION = QStringLiteral("ColumnCaption");

const QString ElementParam::NAME_SECTION_DISTANCE_COUNTER = QStringLiteral("SectionDistanceCounter");
const QString ElementParam::NAME_SAT_DISTANCE_COUNTER = QStringLiteral("SatDistanceCounter");
const QString ElementParam::NAME_TOTAL_DISTANCE_COUNTER = QStringLiteral("TotalDistanceCounter");
const QString ElementParam::NAME_DATE = QStringLiteral("Date");
const QString ElementParam::NAME_TIME = QStringLiteral("Time");
const QString ElementParam::NAME_VIDEO_TIME_COUNTER = QStringLiteral("VideoTimeCounter");
const QString ElementParam::NAME_STATUS_TEXT_1 = QStringLiteral("1");
const QString ElementParam::NAME_STATUS_TEXT_2 = QStringLiteral("2");
const QString ElementParam::NAME_STATUS_TEXT_3 = QStringLiteral("3");
const QString ElementParam::NAME_STATUS_TEXT_4 = QStringLiteral("4");
const QString ElementParam::NAME_CRAWLER_TEMPERATURE = QStringLiteral("CrawlerTemperature");
const QString ElementParam::NAME_CRAWLER_PRESSURE = QStringLiteral("CrawlerPressure");
const QString ElementParam::NAME_CRAWLER_ROLL = QStringLiteral("CrawlerRoll");
const QString ElementParam::NAME_CRAWLER_PITCH = QStringLiteral("CrawlerPitch");
const QString ElementParam::NAME_CAMERA_TILT = QStringLiteral("CameraTilt");
const QString ElementParam::NAME_CAMERA_PAN = QStringLiteral("CameraPan");
const QString ElementParam::NAME_CAMERA_TEMPERATURE = QStringLiteral("CameraTemperature");
const QString ElementParam::NAME_CAMERA_PRESSURE = QStringLiteral("CameraPressure");
const QString ElementParam::NAME_OBJECT_TEMPERATURE = QStringLiteral("ObjectTemperature");
const QString ElementParam::NAME_SPEED = QStringLiteral("Speed");
const QString ElementParam::NAME_OSD_FREE_TEXT_BOX = QStringLiteral("OsdFreeTextBox");

} // namespace Mavril::VideoOverlay
