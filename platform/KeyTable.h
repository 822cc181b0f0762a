// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Qt>

namespace platform {

/// What the systems call a key: a Windows virtual-key code and an X keysym, both 0 for a key that
/// can't be a hot key.
struct KeyCodes {
    quint32 virtualKey = 0;
    quint32 keysym = 0;
};

/// The one table of the keys that can be part of a system-wide hot key. Asterisk, plus, comma,
/// minus and slash are those of the numeric keypad.
KeyCodes keyCodes(Qt::Key key);

} // namespace platform
