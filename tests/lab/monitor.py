# SPDX-License-Identifier: GPL-3.0-or-later
"""The unmodified program, run in somebody's home."""

import os
import re
import signal
import subprocess
from pathlib import Path

from . import desktop
from .checks import PATIENCE, Broken, expect, wait_until
from .service import BOUND

FAKETIME = next(iter(Path("/usr/lib").glob("*/faketime/libfaketime.so.1")), None)
STRIP, SIGN_IN, PICKER = "Tessaport", "Авторизация", "Задачи"
PLAY_BUTTON, PLAY_BUTTON_CENTRE = (210, 15, 40, 40), (230, 35)
NOTICE_SIZE = (250, 100)


class Monitor:
    """What waits, waits until something is seen on screen or on disk. A place is one in a window: x
    and y, or x, y, width and height."""

    def __init__(self, home, arguments, environment):
        self.home = home
        self.output_file = home.path / "output.txt"
        # The lock against a second instance is made in the folder for temporary files.
        own = {"HOME": str(home.path), "TMPDIR": str(home.path), "XDG_CONFIG_HOME": None,
               "PATH": f"{home.path}:{os.environ['PATH']}"}
        variables = {**os.environ, **own, **home.clock.environment(), **home.environment,
                     **environment}
        # For the program alone: what binds it would leave behind what libfaketime shares.
        preloaded = ":".join(map(str, [*home.preloaded, FAKETIME]))
        with (home.path / "errors.txt").open("ab") as errors, self.output_file.open("wb") as output:
            self.process = subprocess.Popen(
                [*BOUND, "env", f"LD_PRELOAD={preloaded}", home.build.monitor, *arguments],
                cwd=home.path, user=home.account, stdout=output, stderr=errors,
                env={name: value for name, value in variables.items() if value is not None})

    @property
    def is_running(self):
        return self.process.poll() is None

    def kill(self):
        """At once, whatever it is doing."""
        if self.is_running:
            self.process.kill()
        self.process.wait()

    def terminate(self):
        """Asks it to end, as the system does."""
        self.process.terminate()

    def exit_code(self):
        """Once it has ended by itself; that of a signal is negative."""
        try:
            return self.process.wait(PATIENCE)
        except subprocess.TimeoutExpired:
            raise Broken("the program does not end") from None

    def quit(self, may_be_killed=False):
        """As at the end of a desktop session; a crash or an end before it breaks a promise."""
        expect(self.is_running, f"the program ended by itself with {self.process.poll()}")
        self.terminate()
        code = self.exit_code()
        expect(code == 0 or (may_be_killed and code == -signal.SIGKILL),
               f"the program ended with {code}")

    def output(self):
        """What it has written to its standard output."""
        return self.output_file.read_text()

    def resident_kilobytes(self):
        status = Path(f"/proc/{self.process.pid}/status").read_text()
        return int(re.search(r"VmRSS:\s+(\d+)", status)[1])

    def handles(self):
        return len(os.listdir(f"/proc/{self.process.pid}/fd"))

    def _shown(self):
        return [window for window in desktop.windows() if window.pid == self.process.pid]

    def _window(self, title):
        return next((window for window in self._shown() if window.title == title), None)

    def windows(self):
        """Their titles."""
        return {window.title for window in self._shown()}

    def wait_for(self, title):
        wait_until(lambda: title in self.windows(), f"the window {title} is shown",
                   met=self.windows)

    def wait_for_gone(self, title):
        wait_until(lambda: title not in self.windows(), f"the window {title} is gone",
                   met=self.windows)

    def wait_for_active(self, title):
        """Until keys go to it."""
        def is_active():
            window = self._window(title)
            return window and window.id == desktop.active_window()
        wait_until(is_active, f"keys go to the window {title}",
                   met=lambda: f"{self._shown()}, {desktop.active_window()} is active")

    def notices(self):
        """Their places, the lowest first."""
        places = [window.place for window in self._shown() if window.place[2:] == NOTICE_SIZE]
        return sorted(places, key=lambda place: -place[1])

    def wait_for_notices(self, count):
        wait_until(lambda: len(self.notices()) == count, f"{count} notices are shown",
                   met=self.notices)

    def click(self, title, x, y):
        """Waits for the window, and clicks as soon as it stands still."""
        seen = [None]

        def stands_still():
            seen.append(self._window(title))
            return seen[-1] and seen[-1] == seen[-2]
        wait_until(stands_still, f"the window {title} is shown and stands still", pause=0.04,
                   met=self._shown)
        left, top, *_ = seen[-1].place
        desktop.click(left + x, top + y)

    def look(self, title, x, y, width, height):
        """A part of the desktop, as seen from the window, to compare with another look."""
        seen = []
        wait_until(lambda: seen.append(self._window(title)) or seen[-1],
                   f"the window {title} is shown", met=self._shown)
        left, top, *_ = seen[-1].place
        return desktop.picture(left + x, top + y, width, height)

    def click_to_change(self, title, place, part):
        """Clicks there, and waits for a part to look different."""
        before = self.look(title, *part)
        self.click(title, *place)
        wait_until(lambda: self.look(title, *part) != before,
                   f"the click at {place} in {title} changes what is shown at {part}")

    def open_task_picker(self):
        """From the strip; waits until the service has filled it anew."""
        filled = "Teams and tasks data: "
        before = self.home.logged(filled)
        self.click(STRIP, 80, 40)
        self.wait_for_active(PICKER)
        self.home.wait_for_log(filled, before + 1)

    def sign_in(self, login, password):
        """By the keyboard."""
        self.wait_for_active(SIGN_IN)
        desktop.type_text(login)
        desktop.press("Tab")
        desktop.type_text(password)
        desktop.press("Return")

    def choose_from_menu(self, *keys):
        """Opens the menu of the strip, and presses these keys."""
        # It opens where notices stand.
        self.wait_for_notices(0)
        self.click_to_change(STRIP, (348, 10), (230, -130, 150, 120))
        desktop.press(*keys)
