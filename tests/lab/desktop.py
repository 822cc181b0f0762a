# SPDX-License-Identifier: GPL-3.0-or-later
"""The desktop as a person has it: looked at from outside, used by real pointer and keys."""

import subprocess
import time
from typing import NamedTuple

# Sooner, it would make a double click of two.
_BETWEEN_CLICKS = 0.5
_last_click = 0


class Window(NamedTuple):
    """One that the window manager shows, its place in the desktop's coordinates."""
    id: int
    pid: int
    place: tuple  # x, y, width, height
    title: str


def _output(*command):
    return subprocess.run(command, capture_output=True, encoding="utf-8", errors="replace",
                          check=False).stdout


def windows():
    # Id, desktop, process, place, machine, title.
    lines = (line.split(maxsplit=8) for line in _output("wmctrl", "-u", "-lGp").splitlines())
    return [Window(int(field[0], 16), int(field[2]), tuple(map(int, field[3:7])),
                   field[8] if len(field) > 8 else "") for field in lines]


def active_window():
    """The id of the one that keys go to; None when there is none."""
    told = _output("xdotool", "getactivewindow").strip()
    return int(told) if told else None


def _xdotool(*arguments):
    subprocess.run(["xdotool", *map(str, arguments)], check=True)


def move_pointer(x, y):
    _xdotool("mousemove", x, y)


def click(x, y):
    """Moves there and presses the left button."""
    global _last_click
    time.sleep(max(0, _last_click + _BETWEEN_CLICKS - time.monotonic()))
    _xdotool("mousemove", x, y, "click", 1)
    _last_click = time.monotonic()


def type_text(text):
    _xdotool("type", text)


def press(*keys):
    """Names as xdotool has them: "Tab", "ctrl+a"."""
    _xdotool("key", *keys)


def picture(x, y, width, height):
    """A part of the desktop, three bytes a pixel."""
    return subprocess.run(
        ["import", "-window", "root", "-crop", f"{width}x{height}+{x}+{y}", "-depth", "8", "rgb:-"],
        capture_output=True, check=True).stdout


def keep_picture(file):
    """Of the whole desktop."""
    subprocess.run(["import", "-window", "root", file], check=False)
