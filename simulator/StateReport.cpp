#include "StateReport.h"

#include "SimulatedUnit.h"
#include "VirtualSerialLine.h"

#include <Mavril/VideoOverlay/CVideoOverlayManager.h>
#include <Mavril/VideoOverlay/CVideoOverlayText.h>

#include <QColor>
#include <QMetaEnum>
#include <QMutexLocker>

#include <utility>

namespace Tolvar::Varundo::Simulator {

using Mavril::VideoOverlay::CVideoOverlayElement;
using Mavril::VideoOverlay::CVideoOverlayText;
using Mavril::VideoOverlay::ElementParam;

namespace {

/// What identifies an element also says what it is; what controllers made has nothing of it. In the order in
/// which the accessor looks for a key.
void addIdentity(QJsonObject& json, const ElementParam& params)
{
    const std::pair<const QString&, QString> kinds[] = {
        {ElementParam::NAME_COLUMNBOUND, QStringLiteral("bound")},
        {ElementParam::NAME_STATIC_ID, QStringLiteral("static")},
        {ElementParam::NAME_COLUMNCAPTION, QStringLiteral("free")},
    };
    QString key;
    QString kind = QStringLiteral("custom");
    for (const auto& [parameter, itsKind] : kinds) {
        if (key.isEmpty()) {
            key = params.value(parameter).toString();
            kind = key.isEmpty() ? kind : itsKind;
        }
    }
    json.insert(QStringLiteral("key"), key);
    json.insert(QStringLiteral("kind"), kind);
}

/// As drawn: what was never set is white on nothing.
QString colorText(const QColor& color, const QColor& unset)
{
    return (color.isValid() ? color : unset).name(QColor::HexArgb).toUpper();
}

void addText(QJsonObject& json, const CVideoOverlayText& element, const ElementTexts::Shown& shown)
{
    json.insert(QStringLiteral("label"), shown.label);
    json.insert(QStringLiteral("text"), shown.text);
    json.insert(QStringLiteral("unit"), shown.unit);
    json.insert(QStringLiteral("timeout"), element.timeout());
    json.insert(QStringLiteral("textColor"), colorText(element.textColor(), Qt::white));
    json.insert(QStringLiteral("backgroundColor"), colorText(element.backgroundColor(), Qt::transparent));
}

QJsonValue interfaceJson(Runner::SelectedInterface selected)
{
    const char* const key = QMetaEnum::fromType<Runner::SelectedInterface>().valueToKey(selected);
    return key ? QJsonValue(QLatin1String(key)) : QJsonValue(QJsonValue::Null);
}

QJsonValue sensorJson(const SimulatedCameraPositionSensor* sensor)
{
    if (!sensor) {
        return QJsonValue::Null;
    }
    const Position3D position = sensor->position();
    return QJsonObject{{QStringLiteral("position"), QJsonArray{position.x, position.y, position.z}},
                       {QStringLiteral("angle"), static_cast<double>(sensor->angle())}};
}

/// Null for what the clock was never told, and a word for what it was told in vain.
template <typename Moment>
QJsonValue toldJson(const std::optional<Moment>& told)
{
    if (!told) {
        return QJsonValue::Null;
    }
    return told->isValid() ? told->toString(Qt::ISODate) : QStringLiteral("invalid");
}

} // namespace

StateReport::StateReport(const SimulatedUnit& unit, const VirtualSerialLine* serialLine)
    : m_unit(unit)
    , m_serialLine(serialLine)
{}

QJsonObject StateReport::toJson() const
{
    return {{QStringLiteral("interface"), interfaceJson(m_unit.runner().interface())},
            {QStringLiteral("tcpPort"), m_unit.runner().zelTcpPort()},
            {QStringLiteral("baudrate"), m_unit.runner().baudrate()},
            {QStringLiteral("serial"), serial()},
            {QStringLiteral("overlayVisible"), m_unit.controlBackend().overlayVisible()},
            {QStringLiteral("elements"), elements()},
            {QStringLiteral("devices"), devices()},
            {QStringLiteral("signals"), hostSignals()},
            {QStringLiteral("clock"), clock()}};
}

QJsonArray StateReport::elements() const
{
    QJsonArray array;
    const QMutexLocker locker(m_unit.overlay().mutex());
    const auto list = m_unit.overlay().getElementList();
    for (CVideoOverlayElement* const element : list) {
        QJsonObject json{{QStringLiteral("row"), element->row()},
                         {QStringLiteral("column"), element->column()},
                         {QStringLiteral("enabled"), element->enabled()},
                         {QStringLiteral("visible"), element->visible()},
                         {QStringLiteral("type"), element->type()}};
        addIdentity(json, element->getParamObject());
        if (auto* const text = qobject_cast<CVideoOverlayText*>(element)) {
            addText(json, *text, m_unit.elementTexts().of(*text));
        } else {
            json.insert(QStringLiteral("kind"), QStringLiteral("plain"));
        }
        array.append(json);
    }
    return array;
}

QJsonObject StateReport::devices() const
{
    const SimulatedReel& reel = m_unit.devices().reel();
    const SimulatedCrawler& crawler = m_unit.devices().crawler();
    const SimulatedCamera& camera = m_unit.devices().camera();
    double first = 0.0;
    double second = 0.0;
    camera.laserCalibration(first, second);
    return {{QStringLiteral("reel"),
             QJsonObject{{QStringLiteral("speed"), static_cast<double>(reel.speed())},
                         {QStringLiteral("section"), static_cast<double>(reel.sectionDistance())},
                         {QStringLiteral("sat"), static_cast<double>(reel.satDistance())},
                         {QStringLiteral("total"), static_cast<double>(reel.totalDistance())}}},
            {QStringLiteral("rts"), QJsonObject{{QStringLiteral("temperature"),
                                                 static_cast<double>(m_unit.devices().rts().temperature())}}},
            {QStringLiteral("crawler"),
             QJsonObject{{QStringLiteral("temperature"), crawler.temperature()},
                         {QStringLiteral("pressure"), crawler.pressure()},
                         {QStringLiteral("roll"), static_cast<double>(crawler.roll())},
                         {QStringLiteral("pitch"), static_cast<double>(crawler.crawlerPitch())}}},
            {QStringLiteral("camera"), QJsonObject{{QStringLiteral("pan"), camera.pan()},
                                                   {QStringLiteral("tilt"), camera.tilt()},
                                                   {QStringLiteral("temperature"), camera.temperature()},
                                                   {QStringLiteral("pressure"), camera.pressure()},
                                                   {QStringLiteral("laser"), QJsonArray{first, second}}}},
            {QStringLiteral("positionSensor"), sensorJson(m_unit.devices().positionSensor())}};
}

QJsonArray StateReport::hostSignals() const
{
    QJsonArray array;
    for (const HostSignals::Entry& entry : m_unit.hostSignals().entries()) {
        array.append(QJsonObject{{QStringLiteral("name"), entry.name},
                                 {QStringLiteral("arguments"), entry.arguments}});
    }
    return array;
}

QJsonObject StateReport::clock() const
{
    const SimulatedClock& clock = m_unit.clock();
    return {{QStringLiteral("dateTime"), toldJson(clock.toldDateTime())},
            {QStringLiteral("time"), toldJson(clock.toldTime())},
            {QStringLiteral("drawn"), clock.now().toString(Qt::ISODate)}};
}

QJsonValue StateReport::serial() const
{
    if (!m_serialLine) {
        return QJsonValue::Null;
    }
    return QJsonObject{{QStringLiteral("device"), VirtualSerialLine::device()},
                       {QStringLiteral("controller"), m_serialLine->controller()},
                       {QStringLiteral("plugged"), m_serialLine->isPlugged()}};
}

} // namespace Tolvar::Varundo::Simulator
