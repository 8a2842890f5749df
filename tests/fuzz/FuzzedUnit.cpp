#include "FuzzedUnit.h"

#include "Demand.h"

#include <CApplicationSettings.h>
#include <Mavril/SystemDateTime.h>
#include <Mavril/VideoOverlay/CVideoOverlayText.h>

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QThread>

#include <arpa/inet.h>
#include <cerrno>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <iterator>

namespace Tolvar::Varundo::Test {

namespace {

constexpr char ack = 0x06;
constexpr char nack = 0x15;
constexpr int longestSettling = 10000;

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

sockaddr_in unitAddress(int port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

} // namespace

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
}

FuzzedUnit::~FuzzedUnit()
{
    for (const int socket : qAsConst(m_sockets)) {
        close(socket);
    }
    Mavril::SystemDateTime::install(nullptr);
    unlink(qPrintable(QStringLiteral("/dev/shm/varundo-fuzz-%1").arg(getpid())));
}

void FuzzedUnit::send(const QByteArray& bytes)
{
    if (m_sockets.isEmpty() || bytes.isEmpty()) {
        settle();
        return;
    }
    // More than a socket's buffer has to be taken in parts, and those are reads of their own.
    constexpr int part = 16384;
    for (int at = 0; at < bytes.size(); at += part) {
        const QByteArray read = bytes.mid(at, part);
        const auto sent = ::send(m_sockets.constLast(), read.constData(),
                                 static_cast<std::size_t>(read.size()), MSG_NOSIGNAL);
        demand(sent == read.size(), "the unit keeps its newest controller and takes what it says");
        checkReplies(m_model.read(std::vector<std::uint8_t>(read.begin(), read.end())));
    }
}

void FuzzedUnit::connectController()
{
    const int connection = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_in address = unitAddress(m_runner->zelTcpPort());
    demand(connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0,
           "the unit can be connected to");
    const int yes = 1;
    setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
    // Closed by a reset: after thousands of ordinary ends the kernel would be out of ports for a while.
    const linger atOnce{1, 0};
    setsockopt(connection, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    m_sockets.append(connection);
    if (m_sockets.size() > MaxControllers) {
        close(m_sockets.takeFirst());
    }
    settle();
}

void FuzzedUnit::disconnectNewest()
{
    if (!m_sockets.isEmpty()) {
        close(m_sockets.takeLast());
        settle();
    }
    // Those that are left are older ones, and not served any more.
    for (const int socket : qAsConst(m_sockets)) {
        close(socket);
    }
    m_sockets.clear();
    settle();
}

void FuzzedUnit::loadProfile(int number)
{
    QString error;
    const auto index = static_cast<std::size_t>(number) % std::size(profiles);
    const bool loaded = m_manager.loadProfileData(profiles[index], QStringLiteral("profile"), &error);
    demand(loaded != !error.isEmpty(), "a profile is loaded, or it is said why not");
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

/// Decoder, overlay, model: whatever an input may have left behind.
void FuzzedUnit::restore()
{
    m_runner->setInterface(Runner::Tcp);
    disconnectNewest();
    connectController();
    for (int attempt = 0; m_model.state != 0 && attempt < 100; ++attempt) {
        send(m_model.state == 6 ? QByteArray(1, '\x03') : QByteArray(m_model.state == 5 ? 1024 : 1, '\0'));
    }
    demand(m_model.state == 0, "the decoder can be brought out of any state");
    const QByteArray emptyRead = QByteArray::fromHex("020501000003");
    send(emptyRead); // takes what a dropped frame has left behind
    for (int device = 0; device < 5; ++device) {
        setDevicePresent(device, true);
    }
    m_runner->clearCustomElements();
    loadProfile(0);
    send(QByteArray::fromHex("0201020100"
                             "0003")); // codec
    send(QByteArray::fromHex("026202020000"
                             "0003")); // cursor
}

void FuzzedUnit::settle()
{
    auto* const dispatcher = QThread::currentThread()->eventDispatcher();
    int turns = 0;
    while (dispatcher->processEvents(QEventLoop::AllEvents)) {
        demand(++turns < longestSettling, "the event loop comes to rest");
    }
    checkElements();
}

QByteArray FuzzedUnit::received()
{
    QByteArray bytes;
    char piece[65536];
    ssize_t count = 0;
    while ((count = recv(m_sockets.constLast(), piece, sizeof piece, MSG_DONTWAIT)) > 0) {
        bytes.append(piece, static_cast<int>(count));
        settle(); // the unit may have held back what comes next
    }
    return bytes;
}

/// Every accepted frame is acknowledged once, every rejection is told once, in order; what else comes is
/// whole answers, each behind an acknowledgement.
void FuzzedUnit::checkReplies(const std::vector<WireOutcome>& outcomes)
{
    settle();
    const QByteArray replies = received();
    int at = 0;
    for (const WireOutcome& outcome : outcomes) {
        if (outcome.kind != WireOutcome::Kind::Accepted && outcome.kind != WireOutcome::Kind::Rejected) {
            continue;
        }
        const bool accepted = outcome.kind == WireOutcome::Kind::Accepted;
        demand(at < replies.size(), "every frame has its acknowledgement or rejection");
        demand(replies.at(at++) == (accepted ? ack : nack), "acknowledged or rejected as it should be");
        if (accepted && at < replies.size() && replies.at(at) == 0x02) {
            demand(at + 6 <= replies.size(), "an answer has a whole header");
            demand(outcome.record.grpId == 1 &&
                       static_cast<quint8>(replies.at(at + 1)) == outcome.record.cmdId &&
                       replies.at(at + 2) == 1,
                   "an answer belongs to the command before it");
            const int length =
                static_cast<quint8>(replies.at(at + 3)) + 256 * static_cast<quint8>(replies.at(at + 4));
            demand(at + 6 + length <= replies.size(), "an answer is whole");
            demand(replies.at(at + 5 + length) == 0x03, "an answer ends with ETX");
            demand(m_runner->interface() == Runner::Tcp, "only the selected interface answers");
            at += 6 + length;
        }
    }
    demand(at == replies.size(), "the unit says nothing more than it was asked for");
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
