// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QRect>

#include <functional>

class QMargins;
class QObject;
class QSize;
class QWidget;

/// Where windows may stand on the first monitor, which is where they open. Qt would go by where a
/// window is before it is placed, which may be on any other. Null when there is no monitor.
QRect availableArea();

/// Makes a frameless window know its place after each show. A window manager that puts it into a
/// frame of its own can make Qt believe that it went to the corner of the screen, where it is not:
/// then a drag would start from there, and lists and tool tips would open there.
///
/// Besides, the window keeps its size, and never stands outside the area that is available.
void keepPlaceWhenShown(QWidget* window);

/// Calls the function whenever the available area has changed and all of Qt knows of it, as long as
/// the context lives.
void whenAreaChanges(QObject* context, const std::function<void()>& function);

/// Has the window placed, now and whenever the available area changes.
void placeInArea(QWidget* window, const std::function<void()>& place);

/// Makes a window, whose children are placed for the size that it has, smaller where the area has
/// no room for it, now and whenever the area changes: then its contents scroll. `edge` is what
/// stays in place around them, the head with its children at the top. `resize` gives the window a
/// size; where there is room, the window and its children are as if nothing had been done.
void makeScrollable(QWidget* window, const QMargins& edge,
                    const std::function<void(const QSize&)>& resize);
