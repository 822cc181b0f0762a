#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Tries the program's promises under attack; script/torture builds what it needs and calls it."""

import argparse
import importlib
import signal
import sys
import time
from pathlib import Path

sys.path.append(str(Path(__file__).resolve().parents[1]))
from lab import Broken, Build  # noqa: E402

ATTACKS = ("kills", "operations", "service", "poison", "disk", "clock", "day", "fuzz")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("attacks", nargs="*", metavar="attack", help=" ".join(ATTACKS))
    parser.add_argument("--short", action="store_true", help="the form for every change")
    parser.add_argument("--count", type=int, help="how many: kills, failures, waiting reports, "
                        "days or seconds of fuzzing")
    parser.add_argument("--jobs", type=int, default=2, help="trials at the same time")
    parser.add_argument("--speed", type=int, default=120, help="of the clock of a day")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--build", default="build/release", help="the folder of the build")
    options = parser.parse_args()

    # So that what was started ends with it.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    broken = 0
    for name in options.attacks or ATTACKS:
        if name not in ATTACKS:
            parser.error(f"no such attack: {name}")
        started = time.monotonic()
        try:
            told = importlib.import_module(name).run(Build(options.build), options)
            verdict = "kept"
        except Broken as error:
            told, verdict = error, "BROKEN"
            broken += 1
        print(f"{name}: {verdict}, {time.monotonic() - started:.0f} s: {told}", flush=True)
    return 1 if broken else 0


if __name__ == "__main__":
    sys.exit(main())
