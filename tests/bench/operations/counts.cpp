// counts: prints how many heap allocations each operation takes, as JSON. Under callgrind, which it is made
// for too, it has the instructions of each operation dumped under the operation's name.
//
// Takes names as arguments, to leave the others out; --list prints all of them.

#include "AllocationCounter.h"
#include "Operation.h"

#include <QGuiApplication>
#include <QLoggingCategory>

#include <valgrind/callgrind.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

using namespace Tolvar::Varundo;

namespace {

constexpr int warmUps = 70; // past the first growth of everything that grows by doubling
constexpr int runs = 100;   // so that a tick or two of the unit's own among them do not matter

/// What takes long is not done that often.
bool isLarge(const std::string& name)
{
    return name.find("100000") != std::string::npos || name.find("profile of 1000") != std::string::npos;
}

bool isWanted(const std::string& name, int argc, char** argv)
{
    return argc < 2 || std::find(argv + 1, argv + argc, name) != argv + argc;
}

/// Allocations of all runs together. The instructions are the runs' own and this loop's.
std::uint64_t measure(const Bench::OperationMaker& maker, int measuredRuns)
{
    const Bench::Operation operation = maker.make();
    for (int i = 0; i < (measuredRuns > 1 ? warmUps : 2); ++i) {
        operation.run();
    }
    const std::string label = std::to_string(measuredRuns * operation.times) + " x " + maker.name;
    const std::uint64_t before = Bench::allocationCount();
    CALLGRIND_START_INSTRUMENTATION;
    CALLGRIND_DUMP_STATS_AT("before"); // begins at nothing; merely zeroing runs below it now and then
    for (int i = 0; i < measuredRuns; ++i) {
        operation.run();
    }
    const std::uint64_t allocations = Bench::allocationCount() - before;
    CALLGRIND_DUMP_STATS_AT(label.c_str());
    CALLGRIND_STOP_INSTRUMENTATION;
    return allocations / static_cast<std::uint64_t>(operation.times);
}

} // namespace

int main(int argc, char** argv)
{
    const QGuiApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("varundo.*=false"));
    if (argc == 2 && std::strcmp(argv[1], "--list") == 0) {
        for (const Bench::OperationMaker& maker : Bench::allOperations()) {
            std::puts(maker.name.c_str());
        }
        return 0;
    }
    const char* separator = "{\n";
    for (const Bench::OperationMaker& maker : Bench::allOperations()) {
        if (!isWanted(maker.name, argc, argv)) {
            continue;
        }
        const int measuredRuns = isLarge(maker.name) ? 1 : runs;
        std::printf("%s  \"%s\": %.4g", separator, maker.name.c_str(),
                    static_cast<double>(measure(maker, measuredRuns)) / measuredRuns);
        std::fflush(stdout);
        separator = ",\n";
    }
    std::printf("\n}\n");
    return 0;
}
