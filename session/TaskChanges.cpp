// SPDX-License-Identifier: GPL-3.0-or-later
#include "session/TaskChanges.h"

#include "session/TaskLists.h"

#include <QMultiHash>
#include <QSet>

namespace {

void compareWithKnown(const TaskLists& known, const Task& task, QVector<TaskChange>& changes)
{
    const Task* before = known.findFirst(task.id);
    if (!before) {
        changes.append(
            {task.isBlocking() ? TaskChange::BlockingAdded : TaskChange::Added, Task(), task});
        return;
    }
    if (!before->isBlocking() && task.isBlocking())
        changes.append({TaskChange::BecameBlocking, *before, task});
    if (before->isBlocking() && !task.isBlocking())
        changes.append({TaskChange::StoppedBlocking, *before, task});
    if (before->lastComment < task.lastComment)
        changes.append({TaskChange::NewComment, *before, task});
}

QSet<QString> idsOf(const QList<Team>& teams)
{
    QSet<QString> ids;
    for (const Team& team : teams)
        ids.insert(team.id);
    return ids;
}

} // namespace

QVector<TaskChange> compareTasks(const TaskLists& known, const QString& teamId,
                                 const QList<Task>& newTasks)
{
    QVector<TaskChange> changes;
    for (const Task& task : newTasks) {
        if (!task.isUnassigned())
            compareWithKnown(known, task, changes);
    }

    // A multi-hash gives the values of a key last in, first out; filled from the end, it gives
    // them in the order of the list.
    QMultiHash<QString, int> newPositions;
    newPositions.reserve(newTasks.size());
    for (int i = newTasks.size() - 1; i >= 0; --i)
        newPositions.insert(newTasks.at(i).id, i);

    const QList<Task> oldTasks = known.tasks(teamId);
    for (const Task& task : oldTasks) {
        if (!task.isUnassigned() && !newPositions.contains(task.id))
            changes.append({TaskChange::Removed, task, Task()});
    }

    if (teamId == teamWithoutDeadlines)
        return changes;
    for (const Task& task : oldTasks) {
        for (auto position = newPositions.constFind(task.id);
             position != newPositions.constEnd() && position.key() == task.id; ++position) {
            const Task& now = newTasks.at(*position);
            if (task.deadline != now.deadline)
                changes.append({TaskChange::DeadlineChanged, task, now});
        }
    }
    return changes;
}

QVector<TeamChange> compareTeams(const QList<Team>& oldTeams, const QList<Team>& newTeams)
{
    const QSet<QString> oldIds = idsOf(oldTeams);
    const QSet<QString> newIds = idsOf(newTeams);
    QVector<TeamChange> changes;
    for (const Team& team : newTeams) {
        if (!oldIds.contains(team.id))
            changes.append({TeamChange::Added, team});
    }
    for (const Team& team : oldTeams) {
        if (!newIds.contains(team.id))
            changes.append({TeamChange::Removed, team});
    }
    return changes;
}
