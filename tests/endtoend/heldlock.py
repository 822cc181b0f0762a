# SPDX-License-Identifier: GPL-3.0-or-later
"""The lock against a second instance, as QSharedMemory makes it."""

import ctypes
import hashlib
import os
import re

_libc = ctypes.CDLL(None, use_errno=True)
_libc.shmat.restype = ctypes.c_void_p
_libc.shmat.argtypes = ctypes.c_int, ctypes.c_void_p, ctypes.c_int
_libc.shmdt.argtypes = (ctypes.c_void_p,)
_IPC_CREAT, _IPC_EXCL, _IPC_RMID = 0o1000, 0o2000, 0


def _checked(result):
    if result in (-1, ctypes.c_void_p(-1).value):
        raise OSError(ctypes.get_errno(), os.strerror(ctypes.get_errno()))
    return result


class HeldLock:
    """That of another copy in the same home; without a mark, that of all users of the machine. A
    FileExistsError when somebody holds it."""

    def __init__(self, home, user_mark=""):
        key = f"SingleAppLockTessaPort Team Monitor{user_mark}"
        name = re.sub("[^A-Za-z]", "", key) + hashlib.sha1(key.encode()).hexdigest()
        file = home.path / f"qipc_sharedmemory_{name}"
        file.touch()
        number = _checked(_libc.ftok(os.fsencode(file), ord("Q")))
        self._segment = _checked(_libc.shmget(number, 1, _IPC_CREAT | _IPC_EXCL | 0o600))
        self._place = _checked(_libc.shmat(self._segment, None, 0))

    def __enter__(self):
        return self

    def __exit__(self, *_):
        _checked(_libc.shmctl(self._segment, _IPC_RMID, None))
        _checked(_libc.shmdt(self._place))
