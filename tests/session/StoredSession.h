// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "session/Session.h"
#include "support/Files.h"

#include <QDir>

const QString user = QStringLiteral("/anna@example.com/");
const QString fileNames[] = {user + QStringLiteral("session.ini"),
                             user + QStringLiteral("teams.ini"), user + QStringLiteral("tasks.ini"),
                             user + QStringLiteral("taskInfo.ini"), QStringLiteral("/config.ini")};

inline QString dataPath(const QString& name = QString())
{
    return QDir::homePath() + QStringLiteral("/.tessaport") + name;
}

inline QByteArray fixture(const QString& name)
{
    return contentOf(QStringLiteral(TEST_SOURCE_DIR "/fixtures") + name);
}

inline QString dayOf(const QDate& date)
{
    return date.toString(Qt::ISODate);
}

const QString none = QStringLiteral("00:00:00");

/// All of a session that can be seen from outside; to ask for what it counts, it is told to show
/// it.
inline QStringList stateOf(Session& session)
{
    QStringList state{
        session.login(),
        session.password(),
        QStringLiteral("logged %1, active %2, online %3")
            .arg(session.logged())
            .arg(session.active())
            .arg(session.isOnline()),
        session.teamID() + QLatin1Char('/') + session.taskID(),
        dayOf(session.worktimeDate()),
        QStringLiteral("shown ") + session.displayWorktime().toString() + QLatin1Char(' ')
            + session.displayActivetime().toString(),
    };
    session.syncDisplayWorktime();
    state << QStringLiteral("counted ") + session.displayWorktime().toString() + QLatin1Char(' ')
            + session.todayActivetime().toString() + QStringLiteral(", 101: ")
            + session.todayActiveTime(QStringLiteral("101")).toString();
    const QList<Team> teams = session.teams();
    for (const Team& team : teams)
        state << team.id + QLatin1Char('=') + team.name;
    const QList<Task> tasks = session.allTasks();
    for (const Task& task : tasks)
        state << QStringList{task.id, task.title, dayOf(task.deadline.date()), task.block}.join(
            QLatin1Char(','));
    const TaskInfo info = session.taskInfo(QStringLiteral("101"));
    return state
        << QStringLiteral("101 by %1, texts: %2").arg(info.creatorName).arg(info.texts.size());
}

/// What is in the fixtures, with these counters today.
inline QStringList annasState(const QString& work, const QString& active)
{
    return {QStringLiteral("anna@example.com"),
            QStringLiteral("@Пароль, \"x\"; = \\n%"),
            QStringLiteral("logged 1, active 0, online 0"),
            QStringLiteral("17/101"),
            dayOf(QDate::currentDate()),
            QStringLiteral("shown %1 %2").arg(work, active),
            QStringLiteral("counted %1 %2, 101: %2").arg(work, active),
            QStringLiteral("17=Контент, новости"),
            QStringLiteral("205=@Дизайн \"А\""),
            QStringLiteral("2192="),
            QStringLiteral("9/Отдел 1%=Ключ с чертой"),
            QStringLiteral("101,Обзор «ноутбуков»,2025-05-12,"),
            QStringLiteral("102,Blocked,,1"),
            QStringLiteral("103,,2025-05-12,0"),
            QStringLiteral("0,Прочие непоставленные задачи,,"),
            QStringLiteral("101 by O'Neil, texts: 2")};
}

/// Puts files that another program wrote in the place of the test's own.
inline void writeFixtures()
{
    QDir(dataPath()).removeRecursively();
    for (const QString& name : fileNames)
        writeFile(dataPath(name), fixture(name));
}
