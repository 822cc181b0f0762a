// SPDX-License-Identifier: GPL-3.0-or-later
#include "session/SessionOwner.h"

#include "session/Session.h"

#include <QDebug>
#include <QFile>
#include <QSettings>

SessionOwner::SessionOwner(QObject* parent)
    : QObject(parent)
{
    registerRecords();
    enterDataDirectory();
    m_session = std::make_unique<Session>(this);
    m_session->loadLastSession();
    m_loginSession = std::make_unique<Session>(this);
    removeOldData();
}

SessionOwner::~SessionOwner()
{
    closeSessions();
}

void SessionOwner::closeSessions()
{
    if (!m_session)
        return;
    if (!m_noSave)
        m_session->save();
    m_session.reset();
    m_loginSession.reset();
    qDebug() << "Exit TessaPort Team Monitor OK";
}

void SessionOwner::removeOldData()
{
    QDir directory = dataDir();
    const QStringList reports =
        directory.entryList({QStringLiteral("json*")}, QDir::Files, QDir::Unsorted);
    for (const QString& name : reports)
        directory.remove(name);
    for (const char* name : {".tessaport.db", "comments.data", "session.json"})
        directory.remove(QLatin1String(name));

    const QString login = m_session->login();
    if (!login.isEmpty()) {
        for (const char* name : {"/session.json", "/tasks.json", "/teams.json"})
            directory.remove(login + QLatin1String(name));
        const QList<Team> teams = m_session->teams();
        for (const Team& team : teams) {
            // An id with a separator in it never was a directory's name, and might lead elsewhere.
            if (team.id.isEmpty() || team.id.contains(QLatin1Char('/'))
                || team.id.contains(QLatin1Char('\\')))
                continue;
            removeDirectory(directory.filePath(login + QStringLiteral("/team_") + team.id));
        }
    }

    QSettings().clear();
}
