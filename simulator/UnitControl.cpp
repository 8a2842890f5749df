#include "UnitControl.h"

#include "DeviceSettings.h"
#include "SimulatedUnit.h"
#include "VirtualSerialLine.h"

#include <QMetaEnum>

namespace Tolvar::Varundo::Simulator {

namespace {

bool failed(QString* error, const QString& what)
{
    *error = what;
    return false;
}

} // namespace

UnitControl::UnitControl(SimulatedUnit& unit, VirtualSerialLine* serialLine)
    : m_unit(unit)
    , m_serialLine(serialLine)
{}

/// By hand, since QMetaEnum also takes a qualified name.
std::optional<Runner::SelectedInterface> UnitControl::interfaceNamed(const QString& name)
{
    const auto interfaces = QMetaEnum::fromType<Runner::SelectedInterface>();
    for (int i = 0; i < interfaces.keyCount(); ++i) {
        if (name == QLatin1String(interfaces.key(i))) {
            return static_cast<Runner::SelectedInterface>(interfaces.value(i));
        }
    }
    return std::nullopt;
}

bool UnitControl::selectInterface(const QString& name, QString* error)
{
    const auto selected = interfaceNamed(name);
    if (!selected) {
        return failed(error, QStringLiteral("interface: expected Serial, Tcp or Udp, got \"%1\"").arg(name));
    }
    m_unit.runner().setInterface(*selected);
    return true;
}

bool UnitControl::loadProfile(const QString& file, QString* error)
{
    return m_unit.loadProfile(file, error);
}

bool UnitControl::setDevices(const QJsonObject& readings, QString* error)
{
    const auto settings = DeviceSettings::read(readings, error);
    if (settings) {
        settings->applyTo(m_unit.devices());
    }
    return settings.has_value();
}

bool UnitControl::setPlugged(bool plugged, QString* error)
{
    if (!m_serialLine) {
        return failed(error, QStringLiteral("there is no serial line; it takes --virtual-serial"));
    }
    if (plugged) {
        return m_serialLine->plug(error);
    }
    m_serialLine->unplug();
    return true;
}

bool UnitControl::togglePlug(QString* error)
{
    return setPlugged(!m_serialLine || !m_serialLine->isPlugged(), error);
}

} // namespace Tolvar::Varundo::Simulator
