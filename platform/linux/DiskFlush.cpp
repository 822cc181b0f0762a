// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/DiskFlush.h"

#include <QFile>

#include <fcntl.h>
#include <unistd.h>

bool platform::flushToDisk(const QFileDevice& file)
{
    return ::fsync(file.handle()) == 0;
}

void platform::flushDirectoryToDisk(const QString& directory)
{
    const int descriptor =
        ::open(QFile::encodeName(directory).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    ::fsync(descriptor);
    ::close(descriptor);
}
