// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QList>
#include <QMetaType>
#include <QString>
#include <QUrl>

class QDataStream;

// What the service tells about work, as plain values. Ids, sizes and counts are text, as the
// service sends them; a missing value is an empty text or an invalid date. A default record also
// stands for a look-up that found nothing.

/// One task in a team's list. Two tasks are equal when their ids are.
struct Task {
    QString id;
    QString title;
    QDateTime deadline;
    QString block;
    QDateTime lastComment;
    int importance = 0; ///< above 0: urgent

    /// Whether this task rules out work on any other task of its team.
    bool isBlocking() const;
    /// Whether this is the row for time that is booked on no real task; see unassignedTask().
    bool isUnassigned() const;
    bool operator==(const Task& other) const { return id == other.id; }
    /// Whether all fields are the same, and not just the id.
    bool hasSameContent(const Task& other) const;
};

/// The id of the row that ends every team's list and that the service never sends.
extern const QLatin1String unassignedTaskId;

/// The one team whose deadlines are neither compared nor asked to be moved, and whose task
/// details are not fetched ahead.
extern const QLatin1String teamWithoutDeadlines;

/// The row that ends every team's list.
Task unassignedTask();

struct Team {
    QString id;
    QString name;
};

/// A file attached to a task; `size` is its size in bytes, as text.
struct Attachment {
    QString id;
    QString filename;
    QString filenameOrig;
    QString size;
};

/// A phrase that an assignment asks for, with the counts of exact and of inexact uses.
struct Keyword {
    QString id;
    QString keyword;
    QString count;
    QString count2;
};

/// A writing assignment inside a task.
struct TextTask {
    QString id;
    QString text;
    QString title;
    QString minCount;
    QUrl page;
    QString task;
    QList<Keyword> keywords;
};

/// The full details of a task. An empty id means that no details are cached.
struct TaskInfo {
    QString id;
    QString title;
    QDateTime deadline;
    QString text;
    QString executorName;
    QString creatorName;
    QString auditorName;
    QList<Attachment> files;
    QList<TextTask> texts;
};

// The streams are the fields in the order above, with no version, tag or length of their own:
// the ini files of every earlier version hold them like this. So a record that gains a field can't
// read what was stored without it: such a value is met as a damaged one, left out and logged at the
// first start, and comes anew from the service. Where that is not good enough, the longer record
// needs a type name of its own, which the ini file does hold.
QDataStream& operator<<(QDataStream& stream, const Task& task);
QDataStream& operator>>(QDataStream& stream, Task& task);
QDataStream& operator<<(QDataStream& stream, const Attachment& attachment);
QDataStream& operator>>(QDataStream& stream, Attachment& attachment);
QDataStream& operator<<(QDataStream& stream, const Keyword& keyword);
QDataStream& operator>>(QDataStream& stream, Keyword& keyword);
QDataStream& operator<<(QDataStream& stream, const TextTask& textTask);
QDataStream& operator>>(QDataStream& stream, TextTask& textTask);
QDataStream& operator<<(QDataStream& stream, const TaskInfo& taskInfo);
QDataStream& operator>>(QDataStream& stream, TaskInfo& taskInfo);

// Lists are Qt's own: a 32-bit count, then the elements. These readers take the place of Qt's;
// they survive a count that the stream can't hold.
QDataStream& operator>>(QDataStream& stream, QList<Task>& tasks);
QDataStream& operator>>(QDataStream& stream, QList<Attachment>& attachments);
QDataStream& operator>>(QDataStream& stream, QList<Keyword>& keywords);
QDataStream& operator>>(QDataStream& stream, QList<TextTask>& textTasks);

/// Makes the records known to the meta-type system by name, with their streams. Has to run before
/// any ini file that holds records is read.
void registerRecords();

Q_DECLARE_METATYPE(Task)
Q_DECLARE_METATYPE(Attachment)
Q_DECLARE_METATYPE(Keyword)
Q_DECLARE_METATYPE(TextTask)
Q_DECLARE_METATYPE(TaskInfo)
