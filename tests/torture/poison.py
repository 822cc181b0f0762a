# SPDX-License-Identifier: GPL-3.0-or-later
"""What must not stop new reports: bad files, odd entries of the folder, a refusal, thousands."""

import json
import os
import time

from attacked import Home
from lab import ACTIVITY, USER, Clock, Service, expect, wait_until
from ledger import Ledger


def report(build, active="5", task="old", written="14-05-2024-08-00-00"):
    return json.dumps({
        "api-url": f"https://localhost:{build.port}{ACTIVITY}", "timestamp": written,
        "version": "0.1",
        "body": {"active": active, "email": USER, "past": "0", "task_id": task, "team_id": "1507",
                 "version": "1.1.0"}})


def bad_files(home):
    """Each of them is done with when it has been looked at; the log tells."""
    whole = report(home.build)
    contents = {"empty": "", "cut": whole[:len(whole) // 2], "no-address": '{"body":{}}',
                "no-object": "[1,2]", "deep": "[" * 100000, "nul": "\0" * 100,
                "nothing-known": '{"api-url":""}'}
    for name, content in contents.items():
        (home.activity / f"json00-{name}").write_text(content)

    def check():
        left = [file.name for file in home.reports()]
        expect(not left, f"bad files stay: {left}")
        told = home.logged("Invalid activity file")
        expect(told == len(contents), f"{told} of {len(contents)} bad files told of")
    return check


def odd_entries(home):
    """What is no file stays where it is, and is not waited for."""
    (home.activity / "json00-folder").mkdir()
    os.mkfifo(home.activity / "json00-pipe")
    (home.activity / "json00-lost").symlink_to(home.path / "nowhere")
    (home.activity / "json00-round").symlink_to("json00-round")
    return lambda: None


def refused(home):
    """A report that the service refuses whenever it comes; those behind it wait with it."""
    (home.activity / "json00-refused").write_text(report(home.build, active="11"))

    def check():
        waiting = [file.name for file in home.reports()]
        expect(waiting == ["json00-refused"], f"waiting: {waiting}")
    return check


def unreadable(home):
    (home.activity / "json00-unreadable").write_text(report(home.build))
    (home.activity / "json00-unreadable").chmod(0)
    home.become_ordinary()
    return lambda: None


def try_out(build, service, prepare):
    with Home(build, Clock(speed=60), task=prepare.__name__) as home:
        check = prepare(home)
        monitor = home.start()
        home.wait_for_minutes(3)
        wait_until(lambda: Ledger(home, service).confirmations >= 4, "new reports go through")
        check()
        monitor.quit()
        told = Ledger(home, service).check()
        return f"{prepare.__name__}: {told}"


def drain(build, service, count):
    """Has so many waiting reports sent; milliseconds a report: of time, and of the processor in the
    first and in the last quarter."""
    with Home(build, Clock(speed=1), task="thousands") as home:
        for number in range(count):
            task = f"old-{number}"
            (home.activity / f"json13-05-2024-08-00-00.{number:06}").write_text(
                report(build, task=task))
        home.clock.speed = 10
        monitor = home.start()
        ticks, marks = 1 / os.sysconf("SC_CLK_TCK"), []

        def work():
            fields = open(f"/proc/{monitor.process.pid}/stat").read().rsplit(")", 1)[1].split()
            return (int(fields[11]) + int(fields[12])) * ticks

        for left in (count - 1, count * 3 // 4, count // 4, 0):
            wait_until(lambda: len(os.listdir(home.activity)) <= left, f"only {left} wait", 1800)
            marks.append((work(), time.monotonic()))
        monitor.quit()
        return ((marks[3][1] - marks[0][1]) / (count - 1) * 1000,
                (marks[1][0] - marks[0][0]) / (count / 4) * 1000,
                (marks[3][0] - marks[2][0]) / (count / 4) * 1000)


def thousands(build, service, count):
    """The whole backlog goes out, each once, and the last as fast as the first."""
    pace, first, last = drain(build, service, count)
    tasks = [record["task_id"] for kind, record, _ in service.confirmed()
             if record["task_id"].startswith("old-")]
    expect(len(tasks) == count == len(set(tasks)),
           f"{len(set(tasks))} of {count} confirmed, {len(tasks) - len(set(tasks))} twice")
    expect(first < 2 * last + 1, f"{first:.1f} ms a file at first, {last:.1f} in the end")
    return f"{count} files, {pace:.1f} ms each, of processor {first:.1f} ms a file at first " \
           f"and {last:.1f} in the end"


def run(build, options):
    with Service(build) as service:
        told = [try_out(build, service, prepare)
                for prepare in (bad_files, odd_entries, refused, unreadable)]
        told.append(thousands(build, service, 200 if options.short else options.count or 10000))
        return "; ".join(told)
