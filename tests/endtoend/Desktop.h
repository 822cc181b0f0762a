// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QRect>
#include <QVector>

/// A window that the window manager shows.
struct DesktopWindow {
    QString id;
    qint64 pid = 0;
    QString title;
    QRect geometry; ///< in the desktop's coordinates
};

/// The desktop as a person has it: looked at from outside, used by the real pointer and real keys.
namespace Desktop {

QVector<DesktopWindow> windows();
/// The id of the one that keys go to; empty when there is none.
QString activeWindow();
QImage picture(const QRect& part);
QRect wholeArea();

void movePointer(const QPoint& place);
/// Moves there and presses the left button.
void click(const QPoint& place);
void type(const char* text);
/// Names as xdotool has them, separated by blanks: "Tab ctrl+a".
void press(const char* keys);

} // namespace Desktop
