#ifndef TOLVAR_VARUNDO_TESTS_REALUNIT_H
#define TOLVAR_VARUNDO_TESTS_REALUNIT_H

#include "ControllerLink.h"
#include "FakeDevices.h"
#include "SettableClock.h"
#include "Step.h"
#include "StoredSettings.h"

#include <Mavril/SystemClock.h>
#include <Mavril/VideoOverlay/CVideoOverlayElement.h>
#include <Mavril/VideoOverlay/CVideoOverlayManager.h>
#include <Tolvar/Varundo/Runner.h>
#include <Tolvar/Varundo/ZelVideoOverlayElementAccessor.h>
#include <Tolvar/VideoOverlay/CVideoOverlayControlBackend.h>

#include <QTimer>

#include <memory>
#include <optional>
#include <string>

namespace Tolvar::Varundo::Model {

/// The other side of the comparison: the library on the reference platform, with a controller on a real
/// connection. Nothing happens to it but the steps: timers fire when a step
/// says so, and the clock stands still.
class RealUnit final : private Mavril::SystemClock, private Tolvar::VideoOverlay::CVideoOverlayControlBackend
{
public:
    RealUnit();
    ~RealUnit() override;
    RealUnit(const RealUnit&) = delete;
    RealUnit& operator=(const RealUnit&) = delete;

    /// False if the unit does not take part any more; problem() says how.
    [[nodiscard]] bool apply(const Step& step);
    [[nodiscard]] const QString& problem() const { return m_problem; }

    /// Of the latest step.
    [[nodiscard]] const QByteArray& replies() const { return m_replies; }
    [[nodiscard]] const std::vector<std::string>& told() const { return m_told; }

    [[nodiscard]] QList<Mavril::VideoOverlay::CVideoOverlayElement*> elements() const
    {
        return m_overlay.getElementList();
    }
    [[nodiscard]] QString keyOf(Mavril::VideoOverlay::CVideoOverlayElement& element)
    {
        return m_accessor.generateElementKey(element.getParamObject());
    }
    [[nodiscard]] const DataManager& data() const { return *m_runner->getDataManager(); }

private:
    void setDateTime(const QDateTime& dateTime) override;
    void setTime(const QTime& time) override;
    void setOverlayVisible(bool show) override;

    void takeOverCleaning();
    void connectController();
    void putOffTimeouts();
    void hideTimedOut();
    [[nodiscard]] QList<QTimer*> timeouts() const;
    void send(const Bytes& bytes);
    void read(Reading reading, const std::array<double, 4>& numbers);
    void loadProfile(int variant);
    void editElement(const Step& step);
    void tellNumbers(const char* what, std::initializer_list<Bytes> numbers);
    void listenToRunner();

    QString m_problem;
    QByteArray m_replies;
    std::vector<std::string> m_told;

    Test::StoredSettings m_settings;
    Test::FakeDevices m_devices;
    std::optional<Test::SettableClock> m_clock;
    Mavril::VideoOverlay::CVideoOverlayManager m_overlay;
    ZelVideoOverlayElementAccessor m_accessor{nullptr};
    std::unique_ptr<Runner> m_runner;
    QTimer* m_cleaning = nullptr; ///< the Runner's
    std::unique_ptr<Tests::ControllerLink> m_controller;
};

} // namespace Tolvar::Varundo::Model

#endif
