// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Display.h"

namespace {

bool isWaylandSession()
{
    return !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")
        || qgetenv("XDG_SESSION_TYPE") == "wayland";
}

} // namespace

bool platform::seesWholeDesktop()
{
    return !isWaylandSession();
}

// As an X11 program it sees some of such a session, by Wayland nothing.
QByteArray platform::windowsPlugin()
{
    const bool isUsersChoice = qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
    return isWaylandSession() && !isUsersChoice ? QByteArrayLiteral("xcb") : QByteArray();
}

QByteArray platform::displaylessPlugin()
{
    return QByteArrayLiteral("minimal");
}
