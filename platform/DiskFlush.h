// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class QFileDevice;

namespace platform {

/// Has the system put an open file's content on the disk itself, so that it outlives a power cut.
/// What the file buffers has to be flushed before. False when the system reports a failure.
bool flushToDisk(const QFileDevice& file);

/// The same for the names in a directory; a failure is silent, and on a system that has no such
/// thing nothing happens.
void flushDirectoryToDisk(const QString& directory);

} // namespace platform
