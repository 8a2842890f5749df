#ifndef TOLVAR_VARUNDO_TESTS_EXAMPLEUNIT_H
#define TOLVAR_VARUNDO_TESTS_EXAMPLEUNIT_H

#include "ExampleDevices.h"

#include <Mavril/SystemClock.h>
#include <Mavril/VideoOverlay/CVideoOverlayManager.h>
#include <Tolvar/VideoOverlay/CVideoOverlayControlBackend.h>

#include <Tolvar/Varundo/Runner.h>
#include <Tolvar/Varundo/ZelVideoOverlayElementAccessor.h>

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <initializer_list>
#include <memory>

namespace Mavril::VideoOverlay {
class CVideoOverlayText;
}

namespace Tolvar::Varundo::Tests {

/// The whole unit that the examples of docs/protocol.md talk to: the library on the reference platform, with
/// the TCP interface selected, a profile of all elements, devices with fixed readings, and a host that only
/// writes down what it is told. One at a time; the next one starts from scratch.
class ExampleUnit final : private Mavril::SystemClock,
                          private Tolvar::VideoOverlay::CVideoOverlayControlBackend
{
public:
    static QString softwareVersion() { return QStringLiteral("3.1"); }

    ExampleUnit();
    ~ExampleUnit() override;
    ExampleUnit(const ExampleUnit&) = delete;
    ExampleUnit& operator=(const ExampleUnit&) = delete;

    [[nodiscard]] quint16 port() const { return static_cast<quint16>(m_runner->zelTcpPort()); }
    [[nodiscard]] Runner& runner() { return *m_runner; }
    [[nodiscard]] const DataManager& model() const { return *m_runner->getDataManager(); }
    [[nodiscard]] ExampleDevices& devices() { return m_devices; }

    /// The host loads its profile again.
    void loadProfile();

    /// The overlay's text under a key, and the text that a controller wrote at a place; null without.
    [[nodiscard]] Mavril::VideoOverlay::CVideoOverlayText* element(const QString& key) const;
    [[nodiscard]] Mavril::VideoOverlay::CVideoOverlayText* writtenText(int column, int row) const;
    [[nodiscard]] int writtenTexts() const;

    [[nodiscard]] bool overlayOn() const { return m_overlayOn; }
    /// The oldest thing that the host was told and that was not taken yet; empty without.
    [[nodiscard]] QString takeTold() { return m_told.isEmpty() ? QString() : m_told.takeFirst(); }

    /// Everything about the unit that a command could have changed, one fact an entry.
    [[nodiscard]] QStringList snapshot() const;

private:
    void setDateTime(const QDateTime& dateTime) override;
    void setTime(const QTime& time) override;
    void setOverlayVisible(bool show) override;
    void listenToRunner();
    void tell(const QString& what, std::initializer_list<double> numbers = {});

    QTemporaryDir m_directory;
    Mavril::VideoOverlay::CVideoOverlayManager m_overlay;
    ZelVideoOverlayElementAccessor m_accessor{nullptr};
    ExampleDevices m_devices;
    bool m_overlayOn = true;
    int m_overlaySwitched = 0; ///< how often, on or off
    QStringList m_told;
    std::unique_ptr<Runner> m_runner;
};

} // namespace Tolvar::Varundo::Tests

#endif
