# SPDX-License-Identifier: GPL-3.0-or-later
"""What all attacks share: the service, somebody's home with a clock of its own, and the program."""

import configparser
import datetime
import hashlib
import json
import os
import re
import shutil
import signal
import ssl
import subprocess
import tempfile
import time
import urllib.parse
import urllib.request
from pathlib import Path

SOURCE = Path(__file__).resolve().parents[2]
FAKETIME = next(iter(Path("/usr/lib").glob("*/faketime/libfaketime.so.1")), None)
USER = "demo@example.com"
ACTIVITY, SCREENSHOT = "/api_active2", "/api_screenshot"
REPORT_PATHS = (ACTIVITY, SCREENSHOT)
PATHS = REPORT_PATHS + ("/api_teams_tasks", "/api_get_task", "/api_get_active",
                        "/monitor/tpmc.version")
PATIENCE = 60


class Broken(Exception):
    """A promise that was not kept."""


def expect(is_kept, text):
    if not is_kept:
        raise Broken(text)


def wait_until(is_true, what, seconds=PATIENCE, pause=0.02):
    end = time.monotonic() + seconds
    while not is_true():
        if time.monotonic() > end:
            subprocess.run(["import", "-window", "root", SOURCE / "build/torture.png"], check=False)
            raise Broken(f"waited {seconds} s in vain until {what}; the desktop then: build/torture.png")
        time.sleep(pause)


def click(x, y):
    # Sooner, it would make a double click of two.
    subprocess.run(["xdotool", "sleep", "0.5", "mousemove", str(x), str(y), "click", "1"],
                   check=True)


class Build:
    """Where the programs are, and the port that is built into them."""

    def __init__(self, folder):
        self.folder = Path(folder).resolve()
        self.monitor = self.folder / "bin/tessaport-monitor"
        self.standin = self.folder / "bin/tessaport-standin"
        cache = (self.folder / "CMakeCache.txt").read_text()
        url = re.search(r"TESSAPORT_SERVICE_URL:\w+=https://localhost:(\d+)", cache)
        expect(url, "the program is not built for a service on this machine")
        self.port = int(url[1])

    def library(self, name):
        return next(self.folder.glob(f"**/lib{name}.so"))


