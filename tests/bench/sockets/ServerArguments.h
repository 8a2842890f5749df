#ifndef TOLVAR_VARUNDO_BENCH_SERVERARGUMENTS_H
#define TOLVAR_VARUNDO_BENCH_SERVERARGUMENTS_H

#include "Scenario.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>

namespace Tolvar::Varundo::Bench {

/// What every server under comparison is started with: PORT SCENARIO.
struct ServerArguments
{
    std::uint16_t port;
    Scenario scenario;
};

/// Ends the program, with a word about it, when they are wrong.
inline ServerArguments serverArguments(int argc, char** argv, Wire wire)
{
    const long port = argc == 3 ? std::strtol(argv[1], nullptr, 10) : 0;
    std::optional<Scenario> scenario;
    if (argc == 3) {
        scenario = scenarioNamed(argv[2], wire);
    }
    if (port < 1 || port > 65535 || !scenario) {
        std::fprintf(stderr, "usage: %s PORT one|many|writes|large|text|bytes\n", argv[0]);
        std::exit(2);
    }
    return {static_cast<std::uint16_t>(port), *scenario};
}

/// Tells who started the server that the port is open.
inline void tellReady()
{
    std::puts("ready");
    std::fflush(stdout);
}

} // namespace Tolvar::Varundo::Bench

#endif
