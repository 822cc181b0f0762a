// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceAddress.h"

#include <QDesktopServices>
#include <QUrl>

QString ServiceAddress::host()
{
    return QUrl(baseUrl()).toString(QUrl::RemoveScheme).mid(int(qstrlen("//")));
}

QString ServiceAddress::url(const QString& path)
{
    return baseUrl() + path;
}

void ServiceAddress::openUrl(const QString& url)
{
    QDesktopServices::openUrl(QUrl(url));
}

void ServiceAddress::openTaskPage(const QString& taskId)
{
    openUrl(url(QStringLiteral("/task?id=") + taskId));
}

void ServiceAddress::openMonitorPage()
{
    openUrl(url(QStringLiteral("/monitor/")));
}
