"""The benchmarks' front, which scripts/bench calls with the folder of the built programs."""

import argparse
import json
import os
import statistics
import subprocess
import sys

import bars
import chart
import counts
import report

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "sockets"))
import compare  # noqa: E402
import network  # noqa: E402

# Walks over all the elements are the memory's time, which differs from one moment to the next.
REPETITIONS = ["--benchmark_repetitions=5", "--benchmark_min_time=0.1"]


def run_sockets(folder, given):
    results = compare.compare(os.path.join(folder, "sockets"), given.rounds, given.seconds, given.cpu,
                              given.servers, given.scenarios)
    print("\n".join(compare.table(results)))
    figures = {"rounds": given.rounds, "seconds": given.seconds, "results": results}
    if "library" in given.servers:
        figures["memory"] = compare.memory(os.path.join(folder, "sockets"), given.cpu)
    return figures


def run_micro(folder, arguments):
    program = os.path.join(folder, "operations", "micro")

    def output(*options):
        return subprocess.run([program, *options], check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
                              env=counts.ENVIRONMENT).stdout

    filters = [[]]
    if not any(argument.startswith("--benchmark_filter") for argument in arguments):
        # Over TCP each in a process of its own, see counts.count().
        alone = [name for name in output("--benchmark_list_tests").splitlines() if name.startswith("over TCP")]
        filters = [["--benchmark_filter=-^over TCP"], *([f"--benchmark_filter=^{name}$"] for name in alone)]
    runs = {}
    for chosen in filters:
        for one in json.loads(output("--benchmark_format=json", *REPETITIONS, *chosen, *arguments))["benchmarks"]:
            # An aggregate is none. And a run may do its thing several times.
            if one["run_type"] == "iteration":
                runs.setdefault(one["run_name"], []).append(1e9 / one["items_per_second"])
    times = {name: round(statistics.median(each), 1) for name, each in runs.items()}
    print("\n".join(f"{name:50} {each:14,.1f} ns" for name, each in times.items()))
    return times


def run_counts(folder, given):
    """True if nothing has grown."""
    counted = counts.count(os.path.join(folder, "operations", "counts"))
    print("\n".join(counts.table(counted)))
    if given.accept:
        counts.accept(counted, given.accept)
        return counted, True
    grown = counts.growth(counted, counts.baseline()["counts"])
    for line in grown:
        print(f"grown: {line}", file=sys.stderr)
    if grown:
        print("If that is meant: scripts/bench counts --accept 'the reason', and commit the baseline with the change.",
              file=sys.stderr)
    return counted, not grown


def positive(kind):
    def number(text):
        value = kind(text)
        if not 0 < value < float("inf"):
            raise argparse.ArgumentTypeError(f"{text} is not above 0")
        return value
    return number


def names_of(known):
    def names(text):
        unknown = [name for name in text.split(",") if name not in known]
        if unknown:
            raise argparse.ArgumentTypeError(f"{', '.join(unknown)}: there are {', '.join(known)}")
        return text.split(",")
    return names


def parse(arguments):
    parser = argparse.ArgumentParser(prog="scripts/bench", description=__doc__)
    parser.add_argument("folder")
    parser.add_argument("what", nargs="?", choices=["all", "sockets", "micro", "counts"], default="all")
    parser.add_argument("--rounds", type=positive(int), default=5)
    parser.add_argument("--seconds", type=positive(float), default=1.0, help="of each run over sockets")
    parser.add_argument("--cpu", type=int, default=max(os.sched_getaffinity(0)))
    parser.add_argument("--servers", type=names_of(compare.SERVERS), default=list(compare.SERVERS))
    parser.add_argument("--scenarios", type=names_of(compare.SCENARIOS), default=list(compare.SCENARIOS))
    parser.add_argument("--accept", metavar="REASON", help="make what is counted the new baseline")
    parser.add_argument("--json", metavar="FILE", help="where all figures go")
    parser.add_argument("--svg", metavar="FILE", help="where the plot of the comparison goes")
    parser.add_argument("--document", metavar="FILE", help="where the tables of a whole run go, between marks")
    given, rest = parser.parse_known_args(arguments)
    if rest and given.what not in ("all", "micro"):
        parser.error(f"unknown: {' '.join(rest)}")
    if given.document and given.what != "all":
        parser.error("--document wants a whole run")
    return given, rest


def main():
    given, rest = parse(sys.argv[1:])
    figures = {}
    has_not_grown = True
    if given.what in ("all", "sockets"):
        try:
            network.enter()
        except OSError as error:
            sys.exit(f"error: {error.strerror}: the servers are compared in a network of their own, with "
                     f"{network.CONGESTION_CONTROL}; as root it takes a kernel with network namespaces")
        figures["sockets"] = run_sockets(given.folder, given)
        if given.svg:
            with open(given.svg, "w", encoding="utf-8") as file:
                file.write(chart.draw(figures["sockets"]["results"], compare.SCENARIOS))
    if given.what in ("all", "micro"):
        figures["nanoseconds"] = run_micro(given.folder, rest)
    if given.what in ("all", "counts"):
        figures["counts"], has_not_grown = run_counts(given.folder, given)
    kept = bars.check(figures, compare.SCENARIOS)
    figures["bars"] = bars.records(kept)
    print("\n".join(["", *bars.table(kept)]))
    if given.json:
        with open(given.json, "w", encoding="utf-8") as file:
            json.dump(figures, file, indent=1, ensure_ascii=False)
            file.write("\n")
    if given.document:
        report.write(given.document, report.text(figures, kept, compare.SCENARIOS))
    return 0 if has_not_grown else 1


if __name__ == "__main__":
    sys.exit(main())
