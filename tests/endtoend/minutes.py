# SPDX-License-Identifier: GPL-3.0-or-later
"""Minutes of monitoring under a fast clock, from real input to what is confirmed."""

import datetime
import json
import random
import re
import time

from case import Case, main
from lab import (ACTIVITY, PICKER, PLAY_BUTTON, PLAY_BUTTON_CENTRE, SIGN_IN, STRIP, Service, expect,
                 expect_equal, map_of_times, move_pointer, press, type_text, wait_until)


def active(service):
    return service.values("activity", "active")


def pictures(service):
    return service.values("screenshot", "fileName")


class Minutes(Case):
    def test_minutes(self):
        with Service(self.build, Service.demo_data()) as service, self.home(speed=20) as home:
            program = home.start()
            program.wait_for_active(SIGN_IN)
            message = SIGN_IN, 98, 48, 155, 18
            no_message = program.look(*message)
            program.sign_in("demo@example.com", "wrong")
            service.wait_for_requests("/api_teams", 1)
            wait_until(lambda: program.look(*message) != no_message, "the refusal is told")
            shown = program.windows()
            expect(SIGN_IN in shown and STRIP not in shown, f"shown behind a refusal: {shown}")
            press("ctrl+a")
            type_text("demo")
            press("Return")
            program.wait_for(STRIP)
            shown = program.windows()
            expect(SIGN_IN not in shown, f"shown behind the sign-in: {shown}")

            program.open_task_picker()
            # The second task of the list that drops down.
            program.click_to_change(PICKER, (210, 50), (70, 66, 150, 40))
            program.click(PICKER, 210, 95)
            program.click(PICKER, 258, 121)
            program.wait_for_gone(PICKER)

            # So close to the press, the release may or may not be an input of the first minute.
            program.click(STRIP, *PLAY_BUTTON_CENTRE)
            service.wait_for_requests(ACTIVITY, 2)
            move_pointer(400, 400)
            wait_until(lambda: "1" in active(service)[2:], "the input makes an active minute",
                       met=lambda: active(service))
            program.click(STRIP, *PLAY_BUTTON_CENTRE)
            home.wait_for_log("Monitor stopped")
            wait_until(lambda: not home.reports(), "no report waits", met=home.reports)
            program.choose_from_menu("Up", "Return")
            expect_equal("the exit code", program.exit_code(), 0)

            counts = "".join(active(service))
            # The way to the button may have been the input of the last one.
            expect(re.fullmatch("[01]0+10*1?", counts), f"expected no such inputs: {counts}")
            expect_equal("the minutes in the log", home.minutes_measured(), len(counts))
            expect_equal("their tasks", service.values("activity", "task_id"),
                         ["48215"] * len(counts))
            # In fast seconds, what lies between writing and sending may show.
            ages = service.values("activity", "past")
            expect(all(int(age) < 60 for age in ages), f"expected less than a minute: {ages}")

            active_time = datetime.time(0, counts.count("1"))
            expect_equal("the minutes worked", home.value("todayWorktime"),
                         str(datetime.time(0, len(counts))))
            expect_equal("the active ones", home.value("todayActivetime"), str(active_time))
            expect_equal("those of the task",
                         map_of_times(home.value("task2activeTimeMap")).get("48215"), active_time)
            expect_equal("whether it monitors", home.value("active"), "false")
            expect_equal("the task", home.value("taskID"), "48215")
            expect_equal("what waits", [file.name for file in home.activity.iterdir()], [])

    def test_service_away_and_kills(self):
        # A team whose tasks have no times that a new start of the service would move.
        data = Service.demo_data()
        data["teams"] = data["teams"][2:3]
        with Service(self.build, data) as service, self.home(speed=30) as home:
            home.sign_in("2192", "30002")
            move_pointer(200, 200)
            program = home.start()
            wait_until(lambda: pictures(service), "a picture is confirmed")

            online = program.look(STRIP, *PLAY_BUTTON)
            service.stop()
            home.wait_for_log("Online state is  false")
            wait_until(lambda: program.look(STRIP, *PLAY_BUTTON) != online,
                       "the strip tells that the service is away")
            wait_until(lambda: len(home.reports()) >= 2, "two reports wait", met=home.reports)

            kills = 3
            for _ in range(kills):
                # Anywhere in a minute, which takes two seconds under this clock.
                time.sleep(random.uniform(0, 2))
                program.kill()
                waiting = home.reports()
                for report in waiting:
                    self.expect_whole(report.read_bytes())
                program = home.start()
                wait_until(lambda: len(home.reports()) > len(waiting), "another report waits")
                lost = {*waiting} - {*home.reports()}
                expect(not lost, f"lost by a new start: {lost}")

            service.start()
            home.wait_for_log("Online state is  true")
            wait_until(lambda: program.look(STRIP, *PLAY_BUTTON) == online,
                       "the strip tells that the service is back")
            program.click(STRIP, *PLAY_BUTTON_CENTRE)
            home.wait_for_log("Monitor stopped")
            wait_until(lambda: not home.reports(), "no report waits", met=home.reports)
            program.choose_from_menu("Up", "Return")
            expect_equal("the exit code", program.exit_code(), 0)

            # A kill between a line of the log and its file may take the record of that moment.
            minutes = home.minutes_measured()
            for what, made, kept in (
                    ("minutes", minutes, len(active(service))),
                    ("pictures", home.logged("Screenshot prepared"), len(pictures(service)))):
                expect(made - kills <= kept <= made, f"{kept} of {made} {what} are confirmed")
            counted = home.minutes_counted()
            expect(abs(counted - minutes) <= kills, f"{counted} of {minutes} minutes are counted")
            expect_equal("starts of the monitor", home.logged("Monitor started"), kills + 1)

    @staticmethod
    def expect_whole(report):
        try:
            is_whole = isinstance(json.loads(report), dict)
        except ValueError:
            is_whole = False
        expect(is_whole, f"expected a whole report: {report!r}")


if __name__ == "__main__":
    main()
