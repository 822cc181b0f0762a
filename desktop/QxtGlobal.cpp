// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/QxtGlobal.h"

const char* qxtVersion()
{
    return "0.7.0";
}
