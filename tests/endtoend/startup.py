# SPDX-License-Identifier: GPL-3.0-or-later
"""How the program starts and ends, and what it does about what it finds then."""

import os
import shutil
import subprocess

from case import Case, main
from heldlock import HeldLock
from lab import (PICKER, PLAY_BUTTON_CENTRE, SIGN_IN, STRIP, Service, expect, expect_equal,
                 ini_value, move_pointer, press, set_ini_value, wait_until)

NAME = "TessaPort Team Monitor"
FAILURE = "Ошибка"
WHITE = b"\xff\xff\xff"
UPDATE = "TPMC-update.exe"


def expect_exit(program, code=0):
    expect_equal("the exit code", program.exit_code(), code)


def content(file):
    """None when there is none."""
    return file.read_text() if file.exists() else None


def expect_gone(path):
    expect(not path.exists(), f"expected to be gone: {path}")


class Startup(Case):
    def test_clean_removes_data(self):
        """Neither a display nor the lock is asked for."""
        with self.home() as home, HeldLock(home, os.getuid()):
            home.sign_in("1507", "48211", is_monitoring=False)
            home.write("demo@example.com/activity/json", "{}")
            expect_exit(home.start("--clean", DISPLAY=None))
            expect_gone(home.data)

    def test_answers_without_starting(self):
        with self.home() as home:
            program = home.start("--version", DISPLAY=None)
            expect_exit(program)
            expect_equal("the answer", program.output(), f"{NAME} 1.1.0\n")
            program = home.start("--help", DISPLAY=None)
            expect_exit(program)
            told = program.output()
            expect("--clean" in told and "--version" in told, f"the options are missing: {told}")
            expect_gone(home.data)

    def test_cancelled_sign_in(self):
        # The largest log that is kept, and a byte more.
        largest = 104857600
        for size in (largest, largest + 1):
            with self.home() as home:
                home.write("cached/folder/file", "old")
                home.write("log.log")
                os.truncate(home.log_file, size)
                # Not the argument that it looks at.
                program = home.start("--Clean", "--clean")
                program.wait_for_active(SIGN_IN)
                press("Escape")
                expect_exit(program)
                met = home.log_file.stat().st_size
                expect_equal(f"a log of {size} bytes, {met} now, is kept", met > size,
                             size == largest)
                expect(met > 0, "the log is empty")
                expect_gone(home.data / "cached")
                expect_equal("the last login", ini_value(home.data / "config.ini", "lastLogin"), "")

    def test_from_sign_in_to_the_end(self):
        """Signed in by hand; then the menu, and the end as the system brings it about."""
        with Service(self.build, Service.demo_data()), self.home() as home, HeldLock(home):
            program = home.start()
            program.wait_for_active(SIGN_IN)
            # What the style sheet draws: the background of a field.
            wait_until(lambda: program.look(SIGN_IN, 200, 83, 1, 1) == WHITE, "the field is white")
            program.sign_in("demo@example.com", "demo")
            program.wait_for(STRIP)

            program.choose_from_menu("Up", "Up", "Up", "Return")
            entry = home.path / ".config/autostart/TessaPort-Team-Monitor.desktop"
            wait_until(entry.exists, f"{entry} is there")

            # Its last window is closed, and it lives on.
            program.wait_for_active(STRIP)
            press("alt+F4")
            program.wait_for_gone(STRIP)
            update = home.data / "update.json"
            set_ini_value(update, "forceUpdate", "true")
            wait_until(lambda: ini_value(update, "forceUpdate") != "true",
                       "the update that does not run is taken back")
            program.terminate()
            expect_exit(program)
            last = home.log().strip().splitlines()[-1]
            expect(last.endswith(f"Exit {NAME} OK"), f"the log ends with: {last}")

    def test_account_and_exit(self):
        move_pointer(300, 300)
        with Service(self.build, Service.demo_data()), self.home() as home:
            home.sign_in("1507", "48215")
            program = home.start()
            home.wait_for_log("Monitor started")
            program.wait_for_notices(1)

            program.choose_from_menu("Down", "Down", "Down", "Return")
            program.wait_for_active(SIGN_IN)
            expect_equal("ends of the monitor", home.logged("Monitor stopped"), 1)
            press("ctrl+a")
            program.sign_in("anna@example.com", "demo")
            home.wait_for_log('Login as  "anna@example.com"')
            program.wait_for_gone(SIGN_IN)
            expect(program.is_running, f"ended with {program.process.returncode}")
            expect_equal("the task of the former account", home.value("taskID"), "48215")

            # Her first task, by the keyboard.
            program.open_task_picker()
            press("Return")
            program.wait_for_gone(PICKER)
            program.click(STRIP, *PLAY_BUTTON_CENTRE)
            home.wait_for_log("Monitor started", 2)
            program.choose_from_menu("Up", "Return")
            expect_exit(program)
            last = home.log()[-100:]
            expect(last.endswith(f": Exit {NAME} OK\n"), f"the log ends with: {last!r}")
            hers = home.data / "anna@example.com/session.ini"
            expect_equal("her task", ini_value(hers, "taskID"), "48211")

            program = home.start()
            program.wait_for_notices(1)
            expect_equal("starts of the monitor", home.logged("Monitor started"), 3)
            shown = program.windows()
            expect(SIGN_IN not in shown, f"she has signed in, and shown are {shown}")

    def test_in_a_wayland_session(self):
        with self.home() as home:
            program = home.start(XDG_SESSION_TYPE="wayland")
            program.wait_for_active(FAILURE)
            press("Tab", "Return")
            expect_exit(program)
            expect_equal("answers of no in the log", home.logged("Z: 1\n"), 1)

            program = home.start(XDG_SESSION_TYPE="wayland")
            program.wait_for_active(FAILURE)
            press("Return")
            program.wait_for_active(SIGN_IN)
            expect_equal("answers of yes in the log", home.logged("Z: 0\n"), 1)

    def test_second_instance(self):
        with Service(self.build, Service.demo_data()), self.home() as home:
            home.sign_in("1507", "48211")
            first = home.start()
            first.wait_for(STRIP)
            # So the other cases hold the right lock.
            with self.assertRaises(FileExistsError):
                HeldLock(home, os.getuid())
            session = home.user / "session.ini"
            before = session.read_text().splitlines()

            home.write("cached/file", "old")
            second = home.start()
            second.wait_for_active(NAME)
            press("Return")
            expect_exit(second, 1)

            # When a desktop has run for days, what leads to the lock is cleared with other
            # temporary files.
            for file in home.path.glob("qipc_sharedmemory_*"):
                file.unlink()
            third = home.start()
            third.wait_for_active(NAME)
            press("Return")
            expect_exit(third, 1)

            expect(first.is_running, f"the first ended with {first.process.returncode}")
            expect(STRIP in first.windows(), f"shown of the first are {first.windows()}")
            expect_equal("starts", home.logged(f"{NAME} 1.1.0 started"), 3)
            expect_gone(home.data / "cached")
            # It may have written down more than there was.
            lost = {*before} - {*session.read_text().splitlines()}
            expect(not lost, f"lost from session.ini: {lost}")

            # The lock of one that was killed is no hindrance.
            first.kill()
            home.start().wait_for(STRIP)

    def test_closes_for_update(self):
        with Service(self.build, Service.demo_data()), self.home() as home:
            home.sign_in("1507", "48211")
            program = home.start()
            program.wait_for(STRIP)
            # The program writes this file, too, when it has asked for the version.
            settings = home.data / "update.json"
            wait_until(lambda: ini_value(settings, "updateInfo"), "the version is known")

            shutil.copy("/bin/sleep", home.path / UPDATE)
            with subprocess.Popen([home.path / UPDATE, "300"]) as update:
                try:
                    set_ini_value(settings, "forceUpdate", "true")
                    expect_exit(program)
                finally:
                    update.kill()
            # It goes on with what it was doing when it is started again.
            expect_equal("whether it monitors", home.value("active"), "true")

    def test_hands_over_to_update(self):
        with self.home() as home:
            home.add_program(UPDATE, "printf '%s' \"$*\" >\"$HOME/told\"")
            set_ini_value(home.data / "update.json", "updateAtStartup", "true")
            expect_exit(home.start())
            told = home.path / "told"
            wait_until(lambda: content(told) == "--install-only", f"{UPDATE} has its argument",
                       met=lambda: content(told))
            expect_gone(home.log_file)

    def test_carries_on_without_update(self):
        """There is none yet; it comes to where it will be looked for the next time."""
        with self.home() as home:
            home.add_program("xdg-open", ":")
            set_ini_value(home.data / "update.json", "updateAtStartup", "true")
            home.write(f"update/{UPDATE}", "new")
            home.start().wait_for(SIGN_IN)
            expect_equal("what is installed", content(home.path / UPDATE), "new")


if __name__ == "__main__":
    main()
