"""What the library has to keep to, as ratios of medians of one run."""

BARS = [
    # scenario, figure, server to compare with, least or most, bound
    ("one", "full_rate", "Qt floor", "least", 1.1),
    ("one", "server_ns", "Qt floor", "most", 0.85),
    ("one", "server_ns", "QtSerialBus", "most", 0.85),
    ("many", "full_rate", "epoll floor", "least", 0.9),
    ("writes", "full_rate", "epoll floor", "least", 0.85),
    ("large", "full_bytes", "Qt floor", "least", 1.1),
    ("bytes", "server_ns", "Qt floor", "most", 1.1),
]

# scenario, server, longest latencies and median of the same, bound
TAIL = ("one", "redrawing", "p999_ns", "p50_ns", 3)

WORDS = {"full_rate": "requests a second", "server_ns": "CPU a request", "full_bytes": "bytes a second"}


def check(results):
    """A record for each bar whose figures are there: what, the ratio, the bound, and whether it is kept."""
    records = []
    for scenario, figure, other, kind, bound in BARS:
        of_scenario = results.get(scenario, {})
        if "library" not in of_scenario or other not in of_scenario:
            continue
        ratio = of_scenario["library"][figure]["median"] / of_scenario[other][figure]["median"]
        kept = ratio >= bound if kind == "least" else ratio <= bound
        records.append({"scenario": scenario, "what": f"{WORDS[figure]}, of {other}", "ratio": round(ratio, 3),
                        "bound": f"at {kind} {bound}", "kept": kept})
    scenario, server, longest, median, bound = TAIL
    if server in results.get(scenario, {}):
        figures = results[scenario][server]
        ratio = figures[longest]["median"] / figures[median]["median"]
        records.append({"scenario": scenario, "what": "p99.9 of the latency while redrawing, of p50", "ratio": round(ratio, 3),
                        "bound": f"at most {bound}", "kept": ratio <= bound})
    return records


def table(records, titles):
    return [f"{titles[record['scenario']]:32} {record['what']:46} {record['ratio']:6.2f}  {record['bound']:14} "
            f"{'kept' if record['kept'] else 'MISSED'}" for record in records]
