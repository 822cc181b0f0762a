// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

namespace platform {

/// What became of a file.
struct FileOutcome {
    QString failure; ///< the system's own words; empty when all went well
    bool isNameTaken = false; ///< it failed because there is a file of this name

    bool succeeded() const { return failure.isEmpty(); }
};

/// Writes a file that only its user can read, in the place of one that is there, and has the system
/// put it on the disk itself, so that it outlives a power cut. After a failure there is no such
/// file. (A disk that knows no such order does not make it fail.)
FileOutcome writeToDisk(const QString& path, const QByteArray& content);

/// Gives a file another name in the same directory. Never replaces a file, and never copies: the
/// new name has the whole content from the first moment on.
FileOutcome renameToFreeName(const QString& path, const QString& newPath);

/// Has the system put the names in a directory on the disk; a failure is silent, and on a system
/// that has no such thing nothing happens.
void flushDirectoryToDisk(const QString& directory);

} // namespace platform
