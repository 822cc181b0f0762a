// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Display.h"

bool platform::seesWholeDesktop()
{
    return true;
}

QByteArray platform::windowsPlugin()
{
    return {};
}

QByteArray platform::displaylessPlugin()
{
    return {};
}

QByteArray platform::themePlugin()
{
    return {};
}
