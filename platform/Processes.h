// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace platform {

/// Whether a process whose executable has exactly this file name (case counts, no path) is
/// running. False also when the process list can't be read.
bool isProcessRunning(const QString& fileName);

/// Starts a program, with elevated rights where the system knows such a thing, and leaves it to
/// itself. A file without a path is looked for as the system does, the working directory
/// included. Returns a number above 31 for success, 5 when the user or the system refused, 2 when
/// there is no such file, and another number up to 31 for any other failure.
int startProgram(const QString& file, const QString& arguments);

} // namespace platform
