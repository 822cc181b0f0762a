# SPDX-License-Identifier: GPL-3.0-or-later
"""Somebody's home directory, and the clock that programs started there have."""

import datetime
import shutil
import signal
import subprocess
import sys
import tempfile
import time
from pathlib import Path

from .checks import expect, wait_until
from .desktop import keep_picture
from .ini import ini_value, write_ini
from .monitor import Monitor

USER = "demo@example.com"


class Clock:
    """Runs so many times faster than the real one; all that is started goes on with it."""

    def __init__(self, speed, start=datetime.datetime(2024, 5, 14, 9, 0)):
        self.speed = speed
        self.start = start
        self.real_start = time.time()

    def at(self, real):
        return self.start + datetime.timedelta(seconds=(real - self.real_start) * self.speed)

    def environment(self):
        now = self.at(time.time())
        return {"FAKETIME": f"@{now:%Y-%m-%d %H:%M:%S.%f} x{self.speed}", "TZ": "UTC"}


class Home:
    """A user's home directory with the program's files in it, empty at first. Left with an
    exception, or after a crash that nobody has noticed, it tells what the programs wrote last and
    keeps a picture of the desktop."""

    def __init__(self, build, clock, name):
        self.build = build
        self.clock = clock
        self.path = Path(tempfile.mkdtemp(prefix="home-"))
        self.picture = build.folder / f"{name}.png"
        self.data = self.path / ".tessaport"
        self.user = self.data / USER
        self.activity = self.user / "activity"
        self.log_file = self.data / "log.log"
        # Of the programs started here; a variable that is None is taken from them.
        self.environment = {}
        self.preloaded = []
        self.account = None
        self.processes = []

    def __enter__(self):
        return self

    def __exit__(self, _kind, error, _trace):
        codes = [monitor.process.poll() for monitor in self.processes]
        has_crashed = any(code is not None and code < 0 and code != -signal.SIGKILL
                          for code in codes)
        if isinstance(error, Exception) or has_crashed:
            self._tell_of_failure()
        self.close()
        if error is None:
            expect(not has_crashed, f"a program has crashed; the exit codes: {codes}")

    def _tell_of_failure(self):
        keep_picture(self.picture)
        errors = self.path / "errors.txt"
        lines = errors.read_text(errors="replace").splitlines() if errors.exists() else []
        print("", *(line[:160] for line in lines[-30:]),
              f"The desktop at that moment: {self.picture}", sep="\n", file=sys.stderr, flush=True)

    def close(self):
        for monitor in self.processes:
            monitor.kill()
        self._remove_locks()
        shutil.rmtree(self.path, ignore_errors=True)

    def _remove_locks(self):
        """What a killed program leaves with the system, where nobody else would ever remove it."""
        pids = {monitor.process.pid for monitor in self.processes}
        for line in Path("/proc/sysvipc/shm").read_text().splitlines()[1:]:
            field = line.split()
            if int(field[4]) in pids and field[6] == "0":
                subprocess.run(["ipcrm", "-m", field[1]], check=False)

    def write(self, name, content=""):
        """A file of the data directory."""
        file = self.data / name
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(content)

    def sign_in(self, team, task, is_monitoring=True):
        """The user has signed in and chosen this task earlier."""
        write_ini(self.data / "config.ini", lastLogin=USER)
        write_ini(self.user / "session.ini", password="demo", logged="true",
                  active="true" if is_monitoring else "false", teamID=team, taskID=task)

    def add_program(self, name, script):
        """That programs started here find first."""
        (self.path / name).write_text(f"#!/bin/sh\n{script}\n")
        (self.path / name).chmod(0o700)

    def value(self, key, file="session.ini"):
        """A key of an ini file of the user; None when there is none."""
        return ini_value(self.user / file, key)

    def minutes_counted(self, key="todayWorktime"):
        hours, minutes, _ = (self.value(key) or "00:00:00").split(":")
        return int(hours) * 60 + int(minutes)

    def log(self):
        return self.log_file.read_text(errors="replace") if self.log_file.exists() else ""

    def logged(self, text):
        return self.log().count(text)

    def wait_for_log(self, text, count=1):
        wait_until(lambda: self.logged(text) >= count, f"the log says {count} times: {text}")

    def minutes_measured(self):
        return self.logged("Activity data prepared")

    def wait_for_minutes(self, count):
        wait_until(lambda: self.minutes_measured() >= count, f"{count} minutes are measured")

    def reports(self):
        return sorted(file for file in self.activity.glob("json*") if file.is_file())

    def start(self, *arguments, **environment):
        monitor = Monitor(self, arguments, environment)
        self.processes.append(monitor)
        return monitor
