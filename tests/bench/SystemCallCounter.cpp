#include "SystemCallCounter.h"

#include <dlfcn.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cstdarg>

namespace {

constexpr int keptSizes = 65536;

thread_local quint64 count = 0;
thread_local int sizes[keptSizes];
thread_local int sizeCount = 0;

/// The C library's own function behind the program's.
template <class Function>
Function next(const char* name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

void countSend(std::size_t size)
{
    ++count;
    if (sizeCount < keptSizes) {
        sizes[sizeCount++] = static_cast<int>(size);
    }
}

} // namespace

namespace Tolvar::Varundo::Bench {

quint64 systemCallCount()
{
    return count;
}

QVector<int> sentSizes()
{
    QVector<int> sent;
    sent.reserve(sizeCount);
    for (int i = 0; i < sizeCount; ++i) {
        sent.append(sizes[i]);
    }
    return sent;
}

} // namespace Tolvar::Varundo::Bench

// A program's own functions are the ones that its libraries call.
extern "C" {

__attribute__((visibility("default"))) int poll(pollfd* files, nfds_t number, int timeout)
{
    static const auto real = next<int (*)(pollfd*, nfds_t, int)>("poll");
    ++count;
    return real(files, number, timeout);
}

__attribute__((visibility("default"))) int ppoll(pollfd* files, nfds_t number, const timespec* timeout,
                                                 const sigset_t* mask)
{
    static const auto real = next<int (*)(pollfd*, nfds_t, const timespec*, const sigset_t*)>("ppoll");
    ++count;
    return real(files, number, timeout, mask);
}

__attribute__((visibility("default"))) ssize_t read(int file, void* buffer, size_t size)
{
    static const auto real = next<ssize_t (*)(int, void*, size_t)>("read");
    ++count;
    return real(file, buffer, size);
}

__attribute__((visibility("default"))) ssize_t write(int file, const void* buffer, size_t size)
{
    static const auto real = next<ssize_t (*)(int, const void*, size_t)>("write");
    countSend(size);
    return real(file, buffer, size);
}

__attribute__((visibility("default"))) ssize_t writev(int file, const iovec* parts, int number)
{
    static const auto real = next<ssize_t (*)(int, const iovec*, int)>("writev");
    ++count;
    return real(file, parts, number);
}

__attribute__((visibility("default"))) ssize_t recv(int file, void* buffer, size_t size, int flags)
{
    static const auto real = next<ssize_t (*)(int, void*, size_t, int)>("recv");
    ++count;
    return real(file, buffer, size, flags);
}

__attribute__((visibility("default"))) ssize_t send(int file, const void* buffer, size_t size, int flags)
{
    static const auto real = next<ssize_t (*)(int, const void*, size_t, int)>("send");
    countSend(size);
    return real(file, buffer, size, flags);
}

__attribute__((visibility("default"))) ssize_t sendmsg(int file, const msghdr* message, int flags)
{
    static const auto real = next<ssize_t (*)(int, const msghdr*, int)>("sendmsg");
    ++count;
    return real(file, message, flags);
}

__attribute__((visibility("default"))) int ioctl(int file, unsigned long request, ...)
{
    static const auto real = next<int (*)(int, unsigned long, ...)>("ioctl");
    va_list arguments;
    va_start(arguments, request);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    ++count;
    return real(file, request, argument);
}
}
