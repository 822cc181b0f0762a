// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/SingleInstance.h"

#include <QCoreApplication>
#include <QSharedMemory>

bool isSingleInstance()
{
    static QSharedMemory lock(QLatin1String("SingleAppLock") + QCoreApplication::applicationName());
    // Asked again; on Windows another look would let go of the lock.
    if (lock.isAttached())
        return false;
    // A process that was killed leaves the segment behind; detaching as the last one removes it.
    if (lock.attach(QSharedMemory::ReadOnly))
        lock.detach();
    return lock.create(1, QSharedMemory::ReadWrite);
}
