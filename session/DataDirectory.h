// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDir>
#include <QFileInfo>
#include <QString>
#include <QStringList>

/// The program's own directory, `.tessaport` under the user's home, where all of its files are.
class DataDirectory {
public:
    /// The directory, once enterDataDirectory() has run; before, the current directory.
    QDir dataDir() const { return m_dataDir; }

    /// Removes a directory with all that is in it. True when it is gone, also when it never was
    /// there; false at the first entry that can't be removed, with the rest left in place.
    /// A symbolic link is removed, never followed.
    bool removeDirectory(const QString& path) const;

protected:
    ~DataDirectory() = default;

    /// Makes the directory, readable by its user alone since the password stands in it in clear,
    /// and enters it. A failure is silent.
    void enterDataDirectory();

private:
    QDir m_dataDir{QString()};
};

/// The files of a directory by these patterns that nobody can be at any more: a younger one than a
/// minute may be another process's, which is at it right now.
QFileInfoList leftovers(const QString& directory, const QStringList& patterns);
