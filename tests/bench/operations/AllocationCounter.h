#ifndef TOLVAR_VARUNDO_BENCH_ALLOCATIONCOUNTER_H
#define TOLVAR_VARUNDO_BENCH_ALLOCATIONCOUNTER_H

#include <cstdint>

namespace Tolvar::Varundo::Bench {

/// How often this thread has asked for heap memory so far, by whatever way: malloc(), operator new, Qt's own.
/// A program that links this has its allocations counted, also those of the libraries it uses.
std::uint64_t allocationCount();

/// How many blocks all threads together have asked for and not given back.
std::int64_t livingBlocks();

} // namespace Tolvar::Varundo::Bench

#endif
