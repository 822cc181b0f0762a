# SPDX-License-Identifier: GPL-3.0-or-later
"""The clock is set, summer time ends, the machine sleeps: no minute is invented, and each report
says its age by the clock of the moment."""

import datetime
import os
import re
import signal
import time
from concurrent.futures import ThreadPoolExecutor

from attacked import Home
from lab import REPORT_PATHS, Broken, Service, expect, wait_until

MINUTE = 60


class SetClock:
    """Runs as the real one does, and can be set. What counts the seconds since the machine came up
    is left alone, as on a real machine."""
    speed = 1

    def __init__(self, start, zone):
        self.zone = zone
        self.offset = start.timestamp() - time.time()

    def bind(self, home):
        self.file = home.path / "offset"
        self.set(0)
        home.environment.update(TZ=self.zone, FAKETIME_TIMESTAMP_FILE=str(self.file),
                                FAKETIME_NO_CACHE="1", FAKETIME_DONT_FAKE_MONOTONIC="1")

    def set(self, seconds):
        """So many seconds ahead of where it was, or back."""
        self.offset += seconds
        new = self.file.with_suffix(".new")
        new.write_text(f"{self.offset:+.3f}")
        new.rename(self.file)

    def now(self):
        return time.time() + self.offset

    @staticmethod
    def environment():
        return {}


class Trial:
    """One minute without the network, then the change, then minutes with it."""
    zone = "UTC"
    start = datetime.datetime(2024, 5, 14, 9, 0, tzinfo=datetime.timezone.utc)
    is_new_day = False
    # How much older or younger than it is the waiting report looks, in seconds.
    shift = 0
    # By how much it may look older still.
    may_be_off = 0
    # How long the program stands still.
    sleep = 0

    def change(self, clock, monitor):
        clock.set(self.shift)

    def run(self, build, service):
        name = type(self).__name__
        clock = SetClock(self.start, self.zone)
        with Home(build, clock, task=name) as home:
            clock.bind(home)
            home.away.touch()
            monitor = home.start()
            home.wait_for_log("Monitor started")
            began = time.monotonic()
            # The minute and its picture, both tried in vain.
            wait_until(lambda: all(re.search(f"Request: .*{path}", home.log())
                                   for path in REPORT_PATHS), "the first minute waits", 2 * MINUTE)
            written = time.time()
            self.change(clock, monitor)
            home.away.unlink()
            for count in (2, 3):
                wait_until(lambda: home.minutes_measured() >= count, f"minute {count}", 2 * MINUTE)
            passed = time.monotonic() - began - self.sleep
            measured = home.minutes_measured()
            expect(measured <= passed / MINUTE + 0.2, f"{name}: {measured} minutes in {passed} s")
            wait_until(lambda: len(self.confirmed(service)) >= measured and not home.reports(),
                       f"{name}: all is confirmed")
            monitor.quit()
            ages = self.confirmed(service)
            # The waiting one goes out behind the first fresh one.
            for number, (age, kept) in enumerate(ages):
                due = self.shift + kept - written if number == 1 else 0
                is_due = any(abs(age - due - off) <= 5 for off in (0, self.may_be_off))
                expect(is_due, f"{name}: report {number} says {age}, due is {due:.0f}")
            counted = home.minutes_counted()
            due = measured - 1 if self.is_new_day else measured
            expect(counted == due, f"{name}: {counted} minutes counted, due are {due}")
            return f"{name} {measured} minutes, the waiting one {ages[1][0]} s old"

    def confirmed(self, service):
        """Age and time of arrival of each minute, in the order of arrival."""
        return [(int(record["past"]), kept) for kind, record, kept in service.confirmed()
                if record["task_id"] == type(self).__name__ and kind == "activity"]


class BackAnHour(Trial):
    shift = -3600


class AheadADay(Trial):
    shift = 24 * 3600
    is_new_day = True


class EndOfSummer(Trial):
    """A report tells its time of writing as local time, which in the hour that comes twice may
    make it look an hour older than it is."""
    may_be_off = 3600
    zone = "Europe/Berlin"
    # Ninety seconds before three o'clock becomes two.
    start = datetime.datetime(2024, 10, 27, 0, 58, 30, tzinfo=datetime.timezone.utc)

    def change(self, clock, monitor):
        pass


class StartOfSummer(Trial):
    zone = "Europe/Berlin"
    start = datetime.datetime(2024, 3, 31, 0, 58, 30, tzinfo=datetime.timezone.utc)

    def change(self, clock, monitor):
        pass


class Sleep(Trial):
    """The machine sleeps for eight hours: the clock goes on, the program does not."""
    shift = 8 * 3600
    sleep = 20

    def change(self, clock, monitor):
        os.kill(monitor.process.pid, signal.SIGSTOP)
        clock.set(self.shift)
        time.sleep(self.sleep)
        os.kill(monitor.process.pid, signal.SIGCONT)


TRIALS = (BackAnHour, AheadADay, EndOfSummer, StartOfSummer, Sleep)


def run(build, options):
    with Service(build) as service, ThreadPoolExecutor(len(TRIALS)) as pool:
        # The day's counters are the program's own here.
        service.fail("/api_get_active", "refuse")

        def outcome(trial):
            try:
                return trial().run(build, service)
            except Broken as error:
                return error

        told = list(pool.map(outcome, TRIALS))
    broken = [str(one) for one in told if isinstance(one, Broken)]
    expect(not broken, "; ".join(broken))
    return "; ".join(told)
