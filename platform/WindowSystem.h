// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QRect>
#include <QRegion>
#include <QString>
#include <QtGui/qwindowdefs.h>

namespace platform {

/// The windows of the desktop that a user would call windows, of all programs: those the window
/// manager manages, on Windows the visible top-level ones with a title. The lowest comes first.
/// Empty when the system can't tell.
QList<WId> desktopWindows();

/// The window that has the user's attention; 0 when there is none.
WId activeDesktopWindow();

/// The text in the window's title bar; empty for a window without one, or that is gone.
QString desktopWindowTitle(WId window);

/// The window's place on the virtual desktop in the system's own pixels, its frame included.
/// A null rectangle for a window that is gone.
QRect desktopWindowGeometry(WId window);

/// Whether the system mixes translucent windows with what is behind them. Without that (X11 without
/// a compositing manager) what a window leaves transparent is black.
bool mixesTranslucentWindows();

/// Leaves of the window what lies in the region, in the system's own pixels from its corner; an
/// empty region leaves it whole. The region of a QWidget has the units of a scaled screen and would
/// miss the edge by a part of one. Without effect where the system mixes windows by itself.
void cutWindow(WId window, const QRegion& pixels);

} // namespace platform
