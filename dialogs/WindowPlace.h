// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QWidget;

/// Makes a frameless window know its place after each show. A window manager that puts it into a
/// frame of its own can make Qt believe that it went to the corner of the screen, where it is not:
/// then a drag would start from there, and lists and tool tips would open there.
void keepPlaceWhenShown(QWidget* window);
