// Drives a simulated unit for a long time, over both roads, while its adapter is pulled and plugged in, its
// profile and interface change and its devices move; and says in the end whether it held.
//
// What it is for are faults that need time: memory or descriptors that grow, a road that dies for good, a
// request that is lost once in a million.

#include "FairTimes.h"
#include "FlatLine.h"
#include "Isolation.h"
#include "SimulatorProcess.h"
#include "Traffic.h"

#include <Tolvar/Varundo/Client/SerialLink.h>
#include <Tolvar/Varundo/Client/TcpLink.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryFile>
#include <QTimer>

#include <csignal>
#include <cstdio>
#include <functional>
#include <memory>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

constexpr int skippedStatus = 77;
constexpr int sampleMs = 1000;
constexpr int stepMs = 3000;
constexpr int switchSettlesMs = 2500; // what was under way has timed out
constexpr int adapterIsOutMs = 2500;  // two looks of the watcher
constexpr int adapterSettlesMs = 5000;
constexpr double allowedKiBPerSecond = 1.0;
// A short run cannot tell a slope from the allocator's last arenas.
constexpr double allowedNoiseKiB = 1024.0
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
                                   * 50 // a sanitizer keeps freed memory for a while
#endif
    ;

/// A shorter run is measured by the noise.
constexpr int decidingMinutes = int(FlatLine::decidingSeconds(allowedKiBPerSecond, allowedNoiseKiB) / 60) + 1;

void say(const QString& line)
{
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

class Soak final : public QObject
{
public:
    Soak(int seconds, quint32 seed)
        : m_seconds(seconds)
        , m_seed(seed)
    {}

    int run();

private:
    bool connectControllers();
    void connectTcp();
    void tell(const QByteArray& command);
    void sample();
    void disturb();
    void reconnect();
    void select(const QByteArray& interface);
    void pull();
    void beginFairTime(FairTimes* times, FairTimes::Cause cause);
    void endFairTimes();
    qint64 doneOverTcp() const { return m_doneBefore + m_tcp->done(); }
    qint64 lost() const { return m_lostBefore + m_tcp->lost() + m_serial->lost(); }
    qint64 mayBeLost() const;
    void afterwards(int ms, const std::function<void()>& what)
    {
        QTimer::singleShot(ms, m_plans.get(), what);
    }
    int verdict();
    QStringList faultsOfTheRoads() const;
    QStringList faultsOfTheUnit();
    double allowedSlope() const { return m_memory.bound(allowedKiBPerSecond, allowedNoiseKiB); }

    int m_seconds;
    quint32 m_seed;
    SimulatorProcess m_unit;
    std::unique_ptr<QObject> m_plans = std::make_unique<QObject>(); // what is due later goes with it
    QStringList m_refused;                                          // what the unit did not do

    std::unique_ptr<Client::TcpLink> m_tcpLink;
    std::unique_ptr<Client::SerialLink> m_serialLink;
    std::unique_ptr<Traffic> m_tcp;
    std::unique_ptr<Traffic> m_serial;
    qint64 m_doneBefore = 0; // over TCP connections that were ended
    qint64 m_errorsBefore = 0;
    qint64 m_lostBefore = 0;
    QString m_firstError;
    FairTimes m_tcpTimes{QStringLiteral("TCP")};
    FairTimes m_serialTimes{QStringLiteral("serial")};
    QTemporaryFile m_profile;
    QElapsedTimer m_clock;
    FlatLine m_memory;
    FlatLine m_descriptors;
    int m_pulls = 0;
    int m_switches = 0;
    int m_reconnects = 0;
    int m_steps = 0;
};

int Soak::run()
{
    if (!m_unit.start({QStringLiteral("--control"), QStringLiteral("--virtual-serial")})) {
        say(QStringLiteral("cannot start the unit: ") + m_unit.errors());
        return EXIT_FAILURE;
    }
    m_profile.open();
    m_profile.write(R"({"elements": [{"kind": "static", "id": 2, "text": "short profile"},
        {"kind": "bound", "binding": "SectionDistanceCounter", "row": 1, "column": 1}]})");
    m_profile.flush();
    if (!connectControllers()) {
        return EXIT_FAILURE;
    }
    m_clock.start();
    tell("interface Tcp");
    m_tcp->setSelected(true);
    QTimer sampling;
    connect(&sampling, &QTimer::timeout, this, &Soak::sample);
    sampling.start(sampleMs);
    QTimer disturbing;
    connect(&disturbing, &QTimer::timeout, this, &Soak::disturb);
    disturbing.start(stepMs);
    QTimer::singleShot(m_seconds * 1000, qApp, &QCoreApplication::quit);
    QCoreApplication::exec();
    // A unit may take its time to end, and nothing is to be asked of it meanwhile.
    sampling.stop();
    disturbing.stop();
    m_plans.reset();
    return verdict();
}

bool Soak::connectControllers()
{
    m_serialLink = std::make_unique<Client::SerialLink>(m_unit.controllerDevice());
    if (!m_serialLink->open()) {
        say(m_serialLink->errorText());
        return false;
    }
    m_serial = std::make_unique<Traffic>(m_serialLink->device(), m_serialLink->peerName(), m_seed);
    connectTcp();
    return m_tcp != nullptr;
}

