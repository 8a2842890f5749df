#ifndef TOLVAR_VARUNDO_TEST_DEMAND_H
#define TOLVAR_VARUNDO_TEST_DEMAND_H

#include <cstdio>
#include <cstdlib>

namespace Tolvar::Varundo::Test {

/// What must hold for every input. A fuzzer knows an abort for a finding, as does the replay.
inline void demand(bool holds, const char* what)
{
    if (!holds) {
        std::fprintf(stderr, "FINDING: %s\n", what);
        std::abort();
    }
}

} // namespace Tolvar::Varundo::Test

#endif
