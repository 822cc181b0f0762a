# SPDX-License-Identifier: GPL-3.0-or-later
"""A long day with refreshes, notices and windows that come and go, midnight, days offline."""

import datetime
import json
import struct
import subprocess
import time

from attacked import Home
from lab import PICKER, STRIP, Clock, Service, click, expect, press, wait_until
from ledger import Ledger

PICKER_BUTTON, LIST_WORD = (80, 40), (90, 18)


class Census:
    """What the program holds of the system at one moment."""

    def __init__(self, home, monitor):
        self.kilobytes = monitor.resident_kilobytes()
        self.handles = monitor.handles()
        self.objects = struct.unpack("q", (home.path / "objects").read_bytes())[0]
        tree = subprocess.run(["xwininfo", "-root", "-tree"], capture_output=True, text=True,
                              check=True).stdout
        self.windows = tree.count('"tessaport-monitor"')

    def __str__(self):
        return f"{self.kilobytes} KiB, {self.handles} handles, {self.objects} objects, " \
               f"{self.windows} windows"


class Day:
    def __init__(self, build, service, home):
        self.service, self.home = service, home
        self.data = json.loads(service.data.read_text())
        counter = home.path / "objects"
        counter.write_bytes(bytes(8))
        home.add_program("xdg-open", "exit 0")
        self.monitor = home.start(FAILING_OBJECTS=str(counter))
        home.wait_for_minutes(2)

    def now(self):
        return self.home.clock.at(time.time())

    def an_hour(self, number):
        """Of a user at work: something changes at the service, some windows are looked at, notices
        are clicked away."""
        end = self.now() + datetime.timedelta(hours=1)
        for team in self.data["teams"]:
            task = team["tasks"][number % len(team["tasks"])]
            task["last_comment"] = f"{self.now():%Y-%m-%d %H:%M:%S}"
        self.service.set_data(self.data)
        self.monitor.click(STRIP, *PICKER_BUTTON)
        self.monitor.wait_for(PICKER)
        press("Escape")
        self.monitor.wait_for_gone(PICKER)
        for is_open in (True, False):
            self.monitor.click(STRIP, *LIST_WORD)
            wait_until(lambda: self.has_list() == is_open, "the list opens and closes")
        # Each leads to its task in the browser, and is gone.
        while notices := self.monitor.notices():
            click(notices[0][0] + 100, notices[0][1] + 50)
            wait_until(lambda: self.monitor.notices() != notices, "a notice closes")
        while self.now() < end:
            expect(self.monitor.is_running, "the program has ended by itself")
            time.sleep(0.2)

    def has_list(self):
        return any(title.startswith("Задачи команды") for title in self.monitor.windows())

    def is_settled(self):
        ledger = Ledger(self.home, self.service)
        return ledger.is_up_to_date() and ledger.is_kept()


def run(build, options):
    hours = (options.count or 1) * 24
    days_offline = 0 if options.short else 7
    clock = Clock(speed=options.speed)
    with Service(build) as service, Home(build, clock) as home:
        service.fail("/api_get_active", "refuse")
        day = Day(build, service, home)
        seen = []
        for number in range(hours):
            day.an_hour(number)
            seen.append(Census(home, day.monitor))
            print(f"  hour {number + 1}: {seen[-1]}", flush=True)
        wait_until(day.is_settled, "all of the day is confirmed", pause=1)
        first, last = seen[0], seen[-1]

        service.stop()
        before = home.minutes_measured()
        end = day.now() + datetime.timedelta(days=days_offline)
        while day.now() < end:
            expect(day.monitor.is_running, "the program has ended by itself")
            time.sleep(1)
        offline = home.minutes_measured() - before
        behind = Census(home, day.monitor)
        print(f"  behind {days_offline} days offline, {offline} minutes: {behind}", flush=True)
        service.start()
        wait_until(day.is_settled, "all of the time offline is confirmed", 3600, pause=10)
        day.monitor.quit()
        told = Ledger(home, service).check()
        expect(last.kilobytes - first.kilobytes <= 1024, f"grown: {first}; {last}")
        for what in ("handles", "objects", "windows"):
            expect(getattr(last, what) - getattr(first, what) <= 8, f"grown: {first}; {last}")
        return f"{told}; behind an hour {first}; behind {hours} hours {last}; " \
               f"behind {days_offline} days offline with {offline} minutes {behind}"
