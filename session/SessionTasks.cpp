// SPDX-License-Identifier: GPL-3.0-or-later
#include "session/Session.h"

#include "notifications/NotificationManager.h"
#include "notifications/NotificationType.h"
#include "session/TaskChanges.h"

#include <QDebug>
#include <QFileInfo>

#include <algorithm>

namespace {

void showNotice(const QString& message, NotificationType type, const QString& taskId = QString())
{
    NotificationManager::instance()->show(message, type, taskId);
}

} // namespace

Team Session::team(const QString& id) const
{
    const auto found = std::find_if(m_teams.cbegin(), m_teams.cend(),
                                    [&id](const Team& team) { return team.id == id; });
    return found == m_teams.cend() ? Team() : *found;
}

QList<Task> Session::tasks(const QString& teamId) const
{
    return m_tasks.tasks(teamId);
}

Task Session::task(const QString& teamId, const QString& taskId) const
{
    if (teamId.isEmpty() || taskId.isEmpty())
        return Task();
    const Task* found = m_tasks.find(teamId, taskId);
    return found ? *found : Task();
}

QList<Task> Session::allTasks() const
{
    return m_tasks.allTasks();
}

QList<Task> Session::blockingTasks(const QString& teamId) const
{
    QList<Task> blocking;
    const QList<Task> tasks = m_tasks.tasks(teamId);
    std::copy_if(tasks.cbegin(), tasks.cend(), std::back_inserter(blocking),
                 [](const Task& task) { return task.isBlocking(); });
    return blocking;
}

void Session::setTasks(const QList<Task>& newTasks, const QString& teamId)
{
    const QString tasksFile = userPath(QStringLiteral("tasks.ini"));
    if (QFileInfo::exists(tasksFile)) {
        const QVector<TaskChange> changes = compareTasks(m_tasks, teamId, newTasks);
        for (const TaskChange& change : changes)
            tell(teamId, change);
    }

    const QList<Task> oldTasks = m_tasks.tasks(teamId);
    const bool isSame = m_tasks.hasTeam(teamId) && oldTasks.size() == newTasks.size()
        && std::equal(oldTasks.cbegin(), oldTasks.cend(), newTasks.cbegin(),
                      [](const Task& a, const Task& b) { return a.hasSameContent(b); });
    if (!isSame) {
        m_tasks.setTasks(teamId, newTasks);
        m_unsavedTasks.insert(teamId);
    }
    if (m_tasks.teamCount() == m_teams.size() && !QFileInfo::exists(tasksFile))
        save();
    emit tasksUpdated(teamId);
}

void Session::tell(const QString& teamId, const TaskChange& change)
{
    const Task& before = change.before;
    const Task& after = change.after;
    switch (change.kind) {
    case TaskChange::BecameBlocking:
        showNotice(after.title, TaskBlocked, after.id);
        break;
    case TaskChange::StoppedBlocking:
        showNotice(after.title, TaskUnblocked, after.id);
        break;
    case TaskChange::NewComment:
        showNotice(after.title, NewComment, after.id);
        break;
    case TaskChange::BlockingAdded:
        qDebug() << "Task blocked added " << after.title << after.id;
        showNotice(after.title, BlockingTaskAdded, after.id);
        break;
    case TaskChange::Added:
        qDebug() << "Task added " << after.title << after.id;
        showNotice(after.title, TaskAdded, after.id);
        break;
    case TaskChange::Removed:
        removeTask(before);
        showNotice(before.title, TaskRemoved);
        emit taskClosed(before.id);
        break;
    case TaskChange::DeadlineChanged:
        copyDeadlineToOtherTeams(teamId, after);
        showNotice(before.title, DeadlineChanged);
        if (before.id == m_taskID)
            emit overdueTimeChanged();
        break;
    }
}

void Session::setTeams(const QList<Team>& newTeams)
{
    if (QFileInfo::exists(userPath(QStringLiteral("teams.ini")))) {
        const QVector<TeamChange> changes = compareTeams(m_teams, newTeams);
        for (const TeamChange& change : changes)
            showNotice(change.team.name,
                       change.kind == TeamChange::Added ? TeamAdded : TeamRemoved);
    }
    m_teams = newTeams;
    emit teamsUpdated();
}

void Session::removeTask(const Task& task)
{
    const QStringList teamIds = m_tasks.remove(task);
    for (const QString& id : teamIds)
        m_unsavedTasks.insert(id);
}

void Session::copyDeadlineToOtherTeams(const QString& teamId, const Task& task)
{
    const QStringList teamIds = m_tasks.copyDeadline(teamId, task);
    for (const QString& id : teamIds)
        m_unsavedTasks.insert(id);
}

void Session::setTaskInfo(const QString& id, const TaskInfo& info)
{
    m_taskInfos.insert(id, info);
    m_unsavedTaskInfos.insert(id);
}

TaskInfo Session::taskInfo(const QString& id)
{
    const auto known = m_taskInfos.constFind(id);
    if (known != m_taskInfos.constEnd())
        return *known;
    m_unsavedTaskInfos.insert(id);
    return *m_taskInfos.insert(id, TaskInfo());
}
