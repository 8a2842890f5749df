#include <Mavril/VideoOverlay/ElementParam.h>

namespace Mavril::VideoOverlay {

const QString ElementParam::NAME_COLUMNBOUND = QStringLiteral("bound");
const QString ElementParam::NAME_STATIC_ID = QStringLiteral("static");
const QString ElementParam::NAME_COLUMNCAPTION = QStringLiteral("free");

// What the unit calls its elements is its own affair, but for the status texts: those are the static ids.
const QString ElementParam::NAME_SECTION_DISTANCE_COUNTER = QStringLiteral("section-distance");
const QString ElementParam::NAME_SAT_DISTANCE_COUNTER = QStringLiteral("sat-distance");
const QString ElementParam::NAME_TOTAL_DISTANCE_COUNTER = QStringLiteral("total-distance");
const QString ElementParam::NAME_DATE = QStringLiteral("date");
const QString ElementParam::NAME_TIME = QStringLiteral("time");
const QString ElementParam::NAME_VIDEO_TIME_COUNTER = QStringLiteral("video-time");
const QString ElementParam::NAME_STATUS_TEXT_1 = QStringLiteral("1");
const QString ElementParam::NAME_STATUS_TEXT_2 = QStringLiteral("2");
const QString ElementParam::NAME_STATUS_TEXT_3 = QStringLiteral("3");
const QString ElementParam::NAME_STATUS_TEXT_4 = QStringLiteral("4");
const QString ElementParam::NAME_CRAWLER_TEMPERATURE = QStringLiteral("crawler-temperature");
const QString ElementParam::NAME_CRAWLER_PRESSURE = QStringLiteral("crawler-pressure");
const QString ElementParam::NAME_CRAWLER_ROLL = QStringLiteral("crawler-roll");
const QString ElementParam::NAME_CRAWLER_PITCH = QStringLiteral("crawler-pitch");
const QString ElementParam::NAME_CAMERA_TILT = QStringLiteral("camera-tilt");
const QString ElementParam::NAME_CAMERA_PAN = QStringLiteral("camera-pan");
const QString ElementParam::NAME_CAMERA_TEMPERATURE = QStringLiteral("camera-temperature");
const QString ElementParam::NAME_CAMERA_PRESSURE = QStringLiteral("camera-pressure");
const QString ElementParam::NAME_OBJECT_TEMPERATURE = QStringLiteral("object-temperature");
const QString ElementParam::NAME_SPEED = QStringLiteral("speed");
const QString ElementParam::NAME_OSD_FREE_TEXT_BOX = QStringLiteral("free-text");

} // namespace Mavril::VideoOverlay