/// Another connection in place of the one there is, whose requests are given up: the newest is the one that
/// is served.
void Soak::connectTcp()
{
    auto link =
        std::make_unique<Client::TcpLink>(QStringLiteral("127.0.0.1"), static_cast<quint16>(m_unit.port()));
    if (!link->openAndWait(30000)) {
        m_firstError = link->errorText();
        ++m_errorsBefore;
        return;
    }
    if (m_tcp) {
        m_doneBefore += m_tcp->done();
        m_errorsBefore += m_tcp->errors();
        m_lostBefore += m_tcp->lost() + m_tcp->underWay();
        if (m_firstError.isEmpty()) {
            m_firstError = m_tcp->firstError();
        }
    }
    m_tcp = std::make_unique<Traffic>(link->device(), link->peerName(), ++m_seed);
    m_tcpLink = std::move(link);
    m_tcp->start();
}

void Soak::tell(const QByteArray& command)
{
    const QString answer = m_unit.command(command);
    if (answer != QLatin1String("ok")) {
        m_refused.append(QString::fromUtf8(command) + QStringLiteral(": ") + answer);
    }
}

void Soak::reconnect()
{
    ++m_reconnects;
    m_tcp->stop();
    connectTcp();
    m_tcp->setSelected(true);
}

void Soak::select(const QByteArray& interface)
{
    ++m_switches;
    endFairTimes();
    // Requests that are under way meet one interface or the other.
    m_tcp->setDisturbed(true);
    m_serial->setDisturbed(true);
    m_serial->stop();
    m_tcp->setSelected(interface == "Tcp");
    m_serial->setSelected(interface == "Serial");
    tell("interface " + interface);
    afterwards(switchSettlesMs, [this, interface] {
        m_tcp->setDisturbed(false);
        m_serial->setDisturbed(false);
        if (interface == "Serial") {
            m_serial->start();
            beginFairTime(&m_serialTimes, FairTimes::Cause::Switch);
        } else {
            beginFairTime(&m_tcpTimes, FairTimes::Cause::Switch);
        }
    });
}

void Soak::pull()
{
    ++m_pulls;
    m_serialTimes.end(m_serial->done(), m_clock.elapsed());
    m_serial->setDisturbed(true);
    tell("unplug");
    afterwards(adapterIsOutMs, [this] { tell("plug"); });
    afterwards(adapterIsOutMs + adapterSettlesMs, [this] {
        m_serial->setDisturbed(false);
        beginFairTime(&m_serialTimes, FairTimes::Cause::Pull);
    });
}

/// What is under way by now is no proof that the road is served from here on.
void Soak::beginFairTime(FairTimes* times, FairTimes::Cause cause)
{
    const qint64 done =
        times == &m_tcpTimes ? doneOverTcp() + m_tcp->underWay() : m_serial->done() + m_serial->underWay();
    times->begin(cause, done, m_clock.elapsed());
}

void Soak::endFairTimes()
{
    m_tcpTimes.end(doneOverTcp(), m_clock.elapsed());
    m_serialTimes.end(m_serial->done(), m_clock.elapsed());
}

/// One after the other, so that a short run meets them all; and each road has a fair time after whatever
/// concerns it. What makes the unit take memory once comes first.
void Soak::disturb()
{
    static_assert(switchSettlesMs + FairTimes::ShortestMs < 2LL * stepMs,
                  "between a switch and what is next");
    static_assert(adapterIsOutMs + adapterSettlesMs + FairTimes::ShortestMs < 4LL * stepMs, "after a pull");
    switch (m_steps++ % 10) {
    case 0:
        tell("profile " + m_profile.fileName().toUtf8());
        break;
    case 1:
        tell("profile");
        tell(R"(devices {"crawler": {"roll": -3}, "reel": {"speed": 0.1, "section": 3}})");
        break;
    case 2:
        reconnect();
        break;
    case 3:
        select("Serial");
        break;
    case 4:
        tell(R"(devices {"camera": {"pan": 10}, "positionSensor": {"angle": 1}})");
        break;
    case 5:
        pull();
        break;
    case 6: // the adapter's coming back takes its time
    case 7:
    case 8:
        break;
    case 9:
        select("Tcp");
        break;
    }
}

void Soak::sample()
{
    const double seconds = double(m_clock.elapsed()) / 1000;
    m_memory.add(seconds, m_unit.residentKiB());
    m_descriptors.add(seconds, m_unit.descriptors());
    if (int(seconds) % qMax(5, m_seconds / 60) != 0 && int(seconds) != 1) {
        return;
    }
    const qint64 done = doneOverTcp() + m_serial->done();
    say(QStringLiteral("%1 s: %2 requests (%3/s), %4 KiB, %5 descriptors, %6 threads, %7 pulls")
            .arg(int(seconds))
            .arg(done)
            .arg(int(double(done) / seconds))
            .arg(m_unit.residentKiB())
            .arg(m_unit.descriptors())
            .arg(m_unit.threads())
            .arg(m_pulls));
    if (!m_unit.isRunning()) {
        QCoreApplication::quit();
    }
}

