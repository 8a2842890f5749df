"""Counts what the operations of a unit cost in instructions and heap allocations, and compares with the baseline."""

import glob
import json
import os
import re
import subprocess
import tempfile

BASELINE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "baseline.json")
TOLERANCE = 0.03

ENVIRONMENT = {**os.environ, "QT_QPA_PLATFORM": "offscreen", "QT_HASH_SEED": "0", "QT_LOGGING_RULES": "*=false",
               # Without what only some processors have: else the counts would be this machine's own.
               "GLIBC_TUNABLES": "glibc.cpu.hwcaps=-AVX512F,-AVX512VL,-AVX2,-AVX_Fast_Unaligned_Load,-ERMS,-FSRM",
               "QT_NO_CPU_FEATURE": "avx avx2 avx512f avx512vl"}


def allocations(program, names):
    output = subprocess.run([program, *names], check=True, stdout=subprocess.PIPE, env=ENVIRONMENT).stdout
    return json.loads(output)


def instructions(program, names):
    """Of each operation, by the dumps that it triggers under callgrind."""
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run(
            ["valgrind", "--tool=callgrind", "--instr-atstart=no", "--separate-threads=yes", "-q",
             f"--callgrind-out-file={folder}/out", program, *names],
            check=True, stdout=subprocess.DEVNULL, env=ENVIRONMENT)
        counts = {}
        for name in glob.glob(f"{folder}/out.*-01"):  # the serial port watcher's thread comes and goes as it likes
            with open(name, encoding="utf-8", errors="replace") as dump:
                text = dump.read()
            trigger = re.search(r"^desc: Trigger: Client Request: (\d+) x (.*)$", text, re.MULTILINE)
            total = re.search(r"^(?:summary|totals): (\d+)", text, re.MULTILINE)
            if trigger and total:
                counts[trigger[2]] = round(int(total[1]) / int(trigger[1]), 1)
        return counts


def count(program):
    """Operations over TCP run each in a process of its own: transports outlive their unit, and the event loop of a later one
    would have theirs to look at."""
    listed = subprocess.run([program, "--list"], check=True, stdout=subprocess.PIPE, text=True, env=ENVIRONMENT)
    names = listed.stdout.splitlines()
    alone = [name for name in names if name.startswith("over TCP")]
    groups = [[name for name in names if name not in alone], *([name] for name in alone)]
    figures = {}
    for group in groups:
        of_allocations = allocations(program, group)
        of_instructions = instructions(program, group)
        for name in group:
            figures[name] = {"instructions": of_instructions[name], "allocations": of_allocations[name]}
    return {name: figures[name] for name in names}


def baseline():
    with open(BASELINE, encoding="utf-8") as file:
        return json.load(file)


def accept(counts, reason):
    """Writes a new baseline, and the reason for it beside the old ones."""
    reasons = baseline()["reasons"] if os.path.exists(BASELINE) else []
    with open(BASELINE, "w", encoding="utf-8") as file:
        json.dump({"reasons": [*reasons, reason], "counts": counts}, file, indent=1, ensure_ascii=False)
        file.write("\n")


def growth(counts, of_baseline):
    """What has grown beyond tolerance, is new or is missing: a line of text each."""
    found = []
    for name in sorted(set(counts) | set(of_baseline)):
        if name not in counts or name not in of_baseline:
            found.append(f"{name}: {'not in the baseline' if name in counts else 'not measured any more'}")
            continue
        for what in ("instructions", "allocations"):
            before, now = of_baseline[name][what], counts[name][what]
            if now > before * (1 + TOLERANCE):
                found.append(f"{name}: {before:,.10g} {what} before, {now:,.10g} now")
    return found


def table(counts):
    lines = [f"{'':50} {'instructions':>14} {'allocations':>12}"]
    for name, figures in counts.items():
        lines.append(f"{name:50} {figures['instructions']:14,.1f} {figures['allocations']:12,.4g}")
    return lines
