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

// What a theme tells of the desktop's settings is made up by some of them (qt5ct) when a program
// does not want its fonts and colours, and Qt crashes over it. One of this name there is not.
QByteArray platform::themePlugin()
{
    return qEnvironmentVariableIsSet("QT_QPA_PLATFORMTHEME") ? QByteArrayLiteral("none")
                                                             : QByteArray();
}
