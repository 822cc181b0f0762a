# SPDX-License-Identifier: GPL-3.0-or-later
"""What drives the unmodified program from outside: the service, somebody's home with a clock of its
own, the program in it, and the desktop."""

from .checks import PATIENCE, Broken, expect, expect_equal, wait_until
from .desktop import active_window, click, keep_picture, move_pointer, press, type_text
from .home import USER, Clock, Home
from .ini import ini_value, map_of_times, set_ini_value, write_ini
from .monitor import PICKER, PLAY_BUTTON, PLAY_BUTTON_CENTRE, SIGN_IN, STRIP, Monitor
from .service import ACTIVITY, PATHS, REPORT_PATHS, SCREENSHOT, SOURCE, Build, Service
