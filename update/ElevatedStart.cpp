// SPDX-License-Identifier: GPL-3.0-or-later
#include "update/ElevatedStart.h"

#include "platform/Processes.h"
#include "service/ServiceAddress.h"

#include <QDebug>

const QLatin1String updateProgram("TPMC-update.exe");

int runElevated(const QString& file, const QString& arguments)
{
    constexpr int lastFailure = 31;
    constexpr int refusedByUser = 5;

    const int result = platform::startProgram(file, arguments);
    if (result > lastFailure || result == refusedByUser)
        return result;
    qWarning() << "Eror runWinAppAsAdmin" << file << result;
    ServiceAddress::openMonitorPage();
    return result;
}
