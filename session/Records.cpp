// SPDX-License-Identifier: GPL-3.0-or-later
#include "session/Records.h"

#include <QDataStream>

const QLatin1String unassignedTaskId("0");
const QLatin1String teamWithoutDeadlines("2192");

namespace {

// Qt's own reader of a list reserves room for whatever count stands in the stream, so that a
// damaged file could ask for gigabytes. The format is the same.
template <typename Record> QDataStream& readList(QDataStream& stream, QList<Record>& list)
{
    list.clear();
    quint32 count = 0;
    stream >> count;
    for (quint32 i = 0; i < count; ++i) {
        Record record;
        stream >> record;
        if (stream.status() != QDataStream::Ok) {
            list.clear();
            break;
        }
        list.append(record);
    }
    return stream;
}

template <typename Type> void registerType(const char* name)
{
    qRegisterMetaType<Type>(name);
    qRegisterMetaTypeStreamOperators<Type>(name);
}

} // namespace

bool Task::isBlocking() const
{
    return !block.isEmpty() && block != QLatin1String("0");
}

bool Task::isUnassigned() const
{
    return id == unassignedTaskId;
}

bool Task::hasSameContent(const Task& other) const
{
    return id == other.id && title == other.title && deadline == other.deadline
        && block == other.block && lastComment == other.lastComment
        && importance == other.importance;
}

Task unassignedTask()
{
    Task task;
    task.id = unassignedTaskId;
    task.title = QStringLiteral("Прочие непоставленные задачи");
    return task;
}

QDataStream& operator<<(QDataStream& stream, const Task& task)
{
    return stream << task.id << task.title << task.deadline << task.block << task.lastComment
                  << task.importance;
}

QDataStream& operator>>(QDataStream& stream, Task& task)
{
    return stream >> task.id >> task.title >> task.deadline >> task.block >> task.lastComment
        >> task.importance;
}

QDataStream& operator<<(QDataStream& stream, const Attachment& attachment)
{
    return stream << attachment.id << attachment.filename << attachment.filenameOrig
                  << attachment.size;
}

QDataStream& operator>>(QDataStream& stream, Attachment& attachment)
{
    return stream >> attachment.id >> attachment.filename >> attachment.filenameOrig
        >> attachment.size;
}

QDataStream& operator<<(QDataStream& stream, const Keyword& keyword)
{
    return stream << keyword.id << keyword.keyword << keyword.count << keyword.count2;
}

QDataStream& operator>>(QDataStream& stream, Keyword& keyword)
{
    return stream >> keyword.id >> keyword.keyword >> keyword.count >> keyword.count2;
}

QDataStream& operator<<(QDataStream& stream, const TextTask& textTask)
{
    return stream << textTask.id << textTask.text << textTask.title << textTask.minCount
                  << textTask.page << textTask.task << textTask.keywords;
}

QDataStream& operator>>(QDataStream& stream, TextTask& textTask)
{
    return stream >> textTask.id >> textTask.text >> textTask.title >> textTask.minCount
        >> textTask.page >> textTask.task >> textTask.keywords;
}

QDataStream& operator<<(QDataStream& stream, const TaskInfo& taskInfo)
{
    return stream << taskInfo.id << taskInfo.title << taskInfo.deadline << taskInfo.text
                  << taskInfo.executorName << taskInfo.creatorName << taskInfo.auditorName
                  << taskInfo.files << taskInfo.texts;
}

QDataStream& operator>>(QDataStream& stream, TaskInfo& taskInfo)
{
    return stream >> taskInfo.id >> taskInfo.title >> taskInfo.deadline >> taskInfo.text
        >> taskInfo.executorName >> taskInfo.creatorName >> taskInfo.auditorName >> taskInfo.files
        >> taskInfo.texts;
}

QDataStream& operator>>(QDataStream& stream, QList<Task>& tasks)
{
    return readList(stream, tasks);
}

QDataStream& operator>>(QDataStream& stream, QList<Attachment>& attachments)
{
    return readList(stream, attachments);
}

QDataStream& operator>>(QDataStream& stream, QList<Keyword>& keywords)
{
    return readList(stream, keywords);
}

QDataStream& operator>>(QDataStream& stream, QList<TextTask>& textTasks)
{
    return readList(stream, textTasks);
}

void registerRecords()
{
    registerType<Task>("Task");
    registerType<QList<Task>>("QList<Task>");
    // Both once more; see docs/decisions.md.
    registerType<Task>("Task");
    registerType<QList<Task>>("QList<Task>");
    registerType<Attachment>("Attachment");
    registerType<Keyword>("Keyword");
    registerType<QList<Keyword>>("QList<Keyword>");
    registerType<TextTask>("TextTask");
    registerType<QList<Attachment>>("QList<Attachment>");
    registerType<QList<TextTask>>("QList<TextTask>");
    registerType<TaskInfo>("TaskInfo");
}
