# SPDX-License-Identifier: GPL-3.0-or-later
"""The program is killed at random moments while the service comes and goes."""

import datetime
import random
import signal
import time

from attacked import Home
from lab import Clock, Service, expect, wait_until
from ledger import Ledger

KEYS = ("password", "logged", "active", "teamID", "taskID", "worktimeDate", "todayWorktime")


def check_disk(home):
    """What a kill has left, before anybody cleans up: every file is whole."""
    Ledger(home, NoService)  # a report that cannot be read breaks the promise here
    for picture in home.activity.glob("screenshot*.jpg"):
        if not any(picture.name in report.read_text() for report in home.reports()):
            continue
        content = picture.read_bytes()
        expect(content.startswith(b"\xff\xd8") and content.endswith(b"\xff\xd9"),
               f"half a picture: {picture.name}, {len(content)} bytes")
    if home.logged("Activity data prepared"):
        for key in KEYS:
            expect(home.value(key), f"session.ini has lost {key}")


class NoService:
    @staticmethod
    def confirmed():
        return ()


def run(build, options):
    kills = options.count or (12 if options.short else 1000)
    chance = random.Random(options.seed)
    # From now on, since the ages of files go by the real clock.
    clock = Clock(speed=30, start=datetime.datetime.utcnow())
    with Service(build) as service, Home(build, clock, task="kill-0") as home:
        # The day's counters are the program's own here.
        service.fail("/api_get_active", "refuse")
        for number in range(kills):
            home.set_task(f"kill-{number}")
            monitor = home.start()
            # One in five is killed on its way up, the others somewhere in their first minutes.
            starts_up = chance.random() < 0.2
            if not starts_up:
                started = home.logged("Monitor started")
                wait_until(lambda: home.logged("Monitor started") > started,
                           f"the monitor resumes after kill {number}")
            if chance.random() < 0.25:
                if service.is_running:
                    service.stop(chance.choice((signal.SIGTERM, signal.SIGKILL)))
                else:
                    service.start()
                    service.fail("/api_get_active", "refuse")
            time.sleep(chance.uniform(0, 1 if starts_up else 5))
            monitor.kill()
            check_disk(home)
            if number % 50 == 49:
                print(f"  {number + 1} kills: {len(Ledger(home, service).minutes)} minutes so far",
                      flush=True)
        if not service.is_running:
            service.start()
        home.set_task("after")
        monitor = home.start()
        wait_until(lambda: any(minute.key[0] == "after" for minute in Ledger(home, service).minutes)
                   and Ledger(home, service).is_up_to_date(),
                   "all that waited has gone out", 10 * 60)
        monitor.quit()
        told = Ledger(home, service).check(kills)
        # Younger than a minute, it might be another process's.
        end = time.time() + 90 / clock.speed
        wait_until(lambda: time.time() > end, "what is left is old enough")
        monitor = home.start()
        home.wait_for_log("Monitor started", home.logged("Monitor started") + 1)
        monitor.quit()
        left = home.leftovers()
        expect(not left, f"left behind: {left}")
        return f"{kills} kills: {told}"
