#ifndef TOLVAR_VARUNDO_SIMULATOR_STATEREPORT_H
#define TOLVAR_VARUNDO_SIMULATOR_STATEREPORT_H

#include <QJsonArray>
#include <QJsonObject>

namespace Tolvar::Varundo::Simulator {

class SimulatedUnit;
class VirtualSerialLine;

/// The unit's state in JSON: all that a controller can change, and what the host was told. docs/simulator.md
/// lists the fields. GUI thread; must not outlive the unit and the line.
class StateReport
{
public:
    explicit StateReport(const SimulatedUnit& unit, const VirtualSerialLine* serialLine = nullptr);

    QJsonObject toJson() const; ///< as it is now

private:
    QJsonArray elements() const;
    QJsonObject devices() const;
    QJsonArray hostSignals() const;
    QJsonObject clock() const;
    QJsonValue serial() const;

    const SimulatedUnit& m_unit;
    const VirtualSerialLine* m_serialLine;
};

} // namespace Tolvar::Varundo::Simulator

#endif
