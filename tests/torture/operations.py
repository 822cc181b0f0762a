# SPDX-License-Identifier: GPL-3.0-or-later
"""Each operation on files fails once, with each error: three minutes and two pictures each time."""

import errno
import random
import re
from concurrent.futures import ThreadPoolExecutor

from attacked import Home
from lab import Broken, Clock, Service, expect, wait_until
from ledger import Ledger

HOWS = (str(errno.ENOSPC), str(errno.EIO), str(errno.EACCES), "kill")
HOWS_OF_A_WRITE = (*HOWS, "short")
SPEED = 60


class Trial:
    """Two starts, since each brings a picture with its first minute; in the first of them the
    network may be away."""

    def __init__(self, build, service, at=0, how="0", is_away=False):
        self.build, self.service, self.at, self.how, self.is_away = build, service, at, how, is_away
        self.kills = 1 if how == "kill" else 0
        self.operations = []

    @property
    def name(self):
        return f"{self.at}-{self.how}-{'away' if self.is_away else 'online'}"

    def run(self):
        with Home(self.build, Clock(SPEED), task=self.name) as home:
            try:
                self._start(home, minutes=2, pictures=1, is_away=self.is_away)
                self._start(home, minutes=3, pictures=2)
                # A kill may have come before any of them.
                self._start(home, minutes=4, pictures=2)
                return self._check(home)
            except Broken as error:
                failed = [line for line in self.operations if line.endswith("FAILS")]
                warnings = [line for line in home.log().splitlines()
                            if line.startswith("Message(1)") and "Xcb" not in line]
                raise Broken(f"{self.name}: {error} {failed} {warnings}") from None

    def _start(self, home, minutes, pictures, is_away=False):
        seen = home.path / "operations"
        at = self.at - len(self.operations)
        starts = home.logged("Monitor started")
        if is_away:
            home.away.touch()
        else:
            home.away.unlink(missing_ok=True)
        monitor = home.start(FAILING_UNDER=str(home.data), FAILING_LIST=str(seen),
                             FAILING_HOW=self.how, FAILING_AT=str(max(at, 0)))

        def is_done():
            if not monitor.is_running:
                return True
            if home.logged("Monitor started") == starts \
                    or home.minutes_measured() < minutes:
                return False
            ledger = Ledger(home, self.service)
            if ledger.pictures < pictures and not self.kills:
                return False
            return is_away or (ledger.is_up_to_date() and ledger.is_kept(self.kills))

        try:
            wait_until(is_done, "all is confirmed", 30, pause=0.1)
        except Broken:
            Ledger(home, self.service).check(self.kills)
            raise
        if monitor.is_running or not self.kills:
            monitor.quit(may_be_killed=bool(self.kills))
        self.operations += seen.read_text().splitlines()
        seen.unlink()

    def _check(self, home):
        ledger = Ledger(home, self.service)
        told = ledger.check(self.kills)
        # A kill between the counting of a minute and the log's word of it leaves one apart.
        apart = abs(home.minutes_counted() - len(ledger.minutes))
        expect(apart <= self.kills, f"counted {home.value('todayWorktime')} ({told})")
        # What a kill leaves is cleaned up later, when it can be no other process's; so is the
        # picture of a confirmed report that could not be opened to find its name.
        unopened = any(line.endswith("FAILS") and kind(line)[0] == "open" and "/json" in line
                       for line in self.operations)
        left = home.leftovers()
        expect(not left or self.kills or unopened, f"left behind: {left}")
        return told


def kind(operation):
    """The same for the same operation on the same sort of file."""
    _, name, path = operation.split(maxsplit=2)
    return name, re.sub(r".*/home-[^/]*|#?\d[^/]*|\.\w{6}$", "", path)


def all_cases(operations, chance):
    """Each (operation, error, network) there is; each kind of operation comes once before the
    others."""
    cases = [(at, how, is_away) for at, operation in enumerate(operations, 1)
             for how in (HOWS_OF_A_WRITE if kind(operation)[0] == "write" else HOWS)
             for is_away in (False, True)]
    chance.shuffle(cases)
    seen = set()

    def is_seen(case):
        at, *error = case
        sort = (*kind(operations[at - 1]), *error)
        return sort in seen or seen.add(sort) is not None
    return sorted(cases, key=is_seen)


def run(build, options):
    with Service(build) as service:
        service.fail("/api_get_active", "refuse")
        plain = Trial(build, service)
        plain.run()
        cases = all_cases(plain.operations, random.Random(options.seed))
        total = len(cases)
        if count := options.count or (16 if options.short else 0):
            cases = cases[:count]

        def broken(case):
            try:
                Trial(build, service, *case).run()
                return 0
            except Broken as error:
                print(f"  {error}", flush=True)
                return 1

        # Most of the time they wait.
        with ThreadPoolExecutor(options.jobs) as pool:
            count = sum(pool.map(broken, cases))
        expect(not count, f"{count} of {len(cases)} failures broke a promise")
        kinds = {(*kind(plain.operations[at - 1]), how, is_away) for at, how, is_away in cases}
        return f"{len(cases)} of {total} failures, {len(kinds)} kinds of them, at " \
               f"{len(plain.operations)} operations"
