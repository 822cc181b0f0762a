// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace platform {

/// Whether the desktop tells its programs how large to draw. Where it does not (an X server that
/// nobody has told the resolution) Qt goes by the millimetres of the monitor, which are rounded or
/// made up. Asked before there is an application object; false without a display.
bool desktopTellsScale();

} // namespace platform
