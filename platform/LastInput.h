// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

namespace platform {

/// The moment of the last keyboard or mouse input of this desktop session, in milliseconds on a
/// clock of the system's own that only ever moves on (and wraps after 49.7 days). It stands still
/// while nobody touches anything. When the system can't tell, the value last known is returned
/// (0 if there never was one); of an X server that can't, the log says so once. Ask only while
/// there is a QGuiApplication.
quint32 lastInputTick();

/// A leftover of an earlier, hook-based way of watching: takes off a hook that was never set.
/// Returns what the system says to that; false where there are no hooks.
bool removeInputHook();

} // namespace platform
