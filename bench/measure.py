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

sys.path.append(str(Path(__file__).resolve().parents[1] / "tests"))
from draining import measure_draining  # noqa: E402
from lab import Build  # noqa: E402
from wholeprogram import FLOOR, OFFLINE, PLAIN, RUNNING, STOPPED, measure  # noqa: E402

# What is measured of the whole program, beside which floor, in which states, and the most that it is
# to be: of the floor, or by itself. The aims of the first two are set beside Qt as it comes.
WHOLE = (
    ("start", "start to visible strip, s", PLAIN, (STOPPED,), "ratio", 1.25),
    ("start", "start to visible strip, s", FLOOR, (STOPPED,), "ratio", None),
    ("memory", "memory (PSS) after 15 s, MB", PLAIN, (STOPPED, RUNNING, OFFLINE), "ratio", 1.2),
    ("memory", "memory (PSS) after 15 s, MB", FLOOR, (STOPPED, RUNNING, OFFLINE), "ratio", None),
    ("processor", "processor, % of a core", FLOOR, (STOPPED,), "figure", 0.30),
    ("processor", "processor, % of a core", FLOOR, (RUNNING, OFFLINE), "figure", 0.40),
    ("wake-ups", "wake-ups a second", FLOOR, (STOPPED, RUNNING, OFFLINE), "figure", 25),
)
# The most that a waiting report may cost of its floor, and in milliseconds of the processor.
DRAINING, DRAINING_WORK = 1.05, 2
# The most that a part may cost of its floor, by the beginning of the benchmark's name.
PARTS = {
    "scrollingTitle": 1.3,
    "picture": 1.2,
    "reportBody": 6,
    "refreshAllChanged": 2,
}
# The most that a part may take by itself, in its own unit.
TIMES = {"openTaskList/500": 100, "removeTasks/500": 150}
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
    for what, title, beside, states, kind, aim in WHOLE:
        floor = figures[what, beside]
        for state in states:
            values = figures[what, state]
            ratio = statistics.median(values) / statistics.median(floor)
            reached = ratio if kind == "ratio" else statistics.median(values)
            told_aim = "" if aim is None else f"{aim:g} times" if kind == "ratio" else f"{aim:g}"
            row(f"{title}: {state}, beside the {beside}", told(floor), told(values), f"{ratio:.2f}",
                told_aim, remark(aim and reached <= aim, max(spread(floor), spread(values))))
    if others:
        print(f"\nUp to {others} other programs with Qt ran meanwhile and took a part of what is "
              "shared: the memory is too low, and its ratio too high.")


def print_draining(build, options):
    counts, rounds = ((300,), 1) if options.short else ((300, 3000, 10000), 3)
    for count, (floor, program, work) in measure_draining(build, counts, rounds).items():
        ratio = statistics.median(program) / statistics.median(floor)
        row(f"one of {count} waiting reports, ms", told(floor), told(program), f"{ratio:.2f}",
            f"{DRAINING:g} times", remark(ratio <= DRAINING, max(spread(floor), spread(program))))
        row(f"one of {count} waiting reports, ms of the processor", "", told(work), "",
            f"{DRAINING_WORK:g}", remark(statistics.median(work) <= DRAINING_WORK, 0))


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
        run = subprocess.run([*command, f"--benchmark_out={result.name}", *short, *options.rest],
                             env={**os.environ, **env}, capture_output=True, text=True, check=False)
        if run.returncode != 0:
            sys.exit(f"{program.name} has failed:\n{run.stderr}")
        # A filter may leave nothing to measure in one of the programs.
        written = result.read()
        return json.loads(written)["benchmarks"] if written else []


def print_part(bench):
    name = bench["name"].split("/iterations")[0].split("/manual_time")[0]
    unit, time, ratio = bench["time_unit"], bench["real_time"], bench.get("ratio")
    aim, is_met, floor = "", None, ""
    if name in TIMES:
        aim, is_met = f"{TIMES[name]} {unit}", time <= TIMES[name]
    if ratio:
        floor = f"{time / ratio:.3g} {unit}"
        for start, most in PARTS.items():
            if name.startswith(start):
                aim, is_met = f"{most:g} times", ratio <= most
    apart = (bench["high"] - bench["low"]) / ratio if "high" in bench else 0
    held = [f"{bench[what]:.3g} {what}" for what in ("raw pictures", "files", "megabytes")
            if what in bench]
    row(name, floor, f"{time:.3g} {unit}", f"{ratio:.2f}" if ratio else "", aim,
        ", ".join(filter(None, [remark(is_met, apart), *held])))


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
        print_draining(options.build, options)
    if options.only != "whole":
        print_parts(options.build, options)
    print_machine()


main()
