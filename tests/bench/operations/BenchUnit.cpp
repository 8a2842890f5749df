#include "BenchUnit.h"

#include <CApplicationSettings.h>
#include <Mavril/VideoOverlay/ElementParam.h>
#include <Tolvar/Varundo/ReadCommandResponder.h>

#include <QCoreApplication>
#include <QTemporaryDir>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace Tolvar::Varundo::Bench {

using Mavril::VideoOverlay::ElementParam;

namespace {

[[noreturn]] void fail(const char* what)
{
    std::perror(what);
    std::exit(1);
}

/// A port that is free at this moment: transports outlive their Runner and keep theirs.
int freePort()
{
    const int probe = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    socklen_t size = sizeof address;
    auto* const any = reinterpret_cast<sockaddr*>(&address);
    if (bind(probe, any, size) != 0 || getsockname(probe, any, &size) != 0) {
        fail("a free port");
    }
    close(probe);
    return ntohs(address.sin_port);
}

/// A few of each kind that the protocol knows, and what is given.
QByteArray profileWith(const QByteArray& elements)
{
    QByteArray list = elements;
    for (const QString& column :
         {ElementParam::NAME_SECTION_DISTANCE_COUNTER, ElementParam::NAME_CAMERA_PAN,
          ElementParam::NAME_CAMERA_TEMPERATURE, ElementParam::NAME_CRAWLER_PITCH, ElementParam::NAME_DATE}) {
        list += R"({"kind": "bound", "binding": ")" + column.toUtf8() + R"("},)";
    }
    return R"({"name": "bench", "elements": [)" + list + R"({"kind": "static", "id": 1, "text": "line"},
        {"kind": "free", "enabled": false}]})";
}

} // namespace

BenchUnit::BenchUnit()
    : m_port(freePort())
{
    static const QTemporaryDir directory;
    CApplicationSettings* const settings = CApplicationSettings::instance();
    settings->setFileName(directory.filePath(QStringLiteral("settings")));
    settings->setCustomSetting(QStringLiteral("ZEL_INTERFACE"), QStringLiteral("Tcp"));
    manager.setElementAccessor(&accessor);
    runner = std::make_unique<Runner>(nullptr, &manager, &accessor);
    runner->setZelTcpPort(m_port);
    loadProfile(profileOf(0));
    m_parser = runner->findChild<CommandParser*>();
    QObject::connect(runner->findChild<ReadCommandResponder*>(), &ReadCommandResponder::commandReady,
                     runner.get(), [this](const CommandMessage& answer) {
                         if (m_client < 0) { // otherwise the transport does it
                             m_answer = encodeFrame(answer);
                         }
                     });
}

BenchUnit::~BenchUnit()
{
    if (m_client >= 0) {
        close(m_client);
    }
}

void BenchUnit::connectOverTcp()
{
    m_client = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<quint16>(m_port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const int on = 1;
    if (connect(m_client, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 &&
        errno != EINPROGRESS) {
        fail("connecting");
    }
    setsockopt(m_client, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

void BenchUnit::talk(const QByteArray& request, int replySize)
{
    if (send(m_client, request.constData(), static_cast<std::size_t>(request.size()), MSG_NOSIGNAL) !=
        request.size()) {
        fail("sending");
    }
    ++m_clientCalls;
    static char reply[70000];
    for (int received = 0; received < replySize;) {
        QCoreApplication::processEvents(
            QEventLoop::WaitForMoreEvents); // as a host does; the clean-up tick wakes it too
        ++m_clientCalls;
        const ssize_t size = recv(m_client, reply, sizeof reply, 0);
        if (size == 0 || (size < 0 && errno != EAGAIN)) {
            fail("receiving");
        }
        received += size > 0 ? static_cast<int>(size) : 0;
    }
}

void BenchUnit::loadProfile(const QByteArray& json)
{
    QString error;
    if (!manager.loadProfileData(json, QStringLiteral("bench"), &error)) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        std::exit(1);
    }
}

void BenchUnit::makeCustomTexts(int count)
{
    for (int i = 0; i < count; ++i) {
        feed(frame(0x98, Protocol::Write, QByteArray("\1text")));
    }
}

QByteArray BenchUnit::frame(int command, int group, const QByteArray& payload)
{
    return encodeFrame({static_cast<quint8>(command), static_cast<quint8>(group),
                        static_cast<quint16>(payload.size()), payload});
}

QByteArray BenchUnit::profileOf(int elements)
{
    QByteArray own;
    for (int i = 7; i < elements; ++i) {
        own += R"({"kind": "plain", "caption": "own )" + QByteArray::number(i) + R"("},)";
    }
    return profileWith(own);
}

QByteArray BenchUnit::profileOfBound(int elements)
{
    QByteArray lines;
    for (int i = 7; i < elements; ++i) {
        lines += R"({"kind": "static", "text": "line", "id": )" + QByteArray::number(i) + "},";
    }
    return profileWith(lines);
}

} // namespace Tolvar::Varundo::Bench