/// Each event meets a window of requests at most that are under way. While an adapter is out a controller
/// goes on asking, and gives up one request with each time-out.
qint64 Soak::mayBeLost() const
{
    constexpr qint64 askedMeanwhile = (adapterIsOutMs + adapterSettlesMs) / Traffic::TimeoutMs;
    return (m_pulls + m_switches + m_reconnects) * qint64(Traffic::Window) + m_pulls * askedMeanwhile;
}

int Soak::verdict()
{
    endFairTimes();
    QStringList faults = faultsOfTheRoads();
    say(QStringLiteral(
            "judged: TCP after %1 switches, serial after %2 switches and %3 pulls; lost: %4 (allowed: %5)")
            .arg(m_tcpTimes.judged(FairTimes::Cause::Switch))
            .arg(m_serialTimes.judged(FairTimes::Cause::Switch))
            .arg(m_serialTimes.judged(FairTimes::Cause::Pull))
            .arg(lost())
            .arg(mayBeLost()));
    m_tcp->stop();
    m_serial->stop();
    faults += faultsOfTheUnit();
    faults += m_refused;
    say(QStringLiteral("memory: %1 KiB/s over the last half, at most %2 KiB")
            .arg(m_memory.slope(), 0, 'f', 2)
            .arg(qMax(m_memory.highestOfFirstHalf(), m_memory.highestOfLastHalf())));
    for (const QString& fault : qAsConst(faults)) {
        say(QStringLiteral("FAULT: ") + fault);
    }
    const QString verdict = faults.isEmpty() ? QStringLiteral("it held") : QStringLiteral("it did not hold");
    const QString reservation = allowedSlope() > allowedKiBPerSecond
                                    ? QStringLiteral(", as a run below %1 minutes cannot decide %2 KiB/s")
                                          .arg(decidingMinutes)
                                          .arg(allowedKiBPerSecond)
                                    : QString();
    say(QStringLiteral("verdict: %1; memory's bound was %2 KiB/s%3")
            .arg(verdict)
            .arg(allowedSlope(), 0, 'f', 2)
            .arg(reservation));
    return faults.isEmpty() ? EXIT_SUCCESS : EXIT_FAILURE;
}

QStringList Soak::faultsOfTheRoads() const
{
    QStringList faults = m_tcpTimes.faults({FairTimes::Cause::Switch}) +
                         m_serialTimes.faults({FairTimes::Cause::Switch, FairTimes::Cause::Pull});
    const qint64 errors = m_errorsBefore + m_tcp->errors() + m_serial->errors();
    const QStringList firstErrors = {m_firstError, m_tcp->firstError(), m_serial->firstError()};
    if (errors > 0) {
        faults.append(QStringLiteral("%1 requests failed, such as: %2")
                          .arg(errors)
                          .arg(firstErrors.filter(QStringLiteral(" ")).join(QLatin1String("; "))));
    }
    if (lost() > mayBeLost()) {
        faults.append(QStringLiteral("%1 requests were lost; pulls, switches and reconnects explain %2")
                          .arg(lost())
                          .arg(mayBeLost()));
    }
    return faults;
}

QStringList Soak::faultsOfTheUnit()
{
    QStringList faults;
    const bool lived = m_unit.isRunning();
    const int status = m_unit.end(SIGTERM);
    if (!lived || status != 0) {
        faults.append(QStringLiteral("the unit ended with status %1").arg(status));
    }
    if (m_memory.slope() > allowedSlope()) {
        faults.append(QStringLiteral("memory grows by %1 KiB/s").arg(m_memory.slope()));
    }
    // A connection that is being replaced may be seen twice.
    if (m_descriptors.highestOfLastHalf() > m_descriptors.highestOfFirstHalf() + 2) {
        faults.append(QStringLiteral("descriptors: %1 at most in the first half, %2 in the last")
                          .arg(m_descriptors.highestOfFirstHalf())
                          .arg(m_descriptors.highestOfLastHalf()));
    }
    // An adapter that is pulled is news, and meant to be: the only thing that the unit may say.
    for (const QString& line : m_unit.errors().split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        if (!line.startsWith(QLatin1String("varundo.transport: ttyUSB1 no longer answers"))) {
            faults.append(QStringLiteral("the unit said: ") + line);
        }
    }
    return faults;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Drives a simulated unit for a long time."));
    parser.addHelpOption();
    parser.addOption(
        {QStringLiteral("seconds"), QStringLiteral("How long."), QStringLiteral("N"), QStringLiteral("60")});
    parser.addOption({QStringLiteral("seed"), QStringLiteral("What is sent depends on it."),
                      QStringLiteral("N"), QStringLiteral("1")});
    parser.process(application);
    if (!hasOwn("dev")) {
        say(QString::fromLatin1(NeedsOwnDevices));
        return skippedStatus;
    }
    return Soak(parser.value(QStringLiteral("seconds")).toInt(),
                parser.value(QStringLiteral("seed")).toUInt())
        .run();
}
