#include "AllocationCounter.h"

#include <cstddef>

namespace {

// Another thread's allocations, the serial port watcher's for one, are nobody's business here.
thread_local std::uint64_t count = 0; // NOLINT: what is called by malloc() can own nothing else

} // namespace

namespace Tolvar::Varundo::Bench {

std::uint64_t allocationCount()
{
    return count;
}

} // namespace Tolvar::Varundo::Bench

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)

// A sanitizer has the heap to itself, and tells who asks.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*onMalloc)(const volatile void*, std::size_t),
                                                         void (*onFree)(const volatile void*));

namespace {

[[maybe_unused]] const int installed = __sanitizer_install_malloc_and_free_hooks(
    [](const volatile void*, std::size_t) { ++count; }, [](const volatile void*) {});

} // namespace

#else

// A program's own malloc() is the one that all its libraries call. These pass on to the C library's.
extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t number, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);

__attribute__((visibility("default"))) void* malloc(std::size_t size)
{
    ++count;
    return __libc_malloc(size);
}

__attribute__((visibility("default"))) void* calloc(std::size_t number, std::size_t size)
{
    ++count;
    return __libc_calloc(number, size);
}

__attribute__((visibility("default"))) void* realloc(void* block, std::size_t size)
{
    ++count;
    return __libc_realloc(block, size);
}
}

#endif
