// SPDX-License-Identifier: GPL-3.0-or-later
#include "session/TaskLists.h"

#include <QSet>

QList<Task> TaskLists::tasks(const QString& teamId) const
{
    return m_teams.value(teamId).tasks;
}

QList<Task> TaskLists::allTasks() const
{
    QList<Task> result;
    QSet<QString> ids;
    for (const TeamTasks& team : m_teams) {
        for (const Task& task : team.tasks) {
            if (ids.contains(task.id))
                continue;
            ids.insert(task.id);
            result.append(task);
        }
    }
    return result;
}

const Task* TaskLists::find(const QString& teamId, const QString& taskId) const
{
    const auto team = m_teams.constFind(teamId);
    return team == m_teams.constEnd() ? nullptr : find(*team, taskId);
}

const Task* TaskLists::findFirst(const QString& taskId) const
{
    for (const TeamTasks& team : m_teams) {
        if (const Task* task = find(team, taskId))
            return task;
    }
    return nullptr;
}

void TaskLists::setTasks(const QString& teamId, const QList<Task>& tasks)
{
    m_teams[teamId] = {tasks, {}};
}

// By a search, since one index after the other would have to be made anew for many removed tasks.
QStringList TaskLists::remove(const Task& task)
{
    QStringList changedTeams;
    for (auto team = m_teams.begin(); team != m_teams.end(); ++team) {
        if (team->tasks.removeAll(task) == 0)
            continue;
        team->positions.clear();
        changedTeams.append(team.key());
    }
    return changedTeams;
}

QStringList TaskLists::copyDeadline(const QString& teamId, const Task& task)
{
    QStringList changedTeams;
    for (auto team = m_teams.begin(); team != m_teams.end(); ++team) {
        if (team.key() == teamId)
            continue;
        bool changed = false;
        const QList<int> places = positions(*team).values(task.id);
        for (const int position : places) {
            Task& other = team->tasks[position];
            changed = changed || other.deadline != task.deadline;
            other.deadline = task.deadline;
        }
        if (changed)
            changedTeams.append(team.key());
    }
    return changedTeams;
}

void TaskLists::clear()
{
    m_teams.clear();
}

const TaskLists::Positions& TaskLists::positions(const TeamTasks& team)
{
    if (team.positions.isEmpty()) {
        team.positions.reserve(team.tasks.size());
        // The values of a key come out last in, first out.
        for (int i = team.tasks.size() - 1; i >= 0; --i)
            team.positions.insert(team.tasks.at(i).id, i);
    }
    return team.positions;
}

const Task* TaskLists::find(const TeamTasks& team, const QString& taskId)
{
    const Positions& places = positions(team);
    const auto place = places.constFind(taskId);
    return place == places.constEnd() ? nullptr : &team.tasks.at(*place);
}
