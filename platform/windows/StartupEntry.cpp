// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/StartupEntry.h"

#include <QSettings>

namespace platform {

namespace {

QSettings runKey()
{
    return QSettings(
        QStringLiteral("HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Run"),
        QSettings::NativeFormat);
}

} // namespace

QString startupEntry(const QString& name)
{
    return runKey().value(name).toString();
}

void setStartupEntry(const QString& name, const QString& programPath)
{
    runKey().setValue(name, programPath);
}

void removeStartupEntry(const QString& name)
{
    runKey().remove(name);
}

} // namespace platform
