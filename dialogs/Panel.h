// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QPoint>

class QEvent;
class QPainter;
class QWidget;

// What all frameless windows do: paint a picture as their panel, follow a drag, open in the middle
// of the screen.

/// The picture in the resolution of the sharpest screen; null when there is none of this name.
QImage panelImage(const QString& resource);

/// The whole picture, stretched to the painter's viewport.
void paintPanel(QPainter& painter, const QImage& panel);

/// Lets the window follow a mouse event of the widget that it is dragged by: a press of any button
/// starts, a move with the left one drags. The last position is a global one, so that the moving
/// window does not feed back into the motion.
void dragWindow(QWidget* window, QPoint& lastMousePos, QEvent* event);

/// Makes the buttons of a window that can be dragged keep a move past their edge. They would leave
/// it to the window, which never saw the press and would jump.
void keepMouseWithButtons(QWidget* window);

void centreOnScreen(QWidget* window);
