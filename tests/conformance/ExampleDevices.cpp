#include "ExampleDevices.h"

#include <CTolvarLibrary.h>

#include <QHash>

#include <functional>

namespace Tolvar::Varundo::Tests {

ExampleDevices::ExampleDevices()
{
    CTolvarLibrary::setReel(&m_reel);
    CTolvarLibrary::setRts(&m_rts);
    CTolvarLibrary::setCrawler(&m_crawler);
    CTolvarLibrary::setCamera(&m_camera);
    CTolvarLibrary::setCameraPositionSensor(&m_positionSensor);
}

ExampleDevices::~ExampleDevices()
{
    CTolvarLibrary::setReel(nullptr);
    CTolvarLibrary::setRts(nullptr);
    CTolvarLibrary::setCrawler(nullptr);
    CTolvarLibrary::setCamera(nullptr);
    CTolvarLibrary::setCameraPositionSensor(nullptr);
}

void ExampleDevices::report()
{
    emit m_reel.calculatedReelSpeedChanged(Speed);
    emit m_rts.rtsTemperatureChanged(ExternalTemperature);
    emit m_crawler.crawlerTemperatureChanged(CrawlerTemperature);
    emit m_crawler.crawlerPressureChanged(CrawlerPressure);
    emit m_crawler.crawlerRollChanged(Roll);
    emit m_crawler.crawlerPitchChanged();
    emit m_camera.panPositionChanged(Pan);
    emit m_camera.tiltPositionChanged(Tilt);
    emit m_camera.cameraTemperatureChanged(CameraTemperature);
    emit m_camera.cameraPressureChanged(CameraPressure);
}

bool ExampleDevices::move(const QStringList& words)
{
    const QHash<QString, std::function<void(float)>> readings{
        {QStringLiteral("reel section"),
         [this](float v) {
             m_reel.section = v;
         }},
        {QStringLiteral("reel sat"),
         [this](float v) {
             m_reel.sat = v;
         }},
        {QStringLiteral("reel total"),
         [this](float v) {
             m_reel.total = v;
         }},
        {QStringLiteral("reel speed"),
         [this](float v) {
             emit m_reel.calculatedReelSpeedChanged(v);
         }},
        {QStringLiteral("rts temperature"),
         [this](float v) {
             emit m_rts.rtsTemperatureChanged(v);
         }},
        {QStringLiteral("crawler temperature"),
         [this](float v) {
             emit m_crawler.crawlerTemperatureChanged(static_cast<int>(v));
         }},
        {QStringLiteral("crawler pressure"),
         [this](float v) {
             emit m_crawler.crawlerPressureChanged(static_cast<int>(v));
         }},
        {QStringLiteral("crawler roll"),
         [this](float v) {
             emit m_crawler.crawlerRollChanged(v);
         }},
        {QStringLiteral("crawler pitch"),
         [this](float v) {
             m_crawler.pitch = v;
             emit m_crawler.crawlerPitchChanged();
         }},
        {QStringLiteral("camera pan"),
         [this](float v) {
             emit m_camera.panPositionChanged(static_cast<short>(v));
         }},
        {QStringLiteral("camera tilt"),
         [this](float v) {
             emit m_camera.tiltPositionChanged(static_cast<short>(v));
         }},
        {QStringLiteral("camera temperature"),
         [this](float v) {
             emit m_camera.cameraTemperatureChanged(static_cast<int>(v));
         }},
        {QStringLiteral("camera pressure"),
         [this](float v) {
             emit m_camera.cameraPressureChanged(static_cast<int>(v));
         }},
    };
    bool isNumber = false;
    const float value = words.value(2).toFloat(&isNumber);
    const auto found = readings.constFind(words.mid(0, 2).join(QLatin1Char(' ')));
    if (words.size() != 3 || !isNumber || found == readings.constEnd()) {
        return false;
    }
    (*found)(value);
    return true;
}

void ExampleDevices::removePositionSensor()
{
    CTolvarLibrary::setCameraPositionSensor(nullptr);
}

} // namespace Tolvar::Varundo::Tests
