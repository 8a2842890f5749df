"""Puts the figures of a whole run into the document that explains them."""

import bars

BEGIN, END = "<!-- figures: written by scripts/bench -->", "<!-- end of figures -->"

SERVERS = ["library", "Qt floor", "epoll floor", "QtSerialBus", "libmodbus"]

# A few of those that the baseline has.
OPERATIONS = [
    "decode a frame of 6 bytes", "decode a frame of 6 bytes, by hand", "execute: toggle an element", "write a position",
    "write a colour pair", "write a text in Latin-9", "write a text in UTF-8", "read a measured value", "an unknown command",
    "a device's signal: pan", "over TCP: execute", "over TCP: read a measured value", "over TCP: read a text",
    "toggle an element among 100000", "type a character among 100000", "write at the cursor among 100000",
    "clean-up tick among 100000",
]


def _table(head, rows):
    lines = [head, ["---"] * len(head), *rows]
    return "\n".join(f"| {' | '.join(line)} |" for line in lines)


def _rates(results, titles):
    rows = []
    for scenario, of_scenario in results.items():
        rows.append([titles[scenario]])
        for server in SERVERS:
            figures = of_scenario.get(server)
            rows[-1].append(f"{figures['full_rate']['median']:,.0f} / {figures['server_ns']['median'] / 1e3:.1f} µs"
                            if figures else "")
    rows.append(["peak memory"])
    for server in SERVERS:
        peaks = [of_scenario[server]["peak_kib"]["median"] for of_scenario in results.values() if server in of_scenario]
        rows[-1].append(f"{max(peaks) / 1024:.1f} MiB" if peaks else "")
    return _table(["", *SERVERS], rows)


def _bars(kept):
    rows = []
    for bar in kept:
        what, figure, bound, verdict, beside = bars.cells(bar)
        rows.append([what + (f" ({beside})" if beside else ""), figure, bound,
                     verdict if verdict == "kept" else f"**{verdict}**"])
    return _table(["bar", "figure", "bound", ""], rows)


def _operations(nanoseconds, counts):
    rows = [[name, f"{counts[name]['instructions']:,.0f}", f"{counts[name]['allocations']:g}", f"{nanoseconds[name]:,.0f} ns"]
            for name in OPERATIONS if name in nanoseconds and name in counts]
    return _table(["operation", "instructions", "allocations", "here"], rows)


def text(figures, kept, titles):
    rounds = figures["sockets"]["rounds"]
    return "\n\n".join([
        f"Medians of {rounds} rounds, requests a second / processor time of the server for each request:",
        _rates(figures["sockets"]["results"], titles),
        _bars(kept),
        _operations(figures["nanoseconds"], figures["counts"])])


def write(path, new):
    with open(path, encoding="utf-8") as file:
        document = file.read()
    head, _, rest = document.partition(BEGIN)
    _, found, tail = rest.partition(END)
    if not found:
        raise RuntimeError(f"{path} has no place for the figures")
    with open(path, "w", encoding="utf-8") as file:
        file.write(f"{head}{BEGIN}\n\n{new}\n\n{END}{tail}")
