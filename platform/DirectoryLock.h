// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace platform {

/// Takes a directory for this process, to its end. False only when another one has taken it: true
/// also where it can't be taken, or where the system's names for locks need no such help.
bool takeDirectory(const QString& path);

} // namespace platform
