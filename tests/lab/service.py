# SPDX-License-Identifier: GPL-3.0-or-later
"""The service: the stand-in, which listens where the program has its address built in."""

import json
import re
import shutil
import signal
import ssl
import subprocess
import tempfile
import urllib.parse
import urllib.request
from pathlib import Path

from .checks import PATIENCE, Broken, expect, wait_until

SOURCE = Path(__file__).resolve().parents[2]
ACTIVITY, SCREENSHOT = "/api_active2", "/api_screenshot"
REPORT_PATHS = (ACTIVITY, SCREENSHOT)
PATHS = REPORT_PATHS + ("/api_teams_tasks", "/api_get_task", "/api_get_active",
                        "/monitor/tpmc.version")
# Before a command: it ends with the thread that starts it, also when that is killed.
BOUND = ("setpriv", "--pdeathsig", "KILL")


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
        self.folder = Path(tempfile.mkdtemp(prefix="service-"))
        self.data = self.folder / "data.json"
        self.process = None
        self.kept = {}
        self.set_data(data or self.plain_data())
        self.start()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    @staticmethod
    def demo_data():
        """The teams, tasks and account (demo@example.com, password demo) that it has built in."""
        return json.loads((SOURCE / "standin/demo.json").read_text())

    @classmethod
    def plain_data(cls):
        """Without what a new start of the service would move."""
        data = cls.demo_data()
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
            [*BOUND, self.build.standin, "--quiet", "--port", str(self.build.port),
             "--data", self.data, "--store", self.folder / "store"],
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        line = self.process.stdout.readline()
        if b"listens" not in line:
            self.stop()
            raise Broken(f"the stand-in does not start: {line!r}")

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
        """Each kept record as (kind, record, seconds since the epoch when it was kept), in the
        order of arrival. A kept record never changes."""
        for file in (self.folder / "store").glob("*.json"):
            if file.name not in self.kept:
                entry = json.loads(file.read_text())
                self.kept[file.name] = entry["kind"], entry["record"], file.stat().st_mtime
        return [entry for _, entry in sorted(self.kept.items())]

    def values(self, kind, key):
        """Of one key in the confirmed records of a kind, in the order of arrival."""
        return [record[key] for its_kind, record, _ in self.confirmed() if its_kind == kind]

    def requests(self, path=None):
        log = self.folder / "store/requests.jsonl"
        lines = log.read_text().splitlines() if log.exists() else []
        seen = (json.loads(line) for line in lines if line.endswith("}"))
        return [request for request in seen if path in (None, request["path"])]

    def wait_for_requests(self, path, count):
        wait_until(lambda: len(self.requests(path)) >= count, f"{count} requests came to {path}",
                   met=lambda: [request["path"] for request in self.requests()])
