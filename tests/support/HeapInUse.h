#ifndef TOLVAR_VARUNDO_TEST_HEAPINUSE_H
#define TOLVAR_VARUNDO_TEST_HEAPINUSE_H

#include <QtGlobal>

#if defined(__has_feature)
    #if __has_feature(address_sanitizer)
        #define VARUNDO_TEST_SANITIZED_HEAP
    #endif
#elif defined(__SANITIZE_ADDRESS__)
    #define VARUNDO_TEST_SANITIZED_HEAP
#endif

#ifdef VARUNDO_TEST_SANITIZED_HEAP
    #include <sanitizer/allocator_interface.h>
#else
    #include <malloc.h>
#endif

namespace Tolvar::Varundo::Test {

/// Bytes that were allocated and not freed yet, exactly: unlike the resident memory they go down again, and a
/// sanitizer's red zones and quarantine do not count.
inline qint64 heapInUse()
{
#ifdef VARUNDO_TEST_SANITIZED_HEAP
    return static_cast<qint64>(__sanitizer_get_current_allocated_bytes());
#else
    const struct mallinfo2 info = mallinfo2();
    return static_cast<qint64>(info.uordblks) + static_cast<qint64>(info.hblkhd);
#endif
}

} // namespace Tolvar::Varundo::Test

#endif
