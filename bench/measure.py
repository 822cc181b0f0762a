# SPDX-License-Identifier: GPL-3.0-or-later
"""Measures the whole program and its parts beside their floors, and prints one table."""

import argparse
import json
import os
import re
import statistics
import subprocess
import sys
import tempfile
from pathlib import Path

sys.path.append(str(Path(__file__).resolve().parents[1] / "tests/torture"))
from lab import Build  # noqa: E402
from wholeprogram import FLOOR, OFFLINE, RUNNING, STOPPED, measure  # noqa: E402

# What is measured of the whole program, in which states, and the most that it is to be: of the
# floor, or by itself.
WHOLE = (
    ("start", "start to visible strip, s", (STOPPED,), "ratio", 1.25),
    ("memory", "memory (PSS) after 15 s, MB", (STOPPED, RUNNING, OFFLINE), "ratio", 1.2),
    ("processor", "processor, % of a core", (STOPPED,), "figure", 0.30),
    ("processor", "processor, % of a core", (RUNNING, OFFLINE), "figure", 0.40),
    ("wake-ups", "wake-ups a second", (STOPPED, RUNNING, OFFLINE), "figure", 25),
)
# The most that a part may cost of its floor, by the beginning of the benchmark's name.
PARTS = {
    "scrollingTitle": 1.3,
    "picture": 1.2,
    "reportBody": 6,
    "refresh": 2,
    "drain": 1.05,
}
# The sizes of the desktops that a program of benchmarks needs. The others need none.
DESKTOPS = {"bench_picture": ("1920x1080", "3840x2160")}
# A figure whose runs lie farther apart than this share of it says nothing.
WIDEST_SPREAD = 0.3


def row(what, floor, figure, ratio, aim, remark):
    print(f"| {what} | {floor} | {figure} | {ratio} | {aim} | {remark} |", flush=True)


def told(values):
    return " / ".join(f"{value:.3g}" for value in (min(values), statistics.median(values),
                                                   max(values)))


def remark(is_met, spread):
    if spread > WIDEST_SPREAD:
        return f"not to be trusted: spread {spread:.0%}"
    return {None: "", True: "met", False: "not met"}[is_met]


def spread(values):
    return (max(values) - min(values)) / statistics.median(values)


def print_whole(build, options):
    rounds, starts, seconds = (1, 3, 10) if options.short else (3, 20, 60)
    figures, others = measure(build, rounds, starts, seconds)
    for what, title, states, kind, aim in WHOLE:
        floor = figures[what, FLOOR]
        for state in states:
            values = figures[what, state]
            ratio = statistics.median(values) / statistics.median(floor)
            reached = ratio if kind == "ratio" else statistics.median(values)
            row(f"{title}: {state}", told(floor), told(values), f"{ratio:.2f}",
                f"{aim:g} times" if kind == "ratio" else f"{aim:g}",
                remark(reached <= aim, max(spread(floor), spread(values))))
    if others:
        print(f"\nUp to {others} other programs with Qt ran meanwhile and took a part of what is "
              "shared: the memory is too low, and its ratio too high.")


def print_parts(build, options):
    for program in sorted((build.folder / "bin").glob("bench_*")):
        for desktop in DESKTOPS.get(program.name, (None,)):
            for bench in measured_parts(program, desktop, options):
                print_part(bench)


def measured_parts(program, desktop, options):
    command, env = [program], {"QT_QPA_PLATFORM": "offscreen"}
    if desktop:
        command, env = ["script/with-desktop", program], {"DESKTOP_SIZE": desktop}
    with tempfile.NamedTemporaryFile(suffix=".json") as result:
        short = ["--benchmark_min_time=0.01"] if options.short else []
        subprocess.run([*command, f"--benchmark_out={result.name}", *short, *options.rest],
                       env={**os.environ, **env}, check=True, stdout=subprocess.DEVNULL)
        return json.load(result)["benchmarks"]


def print_part(bench):
    name = bench["name"].split("/iterations")[0].split("/manual_time")[0]
    time = f"{bench['real_time']:.3g} {bench['time_unit']}"
    ratio = bench.get("ratio")
    if ratio is None:
        row(name, "", time, "", "", "")
        return
    aim = next((most for start, most in PARTS.items() if name.startswith(start)), None)
    row(name, f"{bench['real_time'] / ratio:.3g} {bench['time_unit']}", time, f"{ratio:.2f}",
        f"{aim:g} times" if aim else "",
        remark(ratio <= aim if aim else None,
               (bench.get("high", ratio) - bench.get("low", ratio)) / ratio))


def print_machine():
    model = re.search(r"model name\s*: (.*)", Path("/proc/cpuinfo").read_text())
    load = " ".join(f"{part:.1f}" for part in os.getloadavg())
    print(f"{model[1] if model else 'unknown processor'}, {os.cpu_count()} cores, load {load}\n")


def main():
    parser = argparse.ArgumentParser(description=__doc__, prog="script/bench",
                                     epilog="Further arguments go to Google Benchmark.")
    parser.add_argument("--build", type=Build, required=True, help=argparse.SUPPRESS)
    parser.add_argument("--only", choices=("whole", "parts"))
    parser.add_argument("--short", action="store_true", help="to try the benchmarks themselves out")
    options, options.rest = parser.parse_known_args()
    print_machine()
    row("What", "Floor", "Program", "Ratio", "Aim", "")
    row("---", "---", "---", "---", "---", "---")
    if options.only != "parts":
        print_whole(options.build, options)
    if options.only != "whole":
        print_parts(options.build, options)
    print_machine()


main()
