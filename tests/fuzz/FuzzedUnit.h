#ifndef TOLVAR_VARUNDO_TEST_FUZZEDUNIT_H
#define TOLVAR_VARUNDO_TEST_FUZZEDUNIT_H

#include "FakeDevices.h"
#include "ModelDecoder.h"

#include <Mavril/SystemClock.h>
#include <Mavril/VideoOverlay/CVideoOverlayManager.h>
#include <Tolvar/Varundo/Runner.h>
#include <Tolvar/Varundo/ZelVideoOverlayElementAccessor.h>
#include <Tolvar/VideoOverlay/CVideoOverlayControlBackend.h>

#include <QByteArray>
#include <QTemporaryDir>
#include <QVector>

#include <memory>
#include <optional>

namespace Tolvar::Varundo::Test {

/// A whole unit and the controllers at its TCP port, over real sockets. One a process, since a Runner's
/// transports outlive it; restore() brings it back to where it began.
///
/// What the newest controller sends is also given to a model of the decoder, so that every reply is known in
/// advance up to the answers' contents.
class FuzzedUnit
{
public:
    static constexpr int MaxControllers = 24; ///< more than the unit keeps

    FuzzedUnit();
    ~FuzzedUnit();
    Q_DISABLE_COPY_MOVE(FuzzedUnit)

    /// One read of the unit. Its replies are taken, and must be as they should.
    void send(const QByteArray& bytes);

    void connectController(); ///< it is the newest one then
    void disconnectNewest();

    void loadProfile(int number);
    void deleteElement(int number);
    void emitReadings(int kind, qint16 value);
    void setDevicePresent(int which, bool present);

    Runner& runner() { return *m_runner; }

    void restore();

private:
    class NoClock : public Mavril::SystemClock
    {
        void setDateTime(const QDateTime&) override {}
        void setTime(const QTime&) override {}
    };
    class NoBackend : public VideoOverlay::CVideoOverlayControlBackend
    {
        void setOverlayVisible(bool) override {}
    };

    void settle();
    QByteArray received();
    void checkReplies(const std::vector<WireOutcome>& outcomes);
    void checkElements();

    QTemporaryDir m_dir;
    std::optional<FakeDevices> m_devices;
    NoClock m_clock;
    NoBackend m_backend;
    ZelVideoOverlayElementAccessor m_accessor;
    Mavril::VideoOverlay::CVideoOverlayManager m_manager;
    std::unique_ptr<Runner> m_runner;
    ModelDecoder m_model;
    QVector<int> m_sockets; // the newest is the last
};

} // namespace Tolvar::Varundo::Test

#endif
