#include "SimulatedUnit.h"

#include <CApplicationSettings.h>
#include <Tolvar/Varundo/DataManager.h>

#include <QLoggingCategory>
#include <QMetaEnum>

/// Resources of a static library have to be asked for; the macro works outside of namespaces only.
static void useBuiltInProfile()
{
    Q_INIT_RESOURCE(simulator);
}

namespace Tolvar::Varundo::Simulator {

namespace {

/// The Runner reads the stored interface when it is made. A fresh unit serves the network, since most desks
/// have no serial adapter.
void storeInterface(const std::optional<Runner::SelectedInterface>& chosen)
{
    const QString key = QStringLiteral("ZEL_INTERFACE");
    CApplicationSettings* const settings = CApplicationSettings::instance();
    if (chosen || settings->getCustomSetting(key, QString()).isEmpty()) {
        const auto interfaces = QMetaEnum::fromType<Runner::SelectedInterface>();
        settings->setCustomSetting(key, QLatin1String(interfaces.valueToKey(chosen.value_or(Runner::Tcp))));
    }
}

/// Before the Runner: from its first moment on the settings are as they should be.
SimulatedUnit::Configuration prepared(const SimulatedUnit::Configuration& configuration)
{
    useBuiltInProfile();
    storeInterface(configuration.interface);
    // A Runner first listens on the default port, which another simulator may well have; that is no news.
    QLoggingCategory::setFilterRules(QStringLiteral("varundo.transport.warning=false"));
    return configuration;
}

/// What the library reads out as the counter of a fresh unit is what its picture shows.
VideoCounter counterOf(const DataManager& data)
{
    return {data.videoCounterHours(), data.videoCounterMinutes(), data.videoCounterSeconds()};
}

} // namespace

SimulatedUnit::SimulatedUnit(const Configuration& configuration, QObject* parent)
    : QObject(parent)
    , m_profile(prepared(configuration).profile)
    , m_clock(configuration.clock)
    , m_runner(&m_controlBackend, &m_overlay, &m_elementAccessor)
    , m_videoCounter(counterOf(*m_runner.getDataManager()))
    , m_elementTexts(m_devices, m_clock, m_videoCounter, *m_runner.getDataManager())
    , m_hostSignals(m_runner)
{
    m_runner.setZelTcpPort(configuration.tcpPort);
    QLoggingCategory::setFilterRules(QString());
    m_overlay.setElementAccessor(&m_elementAccessor);
    m_devices.announce();
    followCounters();
    followMeasurement();
}

bool SimulatedUnit::start(QString* error)
{
    return loadProfile(m_profile, error);
}

bool SimulatedUnit::loadProfile(const QString& file, QString* error)
{
    return m_overlay.loadProfile(file.isEmpty() ? QStringLiteral(":/profiles/default.json") : file, error);
}

void SimulatedUnit::followCounters()
{
    connect(&m_runner, &Runner::setDistanceCounterSection, this,
            [this](float metres) { m_devices.reel().setSectionDistance(metres); });
    connect(&m_runner, &Runner::setDistanceCounterSat, this,
            [this](float metres) { m_devices.reel().setSatDistance(metres); });
    connect(&m_runner, &Runner::setDistanceCounterTotal, this,
            [this](float metres) { m_devices.reel().setTotalDistance(metres); });
    connect(&m_runner, &Runner::writeVideoCounter, this, [this](int hours, int minutes, int seconds) {
        m_videoCounter = {hours, minutes, seconds};
    });
}

/// The sensor has one angle, that in the horizontal plane.
void SimulatedUnit::followMeasurement()
{
    connect(&m_runner, &Runner::writeMeasurement3DPosition, this, [this](double x, double y, double z) {
        if (auto* const sensor = m_devices.positionSensor()) {
            sensor->setPosition({x, y, z});
        }
    });
    connect(&m_runner, &Runner::writeMeasurement3DOrientation, this, [this](float xyangle, float) {
        if (auto* const sensor = m_devices.positionSensor()) {
            sensor->setAngle(xyangle);
        }
    });
}

} // namespace Tolvar::Varundo::Simulator
