# SPDX-License-Identifier: GPL-3.0-or-later
"""What the cases share, and how they are run."""

import argparse
import signal
import sys
import unittest
from pathlib import Path

sys.path.append(str(Path(__file__).resolve().parents[1]))
from lab import Broken, Build, Clock, Home  # noqa: E402


class Case(unittest.TestCase):
    failureException = Broken
    build = None

    def home(self, speed=1):
        """Under a clock that starts on a morning, so many times faster than the real one."""
        return Home(self.build, Clock(speed), self.id().rpartition(".")[2])


def main():
    """Runs the cases of the calling file; without any that is a failure, too."""
    parser = argparse.ArgumentParser(add_help=False)
    parser.add_argument("--build", default="build/dev")
    options, others = parser.parse_known_args()
    Case.build = Build(options.build)
    # So that what was started ends with it: of exceptions, unittest lets only this one through.
    signal.signal(signal.SIGTERM, signal.default_int_handler)
    result = unittest.main(argv=[sys.argv[0], *others], exit=False, verbosity=2).result
    if result.testsRun == 0 or result.skipped or result.expectedFailures:
        sys.exit("Nothing is shown by what was not tried")
    sys.exit(0 if result.wasSuccessful() else 1)
