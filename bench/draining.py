# SPDX-License-Identifier: GPL-3.0-or-later
"""How fast waiting reports go out, beside a bare client that sends the same over one connection."""

import http.client
import json
import ssl
import sys
import time
import urllib.parse
from pathlib import Path

sys.path.append(str(Path(__file__).resolve().parents[1] / "tests/torture"))
from lab import ACTIVITY, Service, expect  # noqa: E402
from poison import drain, report  # noqa: E402


def drain_barely(build, count):
    """Milliseconds a report, none of which is read from a file or removed."""
    body = "data=" + urllib.parse.quote(json.dumps([json.loads(report(build))["body"]]))
    connection = http.client.HTTPSConnection("localhost", build.port,
                                             context=ssl._create_unverified_context())
    connection.connect()
    started = time.monotonic()
    for _ in range(count):
        connection.request("POST", ACTIVITY, body,
                           {"Content-Type": "application/x-www-form-urlencoded"})
        with connection.getresponse() as response:
            expect(json.load(response)["status"] == "ok", "the service does not confirm")
    connection.close()
    return (time.monotonic() - started) / count * 1000


def measure_draining(build, counts, rounds):
    """By the number of reports: the floor's figures, the program's, and those of its processor, by
    turns."""
    figures = {}
    for count in counts:
        floor, program, processor = figures[count] = [], [], []
        for _ in range(rounds):
            with Service(build) as service:
                floor.append(drain_barely(build, count))
                pace, *quarters = drain(build, service, count)
                program.append(pace)
                processor += quarters
    return figures
