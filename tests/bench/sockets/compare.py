"""Compares servers over real sockets: side by side, in interleaved rounds, server and load on one processor."""

import json
import os
import socket
import statistics
import subprocess
import sys

SERVERS = {
    # name: (program, protocol that the load speaks)
    "library": ("unit_server", "zel"),
    "redrawing": ("redrawing_server", "zel"),
    "Qt floor": ("qt_floor", "zel"),
    "epoll floor": ("epoll_floor", "zel"),
    "QtSerialBus": ("serialbus_server", "modbus"),
    "libmodbus": ("libmodbus_server", "modbus"),
}

SCENARIOS = {
    "one": "read requests, one at a time",
    "many": "read requests, 64 outstanding",
    "writes": "write commands, one at a time",
    "large": "largest frames",
    "text": "longest texts",
    "bytes": "read requests, byte by byte",
}

# Server and load take turns on one processor, so what they did not use went to others on this machine.
LEAST_SHARE = 0.90
TRIES = 2

REQUESTS_FOR_MEMORY = 1_000_000


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class Server:
    """One server process, pinned, for as long as the with statement lasts."""

    def __init__(self, programs, name, scenario, cpu):
        self.port = free_port()
        program = os.path.join(programs, SERVERS[name][0])
        self.process = subprocess.Popen(
            [program, str(self.port), scenario],
            stdout=subprocess.PIPE, preexec_fn=lambda: os.sched_setaffinity(0, {cpu}))
        if self.process.stdout.readline().strip() != b"ready":
            raise RuntimeError(f"{program} did not become ready")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.kill()
        self.process.wait()
        self.process.stdout.close()


def drive(programs, server, name, scenario, seconds, cpu):
    load = subprocess.run(
        [os.path.join(programs, "load"), str(server.port), str(server.process.pid), SERVERS[name][1], scenario,
         str(seconds)],
        stdout=subprocess.PIPE, check=True, preexec_fn=lambda: os.sched_setaffinity(0, {cpu}))
    return json.loads(load.stdout)


def memory(programs, cpu):
    """What the library holds after its first requests and after very many, over a few connections."""
    requests = 0
    before = None
    with Server(programs, "library", "many", cpu) as server:
        while requests < REQUESTS_FOR_MEMORY:
            figures = drive(programs, server, "library", "many", 2, cpu)
            requests += figures["requests"]
            before = before or figures["resident_before_kib"]
    return {"requests": requests, "before_kib": before, "after_kib": figures["resident_kib"]}


def run_once(programs, name, scenario, seconds, cpu):
    with Server(programs, name, scenario, cpu) as server:
        figures = drive(programs, server, name, scenario, seconds, cpu)
    # What they would do if the processor were theirs alone. On a machine that does nothing else it is the rate.
    figures["full_rate"] = 1e9 / (figures["server_ns"] + figures["load_ns"])
    figures["full_bytes"] = figures["bytes_per_second"] * figures["full_rate"] / figures["rate"]
    return figures


def run(programs, name, scenario, seconds, cpu):
    """The undisturbed run of a few, or the least disturbed."""
    runs = []
    for _ in range(TRIES):
        runs.append(run_once(programs, name, scenario, seconds, cpu))
        if runs[-1]["share"] >= LEAST_SHARE:
            break
    return max(runs, key=lambda figures: figures["share"])


def spread(values):
    """Median, and the range of all rounds."""
    return {"median": statistics.median(values), "least": min(values), "most": max(values)}


def progress(text):
    if sys.stderr.isatty():
        print(text, end="", file=sys.stderr, flush=True)


def compare(programs, rounds, seconds, cpu, servers, scenarios):
    """For each scenario and server: median and range of each figure."""
    figures = {scenario: {name: [] for name in servers} for scenario in scenarios}
    for number in range(rounds):
        for scenario in scenarios:
            for name in servers:
                if scenario == "text" and SERVERS[name][1] != "zel" or scenario != "one" and name == "redrawing":
                    continue
                progress(f"\rround {number + 1} of {rounds}: {scenario:8}{name:14}")
                figures[scenario][name].append(run(programs, name, scenario, seconds, cpu))
    progress("\r" + " " * 50 + "\r")
    return {
        scenario: {
            name: {key: spread([one[key] for one in of_server]) for key in of_server[0]}
            for name, of_server in of_scenario.items() if of_server
        }
        for scenario, of_scenario in figures.items()
    }


def table(results):
    """Lines of text, one server each."""
    lines = []
    for scenario, of_scenario in results.items():
        lines.append(f"{SCENARIOS[scenario]}")
        lines.append(f"  {'':12} {'requests/s':>11} {'least to most':>17} {'MB/s':>7} {'CPU us':>7} {'p50 us':>7} {'p99.9':>7}"
                     f" {'wakes':>6} {'peak MiB':>8} {'share':>6}")
        for name, figures in of_scenario.items():
            rate = figures["full_rate"]
            lines.append(
                f"  {name:12} {rate['median']:11,.0f} {rate['least']:8,.0f}-{rate['most']:8,.0f}"
                f" {figures['full_bytes']['median'] / 1e6:7.1f}"
                f" {figures['server_ns']['median'] / 1e3:7.2f} {figures['p50_ns']['median'] / 1e3:7.1f}"
                f" {figures['p999_ns']['median'] / 1e3:7.1f} {figures['switches']['median']:6.2f}"
                f" {figures['peak_kib']['median'] / 1024:8.1f} {figures['share']['median']:6.2f}")
    return lines
