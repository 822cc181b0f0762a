// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// What a notice tells of. The numbers are settled.
enum NotificationType {
    PlainNotification = 0,
    TeamAdded = 1,
    TeamRemoved = 2,
    TaskAdded = 3,
    TaskRemoved = 4,
    NewComment = 5,
    UpdateAvailable = 6,
    DeadlineChanged = 7,
    TaskBlocked = 8,
    TaskUnblocked = 9,
    BlockingTaskAdded = 10,
};

/// What there is to tell, before it has a window.
struct Notice {
    QString message; ///< for most types a title
    int type = PlainNotification; ///< a NotificationType
    QString taskId; ///< where a click leads; empty: nowhere
};

/// The text of a notice; a type that is not listed above counts as plain, which is the message
/// as it is.
QString notificationText(const QString& message, int type);

/// Whether a notice of this type closes by itself.
bool closesByItself(int type);

/// Whether a click on a notice of this type leads to the page of its task.
bool leadsToTask(int type);
