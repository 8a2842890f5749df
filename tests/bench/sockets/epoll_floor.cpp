// The least that any server can do, by hand: epoll, one receive, and for each request the sends that the
// protocol demands. It decodes nothing and counts bytes.

#include "ServerArguments.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace Tolvar::Varundo;

namespace {

int listenOn(std::uint16_t port)
{
    // Both families on one socket, as the library has it.
    const int listener = socket(AF_INET6, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const int on = 1;
    const int off = 0;
    setsockopt(listener, IPPROTO_IPV6, IPV6_V6ONLY, &off, sizeof off);
    setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in6 address{};
    address.sin6_family = AF_INET6;
    address.sin6_port = htons(port);
    address.sin6_addr = in6addr_any;
    if (bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(listener, 16) != 0) {
        std::perror("listen");
        std::exit(1);
    }
    return listener;
}

void watch(int poller, int handle)
{
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.fd = handle;
    epoll_ctl(poller, EPOLL_CTL_ADD, handle, &event);
}

/// The load never has so much outstanding that the kernel would not take an answer.
bool sendAll(int handle, const std::string& bytes)
{
    return send(handle, bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
}

} // namespace

int main(int argc, char** argv)
{
    const Bench::ServerArguments arguments = Bench::serverArguments(argc, argv, Bench::Wire::Zel);
    const Bench::Scenario& scenario = arguments.scenario;
    const int listener = listenOn(arguments.port);
    const int poller = epoll_create1(EPOLL_CLOEXEC);
    watch(poller, listener);
    Bench::tellReady();

    static char buffer[65536];
    std::size_t received = 0;
    while (true) {
        epoll_event event{};
        if (epoll_wait(poller, &event, 1, -1) != 1) {
            continue;
        }
        if (event.data.fd == listener) {
            const int client = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
            const int on = 1;
            setsockopt(client, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
            watch(poller, client);
            received = 0;
            continue;
        }
        const ssize_t size = recv(event.data.fd, buffer, sizeof buffer, 0);
        if (size <= 0) {
            close(event.data.fd);
            continue;
        }
        received += static_cast<std::size_t>(size);
        for (; received >= scenario.requestSize(); received -= scenario.requestSize()) {
            if (!sendAll(event.data.fd, scenario.acknowledgement) ||
                (!scenario.answer.empty() && !sendAll(event.data.fd, scenario.answer))) {
                std::perror("send");
                return 1;
            }
        }
    }
}
