// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/CurrentUser.h"

// Each session has names of its own.
QString platform::userMark()
{
    return {};
}
