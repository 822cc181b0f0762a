// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/SingleInstance.h"

#include "platform/CurrentUser.h"

#include <QCoreApplication>
#include <QSharedMemory>

bool isSingleInstance()
{
    static QSharedMemory lock(QLatin1String("SingleAppLock") + QCoreApplication::applicationName()
                              + platform::userMark());
    // Asked again by the process that holds it: the lock is taken.
    if (lock.isAttached())
        return false;
    // A process that was killed leaves the segment behind; detaching as the last one removes it.
    // On Linux the segment is found by the number of a file, which goes when temporary files are
    // cleared: then only the attempt to create it brings up a file that leads there.
    const auto create = [] {
        if (lock.attach(QSharedMemory::ReadOnly))
            lock.detach();
        return lock.create(1, QSharedMemory::ReadWrite);
    };
    return create() || create();
}
