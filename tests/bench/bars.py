"""What the library has to keep to. Ratios are of medians of one run, counts are exact."""

from collections import namedtuple

# what; the figure and its bound, higher or lower than which it must not be; how it is written; what is worth knowing beside
Bar = namedtuple("Bar", "what value least most unit beside", defaults=(None, None, "", ""))

# scenario, figure, server to compare with, bounds
COMPARISONS = [
    ("one", "full_rate", "Qt floor", {"least": 1.1}),
    ("one", "server_ns", "Qt floor", {"most": 0.85}),
    ("one", "server_ns", "QtSerialBus", {"most": 0.85}),
    ("many", "full_rate", "epoll floor", {"least": 0.9}),
    ("writes", "full_rate", "epoll floor", {"least": 0.85}),
    ("large", "full_bytes", "Qt floor", {"least": 1.1}),
    ("bytes", "server_ns", "Qt floor", {"most": 1.1}),
]
WORDS = {"full_rate": "requests a second", "server_ns": "CPU a request", "full_bytes": "bytes a second"}

# operation, most nanoseconds
TIMES = [
    ("type a character among 100000", 2e6),
    ("write at the cursor among 100000", 2e6),
    ("clean-up tick among 100000", 5e6),
]

# what; two operations, most instructions of the first for each of the second
INSTRUCTIONS = [
    ("a frame of 6 bytes: instructions, of a hand-written loop", "decode a frame of 6 bytes",
     "decode a frame of 6 bytes, by hand", 1.5),
    ("a command with 100,000 bound elements: instructions, of with 10", "toggle an element among 100000",
     "toggle an element among 10", 1.05),
]

# The memory that a million requests may leave behind: some pages that the heap touches late.
MOST_MEMORY_KIB = 64


def _comparisons(results, titles):
    for scenario, figure, other, bounds in COMPARISONS:
        of_scenario = results.get(scenario, {})
        if "library" in of_scenario and other in of_scenario:
            ratio = of_scenario["library"][figure]["median"] / of_scenario[other][figure]["median"]
            yield Bar(f"{titles[scenario]}: {WORDS[figure]}, of {other}", ratio, **bounds)


def _tail(results):
    """A machine's own pauses are in every tail: what the server has that redraws nothing is told beside it."""
    of_scenario = results.get("one", {})
    ratios = {name: figures["p999_ns"]["median"] / figures["p50_ns"]["median"] for name, figures in of_scenario.items()}
    if "redrawing" in ratios:
        still = [f"{name} {ratios[name]:.2f}" for name in ("library", "Qt floor", "epoll floor") if name in ratios]
        beside = f"redrawing nothing: {', '.join(still)}" if still else ""
        yield Bar("p99.9 of the latency while redrawing, of p50", ratios["redrawing"], most=3, beside=beside)


def _memory(figures):
    if figures:
        yield Bar(f"memory kept over {figures['requests']:,} requests", figures["after_kib"] - figures["before_kib"],
                  most=MOST_MEMORY_KIB, unit="KiB")


def _times(nanoseconds):
    for name, most in TIMES:
        if name in nanoseconds:
            yield Bar(name, nanoseconds[name] / 1e6, most=most / 1e6, unit="ms")


def _instructions(counts):
    for what, name, other, most in INSTRUCTIONS:
        if name in counts and other in counts:
            yield Bar(what, counts[name]["instructions"] / counts[other]["instructions"], most=most)


def check(figures, titles):
    """A bar for each figure that is there."""
    sockets = figures.get("sockets", {})
    return [*_comparisons(sockets.get("results", {}), titles), *_tail(sockets.get("results", {})),
            *_memory(sockets.get("memory")), *_times(figures.get("nanoseconds", {})),
            *_instructions(figures.get("counts", {}))]


def is_kept(bar):
    return (bar.least is None or bar.value >= bar.least) and (bar.most is None or bar.value <= bar.most)


def _figure(bar):
    """Rounded, but never onto the bound or across it."""
    bound = bar.most if bar.least is None else bar.least
    for digits in range(0 if bar.unit == "KiB" else 2, 9):
        text = f"{bar.value:.{digits}f}"
        if is_kept(bar) or float(text) != bound:
            break
    return text


def cells(bar):
    """What, figure, bound, verdict, remark: as text."""
    bound = f"at most {bar.most:g}" if bar.least is None else f"at least {bar.least:g}"
    return [bar.what, f"{_figure(bar)} {bar.unit}".rstrip(), f"{bound} {bar.unit}".rstrip(),
            "kept" if is_kept(bar) else "missed", bar.beside]


def records(bars):
    return [{"what": bar.what, "figure": round(bar.value, 3), "unit": bar.unit, "least": bar.least, "most": bar.most,
             "kept": is_kept(bar)} for bar in bars]


def table(bars):
    return ["{:76} {:>10}  {:15} {:7} {}".format(*cells(bar)).rstrip() for bar in bars]
