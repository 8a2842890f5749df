#include "ElementTexts.h"

#include "SimulatedClock.h"
#include "SimulatedDevices.h"
#include "VideoCounter.h"

#include <Mavril/VideoOverlay/CVideoOverlayText.h>
#include <Tolvar/Varundo/DataManager.h>

#include <QtMath>

namespace Tolvar::Varundo::Simulator {

using Mavril::VideoOverlay::ElementParam;
using Shown = ElementTexts::Shown;

namespace {

constexpr int gradientFormat = 0; // the inclination's format that controllers know as percent

QString decimal(double value, int decimals)
{
    const QString text = QString::number(value, 'f', decimals);
    // A reading that rounds to nothing has no sign: -0.04 degrees are 0.0, and do not flicker to -0.0.
    return text.toDouble() == 0.0 ? QString::number(0.0, 'f', decimals) : text;
}

Shown decimal(float value, int decimals, const QString& unit)
{
    return {QString(), decimal(static_cast<double>(value), decimals), unit};
}

Shown integer(int value, const QString& unit)
{
    return {QString(), QString::number(value), unit};
}

/// The devices report degrees Celsius; the element's unit says what is wanted.
Shown temperature(double celsius, int decimals, const QString& unit)
{
    const bool inFahrenheit = unit == QStringLiteral("°F");
    return {QString(), decimal(inFahrenheit ? celsius * 9.0 / 5.0 + 32.0 : celsius, decimals), unit};
}

/// The one value whose unit follows from its format.
Shown inclination(float pitch, int format)
{
    const auto degrees = static_cast<double>(pitch);
    if (format == gradientFormat) {
        return {QString(), decimal(qTan(qDegreesToRadians(degrees)) * 100.0, 1), QStringLiteral("%")};
    }
    return {QString(), decimal(degrees, 1), QStringLiteral("°")};
}

} // namespace

ElementTexts::ElementTexts(const SimulatedDevices& devices, const SimulatedClock& clock,
                           const VideoCounter& counter, const DataManager& dataManager)
{
    const SimulatedReel& reel = devices.reel();
    const SimulatedRts& rts = devices.rts();
    const SimulatedCrawler& crawler = devices.crawler();
    const SimulatedCamera& camera = devices.camera();
    using Name = ElementParam;
    using Unit = const QString&;
    m_values = {
        {Name::NAME_SECTION_DISTANCE_COUNTER,
         [&reel](Unit unit) {
             return decimal(reel.sectionDistance(), 2, unit);
         }},
        {Name::NAME_SAT_DISTANCE_COUNTER,
         [&reel](Unit unit) {
             return decimal(reel.satDistance(), 2, unit);
         }},
        {Name::NAME_TOTAL_DISTANCE_COUNTER,
         [&reel](Unit unit) {
             return decimal(reel.totalDistance(), 2, unit);
         }},
        {Name::NAME_SPEED,
         [&reel](Unit unit) {
             return decimal(reel.speed(), 1, unit);
         }},
        {Name::NAME_DATE,
         [&clock](Unit unit) {
             return Shown{QString(), clock.now().toString(QStringLiteral("dd.MM.yyyy")), unit};
         }},
        {Name::NAME_TIME,
         [&clock](Unit unit) {
             return Shown{QString(), clock.now().toString(QStringLiteral("hh:mm:ss")), unit};
         }},
        {Name::NAME_VIDEO_TIME_COUNTER,
         [&counter](Unit unit) {
             return Shown{QString(), counter.toText(), unit};
         }},
        {Name::NAME_CRAWLER_TEMPERATURE,
         [&crawler](Unit unit) {
             return temperature(crawler.temperature(), 0, unit);
         }},
        {Name::NAME_CRAWLER_PRESSURE,
         [&crawler](Unit unit) {
             return integer(crawler.pressure(), unit);
         }},
        {Name::NAME_CRAWLER_ROLL,
         [&crawler](Unit unit) {
             return decimal(crawler.roll(), 1, unit);
         }},
        {Name::NAME_CRAWLER_PITCH,
         [&crawler, &dataManager](Unit) {
             return inclination(crawler.crawlerPitch(), dataManager.inclinationFormat());
         }},
        {Name::NAME_CAMERA_TILT,
         [&camera](Unit unit) {
             return integer(camera.tilt(), unit);
         }},
        {Name::NAME_CAMERA_PAN,
         [&camera](Unit unit) {
             return integer(camera.pan(), unit);
         }},
        {Name::NAME_CAMERA_TEMPERATURE,
         [&camera](Unit unit) {
             return temperature(camera.temperature(), 0, unit);
         }},
        {Name::NAME_CAMERA_PRESSURE,
         [&camera](Unit unit) {
             return integer(camera.pressure(), unit);
         }},
        {Name::NAME_OBJECT_TEMPERATURE,
         [&rts](Unit unit) {
             return temperature(static_cast<double>(rts.temperature()), 1, unit);
         }},
    };
}

Shown ElementTexts::of(Mavril::VideoOverlay::CVideoOverlayText& element) const
{
    const QString binding = element.getParamObject().value(ElementParam::NAME_COLUMNBOUND).toString();
    const Value value = m_values.value(binding);
    if (!value) {
        return {QString(), element.text(), element.unit()};
    }
    Shown shown = value(element.unit());
    shown.label = element.text();
    return shown;
}

QString Shown::inWhole() const
{
    if (text.isEmpty()) {
        return QString();
    }
    // An angle's degree sign belongs to its number; any other unit stands apart from it.
    const bool apart = !unit.isEmpty() && unit != QStringLiteral("°");
    return (label.isEmpty() ? QString() : label + QLatin1Char(' ')) + text +
           (apart ? QStringLiteral(" ") : QString()) + unit;
}

} // namespace Tolvar::Varundo::Simulator
