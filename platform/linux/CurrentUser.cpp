// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/CurrentUser.h"

#include <unistd.h>

QString platform::userMark()
{
    return QString::number(getuid());
}
