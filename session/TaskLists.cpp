// SPDX-License-Identifier: GPL-3.0-or-later
#include "session/TaskLists.h"

#include <QSet>

#include <algorithm>

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
    if (team == m_teams.constEnd())
        return nullptr;
    const int position = indexOf(*team, taskId);
    return position < 0 ? nullptr : &team->tasks.at(position);
}

const Task* TaskLists::findFirst(const QString& taskId) const
{
    const auto teamIds = m_teamsByTask.constFind(taskId);
    return teamIds == m_teamsByTask.constEnd() ? nullptr : find(teamIds->first(), taskId);
}

void TaskLists::setTasks(const QString& teamId, const QList<Task>& tasks)
{
    TeamTasks& team = m_teams[teamId];
    const TeamTasks before = team;
    team = {tasks, {}, 0};

    const QHash<QString, int>& oldIds = positions(before);
    const QHash<QString, int>& newIds = positions(team);
    for (auto id = oldIds.keyBegin(); id != oldIds.keyEnd(); ++id) {
        if (newIds.contains(*id))
            continue;
        const auto teamIds = m_teamsByTask.find(*id);
        teamIds->removeOne(teamId);
        if (teamIds->isEmpty())
            m_teamsByTask.erase(teamIds);
    }
    for (auto id = newIds.keyBegin(); id != newIds.keyEnd(); ++id) {
        if (oldIds.contains(*id))
            continue;
        QStringList& teamIds = m_teamsByTask[*id];
        teamIds.insert(std::lower_bound(teamIds.begin(), teamIds.end(), teamId), teamId);
    }
}

QStringList TaskLists::remove(const Task& task)
{
    const QStringList teamIds = m_teamsByTask.take(task.id);
    for (const QString& teamId : teamIds) {
        TeamTasks& team = m_teams[teamId];
        if (hasRepeatedIds(team)) {
            team.tasks.removeAll(task);
            team.positions.clear();
            continue;
        }
        team.tasks.removeAt(indexOf(team, task.id));
        team.positions.remove(task.id);
        ++team.removed;
    }
    return teamIds;
}

QStringList TaskLists::copyDeadline(const QString& teamId, const Task& task)
{
    QStringList changedTeams;
    const QStringList teamIds = m_teamsByTask.value(task.id);
    for (const QString& otherTeamId : teamIds) {
        if (otherTeamId == teamId)
            continue;
        bool changed = false;
        TeamTasks& team = m_teams[otherTeamId];
        const int first = indexOf(team, task.id);
        const int end = hasRepeatedIds(team) ? team.tasks.size() : first + 1;
        for (int i = first; i < end; ++i) {
            Task& other = team.tasks[i];
            if (other.id != task.id || other.deadline == task.deadline)
                continue;
            other.deadline = task.deadline;
            changed = true;
        }
        if (changed)
            changedTeams.append(otherTeamId);
    }
    return changedTeams;
}

void TaskLists::clear()
{
    m_teams.clear();
    m_teamsByTask.clear();
}

const QHash<QString, int>& TaskLists::positions(const TeamTasks& team)
{
    if (team.positions.isEmpty()) {
        team.removed = 0;
        team.positions.reserve(team.tasks.size());
        for (int i = team.tasks.size() - 1; i >= 0; --i)
            team.positions.insert(team.tasks.at(i).id, i);
    }
    return team.positions;
}

int TaskLists::indexOf(const TeamTasks& team, const QString& taskId)
{
    const int then = positions(team).value(taskId, -1);
    const int last = std::min(then, team.tasks.size() - 1);
    for (int i = std::max(then - team.removed, 0); i <= last; ++i) {
        if (team.tasks.at(i).id == taskId)
            return i;
    }
    return -1;
}

bool TaskLists::hasRepeatedIds(const TeamTasks& team)
{
    return positions(team).size() != team.tasks.size();
}
