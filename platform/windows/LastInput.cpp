// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/LastInput.h"

#include <QDebug>

#include <windows.h>

namespace platform {

quint32 lastInputTick()
{
    // Kept from call to call, so that a failing query looks like no input.
    static LASTINPUTINFO info = {8, 0};
    static bool failureLogged = false;

    if (!GetLastInputInfo(&info) && !failureLogged) {
        failureLogged = true;
        qWarning("LastInput: the system can't tell of input; nobody will seem active");
    }
    return info.dwTime;
}

bool removeInputHook()
{
    return UnhookWindowsHookEx(nullptr) != FALSE;
}

} // namespace platform
