// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "session/Records.h"

#include <QVector>

class TaskLists;

/// One difference between what is known and what the service sends now.
struct TaskChange {
    enum Kind {
        BecameBlocking,
        StoppedBlocking,
        NewComment,
        BlockingAdded,
        Added,
        Removed,
        DeadlineChanged,
    };

    Kind kind;
    Task before; ///< a default one for an added task
    Task after; ///< a default one for a removed task
};

struct TeamChange {
    enum Kind {
        Added,
        Removed,
    };

    Kind kind;
    Team team;
};

/// What a team's new list changes, in the order in which it is to be told: first what is new task
/// by task, then the removed tasks, then the moved deadlines. A task that any other team has
/// is not new. The row of unassigned time takes no part, except that its deadline is compared.
QVector<TaskChange> compareTasks(const TaskLists& known, const QString& teamId,
                                 const QList<Task>& newTasks);

/// The added teams, then the removed ones.
QVector<TeamChange> compareTeams(const QList<Team>& oldTeams, const QList<Team>& newTeams);
