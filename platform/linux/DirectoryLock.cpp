// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/DirectoryLock.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>

bool platform::takeDirectory(const QString& path)
{
    // It stays open: the lock goes with the process, however that ends.
    const int descriptor =
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    return descriptor < 0 || ::flock(descriptor, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}
