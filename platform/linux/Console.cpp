// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Console.h"

#include <cstdio>

void platform::writeToConsole(const QString& text)
{
    std::fputs(text.toUtf8().constData(), stdout);
}
