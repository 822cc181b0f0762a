// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/TessaPort.h"

#include "notifications/NotificationManager.h"
#include "service/ServiceReply.h"
#include "update/UpdateState.h"

#include <QCoreApplication>
#include <QDebug>
#include <QLocale>
#include <QUrlQuery>

namespace {

// What is typed has to arrive as typed: a query takes "%41" for an A that is encoded already, and
// services take a bare plus for a blank.
void addItem(QUrlQuery& query, const QString& key, QString value)
{
    value.replace(QLatin1Char('%'), QLatin1String("%25"));
    value.replace(QLatin1Char('+'), QLatin1String("%2B"));
    query.addQueryItem(key, value);
}

QUrlQuery credentials(const Session& session)
{
    QUrlQuery query;
    addItem(query, QStringLiteral("login"), session.login());
    addItem(query, QStringLiteral("password"), session.password());
    return query;
}

void logUrl(const QNetworkReply* reply)
{
    qDebug() << reply->request().url().toString();
}

} // namespace

// --- Sign-in

void TessaPort::login(const QString& login, const QString& password)
{
    loginSession()->setLogin(login);
    loginSession()->setPassword(password);
    get(SignIn, credentials(*loginSession()));
}

void TessaPort::handleLogin(QNetworkReply* reply)
{
    if (!checkReply(reply->readAll()))
        return;
    // The second answer to a sign-in that was sent twice: the first one has used the credentials
    // up.
    if (loginSession()->login().isEmpty())
        return;
    qDebug() << "Login as " << loginSession()->login();
    if (!session()->login().isEmpty()) {
        session()->save();
        session()->reset();
    }
    session()->load(loginSession()->login(), loginSession()->password());
    session()->setLogged(true);
    removeUnfinished();
    loginSession()->reset();
    emit loginOk();
}

// --- Teams and tasks

void TessaPort::requestTeamsAndTasks()
{
    get(Refresh, credentials(*session()));
}

void TessaPort::handleTeamsAndTasks(QNetworkReply* reply)
{
    const QByteArray data = reply->readAll();
    if (!checkReply(data))
        return;
    qDebug() << "Teams and tasks data: " << data;
    parseTeamsAndTasks(data);
}

void TessaPort::parseTeamsAndTasks(const QByteArray& data)
{
    QList<Team> teams;
    const QList<ServiceReply::TeamWithTasks> entries = ServiceReply::teamsAndTasks(data);
    for (const ServiceReply::TeamWithTasks& entry : entries) {
        teams.append(entry.team);
        session()->setTasks(entry.tasks, entry.team.id);
        for (const Task& task : entry.tasks) {
            const bool isCached = !session()->taskInfo(task.id).id.isEmpty();
            if (!isCached && entry.team.id != teamWithoutDeadlines)
                requestTaskInfo(task.id);
        }
    }
    session()->setTeams(teams);
}

// --- Task details

void TessaPort::requestTaskInfo(const QString& taskId)
{
    if (taskId == unassignedTaskId)
        return;
    QUrlQuery query = credentials(*session());
    addItem(query, QStringLiteral("task_id"), taskId);
    get(Details, query)->setProperty("task_id", taskId);
}

void TessaPort::handleTaskInfo(QNetworkReply* reply)
{
    const QByteArray data = reply->readAll();
    if (!checkReply(data)) {
        logUrl(reply);
        return;
    }
    qDebug() << "TaskInfo for " << reply->property("task_id").toString() << ":" << data;
    const ServiceReply::Answer answer = ServiceReply::answer(data);
    if (!answer.ok) {
        logUrl(reply);
        // The words of the deadline's reply; see docs/decisions.md.
        qDebug() << "Request for deadline change: " << data;
        NotificationManager::instance()->showPlain(
            QStringLiteral("Ошибка получения данных по задаче: ") + answer.message.toString());
        return;
    }
    const TaskInfo info = ServiceReply::taskInfo(answer.message);
    session()->setTaskInfo(info.id, info);
    emit taskInfoUpdated(info);
}

// --- A later deadline

void TessaPort::requestDeadline(const QDate& date, const QString& message, const QTime& time)
{
    QUrlQuery query = credentials(*session());
    addItem(query, QStringLiteral("task_id"), session()->taskID());
    // A desktop in Persian, say, has other digits.
    const QLocale digits = QLocale::c();
    addItem(query, QStringLiteral("dl_date"), digits.toString(date, QStringLiteral("yyyy-MM-dd")));
    if (time != QTime(23, 59))
        addItem(query, QStringLiteral("dl_time"), digits.toString(time, QStringLiteral("HH:mm")));
    addItem(query, QStringLiteral("message"), message);
    QUrl url = endpointUrl(DeadlineRequest);
    url.setQuery(query.query());
    post(DeadlineRequest, url, QByteArray());
}

void TessaPort::handleDeadlineReply(QNetworkReply* reply)
{
    const QByteArray data = reply->readAll();
    if (!checkReply(data)) {
        logUrl(reply);
        return;
    }
    const ServiceReply::Answer answer = ServiceReply::answer(data);
    if (!answer.ok)
        logUrl(reply);
    qDebug() << "Request for deadline change: " << data;
    NotificationManager::instance()->showPlain(
        answer.ok ? QStringLiteral("Запрос на продление задачи успешно отправлен")
                  : QStringLiteral("Ошибка переноса задачи:") + answer.message.toString());
}

// --- Time

void TessaPort::requestActive(const QString& taskId)
{
    QUrlQuery query = credentials(*session());
    if (taskId != unassignedTaskId)
        addItem(query, QStringLiteral("task_id"), taskId);
    get(TimeSync, query)->setProperty("task_id", taskId);
}

void TessaPort::handleTimeSync(QNetworkReply* reply)
{
    const QByteArray data = reply->readAll();
    qDebug() << "time sync : " << data;
    if (!checkReply(data)) {
        logUrl(reply);
        return;
    }
    const ServiceReply::DayTotals totals = ServiceReply::dayTotals(data);
    // The totals are today's. In a day that began with the next second of the monitor they would
    // not outlast it.
    session()->beginDay();
    session()->setTodayActivetime(totals.active);
    session()->setTodayWorktime(totals.total);
    // Not the property that the request sets: the time lands under the empty key, and no task's own
    // entry is touched; see docs/decisions.md.
    const QString taskId = reply->property("taskId").toString();
    if (taskId != unassignedTaskId)
        session()->setTaskActiveTime(taskId, totals.task);
    qDebug() << totals.active << totals.total;
    emit timesUpdated();
}

// --- Updates

void TessaPort::requestVersion()
{
    get(Version, QUrlQuery());
}

void TessaPort::handleUpdate(QNetworkReply* reply)
{
    const QByteArray data = reply->readAll();
    if (!checkReply(data)) {
        logUrl(reply);
        return;
    }
    qDebug() << "Update data: " << data;
    UpdateState::instance()->setUpdateInfo(data);
    const QString latest = UpdateState::instance()->latestVersion();
    // As texts; see docs/decisions.md.
    const bool isNewer = QCoreApplication::applicationVersion() < latest;
    emit updateAvailable(isNewer);
    if (isNewer)
        NotificationManager::instance()->show(latest, UpdateAvailable, QString());
}
