#ifndef TOLVAR_VARUNDO_SIMULATOR_DEVICESCRIPT_H
#define TOLVAR_VARUNDO_SIMULATOR_DEVICESCRIPT_H

#include "DeviceSettings.h"

#include <QByteArray>
#include <QString>
#include <QVector>

#include <optional>

namespace Tolvar::Varundo::Simulator {

/// How the devices move while the simulator runs: readings, and when they are set. Read whole or not at all;
/// docs/simulator.md tells what may stand in the file. A plain value.
class DeviceScript
{
public:
    static constexpr int MaxBytes = 8 * 1024 * 1024;
    static constexpr int MaxSteps = 100'000;
    static constexpr int LatestStepMs = 7 * 24 * 60 * 60 * 1000; ///< a week
    static constexpr int ShortestRoundMs = 100; ///< a repeated script must leave the unit time for others

    struct Step
    {
        int atMs; ///< since the script was started, or since its last step when it repeats
        DeviceSettings settings;
    };

    /// Errors say what is wrong and where: `FILE: steps[3].reel.speed: ...`.
    static std::optional<DeviceScript> readFile(const QString& file, QString* error);

    bool repeats() const { return m_repeats; }
    const QVector<Step>& steps() const { return m_steps; } ///< at least one, none before the one in front

private:
    bool parse(const QByteArray& json, QString* error);
    bool readRoot(const QJsonObject& root, QString* error);
    bool readStep(const QJsonValue& json, QString* error);

    bool m_repeats = false;
    QVector<Step> m_steps;
};

} // namespace Tolvar::Varundo::Simulator

#endif
