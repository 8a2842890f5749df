#ifndef TOLVAR_VARUNDO_SIMULATOR_SIMULATEDUNIT_H
#define TOLVAR_VARUNDO_SIMULATOR_SIMULATEDUNIT_H

#include "ControlBackend.h"
#include "ElementTexts.h"
#include "HostSignals.h"
#include "SimulatedClock.h"
#include "SimulatedDevices.h"
#include "VideoCounter.h"

#include <Mavril/VideoOverlay/CVideoOverlayManager.h>
#include <Tolvar/Varundo/Runner.h>
#include <Tolvar/Varundo/ZelVideoOverlayElementAccessor.h>

#include <QDateTime>
#include <QObject>
#include <QString>

#include <optional>

namespace Tolvar::Varundo::Simulator {

/// A whole unit: the host's objects, the one Runner between them, and what a host does with the Runner's
/// signals. It shows how a host is put together.
///
/// Lives in the GUI thread; owned by main(). One a process, as on the real unit: the library's transports
/// outlive their Runner.
class SimulatedUnit final : public QObject
{
    Q_OBJECT

public:
    struct Configuration
    {
        std::optional<Runner::SelectedInterface> interface; ///< kept; without one, the stored one or Tcp
        int tcpPort = 0;                                    ///< 1 to 65535
        QDateTime clock;                                    ///< where the drawn clock starts; invalid: now
        QString profile;                                    ///< a file; empty: the built-in one
    };

    /// Everything but the overlay's elements stands afterwards. Whether the TCP port could be had is for the
    /// caller to find out, and to tell: the library's own warning about it is not printed.
    explicit SimulatedUnit(const Configuration& configuration, QObject* parent = nullptr);

    /// Loads the profile. When that fails, error says what is wrong with it, and the unit is no use.
    bool start(QString* error);
    /// Another one, or the built-in one for an empty text. A bad one changes nothing.
    bool loadProfile(const QString& file, QString* error);

    const Runner& runner() const { return m_runner; }
    Runner& runner() { return m_runner; }
    const SimulatedDevices& devices() const { return m_devices; }
    SimulatedDevices& devices() { return m_devices; }
    const SimulatedClock& clock() const { return m_clock; }
    const ControlBackend& controlBackend() const { return m_controlBackend; }
    const Mavril::VideoOverlay::CVideoOverlayManager& overlay() const { return m_overlay; }
    Mavril::VideoOverlay::CVideoOverlayManager& overlay() { return m_overlay; }
    const ElementTexts& elementTexts() const { return m_elementTexts; }
    const HostSignals& hostSignals() const { return m_hostSignals; }

private:
    void followCounters();
    void followMeasurement();

    // In this order: the Runner looks for devices and settings when it is made, and goes before what it uses.
    QString m_profile;
    SimulatedDevices m_devices;
    SimulatedClock m_clock;
    ControlBackend m_controlBackend;
    ZelVideoOverlayElementAccessor m_elementAccessor;
    Mavril::VideoOverlay::CVideoOverlayManager m_overlay;
    Runner m_runner;
    VideoCounter m_videoCounter;
    ElementTexts m_elementTexts;
    HostSignals m_hostSignals;
};

} // namespace Tolvar::Varundo::Simulator

#endif
