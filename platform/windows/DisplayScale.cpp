// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/DisplayScale.h"

bool platform::desktopTellsScale()
{
    return true;
}
