#include "FuzzedUnit.h"

#include "Demand.h"
#include "HeapInUse.h"

#include <CApplicationSettings.h>
#include <Mavril/SystemDateTime.h>
#include <Mavril/VideoOverlay/CVideoOverlayText.h>

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QThread>
#include <QTimer>

#include <unistd.h>

#include <cmath>
#include <iterator>
#include <limits>

namespace Tolvar::Varundo::Test {

namespace {

constexpr int longestSettling = 10000;

// After an input everything is as before, but for what Qt makes once and keeps (fonts, codecs, tables).
constexpr qint64 keptByOne = 1024 * 1024;
constexpr qint64 keptByAll = 4 * 1024 * 1024;

// Something of every kind, little, nothing, and what only looks like a profile.
const char* const profiles[] = {
    R"({"elements": [
        {"kind": "bound", "binding": "SectionDistanceCounter", "row": 1, "column": 1},
        {"kind": "bound", "binding": "Date", "row": 2, "column": 1},
        {"kind": "bound", "binding": "CameraTemperature", "row": 3, "column": 1, "unit": "°C"},
        {"kind": "static", "id": 1, "text": "one"}, {"kind": "static", "id": 4, "text": "four"},
        {"kind": "free", "enabled": false}, {"kind": "plain", "caption": "Logo"}]})",
    R"({"elements": [{"kind": "static", "id": 2, "text": "two", "row": 5, "column": 5}]})",
    R"({"elements": []})",
    R"({"elements": [{"kind": "bound"}]})",
};

} // namespace

FuzzedUnit::Deliveries::Deliveries()
{
    QCoreApplication::instance()->installEventFilter(this);
}

FuzzedUnit::FuzzedUnit()
{
    // In memory: the settings are made durable at each change of the interface.
    CApplicationSettings::instance()->setFileName(QStringLiteral("/dev/shm/varundo-fuzz-%1").arg(getpid()));
    CApplicationSettings::instance()->setCustomSetting(QStringLiteral("ZEL_INTERFACE"),
                                                       QStringLiteral("Tcp"));
    Mavril::SystemDateTime::install(&m_clock);
    m_devices.emplace();
    m_manager.setElementAccessor(&m_accessor);
    m_runner = std::make_unique<Runner>(&m_backend, &m_manager, &m_accessor);
    m_runner->setZelTcpPort(20000 + getpid() % 20000); // several fuzzers may run side by side
    restore();
    m_heapKept = 0; // what is made at the first use does not count
}

FuzzedUnit::~FuzzedUnit()
{
    for (const int socket : qAsConst(m_sockets)) {
        close(socket);
    }
    Mavril::SystemDateTime::install(nullptr);
    unlink(qPrintable(QStringLiteral("/dev/shm/varundo-fuzz-%1").arg(getpid())));
}

void FuzzedUnit::loadProfile(int number)
{
    QString error;
    const auto index = static_cast<std::size_t>(number) % std::size(profiles);
    const bool loaded = m_manager.loadProfileData(profiles[index], QStringLiteral("profile"), &error);
    demand(loaded != !error.isEmpty(), "a profile is loaded, or it is said why not");
    settle();
}

void FuzzedUnit::removeProfile()
{
    m_manager.removeProfile();
    demand(!m_manager.currentProfile() && m_manager.getElementList().isEmpty(),
           "nothing is left of a profile that is removed");
    settle();
}

void FuzzedUnit::deleteElement(int number)
{
    const auto elements = m_manager.getElementList();
    if (!elements.isEmpty()) {
        m_manager.deleteElementFromModel(elements.at(number % elements.size()));
    }
    settle();
}

void FuzzedUnit::emitReadings(int kind, qint16 value)
{
    FakeDevices& devices = *m_devices;
    switch (kind % 8) {
    case 0:
        emit devices.reel.calculatedReelSpeedChanged(value / 16.0F);
        break;
    case 1:
        emit devices.rts.rtsTemperatureChanged(value);
        break;
    case 2:
        emit devices.crawler.crawlerTemperatureChanged(value);
        break;
    case 3:
        emit devices.crawler.crawlerPressureChanged(value);
        break;
    case 4:
        emit devices.crawler.crawlerRollChanged(value);
        break;
    case 5:
        devices.crawler.pitch = value;
        emit devices.crawler.crawlerPitchChanged();
        break;
    case 6:
        emit devices.camera.panPositionChanged(value);
        emit devices.camera.tiltPositionChanged(value);
        break;
    default:
        emit devices.camera.cameraTemperatureChanged(value);
        emit devices.camera.cameraPressureChanged(value);
    }
    settle();
}

