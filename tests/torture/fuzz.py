# SPDX-License-Identifier: GPL-3.0-or-later
"""What reads bytes from outside gets bytes drawn by libFuzzer, under the sanitizers."""

import os
import shutil
import subprocess

from lab import SOURCE, expect

FOLDER = SOURCE / "build/fuzz"
# More seeds than those in a folder of the target's own.
SAMPLES = {"inifile": ["tests/session/fixtures/anna@example.com"]}
# How many inputs each gets with every change: those that write files take their time.
TARGETS = {"codec": 100000, "replies": 100000, "reports": 100000, "inifile": 3000,
           "version": 3000}


def run(_build, options):
    subprocess.run(["script/bootstrap", "build", "fuzz"], cwd=SOURCE, check=True)
    if not (FOLDER / "CMakeCache.txt").exists():
        subprocess.run(["cmake", "--preset", "fuzz"], cwd=SOURCE, check=True,
                       stdout=subprocess.DEVNULL)
    programs = [f"fuzz_{name}" for name in TARGETS]
    subprocess.run(["cmake", "--build", FOLDER, "--target", *programs], cwd=SOURCE, check=True)
    # The same inputs each time with every change; new ones, from what was found before, else.
    told = []
    for name, runs in TARGETS.items():
        extent = f"-runs={runs}" if options.short else f"-max_total_time={options.count or 600}"
        corpus = FOLDER / "corpus" / name
        if options.short:
            shutil.rmtree(corpus, ignore_errors=True)
        corpus.mkdir(parents=True, exist_ok=True)
        seeds = [SOURCE / "tests/fuzz/seeds" / name, *(SOURCE / s for s in SAMPLES.get(name, ()))]
        run = subprocess.run(
            [FOLDER / "bin" / f"fuzz_{name}", corpus, *seeds, extent, f"-seed={options.seed}",
             "-max_len=4096", "-timeout=20", "-rss_limit_mb=2048", "-print_final_stats=1",
             f"-artifact_prefix={FOLDER}/{name}-"],
            stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True, errors="replace",
            check=False, env={**os.environ, "UBSAN_OPTIONS": "print_stacktrace=1"})
        expect(run.returncode == 0, f"{name}: {run.stderr[-3000:]}")
        count = next((line.split()[-1] for line in run.stderr.splitlines()
                      if "number_of_executed_units" in line), "?")
        told.append(f"{name} {count}")
    return ", ".join(told) + " inputs"
