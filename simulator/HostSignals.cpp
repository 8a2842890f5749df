#include "HostSignals.h"

#include <Tolvar/Varundo/Runner.h>

#include <QMetaEnum>

namespace Tolvar::Varundo::Simulator {

HostSignals::HostSignals(const Runner& runner, QObject* parent)
    : QObject(parent)
{
    const auto recordCall = [this, &runner](const QString& name, void (Runner::*call)()) {
        connect(&runner, call, this, [this, name] { record(name); });
    };
    recordCall(QStringLiteral("execute3dMeasurementMainPipeActivate"),
               &Runner::execute3dMeasurementMainPipeActivate);
    recordCall(QStringLiteral("execute3dMeasurementLateralActivate"),
               &Runner::execute3dMeasurementLateralActivate);
    recordCall(QStringLiteral("execute3dMeasurementDeactivate"), &Runner::execute3dMeasurementDeactivate);

    const auto recordDistance = [this, &runner](const QString& name, void (Runner::*set)(float)) {
        connect(&runner, set, this,
                [this, name](float distance) { record(name, {static_cast<double>(distance)}); });
    };
    recordDistance(QStringLiteral("setDistanceCounterSection"), &Runner::setDistanceCounterSection);
    recordDistance(QStringLiteral("setDistanceCounterTotal"), &Runner::setDistanceCounterTotal);
    recordDistance(QStringLiteral("setDistanceCounterSat"), &Runner::setDistanceCounterSat);

    connect(&runner, &Runner::interfaceChanged, this, [this](Runner::SelectedInterface selected) {
        record(QStringLiteral("interfaceChanged"),
               {QLatin1String(QMetaEnum::fromType<Runner::SelectedInterface>().valueToKey(selected))});
    });
    connect(&runner, &Runner::writeVideoCounter, this, [this](int hours, int minutes, int seconds) {
        record(QStringLiteral("writeVideoCounter"), {hours, minutes, seconds});
    });
    connect(&runner, &Runner::writeMeasurement3DPosition, this, [this](double x, double y, double z) {
        record(QStringLiteral("writeMeasurement3DPosition"), {x, y, z});
    });
    connect(&runner, &Runner::writeMeasurement3DOrientation, this, [this](float xyangle, float zangle) {
        record(QStringLiteral("writeMeasurement3DOrientation"),
               {static_cast<double>(xyangle), static_cast<double>(zangle)});
    });
}

void HostSignals::record(const QString& name, const QJsonArray& arguments)
{
    if (m_entries.size() == MaxEntries) {
        m_entries.removeFirst();
    }
    m_entries.append({name, arguments});
}

} // namespace Tolvar::Varundo::Simulator
