// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/WaitingReports.h"

#include <QDebug>
#include <QDirIterator>
#include <QFile>

#include <algorithm>
#include <utility>
#include <vector>

QString WaitingReports::next(const QString& directory)
{
    if (directory != m_directory)
        read(directory);
    if (m_names.isEmpty()) {
        startAnew();
        return {};
    }
    return directory + QLatin1Char('/') + m_names.takeLast();
}

void WaitingReports::startAnew()
{
    m_directory.clear();
}

void WaitingReports::remove(const QString& path)
{
    if (QFile::remove(path) || !QFile::exists(path)) {
        m_confirmed.remove(path);
        return;
    }
    if (!m_confirmed.contains(path))
        qWarning() << "Error! A confirmed file can't be removed: " << path;
    m_confirmed.insert(path);
}

void WaitingReports::retryRemovals()
{
    const QSet<QString> paths = m_confirmed;
    for (const QString& path : paths)
        remove(path);
}

void WaitingReports::read(const QString& directory)
{
    std::vector<std::pair<QString, QString>> names;
    QDirIterator entries(directory, {QStringLiteral("json*")}, QDir::Files);
    while (entries.hasNext()) {
        if (!m_confirmed.contains(entries.next()))
            names.emplace_back(entries.fileName().toLower(), entries.fileName());
    }
    std::sort(names.rbegin(), names.rend());
    m_directory = directory;
    m_names.clear();
    for (const auto& name : names)
        m_names.append(name.second);
}
