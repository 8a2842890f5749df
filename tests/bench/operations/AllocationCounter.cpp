#include "AllocationCounter.h"

#include <atomic>
#include <cstddef>

namespace {

// Another thread's allocations, the serial port watcher's for one, are nobody's business here.
thread_local std::uint64_t count = 0;
std::atomic<std::int64_t> living = 0;

void onMalloc()
{
    ++count;
    living.fetch_add(1, std::memory_order_relaxed);
}

void onFree(const volatile void* block)
{
    living.fetch_sub(block != nullptr ? 1 : 0, std::memory_order_relaxed);
}

} // namespace

namespace Tolvar::Varundo::Bench {

std::uint64_t allocationCount()
{
    return count;
}

std::int64_t livingBlocks()
{
    return living.load(std::memory_order_relaxed);
}

} // namespace Tolvar::Varundo::Bench

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)

// A sanitizer has the heap to itself, and tells who asks.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*onMalloc)(const volatile void*, std::size_t),
                                                         void (*onFree)(const volatile void*));

namespace {

[[maybe_unused]] const int installed =
    __sanitizer_install_malloc_and_free_hooks([](const volatile void*, std::size_t) { onMalloc(); }, onFree);

} // namespace

#else

// A program's own malloc() is the one that all its libraries call. These pass on to the C library's.
extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t number, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void __libc_free(void* block);

__attribute__((visibility("default"))) void free(void* block)
{
    onFree(block);
    __libc_free(block);
}

__attribute__((visibility("default"))) void* malloc(std::size_t size)
{
    onMalloc();
    return __libc_malloc(size);
}

__attribute__((visibility("default"))) void* calloc(std::size_t number, std::size_t size)
{
    onMalloc();
    return __libc_calloc(number, size);
}

__attribute__((visibility("default"))) void* realloc(void* block, std::size_t size)
{
    onMalloc();
    onFree(block);
    return __libc_realloc(block, size);
}
}

#endif
