// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "session/Records.h"

#include <QList>
#include <QMap>
#include <QMultiHash>
#include <QStringList>

/// The task lists of all teams, in the service's order. Look-ups by id go by an index of each
/// list, so that the cost of a refresh does not grow with the square of the number of tasks.
class TaskLists {
public:
    /// In ascending order, also those whose lists are empty.
    QStringList teamIds() const { return m_teams.keys(); }
    int teamCount() const { return m_teams.size(); }
    bool hasTeam(const QString& teamId) const { return m_teams.contains(teamId); }

    /// Empty for an unknown team.
    QList<Task> tasks(const QString& teamId) const;
    /// Each task of any team once; of several with one id, the first by team id.
    QList<Task> allTasks() const;

    // The results are good until the lists change; null when there is no such task.

    /// The team's first task of this id.
    const Task* find(const QString& teamId, const QString& taskId) const;
    /// What allTasks() has for this id.
    const Task* findFirst(const QString& taskId) const;

    void setTasks(const QString& teamId, const QList<Task>& tasks);
    /// Takes the task out of all lists; the teams whose lists had it.
    QStringList remove(const Task& task);
    /// Gives the same task in all teams but this one its deadline; the teams whose lists changed.
    QStringList copyDeadline(const QString& teamId, const Task& task);
    void clear();

private:
    using Positions = QMultiHash<QString, int>;
    struct TeamTasks {
        QList<Task> tasks;
        /// Where the tasks of an id are, in ascending order; empty when it has to be made anew.
        mutable Positions positions;
    };

    static const Positions& positions(const TeamTasks& team);
    static const Task* find(const TeamTasks& team, const QString& taskId);

    QMap<QString, TeamTasks> m_teams;
};
