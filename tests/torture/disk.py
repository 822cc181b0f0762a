# SPDX-License-Identifier: GPL-3.0-or-later
"""A full disk, a folder that may not be written, folders that vanish, another user's sign-in."""

import os
import shutil
import subprocess
import sys

from attacked import Home
from lab import ACTIVITY, USER, Broken, Build, Clock, Service, expect, wait_until
from ledger import Ledger

OTHER = "anna@example.com"


def pictures(service):
    """How many records of pictures are confirmed, and how many of them came with one."""
    count = sum(kind == "screenshot" for kind, *_ in service.confirmed())
    return count, len(list((service.folder / "store").glob("*.jpg")))


def expect_progress(home, service, count=2):
    """New minutes are confirmed again, and nothing waits."""
    home.wait_for_minutes(home.minutes_measured() + count)
    wait_until(lambda: not home.reports() and Ledger(home, service).is_kept(),
               "all is confirmed or told to be lost")


def full_disk(home, service):
    """With the network there nothing is lost, the picture included; without it the log names what
    is. Both recover."""
    home.keep_log_apart()
    content = {file: file.read_bytes() for file in home.data.rglob("*.ini")}
    subprocess.run(["mount", "-t", "tmpfs", "-o", "size=4m,mode=700", "tmpfs", home.data],
                   check=True)
    try:
        (home.data / "log.log").symlink_to(home.log_file)
        for file, text in content.items():
            file.parent.mkdir(parents=True, exist_ok=True)
            file.write_bytes(text)
        filler = home.data / "filler"
        with filler.open("wb", buffering=0) as stream:
            try:
                while True:
                    stream.write(b"x" * 4096)
            except OSError:
                pass
        monitor = home.start()
        home.wait_for_minutes(2)
        wait_until(lambda: Ledger(home, service).is_kept(), "all is confirmed from memory")
        count, with_content = pictures(service)
        expect(count == with_content == 1, f"{with_content} of {count} pictures have content")
        home.away.touch()
        home.wait_for_minutes(home.minutes_measured() + 2)
        home.away.unlink()
        filler.unlink()
        expect_progress(home, service)
        expect(home.minutes_counted() == home.minutes_measured(), "counters differ")
        monitor.quit()
    finally:
        subprocess.run(["umount", "-l", home.data], check=True)
    return Ledger(home, service).check()


def read_only(home, service):
    home.keep_log_apart()
    home.become_ordinary()
    monitor = home.start()
    home.wait_for_minutes(1)
    for folder in (home.activity, home.user):
        folder.chmod(0o500)
    home.wait_for_minutes(3)
    wait_until(lambda: Ledger(home, service).is_kept(), "all is confirmed from memory")
    for folder in (home.activity, home.user):
        folder.chmod(0o700)
    expect_progress(home, service)
    monitor.quit()
    return Ledger(home, service).check()


def vanishing(home, service):
    """The next minute has a folder again, which it needs when the network is away."""
    home.keep_log_apart()
    monitor = home.start()
    for number, folder in enumerate((home.activity, home.user, home.data), 1):
        home.wait_for_minutes(home.minutes_measured() + 1)
        wait_until(lambda: not home.reports() and Ledger(home, service).is_kept(), "all is out")
        home.away.touch()
        shutil.rmtree(folder)
        home.wait_for_minutes(home.minutes_measured() + 1)
        wait_until(home.reports, f"the minute is on disk again without {folder.name}")
        home.away.unlink()
    expect_progress(home, service)
    monitor.quit()
    return Ledger(home, service).check()


def other_account(home, service):
    """What is in flight for one user is neither sent as another's nor lost."""
    monitor = home.start()
    home.wait_for_minutes(1)
    service.fail(ACTIVITY, "hang")
    home.wait_for_minutes(3)
    monitor.choose_from_menu("Down", "Down", "Down", "Return")
    monitor.sign_in(OTHER, "demo")
    home.wait_for_log(f'Login as  "{OTHER}"')
    service.succeed(ACTIVITY)
    wait_until(lambda: not home.reports(), "what was in flight is confirmed")
    monitor.quit()
    emails = {record["email"] for kind, record, _ in service.confirmed()
              if record.get("task_id") == home.value("taskID")}
    expect(emails == {USER}, f"confirmed for {emails}")
    return Ledger(home, service).check()


def try_out(build, attack):
    with Service(build) as service, Home(build, Clock(speed=60), task=attack.__name__) as home:
        service.fail("/api_get_active", "refuse")
        return f"{attack.__name__}: {attack(home, service)}"


def run(build, _options):
    told = [try_out(build, attack) for attack in (read_only, vanishing, other_account)]
    # A disk of its own, in a namespace that goes with the process.
    command = ["unshare", "--user", "--map-root-user", "--mount", sys.executable, __file__,
               str(build.folder)]
    full = subprocess.run(command, capture_output=True, text=True, check=False,
                          env={**os.environ, "PYTHONPATH": os.pathsep.join(sys.path)})
    expect(full.returncode == 0, (full.stdout + full.stderr).strip())
    return "; ".join([*told, full.stdout.strip()])


if __name__ == "__main__":
    try:
        print(try_out(Build(sys.argv[1]), full_disk))
    except Broken as error:
        sys.exit(f"full_disk: {error}")
