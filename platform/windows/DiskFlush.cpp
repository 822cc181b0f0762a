// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/DiskFlush.h"

#include <QFileDevice>

#include <io.h>
#include <windows.h>

namespace platform {

bool flushToDisk(const QFileDevice& file)
{
    const int descriptor = file.handle();
    if (descriptor == -1)
        return false;
    return FlushFileBuffers(reinterpret_cast<HANDLE>(_get_osfhandle(descriptor))) != FALSE;
}

// The file system's own journal keeps the names.
void flushDirectoryToDisk(const QString&) { }

} // namespace platform
