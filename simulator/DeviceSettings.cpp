#include "DeviceSettings.h"

#include "JsonWords.h"
#include "SimulatedDevices.h"

#include <QJsonArray>

#include <cmath>
#include <limits>

namespace Tolvar::Varundo::Simulator {

namespace {

using Values = const QVector<double>&;
using Devices = SimulatedDevices&;

/// What a device can hold.
struct Range
{
    double lowest;
    double highest;
    bool isWhole;
};

template <typename Number>
constexpr Range rangeOf()
{
    return {static_cast<double>(std::numeric_limits<Number>::lowest()),
            static_cast<double>(std::numeric_limits<Number>::max()), std::numeric_limits<Number>::is_integer};
}

struct Field
{
    const char* device;
    const char* name;
    int count; // 1: a number; more: an array of so many
    Range range;
    DeviceSettings::Setter set;
};

float real(Values values)
{
    return static_cast<float>(values.constFirst());
}

int whole(Values values)
{
    return static_cast<int>(values.constFirst());
}

short angle(Values values)
{
    return static_cast<short>(values.constFirst());
}

constexpr const char* sensorName = "positionSensor";

// clang-format off
constexpr Field fields[] = {
    {"reel", "speed", 1, rangeOf<float>(), [](Devices devices, Values v) { devices.reel().setSpeed(real(v)); }},
    {"reel", "section", 1, rangeOf<float>(), [](Devices devices, Values v) { devices.reel().setSectionDistance(real(v)); }},
    {"reel", "sat", 1, rangeOf<float>(), [](Devices devices, Values v) { devices.reel().setSatDistance(real(v)); }},
    {"reel", "total", 1, rangeOf<float>(), [](Devices devices, Values v) { devices.reel().setTotalDistance(real(v)); }},
    {"rts", "temperature", 1, rangeOf<float>(), [](Devices devices, Values v) { devices.rts().setTemperature(real(v)); }},
    {"crawler", "temperature", 1, rangeOf<int>(), [](Devices devices, Values v) { devices.crawler().setTemperature(whole(v)); }},
    {"crawler", "pressure", 1, rangeOf<int>(), [](Devices devices, Values v) { devices.crawler().setPressure(whole(v)); }},
    {"crawler", "roll", 1, rangeOf<float>(), [](Devices devices, Values v) { devices.crawler().setRoll(real(v)); }},
    {"crawler", "pitch", 1, rangeOf<float>(), [](Devices devices, Values v) { devices.crawler().setPitch(real(v)); }},
    {"camera", "pan", 1, rangeOf<short>(), [](Devices devices, Values v) { devices.camera().setPan(angle(v)); }},
    {"camera", "tilt", 1, rangeOf<short>(), [](Devices devices, Values v) { devices.camera().setTilt(angle(v)); }},
    {"camera", "temperature", 1, rangeOf<int>(), [](Devices devices, Values v) { devices.camera().setTemperature(whole(v)); }},
    {"camera", "pressure", 1, rangeOf<int>(), [](Devices devices, Values v) { devices.camera().setPressure(whole(v)); }},
    {"camera", "laser", 2, rangeOf<double>(), [](Devices devices, Values v) { devices.camera().setLaserCalibration(v[0], v[1]); }},
    {sensorName, "position", 3, rangeOf<double>(), [](Devices devices, Values v) { devices.positionSensor()->setPosition({v[0], v[1], v[2]}); }},
    {sensorName, "angle", 1, rangeOf<float>(), [](Devices devices, Values v) { devices.positionSensor()->setAngle(real(v)); }},
};
// clang-format on

QStringList fieldNames(const QString& device)
{
    QStringList names;
    for (const Field& field : fields) {
        if (device == QLatin1String(field.device)) {
            names.append(QLatin1String(field.name));
        }
    }
    return names;
}

QString inWords(const Range& range)
{
    return QStringLiteral("%1 from %2 to %3")
        .arg(range.isWhole ? QStringLiteral("an integer") : QStringLiteral("a number"))
        .arg(range.lowest, 0, 'g', 10)
        .arg(range.highest, 0, 'g', 10);
}

bool isNumberWithin(const Range& range, const QJsonValue& json)
{
    const double number = json.toDouble(std::nan(""));
    return number >= range.lowest && number <= range.highest &&
           (!range.isWhole || number == std::floor(number));
}

/// Empty, and an error without its place, if the JSON is not what the field takes.
QVector<double> readValues(const Field& field, const QJsonValue& json, QString* error)
{
    if (field.count > 1 && (!json.isArray() || json.toArray().size() != field.count)) {
        *error = JsonWords::expected(QStringLiteral("an array of %1 numbers").arg(field.count), json);
        if (json.isArray()) {
            *error += QStringLiteral(" of %1").arg(json.toArray().size());
        }
        return {};
    }
    const QJsonArray numbers = field.count > 1 ? json.toArray() : QJsonArray{json};
    QVector<double> values;
    for (const QJsonValue& number : numbers) {
        if (!isNumberWithin(field.range, number)) {
            *error = JsonWords::expected(inWords(field.range), number);
            return {};
        }
        values.append(number.toDouble());
    }
    return values;
}

} // namespace

std::optional<DeviceSettings> DeviceSettings::read(const QJsonObject& json, QString* error)
{
    *error = JsonWords::unknownField(json, deviceNames());
    if (!error->isEmpty()) {
        return std::nullopt;
    }
    DeviceSettings settings;
    for (auto device = json.constBegin(); device != json.constEnd(); ++device) {
        if (!settings.readDevice(device.key(), device.value(), error)) {
            return std::nullopt;
        }
    }
    return settings;
}

QStringList DeviceSettings::deviceNames()
{
    QStringList names;
    for (const Field& field : fields) {
        if (!names.contains(QLatin1String(field.device))) {
            names.append(QLatin1String(field.device));
        }
    }
    return names;
}

void DeviceSettings::applyTo(SimulatedDevices& devices) const
{
    for (const Setting& setting : m_settings) {
        setting.set(devices, setting.values);
    }
}

bool DeviceSettings::readDevice(const QString& device, const QJsonValue& json, QString* error)
{
    const bool isSensor = device == QLatin1String(sensorName);
    if (!json.isObject() && !(isSensor && json.isNull())) {
        const QString what = isSensor ? QStringLiteral("an object or null") : QStringLiteral("an object");
        *error = device + QStringLiteral(": ") + JsonWords::expected(what, json);
        return false;
    }
    if (isSensor) {
        // Before its fields, which need it to be there.
        m_settings.append({[](Devices devices, Values v) { devices.setPositionSensorPresent(v[0] != 0.0); },
                           {json.isNull() ? 0.0 : 1.0}});
    }
    return readFields(device, json.toObject(), error);
}

bool DeviceSettings::readFields(const QString& device, const QJsonObject& json, QString* error)
{
    const QString unknown = JsonWords::unknownField(json, fieldNames(device));
    if (!unknown.isEmpty()) {
        *error = device + QStringLiteral(": ") + unknown;
        return false;
    }
    for (const Field& field : fields) {
        const QString name = QLatin1String(field.name);
        if (device != QLatin1String(field.device) || !json.contains(name)) {
            continue;
        }
        QString what;
        const QVector<double> values = readValues(field, json.value(name), &what);
        if (values.isEmpty()) {
            *error = QStringLiteral("%1.%2: %3").arg(device, name, what);
            return false;
        }
        m_settings.append({field.set, values});
    }
    return true;
}

} // namespace Tolvar::Varundo::Simulator
