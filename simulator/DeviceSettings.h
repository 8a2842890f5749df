#ifndef TOLVAR_VARUNDO_SIMULATOR_DEVICESETTINGS_H
#define TOLVAR_VARUNDO_SIMULATOR_DEVICESETTINGS_H

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

namespace Tolvar::Varundo::Simulator {

class SimulatedDevices;

/// Readings to be set on the devices, in any selection: `{"reel": {"speed": 0.2}, "positionSensor": null}`.
/// docs/simulator.md lists the fields. A plain value; checked as a whole before anything of it is set.
class DeviceSettings
{
public:
    /// Sets one field; it gets as many values as the field has.
    using Setter = void (*)(SimulatedDevices& devices, const QVector<double>& values);

    /// Nothing if a field is unknown, of the wrong type or out of range; error then names it.
    static std::optional<DeviceSettings> read(const QJsonObject& json, QString* error);

    static QStringList deviceNames(); ///< the fields that read() takes

    /// Each device reports what was given, also what has not changed.
    void applyTo(SimulatedDevices& devices) const;

private:
    struct Setting
    {
        Setter set;
        QVector<double> values;
    };

    bool readDevice(const QString& device, const QJsonValue& json, QString* error);
    bool readFields(const QString& device, const QJsonObject& json, QString* error);

    QVector<Setting> m_settings;
};

} // namespace Tolvar::Varundo::Simulator

#endif
