#ifndef TOLVAR_VARUNDO_TEST_OPENDESCRIPTORS_H
#define TOLVAR_VARUNDO_TEST_OPENDESCRIPTORS_H

#include <QDir>
#include <QStringList>

#include <netinet/in.h>
#include <sys/socket.h>

namespace Tolvar::Varundo::Test {

/// This process's open descriptors, looked at from outside the code under test.
inline QStringList openDescriptors()
{
    return QDir(QStringLiteral("/proc/self/fd"))
        .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
}

/// This process's end of a TCP connection whose other end has that port; -1 if there is none.
inline int descriptorOfPeer(quint16 peerPort)
{
    for (const QString& name : openDescriptors()) {
        sockaddr_in6 peer{}; // its port is where an IPv4 address has it, too
        socklen_t size = sizeof(peer);
        const int descriptor = name.toInt();
        if (getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &size) == 0 &&
            (peer.sin6_family == AF_INET6 || peer.sin6_family == AF_INET) &&
            ntohs(peer.sin6_port) == peerPort) {
            return descriptor;
        }
    }
    return -1;
}

} // namespace Tolvar::Varundo::Test

#endif
