# SPDX-License-Identifier: GPL-3.0-or-later
"""How a promise is looked at, and waited for."""

import time

# How long a condition may take to come true on a machine that has other things to do, in seconds.
PATIENCE = 60


class Broken(Exception):
    """A promise that was not kept."""


def expect(is_kept, text):
    if not is_kept:
        raise Broken(text)


def expect_equal(what, met, expected):
    expect(met == expected, f"{what}: expected {expected!r}, met {met!r}")


def wait_until(is_true, what, seconds=PATIENCE, pause=0.02, met=None):
    """Tells, when it has waited in vain, what a function says was met instead."""
    end = time.monotonic() + seconds
    while not is_true():
        if time.monotonic() > end:
            told = f"; met: {met()}" if met else ""
            raise Broken(f"waited {seconds} s in vain until {what}{told}")
        time.sleep(pause)
