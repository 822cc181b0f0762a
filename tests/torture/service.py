# SPDX-License-Identifier: GPL-3.0-or-later
"""The service misbehaves in each way it can, on each path, and then answers rightly again."""


from attacked import Home
from lab import (ACTIVITY, PATHS, PLAY_BUTTON, REPORT_PATHS, STRIP, Clock, Service, expect,
                 wait_until)
from ledger import Ledger

# The mode, and whether it is a failure of the network: with a bad answer the service is there.
MODES = {"refuse": False, "garbage": False, "html": False, "database": False, "answer": False,
         "delay": False, "hang": False, "status500": True, "drop-before": True,
         "drop-after": True, "drop-kept": True}


class Attack:
    def __init__(self, service, home, monitor):
        self.service, self.home, self.monitor = service, home, monitor
        monitor.wait_for(STRIP)
        # Before the first answer the window does not look as it will.
        self.another_minutes(1)
        self.settle("at first")
        looks = [self.look()]
        wait_until(lambda: looks.append(self.look()) or looks[-1] == looks[-2],
                   "the window stays as it looks", pause=0.5)
        self.online_look = looks[-1]

    def look(self):
        return self.monitor.look(STRIP, *PLAY_BUTTON)

    def another_minutes(self, count):
        self.home.wait_for_minutes(self.home.minutes_measured() + count)

    def settle(self, when):
        wait_until(lambda: Ledger(self.home, self.service).is_up_to_date(),
                   f"all that waited has gone out: {when}")

    def misbehave(self, mode, paths):
        when = f"{mode} on {' '.join(paths)}"
        is_failure = MODES[mode] and set(paths) & {*REPORT_PATHS}
        for path in paths:
            self.service.fail(path, mode, ms=300 if mode == "delay" else 0)
        self.another_minutes(3)
        if is_failure:
            wait_until(lambda: self.look() != self.online_look,
                       f"the window tells that the service cannot be reached: {when}")
        self.service.succeed(*paths)
        self.another_minutes(1)
        self.settle(when)
        wait_until(lambda: self.look() == self.online_look,
                   f"the window tells that the service answers: {when}")
        return self.monitor.resident_kilobytes()

    def outlast_silence(self):
        """On as many connections as there are at most; what is behind goes out all the same."""
        self.service.fail(ACTIVITY, "hang", count=6)
        self.another_minutes(8)
        self.settle("requests that are never answered")


def run(build, options):
    with Service(build) as service, Home(build, Clock(speed=60)) as home:
        attack = Attack(service, home, home.start())
        attack.outlast_silence()
        targets = [PATHS] if options.short else [PATHS, *((path,) for path in PATHS)]
        sizes = []
        for round_ in range(1 if options.short else 2):
            for paths in targets:
                sizes += [attack.misbehave(mode, paths) for mode in MODES]
        # The first answers fill caches; a leak goes on behind them.
        half = len(sizes) // 2
        first, last = max(sizes[:half]), max(sizes[half:])
        # Two of 48 MiB; the sanitizers keep what is freed, and need many times both.
        expect(last - first <= first // 24, f"grown from {first} to {last} KiB: {sizes}")
        attack.monitor.quit()
        ledger = Ledger(home, service)
        told = ledger.check()
        return f"{told}; at most {first} KiB in the first half, {last} KiB in the second"
