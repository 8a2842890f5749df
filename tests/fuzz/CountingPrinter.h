#ifndef TOLVAR_VARUNDO_TEST_COUNTINGPRINTER_H
#define TOLVAR_VARUNDO_TEST_COUNTINGPRINTER_H

namespace Tolvar::Varundo::Test {

/// zelctl's Printer in a fuzzer: what it is given must be fit to print, and is only counted. It is linked in
/// place of the real one.
class CountingPrinter
{
public:
    static int errors(); ///< that were ever told
};

} // namespace Tolvar::Varundo::Test

#endif
