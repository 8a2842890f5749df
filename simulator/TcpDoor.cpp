#include "TcpDoor.h"

#include <QDir>
#include <QHostAddress>
#include <QTcpServer>

#include <netinet/in.h>
#include <sys/socket.h>

namespace Tolvar::Varundo::Simulator {

namespace {

/// -1 for what is no listening TCP socket.
int listeningPort(int descriptor)
{
    int listening = 0;
    socklen_t size = sizeof listening;
    if (getsockopt(descriptor, SOL_SOCKET, SO_ACCEPTCONN, &listening, &size) != 0 || listening == 0) {
        return -1;
    }
    sockaddr_storage address{};
    size = sizeof address;
    if (getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
        return -1;
    }
    if (address.ss_family == AF_INET6) {
        return ntohs(reinterpret_cast<const sockaddr_in6*>(&address)->sin6_port);
    }
    return address.ss_family == AF_INET ? ntohs(reinterpret_cast<const sockaddr_in*>(&address)->sin_port)
                                        : -1;
}

} // namespace

int TcpDoor::freePort()
{
    QTcpServer probe;
    return probe.listen(QHostAddress::Any) ? probe.serverPort() : 0;
}

bool TcpDoor::isOpen(int port)
{
    const auto descriptors = QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::Files | QDir::System);
    for (const QString& descriptor : descriptors) {
        if (listeningPort(descriptor.toInt()) == port) {
            return true;
        }
    }
    return false;
}

QString TcpDoor::whyClosed(int port)
{
    QTcpServer probe;
    return probe.listen(QHostAddress::Any, static_cast<quint16>(port)) ? QString() : probe.errorString();
}

} // namespace Tolvar::Varundo::Simulator
