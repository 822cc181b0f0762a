# SPDX-License-Identifier: GPL-3.0-or-later
"""The home that all attacks are on."""

import os
import re

import lab


class Home(lab.Home):
    """Of a user who has signed in and left while monitoring. Operations on its files and its
    network can fail, see failing.c."""

    def __init__(self, build, clock, task="48211", team="1507"):
        super().__init__(build, clock, "torture")
        self.activity.mkdir(parents=True, mode=0o700)
        self.sign_in(team, task)
        self.preloaded = [build.library("failing")]
        # The network of this home alone.
        self.away = self.path / "away"
        self.environment["FAILING_AWAY"] = str(self.away)

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

    def set_task(self, task):
        file = self.user / "session.ini"
        file.write_text(re.sub(r"(?m)^taskID=.*$", f"taskID={task}", file.read_text()))

    def leftovers(self):
        """What lies beside the reports and is named by none."""
        reports = self.reports()
        named = "".join(report.read_text() for report in reports)
        return [file.name for file in self.activity.iterdir()
                if file not in reports and file.name not in named]
