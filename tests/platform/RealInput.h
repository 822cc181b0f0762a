// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QKeySequence>

/// Input as a user's hands make it: it goes through the system, not straight to a window.
namespace RealInput {

/// Moves the pointer by some pixels, in one step.
void movePointer();

/// Presses and releases a letter or a lock together with modifiers.
void pressKeys(const QKeySequence& combination);

} // namespace RealInput
