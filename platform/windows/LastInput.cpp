// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/LastInput.h"

#include <windows.h>

namespace platform {

quint32 lastInputTick()
{
    // Kept from call to call, so that a failing query looks like no input.
    static LASTINPUTINFO info = {8, 0};
    GetLastInputInfo(&info);
    return info.dwTime;
}

bool removeInputHook()
{
    return UnhookWindowsHookEx(nullptr) != FALSE;
}

} // namespace platform
