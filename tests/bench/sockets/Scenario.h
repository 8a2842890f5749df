#ifndef TOLVAR_VARUNDO_BENCH_SCENARIO_H
#define TOLVAR_VARUNDO_BENCH_SCENARIO_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Tolvar::Varundo::Bench {

/// What the load sends and what must come back. Shared by the load and by the floors, which decode nothing
/// and only count bytes. Without Qt, so that the load costs little.
struct Scenario
{
    std::string name;
    std::vector<std::string> requests; ///< of one size, sent in turn, so that every write changes something
    std::string acknowledgement;       ///< a flushed write of its own; empty in a protocol without
    std::string answer;                ///< another one; empty when there is none
    std::size_t outstanding = 1;
    bool byteByByte = false;

    std::size_t requestSize() const { return requests.front().size(); }
    std::string reply() const { return acknowledgement + answer; }
};

enum class Wire { Zel, Modbus };

/// "one", "many", "writes", "large", "bytes", and on our own wire "text"; nothing for any other name.
std::optional<Scenario> scenarioNamed(std::string_view name, Wire wire);

} // namespace Tolvar::Varundo::Bench

#endif
