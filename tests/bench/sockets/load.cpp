// load PORT PID zel|modbus SCENARIO SECONDS
//
// Drives one server in a closed loop, checks every byte that comes back, and prints its figures as JSON. Runs
// on the server's processor, so it costs as little as it can. PID is the server's, whose processor time it
// reads.

#include "Scenario.h"

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sched.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

using namespace Tolvar::Varundo;
using Bench::Scenario;

namespace {

using Clock = std::chrono::steady_clock;

[[noreturn]] void fail(const char* what)
{
    std::fprintf(stderr, "load: %s: %s\n", what, std::strerror(errno));
    std::exit(1);
}

std::int64_t nanoseconds(clockid_t clock)
{
    timespec time{};
    if (clock_gettime(clock, &time) != 0) {
        fail("reading a processor clock");
    }
    return time.tv_sec * 1'000'000'000LL + time.tv_nsec;
}

/// A number out of a process' /proc/PID/status.
std::int64_t statusFigure(pid_t process, const char* key)
{
    char name[64];
    std::snprintf(name, sizeof name, "/proc/%d/status", static_cast<int>(process));
    FILE* const file = std::fopen(name, "r");
    if (!file) {
        fail(name);
    }
    char line[256];
    std::int64_t figure = -1;
    while (std::fgets(line, sizeof line, file)) {
        if (std::strncmp(line, key, std::strlen(key)) == 0) {
            figure = std::strtoll(line + std::strlen(key), nullptr, 10);
        }
    }
    std::fclose(file);
    return figure;
}

/// Is woken when a whole reply is there, not by its acknowledgement: half a wake-up more or less of the load
/// would be counted as the server's.
int connectTo(std::uint16_t port, std::size_t bytesToWakeFor)
{
    const int leastBytes = static_cast<int>(bytesToWakeFor);
    const int handle = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const int on = 1;
    if (handle < 0 || connect(handle, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        setsockopt(handle, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on) != 0 ||
        setsockopt(handle, SOL_SOCKET, SO_RCVLOWAT, &leastBytes, sizeof leastBytes) != 0) {
        fail("connecting");
    }
    return handle;
}

/// One connection, and what is under way on it.
class Conversation
{
public:
    Conversation(int handle, const Scenario& scenario)
        : m_handle(handle)
        , m_scenario(scenario)
        , m_reply(scenario.reply())
        , m_buffer(std::max<std::size_t>(65536, m_reply.size()))
    {
        // So many requests one behind the other, from each that is sent in turn: sent from the middle of it.
        const std::size_t turns = scenario.outstanding + scenario.requests.size();
        for (std::size_t i = 0; i < turns; ++i) {
            m_requests += scenario.requests[i % scenario.requests.size()];
        }
    }

    void sendRequests(std::size_t count)
    {
        const std::size_t size = m_scenario.requestSize();
        const char* const first = m_requests.data() + (m_sent % m_scenario.requests.size()) * size;
        m_sent += count;
        if (!m_scenario.byteByByte) {
            sendAll(first, count * size);
            return;
        }
        for (std::size_t i = 0; i < count * size; ++i) {
            sendAll(first + i, 1);
            sched_yield(); // on one processor: the server takes this byte before the next one is there
        }
    }

    /// Waits for bytes; returns how many replies have become complete with them.
    std::size_t receiveReplies()
    {
        // A receive that has taken half of a reply would not be woken by the other half any more, see
        // connectTo().
        pollfd readable{m_handle, POLLIN, 0};
        if (m_scenario.outstanding == 1 && poll(&readable, 1, -1) != 1) {
            fail("waiting");
        }
        const ssize_t size = recv(m_handle, m_buffer.data(), m_buffer.size(), 0);
        if (size <= 0) {
            fail("the server has gone");
        }
        std::size_t complete = 0;
        for (ssize_t i = 0; i < size; ++i) {
            if (m_buffer[static_cast<std::size_t>(i)] != m_reply[m_replyAt]) {
                errno = EBADMSG;
                fail("a wrong byte in a reply");
            }
            if (++m_replyAt == m_reply.size()) {
                m_replyAt = 0;
                ++complete;
            }
        }
        return complete;
    }

    void finish(std::size_t underWay)
    {
        while (underWay > 0) {
            underWay -= receiveReplies();
        }
    }

private:
    void sendAll(const char* bytes, std::size_t size)
    {
        while (size > 0) {
            const ssize_t sent = send(m_handle, bytes, size, MSG_NOSIGNAL);
            if (sent <= 0) {
                fail("sending");
            }
            bytes += sent;
            size -= static_cast<std::size_t>(sent);
        }
    }

    int m_handle;
    const Scenario& m_scenario;
    std::string m_reply;
    std::string m_requests;
    std::vector<char> m_buffer;
    std::size_t m_sent = 0;
    std::size_t m_replyAt = 0;
};

/// How long each request took, if they are sent one at a time.
class Latencies
{
public:
    Latencies() { m_nanoseconds.reserve(4'000'000); }

    void add(std::int64_t time)
    {
        if (m_nanoseconds.size() < m_nanoseconds.capacity()) {
            m_nanoseconds.push_back(static_cast<std::uint32_t>(std::min<std::int64_t>(time, UINT32_MAX)));
        }
    }
    void sort() { std::sort(m_nanoseconds.begin(), m_nanoseconds.end()); }
    std::uint32_t quantile(double part) const
    {
        if (m_nanoseconds.empty()) {
            return 0;
        }
        return m_nanoseconds[static_cast<std::size_t>(part * static_cast<double>(m_nanoseconds.size() - 1))];
    }

private:
    std::vector<std::uint32_t> m_nanoseconds;
};

std::size_t drive(Conversation& conversation, const Scenario& scenario, double seconds, Latencies* latencies)
{
    const auto end =
        Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
    std::size_t done = 0;
    auto sentAt = Clock::now();
    conversation.sendRequests(scenario.outstanding);
    while (true) {
        const std::size_t complete = conversation.receiveReplies();
        if (complete == 0) {
            continue;
        }
        done += complete;
        const auto now = Clock::now();
        if (latencies) {
            latencies->add(std::chrono::duration_cast<std::chrono::nanoseconds>(now - sentAt).count());
        }
        if (now >= end) {
            conversation.finish(scenario.outstanding - complete);
            return done + scenario.outstanding - complete;
        }
        sentAt = now;
        conversation.sendRequests(complete);
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 6) {
        std::fprintf(stderr, "usage: load PORT PID zel|modbus SCENARIO SECONDS\n");
        return 2;
    }
    const auto port = static_cast<std::uint16_t>(std::strtol(argv[1], nullptr, 10));
    const auto server = static_cast<pid_t>(std::strtol(argv[2], nullptr, 10));
    const auto wire = std::strcmp(argv[3], "modbus") == 0 ? Bench::Wire::Modbus : Bench::Wire::Zel;
    const auto scenario = Bench::scenarioNamed(argv[4], wire);
    const double seconds = std::strtod(argv[5], nullptr);
    clockid_t serverClock{};
    if (!scenario || seconds <= 0 || clock_getcpuclockid(server, &serverClock) != 0) {
        std::fprintf(stderr, "load: a wrong argument\n");
        return 2;
    }

    // One at a time: by a whole reply, not by its acknowledgement, since waking it is counted as the server's
    // work.
    const std::size_t bytesToWakeFor = scenario->outstanding == 1 ? scenario->reply().size() : 1;
    Conversation conversation(connectTo(port, bytesToWakeFor), *scenario);
    drive(conversation, *scenario, seconds / 5, nullptr); // until caches and buffers have their sizes

    Latencies latencies;
    const std::int64_t switchesBefore = statusFigure(server, "voluntary_ctxt_switches:");
    const std::int64_t residentBefore = statusFigure(server, "VmRSS:");
    const std::int64_t serverBefore = nanoseconds(serverClock);
    const std::int64_t loadBefore = nanoseconds(CLOCK_PROCESS_CPUTIME_ID);
    const auto begin = Clock::now();
    const std::size_t done =
        drive(conversation, *scenario, seconds, scenario->outstanding == 1 ? &latencies : nullptr);
    const double wall = std::chrono::duration<double>(Clock::now() - begin).count();
    const std::int64_t serverTime = nanoseconds(serverClock) - serverBefore;
    const std::int64_t loadTime = nanoseconds(CLOCK_PROCESS_CPUTIME_ID) - loadBefore;
    const std::int64_t switches = statusFigure(server, "voluntary_ctxt_switches:") - switchesBefore;

    latencies.sort();
    const auto requests = static_cast<double>(done);
    const auto size = static_cast<double>(scenario->requestSize() + scenario->reply().size());
    std::printf(
        "{\"requests\": %zu, \"seconds\": %.6f, \"rate\": %.1f, \"bytes_per_second\": %.0f, "
        "\"server_ns\": %.1f, \"load_ns\": %.1f, \"share\": %.4f, \"switches\": %.3f, "
        "\"p50_ns\": %" PRIu32 ", \"p99_ns\": %" PRIu32 ", \"p999_ns\": %" PRIu32 ", \"peak_kib\": %" PRId64
        ", \"resident_before_kib\": %" PRId64 ", \"resident_kib\": %" PRId64 "}\n",
        done, wall, requests / wall, requests * size / wall, static_cast<double>(serverTime) / requests,
        static_cast<double>(loadTime) / requests, static_cast<double>(serverTime + loadTime) / (wall * 1e9),
        static_cast<double>(switches) / requests, latencies.quantile(0.5), latencies.quantile(0.99),
        latencies.quantile(0.999), statusFigure(server, "VmHWM:"), residentBefore,
        statusFigure(server, "VmRSS:"));
    return 0;
}
