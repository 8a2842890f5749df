#ifndef TOLVAR_VARUNDO_BENCH_OPERATION_H
#define TOLVAR_VARUNDO_BENCH_OPERATION_H

#include <functional>
#include <string>
#include <vector>

namespace Tolvar::Varundo::Bench {

/// One thing that a unit does again and again, ready to be done. It keeps alive what it needs.
struct Operation
{
    std::function<void()> run;
    int times = 1;  ///< how often the thing is done in one run
    long bytes = 0; ///< how many bytes of the wire it takes, where that is the point
};

/// A measured operation by name: it is made only when its turn comes, since some need a unit with 100,000
/// texts.
struct OperationMaker
{
    std::string name;
    std::function<Operation()> make;
};

/// What is measured, the same list for time, instructions and allocations.
std::vector<OperationMaker> allOperations();

// Its parts.
void addCodecOperations(std::vector<OperationMaker>& list);
void addUnitOperations(std::vector<OperationMaker>& list);
void addSocketOperations(std::vector<OperationMaker>& list);
void addGrowthOperations(std::vector<OperationMaker>& list);

} // namespace Tolvar::Varundo::Bench

#endif
