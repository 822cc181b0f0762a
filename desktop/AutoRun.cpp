// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/AutoRun.h"

#include "platform/StartupEntry.h"

#include <QCoreApplication>
#include <QDebug>
#include <QVariant>

AutoRun::AutoRun(QObject* parent)
    : QObject(parent)
{
}

bool AutoRun::enable(bool enable)
{
    qDebug("AutoRun enable");
    const QString name = QCoreApplication::applicationName();
    if (enable)
        platform::setStartupEntry(name, QCoreApplication::applicationFilePath());
    else
        platform::removeStartupEntry(name);
    return enable;
}

bool AutoRun::isEnabled()
{
    qDebug("AutoRun isEnabled");
    // Any path counts as true; so the words that a variant takes for false do not.
    return QVariant(platform::startupEntry(QCoreApplication::applicationName())).toBool();
}
