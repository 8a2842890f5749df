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
#include <QObject>
#include <QVector>

#include <memory>
#include <optional>
#include <utility>

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
    /// More than a socket's buffer has to be taken in parts, and those are reads of their own.
    static constexpr int LargestRead = 16384;
    /// Characters, by one input; then it sends nothing more. Each costs as much as there are already, and a
    /// few of the longest frames, read as text, would be a minute's work.
    static constexpr int MostTyped = 15000;

    FuzzedUnit();
    ~FuzzedUnit();
    Q_DISABLE_COPY_MOVE(FuzzedUnit)

    /// One read of the unit. Its replies are taken, and must be as they should.
    void send(const QByteArray& bytes);

    /// So many requests by a controller that does not take a single reply before it has sent them all. The
    /// unit must neither hold more than its bounds meanwhile, nor lose an answer.
    void flood(quint8 command, quint8 line, int count);

    /// A controller that is not the newest one any more speaks; nobody listens.
    void sendFromOldest(const QByteArray& bytes);

    void connectController(); ///< it is the newest one then
    void disconnectNewest();

    void loadProfile(int number);
    void removeProfile();
    void deleteElement(int number);
    void emitReadings(int kind, qint16 value);
    void setMeasurement(double value); ///< what the sensor, the laser and the reel say when they are asked
    void letTimeOut();                 ///< whatever text waits to go away
    void setDevicePresent(int which, bool present);

    Runner& runner() { return *m_runner; }

    void begin(); ///< an input
    void restore();

private:
    class NoClock : public Mavril::SystemClock
    {
        void setDateTime(const QDateTime&) override {}
        void setTime(const QTime&) override {}
    };
    /// Whether the event loop has delivered anything. Its own word is not enough: it says that there was
    /// nothing to do when only a timer without an interval has fired, which is how a long read is worked off.
    class Deliveries : public QObject
    {
    public:
        Deliveries();
        bool haveCome() { return std::exchange(m_haveCome, false); } ///< since it was asked last

    private:
        bool eventFilter(QObject*, QEvent*) override
        {
            m_haveCome = true;
            return false;
        }

        bool m_haveCome = false;
    };
    class NoBackend : public VideoOverlay::CVideoOverlayControlBackend
    {
        void setOverlayVisible(bool) override {}
    };

    template <class Condition>
    void settleUntil(Condition holds, const char* what);
    void settle();
    void awaitArrival();
    QByteArray received();
    void checkReplies(const std::vector<WireOutcome>& outcomes);
    void checkElements();

    Deliveries m_deliveries;
    std::optional<FakeDevices> m_devices;
    NoClock m_clock;
    NoBackend m_backend;
    ZelVideoOverlayElementAccessor m_accessor;
    Mavril::VideoOverlay::CVideoOverlayManager m_manager;
    std::unique_ptr<Runner> m_runner;
    ModelDecoder m_model;
    int m_typed = 0;        // characters, by this input
    QVector<int> m_sockets; // the newest is the last
    int m_unitEnd = -1;     // of the newest one's connection
    qint64 m_heapBefore = 0;
    qint64 m_heapKept = 0; // from all inputs so far
};

} // namespace Tolvar::Varundo::Test

#endif
