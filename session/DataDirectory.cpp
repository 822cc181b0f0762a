// SPDX-License-Identifier: GPL-3.0-or-later
#include "session/DataDirectory.h"

#include <QDateTime>
#include <QFile>
#include <QStandardPaths>

#include <algorithm>

void DataDirectory::enterDataDirectory()
{
    const QDir home(QStandardPaths::writableLocation(QStandardPaths::HomeLocation));
    const QString name = QStringLiteral(".tessaport");
    home.mkdir(name);
    // Also when there is no such directory: the home directory itself must never pass for it,
    // since all of it may be removed.
    m_dataDir.setPath(home.filePath(name));
    if (m_dataDir.exists())
        QFile::setPermissions(m_dataDir.path(),
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

bool DataDirectory::removeDirectory(const QString& path) const
{
    const QFileInfo directory(path);
    if (directory.isSymLink())
        return QFile::remove(path);
    if (directory.isJunction())
        return QDir().rmdir(path);
    if (!directory.isDir())
        return true;

    const QFileInfoList entries = QDir(path).entryInfoList(
        QDir::NoDotAndDotDot | QDir::System | QDir::Hidden | QDir::AllDirs | QDir::Files,
        QDir::DirsFirst);
    for (const QFileInfo& entry : entries) {
        const QString entryPath = entry.absoluteFilePath();
        if (entry.isDir() ? !removeDirectory(entryPath) : !QFile::remove(entryPath))
            return false;
    }
    return QDir().rmdir(path);
}

QFileInfoList leftovers(const QString& directory, const QStringList& patterns)
{
    QFileInfoList files = QDir(directory).entryInfoList(patterns, QDir::Files, QDir::Unsorted);
    const QDateTime oldEnough = QDateTime::currentDateTime().addSecs(-60);
    const auto isYoung = [&oldEnough](const QFileInfo& file) {
        return file.lastModified() >= oldEnough;
    };
    files.erase(std::remove_if(files.begin(), files.end(), isYoung), files.end());
    return files;
}
