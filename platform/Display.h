// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

namespace platform {

/// Whether the system tells of input wherever on the desktop it goes, and shows all windows in a
/// picture. A Wayland session does both of X11 windows only.
bool seesWholeDesktop();

/// The plugin that Qt has to show windows with, as its option "-platform" names it. Empty where the
/// choice is Qt's or the user's.
QByteArray windowsPlugin();

/// The plugin with which Qt needs no display, and shows no window. Empty where there always is a
/// display.
QByteArray displaylessPlugin();

/// What Qt is to take for the theme that the environment asks for, as its option "-platformtheme"
/// names it. Empty where it does not ask.
QByteArray themePlugin();

} // namespace platform
