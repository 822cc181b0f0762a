# SPDX-License-Identifier: GPL-3.0-or-later
"""What the whole program costs beside the least that Qt can do, measured from outside."""

import os
import re
import select
import shutil
import subprocess
import sys
import tempfile
import time
from contextlib import closing, contextmanager, suppress
from pathlib import Path

sys.path.append(str(Path(__file__).resolve().parents[1] / "tests"))
from lab import USER, Broken, Service, expect, wait_until, write_ini  # noqa: E402

STRIP_SIZE = ("392", "73")
FLOOR, STOPPED, RUNNING, OFFLINE = STATES = ("floor", "stopped", "running", "offline")
# The floor with what Qt loads by itself.
PLAIN = "floor with Qt as it comes"


class Desktop:
    """Tells when windows come onto the desktop."""

    def __init__(self):
        self.events = subprocess.Popen(
            ["stdbuf", "-oL", "xev", "-root", "-event", "substructure", "-event", "property"],
            stdout=subprocess.PIPE, text=True)
        # Of what happens before it listens, xev does not tell: it is called till it answers.
        wait_until(self._answers, "xev tells of the desktop")

    def _answers(self):
        subprocess.run(["xprop", "-root", "-f", "_BENCH", "8s", "-set", "_BENCH", ""], check=True)
        return select.select([self.events.stdout], [], [], 0.2)[0]

    def wait_for_strip(self):
        """The moment by time.monotonic() at which a window of the strip's size is shown."""
        sizes = {}
        event = ""
        for line in self.events.stdout:
            if line.strip():
                event += line
                continue
            if size := re.match(r"ConfigureNotify .* window (\w+), \S+ width (\d+), height (\d+)",
                                event, re.S):
                sizes[size[1]] = size.groups()[1:]
            shown = re.match(r"MapNotify .* window (\w+), override", event, re.S)
            if shown and sizes.get(shown[1]) == STRIP_SIZE:
                return time.monotonic()
            event = ""
        raise Broken("xev has ended")

    def close(self):
        self.events.kill()
        self.events.wait()
        self.events.stdout.close()


class Start:
    """Starts floor and program, each time in a fresh copy of a home where somebody has signed in and
    the tasks are known."""

    def __init__(self, build):
        self.build = build
        self.home = Path(tempfile.mkdtemp(prefix="bench-home-"))
        self.user = self.home / ".tessaport" / USER
        self.user.mkdir(parents=True, mode=0o700)
        write_ini(self.user.parent / "config.ini", lastLogin=USER)
        self._write_session(self.user, STOPPED)
        log = self.user.parent / "log.log"
        with self._process(self.home, build.monitor):
            wait_until(lambda: log.exists() and "TaskInfo for" in log.read_text(),
                       "the tasks are known")

    @staticmethod
    def _write_session(user, state):
        write_ini(user / "session.ini", password="demo", logged="true", teamID="1507",
                  taskID="48211", active="false" if state == STOPPED else "true")

    @staticmethod
    @contextmanager
    def _process(home, *command):
        # The lock against a second instance is made in the folder for temporary files.
        env = {**os.environ, "HOME": home, "TMPDIR": home}
        # What keeps tests from loading OpenGL; users have none of it.
        env.pop("QT_XCB_GL_INTEGRATION", None)
        process = subprocess.Popen(command, env=env,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        try:
            yield process
            expect(process.poll() is None, f"{command[0]} has ended by itself")
        finally:
            process.terminate()
            process.wait()

    @contextmanager
    def __call__(self, state):
        with tempfile.TemporaryDirectory(prefix="bench-home-") as folder:
            home = Path(folder)
            shutil.copytree(self.home, home, dirs_exist_ok=True)
            self._write_session(home / self.user.relative_to(self.home), state)
            floor = self.build.folder / "bin/tessaport-floor"
            command = {FLOOR: [floor], PLAIN: [floor, "plain"]}.get(state, [self.build.monitor])
            with self._process(home, *command) as process:
                yield process

    def close(self):
        shutil.rmtree(self.home)


class Usage:
    """What a process has used up to a moment."""

    def __init__(self, process):
        self.moment = time.monotonic()
        self.threads = {}
        for thread in Path(f"/proc/{process.pid}/task").iterdir():
            wakeups = re.search(r"\nvoluntary_ctxt_switches:\s+(\d+)",
                                (thread / "status").read_text())
            nanoseconds = (thread / "schedstat").read_text().split()[0]
            self.threads[thread.name] = int(nanoseconds), int(wakeups[1])

    def since(self, before):
        """Percent of a core, and wake-ups a second. What ended meanwhile is not counted."""
        seconds = self.moment - before.moment
        used = [[now - then for now, then in zip(usage, before.threads.get(thread, (0, 0)))]
                for thread, usage in self.threads.items()]
        nanoseconds, wakeups = map(sum, zip(*used))
        return nanoseconds / seconds / 1e7, wakeups / seconds


def proportional_megabytes(process):
    """The memory of the process, what it shares divided among those who share it."""
    told = Path(f"/proc/{process.pid}/smaps_rollup").read_text()
    return int(re.search(r"\nPss:\s+(\d+)", told)[1]) / 1024


def others_with_qt(process):
    """How many other processes share Qt's libraries with this one, and so spoil its share."""
    count = 0
    for maps in Path("/proc").glob("[0-9]*/maps"):
        with suppress(OSError):
            count += maps.parent.name != str(process.pid) and "libQt5Gui" in maps.read_text()
    return count


def measure(build, rounds, starts, seconds):
    """Figures by (what, state), each a list with one of each round; floor and states take turns.
    And the largest number of other programs with Qt that ran meanwhile."""
    figures = {}
    others = 0

    def note(what, state, figure):
        figures.setdefault((what, state), []).append(figure)

    with closing(Service(build)) as service, closing(Start(build)) as start:
        with closing(Desktop()) as desktop:
            # The first of each fills the system's caches and does not count.
            for number in range(starts + 1):
                for state in (FLOOR, PLAIN, STOPPED):
                    before = time.monotonic()
                    with start(state):
                        shown = desktop.wait_for_strip()
                    if number:
                        note("start", state, shown - before)
        for _ in range(rounds):
            with start(PLAIN) as process:
                time.sleep(15)
                note("memory", PLAIN, proportional_megabytes(process))
            for state in STATES:
                if state == OFFLINE:
                    service.stop()
                with start(state) as process:
                    time.sleep(15)
                    note("memory", state, proportional_megabytes(process))
                    others = max(others, others_with_qt(process))
                    before = Usage(process)
                    time.sleep(seconds)
                    processor, wakeups = Usage(process).since(before)
                    note("processor", state, processor)
                    note("wake-ups", state, wakeups)
                if state == OFFLINE:
                    service.start()
    return figures, others
