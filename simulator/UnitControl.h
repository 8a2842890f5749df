#ifndef TOLVAR_VARUNDO_SIMULATOR_UNITCONTROL_H
#define TOLVAR_VARUNDO_SIMULATOR_UNITCONTROL_H

#include <Tolvar/Varundo/Runner.h>

#include <QString>

#include <optional>

class QJsonObject;

namespace Tolvar::Varundo::Simulator {

class SimulatedUnit;
class VirtualSerialLine;

/// What somebody who stands at the unit can do to it while it runs. Each operation does all of what it was
/// asked for or nothing; then error says why. GUI thread; must not outlive the unit and the line.
class UnitControl
{
public:
    explicit UnitControl(SimulatedUnit& unit, VirtualSerialLine* serialLine = nullptr);

    static std::optional<Runner::SelectedInterface> interfaceNamed(const QString& name);

    bool selectInterface(const QString& name, QString* error);
    /// A file, or the built-in profile for an empty text. The old elements go first.
    bool loadProfile(const QString& file, QString* error);
    bool setDevices(const QJsonObject& readings, QString* error);
    bool setPlugged(bool plugged, QString* error);
    bool togglePlug(QString* error);

private:
    SimulatedUnit& m_unit;
    VirtualSerialLine* m_serialLine;
};

} // namespace Tolvar::Varundo::Simulator

#endif
