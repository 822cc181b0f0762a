// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>

/// What the file holds, each line ending as on Linux; "no file" where there is none.
inline QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly | QIODevice::Text) ? file.readAll()
                                                            : QByteArray("no file");
}

/// Writes a file that was changed so many seconds ago; its folder is made where there is none. A
/// failure is a warning, which fails the test.
inline void writeFile(const QString& path, const QByteArray& content, int age = 0)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.flush()
        || (age != 0
            && !file.setFileTime(QDateTime::currentDateTime().addSecs(-age),
                                 QFileDevice::FileModificationTime)))
        qWarning() << "Can't be written:" << file.fileName() << file.errorString();
}
