// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceReply.h"

#include "service/JsonCodec.h"

#include <QTextCodec>

namespace ServiceReply {

namespace {

const QLatin1String dateTimeFormat("yyyy-MM-dd HH:mm:ss");

QString text(const QVariantMap& map, const char* key)
{
    return map.value(QLatin1String(key)).toString();
}

/// What these characters say as digits; -1 when not all of them are.
int number(const QString& text, int position, int length)
{
    int value = 0;
    for (const QChar character : text.midRef(position, length)) {
        if (character < QLatin1Char('0') || character > QLatin1Char('9'))
            return -1;
        value = value * 10 + (character.unicode() - '0');
    }
    return value;
}

/// Invalid also for some texts that dateTimeFormat allows.
QDateTime plainMoment(const QString& text)
{
    if (text.size() != dateTimeFormat.size())
        return {};
    for (const int separator : {4, 7, 10, 13, 16}) {
        if (text[separator] != dateTimeFormat.at(separator))
            return {};
    }
    const int year = number(text, 0, 4);
    const QTime time(number(text, 11, 2), number(text, 14, 2), number(text, 17, 2));
    // QDateTime would take an invalid time for midnight, and QDate knows years before Christ.
    if (year < 0 || !time.isValid())
        return {};
    return {QDate(year, number(text, 5, 2), number(text, 8, 2)), time};
}

QDateTime moment(const QVariantMap& map, const char* key)
{
    const QString value = text(map, key);
    // Qt would work through the format anew for each of thousands of tasks.
    const QDateTime plain = plainMoment(value);
    return plain.isValid() ? plain : QDateTime::fromString(value, dateTimeFormat);
}

QVariantList list(const QVariantMap& map, const char* key)
{
    return map.value(QLatin1String(key)).toList();
}

QTime minutes(const QVariantMap& map, const char* key)
{
    constexpr qint64 secondsPerDay = 24 * 60 * 60;
    const qint64 seconds = qint64(text(map, key).toInt()) * 60;
    return QTime(0, 0).addSecs(int(seconds % secondsPerDay));
}

Task task(const QVariantMap& map)
{
    Task task;
    task.id = text(map, "id");
    task.title = text(map, "title");
    task.deadline = moment(map, "deadline");
    task.block = text(map, "block");
    task.lastComment = moment(map, "last_comment");
    task.importance = map.value(QStringLiteral("importance")).toInt();
    return task;
}

Attachment attachment(const QVariantMap& map)
{
    return {text(map, "id"), text(map, "filename"), text(map, "filename_orig"), text(map, "size")};
}

Keyword keyword(const QVariantMap& map)
{
    return {text(map, "id"), text(map, "keyword"), text(map, "count"), text(map, "count2")};
}

TextTask textTask(const QVariantMap& map)
{
    TextTask textTask;
    textTask.id = text(map, "id");
    textTask.text = text(map, "text");
    textTask.title = text(map, "title");
    textTask.minCount = text(map, "min_count");
    textTask.page = QUrl(text(map, "page"));
    textTask.task = text(map, "task");
    for (const QVariant& element : list(map, "keywords"))
        textTask.keywords.append(keyword(element.toMap()));
    return textTask;
}

} // namespace

std::optional<ResultCode> refusal(const QByteArray& body)
{
    if (body == R"({"status":-1,"err_msg":"Invalid email|pswd|client"})") {
        qDebug("Invalid email/pswd/client");
        return InvalidCredentials;
    }
    if (body.startsWith(R"({"status":"error")") || body.startsWith(R"({"status":-1)")) {
        qDebug() << "Unknown error!" << body;
        return UnknownError;
    }
    if (body.startsWith("\t<!DOCTYPE")) {
        qDebug("Error! Invalid URL!");
        return InvalidUrl;
    }
    // The service's own spelling; the line for the log has the letter that is missing here.
    static const QByteArray noDatabase =
        QTextCodec::codecForName("Windows-1251")
            ->fromUnicode(QStringLiteral("Не могу соединится с базой данных"));
    if (body == noDatabase) {
        qDebug("Не могу соединиться с базой данных");
        return DatabaseUnreachable;
    }
    return std::nullopt;
}

ResultCode resultCode(QNetworkReply::NetworkError error)
{
    switch (error) {
    case QNetworkReply::HostNotFoundError:
    case QNetworkReply::UnknownNetworkError:
        return ConnectionError;
    case QNetworkReply::ProtocolUnknownError:
        return SiteUnavailable;
    default:
        return OtherNetworkError;
    }
}

QList<TeamWithTasks> teamsAndTasks(const QByteArray& body)
{
    QList<TeamWithTasks> result;
    QVariantList elements = JsonCodec::parseUtf8(body).toList();
    while (!elements.isEmpty()) {
        QVariantMap map = elements.takeFirst().toMap();
        TeamWithTasks entry;
        entry.team = {text(map, "id"), text(map, "name")};
        if (entry.team.id.isEmpty())
            continue;
        // Of thousands of tasks, each is let go of as soon as it is read.
        QVariantList tasks = map.take(QStringLiteral("tasks")).toList();
        for (QVariant& taskElement : tasks) {
            entry.tasks.append(task(taskElement.toMap()));
            taskElement.clear();
        }
        entry.tasks.append(unassignedTask());
        result.append(entry);
    }
    return result;
}

Answer answer(const QByteArray& body)
{
    const QVariantMap map = JsonCodec::parseUtf8(body).toMap();
    return {text(map, "status") == QLatin1String("ok"), map.value(QStringLiteral("message"))};
}

TaskInfo taskInfo(const QVariant& message)
{
    const QVariantMap map = message.toMap();
    TaskInfo info;
    info.id = text(map, "id");
    info.title = text(map, "title");
    info.deadline = moment(map, "deadline");
    info.text = text(map, "text");
    info.executorName = text(map, "executor_name");
    info.creatorName = text(map, "creator_name");
    info.auditorName = text(map, "auditor_name");
    for (const QVariant& element : list(map, "files"))
        info.files.append(attachment(element.toMap()));
    for (const QVariant& element : list(map, "texts"))
        info.texts.append(textTask(element.toMap()));
    return info;
}

DayTotals dayTotals(const QByteArray& body)
{
    const QVariantMap map = JsonCodec::parseUtf8(body).toMap();
    return {minutes(map, "today_active"), minutes(map, "today_total"), minutes(map, "today_task")};
}

} // namespace ServiceReply