void FuzzedUnit::setMeasurement(double value)
{
    m_devices->positionSensor.x = m_devices->positionSensor.y = m_devices->positionSensor.z = value;
    m_devices->camera.laserFirst = m_devices->camera.laserSecond = value;
    // A number that no single can hold would not be the unit's fault.
    const float single =
        std::abs(value) <= std::numeric_limits<float>::max() ? static_cast<float>(value) : 0.0F;
    m_devices->positionSensor.turn = single;
    m_devices->reel.section = m_devices->reel.sat = m_devices->reel.total = single;
    m_devices->crawler.pitch = single;
}

void FuzzedUnit::letTimeOut()
{
    for (auto* const element : m_manager.getElementList()) {
        for (auto* const timer : element->findChildren<QTimer*>()) {
            if (timer->isActive()) {
                timer->stop();
                QMetaObject::invokeMethod(timer, "timeout");
            }
        }
    }
    settle();
}

void FuzzedUnit::setDevicePresent(int which, bool present)
{
    switch (which % 5) {
    case 0:
        CTolvarLibrary::setReel(present ? &m_devices->reel : nullptr);
        break;
    case 1:
        CTolvarLibrary::setRts(present ? &m_devices->rts : nullptr);
        break;
    case 2:
        CTolvarLibrary::setCrawler(present ? &m_devices->crawler : nullptr);
        break;
    case 3:
        CTolvarLibrary::setCamera(present ? &m_devices->camera : nullptr);
        break;
    default:
        CTolvarLibrary::setCameraPositionSensor(present ? &m_devices->positionSensor : nullptr);
    }
}

void FuzzedUnit::begin()
{
    m_heapBefore = heapInUse();
}

/// Decoder, overlay, model: whatever an input may have left behind.
void FuzzedUnit::restore()
{
    m_typed = 0;
    m_runner->setInterface(Runner::Tcp);
    disconnectNewest();
    connectController();
    for (int attempt = 0; m_model.state != 0 && attempt < 100; ++attempt) {
        send(m_model.state == 6 ? QByteArray(1, '\x03')
                                : QByteArray(m_model.state == 5 ? LargestRead : 1, '\0'));
    }
    demand(m_model.state == 0, "the decoder can be brought out of any state");
    const QByteArray emptyRead = QByteArray::fromHex("020501000003");
    send(emptyRead); // takes what a dropped frame has left behind
    for (int device = 0; device < 5; ++device) {
        setDevicePresent(device, true);
    }
    m_runner->clearCustomElements();
    loadProfile(0);
    send(QByteArray::fromHex("02010201000003"));   // the codec
    send(QByteArray::fromHex("0262020200000003")); // the cursor
    setMeasurement(0.0);
    const qint64 kept = heapInUse() - m_heapBefore;
    m_heapKept += kept;
    demand(m_heapBefore == 0 || kept < keptByOne, "what an input has made the unit keep is gone with it");
    demand(m_heapBefore == 0 || m_heapKept < keptByAll, "inputs do not add up");
}

void FuzzedUnit::settle()
{
    auto* const dispatcher = QThread::currentThread()->eventDispatcher();
    int turns = 0;
    while (dispatcher->processEvents(QEventLoop::AllEvents) || m_deliveries.haveCome()) {
        demand(++turns < longestSettling, "the event loop comes to rest");
    }
    // There is no loop that runs, and outside of one only those who ask have objects deleted later.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    checkElements();
}

void FuzzedUnit::checkElements()
{
    for (auto* const element : m_manager.getElementList()) {
        demand(element != nullptr, "the overlay holds elements");
        if (const auto* text = qobject_cast<Mavril::VideoOverlay::CVideoOverlayText*>(element)) {
            demand(text->text().size() <= 1 << 20, "a text is no longer than what was sent");
        }
    }
}

} // namespace Tolvar::Varundo::Test
