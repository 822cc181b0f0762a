// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPoint>

class QEvent;
class QWidget;

// For frameless windows: to follow a drag, to open in the middle of the screen.

/// Lets the window follow a mouse event of the widget that it is dragged by: a press of any button
/// starts, a move with the left one drags. The last position is a global one, so that the moving
/// window does not feed back into the motion.
void dragWindow(QWidget* window, QPoint& lastMousePos, QEvent* event);

/// Makes the buttons of a window that can be dragged keep a move past their edge. They would leave
/// it to the window, which never saw the press and would jump.
void keepMouseWithButtons(QWidget* window);

void centreOnScreen(QWidget* window);
