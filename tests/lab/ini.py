# SPDX-License-Identifier: GPL-3.0-or-later
"""The program's ini files, as QSettings writes them."""

import configparser
import datetime
import io
import re
import struct

_ESCAPES = {"a": "\a", "b": "\b", "f": "\f", "n": "\n", "r": "\r", "t": "\t", "v": "\v", "0": "\0"}
# The numbers that Qt streams of the types begin with.
_MAP, _TIME = 8, 15


def write_ini(file, **values):
    """With these values alone."""
    file.parent.mkdir(parents=True, exist_ok=True)
    new = file.with_name(file.name + ".new")
    new.write_text("[General]\n" + "".join(f"{k}={v}\n" for k, v in values.items()))
    new.rename(file)


def _values(file):
    ini = configparser.RawConfigParser(strict=False, delimiters="=")
    ini.optionxform = str
    ini.read(file, encoding="utf-8")
    return dict(ini["General"]) if "General" in ini else {}


def ini_value(file, key):
    """As it stands there; None when there is none."""
    return _values(file).get(key)


def set_ini_value(file, key, value):
    """The others stay."""
    write_ini(file, **{**_values(file), key: value})


def map_of_times(value):
    """What stands in the file for a map from texts to times of the day."""
    def unescaped(match):
        return chr(int(match[1], 16)) if match[1] else _ESCAPES.get(match[2], match[2])
    text = re.fullmatch(r'"?@Variant\((.*)\)"?', value)[1]
    stream = io.BytesIO(re.sub(r"\\(?:x([0-9a-f]+)|(.))", unescaped, text).encode("latin-1"))

    def number():
        return struct.unpack(">I", stream.read(4))[0]

    def expect_type(expected):
        if (met := number()) != expected:
            raise ValueError(f"expected type {expected}, met {met}: {value}")
    expect_type(_MAP)
    times = {}
    for _ in range(number()):
        length = number()
        key = "" if length == 0xffffffff else stream.read(length).decode("utf-16-be")
        expect_type(_TIME)
        since_midnight = datetime.timedelta(milliseconds=number())
        times[key] = (datetime.datetime.min + since_midnight).time()
    return times