class Service:
    """The stand-in, with a store that outlives its comings and goings."""

    def __init__(self, build, data=None):
        self.build = build
        self.folder = Path(tempfile.mkdtemp(prefix="torture-service-"))
        self.data = self.folder / "data.json"
        self.process = None
        self.kept = {}
        self.set_data(data or self.plain_data())
        self.start()

    @staticmethod
    def plain_data():
        """Without what a new start of the service would move."""
        data = json.loads((SOURCE / "standin/demo.json").read_text())
        for team in data["teams"]:
            for task in team["tasks"]:
                task.update(deadline="2030-01-01 12:00:00", last_comment="", block="0")
        return data

    def set_data(self, data):
        new = self.data.with_suffix(".new")
        new.write_text(json.dumps(data))
        new.rename(self.data)

    def start(self):
        self.process = subprocess.Popen(
            [self.build.standin, "--quiet", "--port", str(self.build.port), "--data", self.data,
             "--store", self.folder / "store"], stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        line = self.process.stdout.readline()
        expect(b"listens" in line, f"the stand-in does not start: {line!r}")

    def stop(self, with_signal=signal.SIGTERM):
        if self.process.poll() is None:
            self.process.send_signal(with_signal)
            self.process.wait()
        self.process.stdout.close()

    def close(self):
        self.stop()
        shutil.rmtree(self.folder)

    @property
    def is_running(self):
        return self.process.poll() is None

    def order(self, command, **query):
        request = urllib.request.Request(
            f"https://localhost:{self.build.port}{command}?{urllib.parse.urlencode(query)}",
            method="POST", data=b"", headers={"Content-Type": "text/plain"})
        context = ssl._create_unverified_context()
        urllib.request.urlopen(request, context=context, timeout=PATIENCE).read()

    def fail(self, path, mode, **query):
        self.order("/standin/fail", path=path, mode=mode, **query)

    def succeed(self, *paths):
        for path in paths:
            self.fail(path, "ok")

    def confirmed(self):
        """Each kept record as (kind, record, seconds since the epoch when it was kept), in the order
        of arrival. A kept record never changes."""
        for file in (self.folder / "store").glob("*.json"):
            if file.name not in self.kept:
                entry = json.loads(file.read_text())
                self.kept[file.name] = entry["kind"], entry["record"], file.stat().st_mtime
        return [entry for _, entry in sorted(self.kept.items())]

    def requests(self, path=None):
        log = self.folder / "store/requests.jsonl"
        lines = log.read_text().splitlines() if log.exists() else []
        seen = (json.loads(line) for line in lines if line.endswith("}"))
        return [request for request in seen if path in (None, request["path"])]


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
    """A user's home directory with the program's files in it."""

    def __init__(self, build, clock, task="48211", team="1507"):
        self.build = build
        self.clock = clock
        self.path = Path(tempfile.mkdtemp(prefix="torture-home-"))
        self.data = self.path / ".tessaport"
        self.user = self.data / USER
        self.activity = self.user / "activity"
        self.activity.mkdir(parents=True, mode=0o700)
        self.write_ini(self.data / "config.ini", lastLogin=USER)
        self.write_ini(self.user / "session.ini", password="demo", logged="true", active="true",
                       teamID=team, taskID=task)
        self.log_file = self.data / "log.log"
        self.environment = {}
        self.preloaded = [build.library("failing")]
        self.processes = []
        self.account = None
        # The network of this home alone.
        self.away = self.path / "away"
        self.environment["FAILING_AWAY"] = str(self.away)

    def close(self):
        for monitor in self.processes:
            monitor.kill()
        self.remove_locks()
        shutil.rmtree(self.path, ignore_errors=True)

    def become_ordinary(self):
        """Rights count for nothing with root."""
        if os.getuid() == 0:
            self.account = 65534
            for path in (self.path, *self.path.rglob("*")):
                os.chown(path, self.account, self.account)

    def keep_log_apart(self):
        """Where the data directory's own fate does not reach it."""
        log = self.path / "kept.log"
        log.touch()
        (self.data / "log.log").symlink_to(log)
        self.log_file = log

    def remove_locks(self):
        """What a killed program leaves with the system, where nobody else would ever remove it."""
        pids = {monitor.process.pid for monitor in self.processes}
        for line in Path("/proc/sysvipc/shm").read_text().splitlines()[1:]:
            field = line.split()
            if int(field[4]) in pids and field[6] == "0":
                subprocess.run(["ipcrm", "-m", field[1]], check=False)

    @staticmethod
    def write_ini(file, **values):
        file.write_text("[General]\n" + "".join(f"{k}={v}\n" for k, v in values.items()))

    def add_program(self, name, script):
        """That programs started here find first."""
        (self.path / name).write_text(f"#!/bin/sh\n{script}\n")
        (self.path / name).chmod(0o700)
        self.environment["PATH"] = f"{self.path}:{os.environ['PATH']}"

    def set_task(self, task):
        file = self.user / "session.ini"
        file.write_text(re.sub(r"(?m)^taskID=.*$", f"taskID={task}", file.read_text()))

    def value(self, key, file="session.ini"):
        """A key of an ini file of the user; None when there is none."""
        ini = configparser.RawConfigParser(strict=False, delimiters="=")
        ini.optionxform = str
        ini.read(self.user / file)
        return ini.get("General", key, fallback=None)

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

    def leftovers(self):
        """What lies beside the reports and is named by none."""
        reports = self.reports()
        named = "".join(report.read_text() for report in reports)
        return [file.name for file in self.activity.iterdir()
                if file not in reports and file.name not in named]

    def start(self, **environment):
        monitor = Monitor(self, environment)
        self.processes.append(monitor)
        return monitor


class Monitor:
    """The unmodified program."""

    def __init__(self, home, environment):
        self.home = home
        self.started = time.time()
        # The lock against a second instance is made in the folder for temporary files.
        own = {"HOME": str(home.path), "TMPDIR": str(home.path),
               "LD_PRELOAD": ":".join(map(str, [*home.preloaded, FAKETIME]))}
        with (home.path / "errors.txt").open("ab") as errors:
            self.process = subprocess.Popen(
                [home.build.monitor], cwd=home.path, user=home.account, stdout=subprocess.DEVNULL, stderr=errors,
                env={**os.environ, **own, **home.clock.environment(), **home.environment,
                     **environment})

    @property
    def is_running(self):
        return self.process.poll() is None

    def kill(self):
        if self.is_running:
            self.process.kill()
        self.process.wait()

    def quit(self, may_be_killed=False):
        """As at the end of a desktop session; a crash or an end before it breaks a promise."""
        expect(self.is_running, f"the program ended by itself with {self.process.poll()}")
        self.process.terminate()
        try:
            code = self.process.wait(PATIENCE)
        except subprocess.TimeoutExpired:
            self.kill()
            raise Broken("the program does not end") from None
        expect(code == 0 or (may_be_killed and code == -signal.SIGKILL),
               f"the program ended with {code}")

    def resident_kilobytes(self):
        status = Path(f"/proc/{self.process.pid}/status").read_text()
        return int(re.search(r"VmRSS:\s+(\d+)", status)[1])

    def handles(self):
        return len(os.listdir(f"/proc/{self.process.pid}/fd"))

    def _shown(self):
        """Title and geometry (x, y, width, height) of each window that is shown."""
        lines = subprocess.run(["wmctrl", "-lGp"], capture_output=True, text=True,
                               check=False).stdout.splitlines()
        fields = [line.split(maxsplit=8) for line in lines]
        return [(field[8] if len(field) > 8 else "", tuple(map(int, field[3:7])))
                for field in fields if field[2] == str(self.process.pid)]

    def windows(self):
        return dict(self._shown())

    def notices(self):
        """Their places, the lowest first."""
        places = [place for _, place in self._shown() if place[2:] == (250, 100)]
        return sorted(places, key=lambda place: -place[1])

    def _place(self, title):
        places = {}
        wait_until(lambda: title in places or places.update(self._shown()),
                   f"the window {title} is shown")
        return places[title]

    def click(self, title, x, y):
        left, top, *_ = self._place(title)
        click(left + x, top + y)

    def look(self, title, x, y, width, height):
        """A part of a window as a number to compare with another look."""
        left, top, *_ = self._place(title)
        picture = subprocess.run(
            ["import", "-window", "root", "-crop", f"{width}x{height}+{left + x}+{top + y}",
             "rgb:-"], capture_output=True, check=True).stdout
        return hashlib.sha256(picture).hexdigest()
