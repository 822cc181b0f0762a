// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>
#include <QWidget>

/// Every text of the program's own in the window that does not fit its place.
QStringList lacks(QWidget* window);

/// Scrolls to a part of the window, where that scrolls; the room that there is for it then.
QSize bringIntoView(QWidget* part);

/// The labels and buttons of the window that it neither shows nor scrolls to.
QStringList outOfReach(QWidget* window);

/// The parts of the window that stand on one another.
QStringList overlaps(const QWidget* window);
