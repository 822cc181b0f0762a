// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QPair>

#include <optional>

namespace platform {

/// A combination as the system names it: key code first, modifier bits second.
using NativeKeys = QPair<quint32, quint32>;

/// The system's own codes for a key and its modifiers; 0 for what it has no code for. (On Windows
/// a virtual-key code and MOD_ bits, on X11 a keysym and modifier mask bits.)
quint32 nativeKeyCode(Qt::Key key);
quint32 nativeModifiers(Qt::KeyboardModifiers modifiers);

/// Asks the system to tell this program of the combination, whichever window has the focus.
/// False when somebody holds it already, this program included, and on X11 for a key that the
/// keyboard has not; what Windows says to a key that there is not is its own affair.
bool registerHotKey(NativeKeys keys);

/// Gives the combination back; false when the system refuses.
bool unregisterHotKey(NativeKeys keys);

/// The registered combination whose press this native event tells of, and nothing for any other
/// event. The arguments are those of QAbstractNativeEventFilter::nativeEventFilter.
std::optional<NativeKeys> hotKeyPress(const QByteArray& eventType, void* message);

} // namespace platform
