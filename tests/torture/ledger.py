# SPDX-License-Identifier: GPL-3.0-or-later
"""The accounts of what was measured: each minute and picture is confirmed, or on disk, and once."""

import datetime
import json
import re
from collections import defaultdict

from lab import Broken, SCREENSHOT, expect

_LINE = re.compile(r"Message\(\d\) at (\S+)Z: (.*)")
_PREPARED = re.compile(r'Activity data prepared .*\("(\d+)", "[^"]*", "[^"]*", "([^"]*)"')
_LOST = "Error! Report is lost"
_TIME = "%d-%m-%Y-%H-%M-%S"


class Minute:
    """A minute that the log tells of, and whether that was the last word of a run."""

    def __init__(self, moment, key):
        self.moment = moment
        self.key = key  # task, active slots
        self.is_cut_off = True


class Ledger:
    def __init__(self, home, service):
        self.minutes = []
        self.pictures = 0
        self.told_lost = 0
        self.acknowledged = 0
        # Runs whose last word this was: their end may have come before the file's.
        self.cut_removals = 0
        self._read_log(home.log())
        tasks = {minute.key[0] for minute in self.minutes}
        self.confirmed = defaultdict(list)
        self.confirmed_pictures = defaultdict(int)
        for kind, record, kept in service.confirmed():
            if kind == "screenshot" and str(home.path) in record.get("fileName", ""):
                self.confirmed_pictures[record["fileName"]] += 1
            elif kind == "activity" and record["task_id"] in tasks:
                made = home.clock.at(kept) - datetime.timedelta(seconds=int(record["past"]))
                self.confirmed[record["task_id"], record["active"]].append(made)
        self.waiting = defaultdict(list)
        self.waiting_pictures = set()
        self.waiting_since = []
        for file in home.reports():
            self._read_report(file, tasks)

    @property
    def waiting_count(self):
        return sum(map(len, self.waiting.values())) + len(self.waiting_pictures)

    @property
    def confirmations(self):
        return sum(map(len, self.confirmed.values())) + sum(self.confirmed_pictures.values())

    def _read_log(self, log):
        last = None
        is_removal_due = False
        for line in log.splitlines():
            found = _LINE.match(line)
            if not found:
                continue
            moment, text = found.groups()
            if "started. Build date" in text:
                last = None
                self.cut_removals += is_removal_due
            elif last:
                last.is_cut_off = False
            is_removal_due = False
            if prepared := _PREPARED.match(text):
                last = Minute(datetime.datetime.fromisoformat(moment),
                              (prepared[2], prepared[1]))
                self.minutes.append(last)
            elif text.startswith("Screenshot prepared"):
                self.pictures += 1
            elif _LOST in text:
                self.told_lost += 1
            elif text.startswith(("Activity sended", "ver 1.0 activity sended")):
                self.acknowledged += 1
                is_removal_due = True
        self.cut_removals += is_removal_due

    def _read_report(self, file, tasks):
        try:
            content = file.read_bytes()
        except FileNotFoundError:
            return  # confirmed since the folder was listed
        try:
            report = json.loads(content)
            body, written = report["body"], report["timestamp"]
        except (ValueError, KeyError) as error:
            raise Broken(f"half a report: {file.name}: {content!r}: {error}") from None
        moment = datetime.datetime.strptime(written, _TIME)
        if report["api-url"].endswith(SCREENSHOT):
            self.waiting_pictures.add(body["fileName"])
        elif body["task_id"] in tasks:
            self.waiting[body["task_id"], body["active"]].append(moment)
        self.waiting_since.append(moment)

    def settle(self):
        """What is missing and what is there too often, of minutes and of pictures."""
        minutes = defaultdict(list)
        for minute in self.minutes:
            minutes[minute.key].append(minute)
        lost, doubled = [], []
        for key in {*minutes, *self.confirmed, *self.waiting}:
            # Written up to a second before the line of the log, and seen some time later: a record
            # is the last minute before it that has none yet.
            events = [(minute.moment, 0, minute) for minute in minutes[key]]
            events += [(moment + datetime.timedelta(seconds=2), 1, None)
                       for moment in self.confirmed[key] + self.waiting[key]]
            left = []
            for moment, _, minute in sorted(events, key=lambda event: event[:2]):
                if minute:
                    left.append(minute)
                elif left:
                    left.pop()
                else:
                    doubled.append((key, moment))
            lost += left
        seen = {**self.confirmed_pictures}
        for name in self.waiting_pictures:
            seen[name] = seen.get(name, 0) + 1
        doubled += [name for name, count in seen.items() if count > 1]
        return lost, doubled, self.pictures - len(seen)

    def is_up_to_date(self):
        """Whether nothing waits for longer than the way to the service takes."""
        last = max((minute.moment for minute in self.minutes), default=datetime.datetime.min)
        return all(last - moment < datetime.timedelta(minutes=3) for moment in self.waiting_since)

    def is_kept(self, kills=0):
        try:
            self.check(kills)
            return True
        except Broken:
            return False

    def check(self, kills=0):
        """Every minute and picture once. Twice may be what was confirmed in words that never
        arrived, or at a kill; missing what was on its way to the disk then."""
        lost, doubled, pictures = self.settle()
        cut_off = [minute.key for minute in self.minutes if minute.is_cut_off]
        unanswered = self.confirmations - self.acknowledged
        told = f"{len(self.minutes)} minutes, {self.pictures} pictures, " \
               f"{self.confirmations} confirmations, {self.waiting_count} waiting, " \
               f"{self.told_lost} told to be lost"
        # Each may be told to be lost, and a kill may cut off one of either kind.
        allowed = self.told_lost
        for key in {minute.key for minute in lost}:
            ours = [minute.moment for minute in lost if minute.key == key]
            allowed -= max(0, len(ours) - (cut_off.count(key) if kills else 0))
            expect(allowed >= 0, f"lost: {key} {ours} ({told})")
        expect(len(doubled) <= unanswered + (self.cut_removals if kills else 0),
               f"twice: {doubled}, {unanswered} unanswered ({told})")
        expect(pictures <= allowed + kills, f"{pictures} pictures lost ({told})")
        return told + f", {len(lost)} missing, {len(doubled)} again"
