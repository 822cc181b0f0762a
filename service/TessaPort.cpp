// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/TessaPort.h"

#include "notifications/NotificationManager.h"
#include "service/OneTimeBody.h"
#include "service/ServiceAddress.h"
#include "service/ServiceReply.h"
#include "update/ElevatedStart.h"

#include <QDebug>
#include <QPushButton>
#include <QUrlQuery>

#include <algorithm>
#include <chrono>
#include <iterator>

namespace {

// Room for a hundred thousand tasks, and for any page that stands in the place of an answer.
constexpr qint64 lists = 64 << 20;
constexpr qint64 words = 1 << 20;

// Of silence. A connection that is dead without having ended would hold its request for hours, and
// with six of them everything that comes after, pictures in memory among it.
constexpr std::chrono::milliseconds patience = std::chrono::minutes(10);

} // namespace

const TessaPort::Endpoint TessaPort::endpoints[] = {
    {SignIn, "/api_teams", &TessaPort::handleLogin, false, lists},
    {Refresh, "/api_teams_tasks", &TessaPort::handleTeamsAndTasks, true, lists},
    {Version, "/monitor/tpmc.version", &TessaPort::handleUpdate, false, words},
    {Report, nullptr, &TessaPort::handleReportReply, false, words},
    {DeadlineRequest, "/api_task_deadline_request", &TessaPort::handleDeadlineReply, false, words},
    {Details, "/api_get_task", &TessaPort::handleTaskInfo, true, lists},
    {TimeSync, "/api_get_active", &TessaPort::handleTimeSync, true, words},
};

TessaPort::TessaPort(QObject* parent)
    : SessionOwner(parent)
{
    if (!session()->login().isEmpty())
        removeUnfinished();
    m_manager.setTransferTimeout(int(patience.count()));
    connect(&m_manager, &QNetworkAccessManager::finished, this, &TessaPort::replyFinished);
    connect(&m_manager, &QNetworkAccessManager::sslErrors, this, &TessaPort::sslErrorHandler);
    connect(&m_manager, &QNetworkAccessManager::networkAccessibleChanged, this,
            &TessaPort::networkAccessibleChangedHandler);
}

// What is to be saved is saved before the network goes, which can take its time.
TessaPort::~TessaPort()
{
    closeSessions();
    for (const UnwrittenReport& unwritten : qAsConst(m_unwrittenReports))
        keepUnwritten(unwritten);
    m_waitingReports.retryRemovals();
}

const TessaPort::Endpoint* TessaPort::endpointOf(int stage)
{
    const auto found =
        std::find_if(std::begin(endpoints), std::end(endpoints),
                     [stage](const Endpoint& endpoint) { return endpoint.stage == stage; });
    return found == std::end(endpoints) ? nullptr : found;
}

QUrl TessaPort::endpointUrl(Stage stage)
{
    return QUrl(ServiceAddress::url(QLatin1String(endpointOf(stage)->path)), QUrl::TolerantMode);
}

QNetworkReply* TessaPort::get(Stage stage, const QUrlQuery& query)
{
    QUrl url = endpointUrl(stage);
    if (!query.isEmpty())
        url.setQuery(query.query());
    return tagged(m_manager.get(QNetworkRequest(url)), stage);
}

QNetworkReply* TessaPort::post(Stage stage, const QUrl& url, const QByteArray& body)
{
    QNetworkRequest request(url);
    request.setHeader(QNetworkRequest::ContentTypeHeader,
                      QByteArrayLiteral("application/x-www-form-urlencoded"));
    // Ahead of questions, of which thousands may wait for a connection.
    request.setPriority(QNetworkRequest::HighPriority);
    auto* const oneTimeBody = new OneTimeBody(body);
    QNetworkReply* const reply = m_manager.post(request, oneTimeBody);
    oneTimeBody->setParent(reply);
    return tagged(reply, stage);
}

QNetworkReply* TessaPort::tagged(QNetworkReply* reply, Stage stage)
{
    reply->setProperty("stage", stage);
    reply->setProperty("login", session()->login());
    const qint64 longest = endpointOf(stage)->longestAnswer;
    connect(reply, &QNetworkReply::readyRead, this, [reply, longest] {
        if (reply->bytesAvailable() <= longest)
            return;
        qWarning() << "Error! Answer is too long: " << reply->url().path();
        reply->abort();
    });
    return reply;
}

void TessaPort::replyFinished(QNetworkReply* reply)
{
    ResultCode code = ExchangeSucceeded;
    if (reply->error() == QNetworkReply::NoError) {
        const Endpoint* endpoint = endpointOf(reply->property("stage").toInt());
        // What was asked for another user, before a change of account, is of no use to this one.
        const bool isForeign = endpoint && endpoint->isForSession
            && reply->property("login").toString() != session()->login();
        if (endpoint && !isForeign)
            (this->*endpoint->handler)(reply);
    } else {
        code = ServiceReply::resultCode(reply->error());
        handleFailure(reply);
    }
    setOnlineByResult(code);
    reply->deleteLater();
}

void TessaPort::handleFailure(QNetworkReply* reply)
{
    qDebug() << "Request: " << reply->request().url().toString();
    qDebug() << "Reply finished:" << reply->error() << " - " << reply->errorString();
    switch (reply->property("stage").toInt()) {
    case DeadlineRequest:
        NotificationManager::instance()->showPlain(QStringLiteral(
            "Запрос на продление задачи не удалось отправить, повторите попытку позже."));
        break;
    case Details:
        // Not the property that the request sets: no window is to take this for the details of
        // its task; see docs/decisions.md.
        emit taskInfoUpdated(session()->taskInfo(reply->property("id").toString()));
        break;
    case Report:
        keepUnwritten(m_unwrittenReports.take(reply));
        reportAnswered(false);
        break;
    default:
        break;
    }
}

bool TessaPort::checkReply(const QByteArray& data)
{
    const std::optional<ResultCode> refusal = ServiceReply::refusal(data);
    if (refusal)
        emit error(*refusal);
    return !refusal;
}

void TessaPort::setOnlineByResult(ResultCode code)
{
    const bool isOnline = code == ExchangeSucceeded;
    if (session()->isOnline() == isOnline)
        return;
    QString message;
    if (code == ConnectionError)
        message = QStringLiteral("Ошибка соединения. ");
    else if (code == SiteUnavailable)
        message = QStringLiteral("Сайт недоступен. ");
    session()->setIsOnline(isOnline);
    emit onlineChanged(message);
}

void TessaPort::sslErrorHandler(QNetworkReply* qnr, QList<QSslError> errors)
{
    if (!ServiceAddress::verifiesCertificates()) {
        qnr->ignoreSslErrors();
        return;
    }
    QStringList reasons;
    for (const QSslError& error : qAsConst(errors))
        reasons.append(error.errorString());
    qWarning() << "Certificate refused:" << reasons.join(QStringLiteral("; "));
}

// What is reachable is learned from replies alone.
void TessaPort::networkAccessibleChangedHandler(QNetworkAccessManager::NetworkAccessibility) { }

void TessaPort::setCurrentTask(const QString& teamId, const QString& taskId)
{
    if (teamId != session()->teamID()) {
        session()->setTeamID(teamId);
        emit teamChanged(teamId);
    }
    session()->setTaskID(taskId);
}

void TessaPort::openUrl(const QString& url)
{
    ServiceAddress::openUrl(url);
}

void TessaPort::openTaskUrl(const QString& taskId)
{
    ServiceAddress::openTaskPage(taskId);
}

void TessaPort::openTaskUrl()
{
    if (const auto* button = qobject_cast<QPushButton*>(sender()))
        openTaskUrl(button->property("task_id").toString());
}

int TessaPort::runWinAppAsAdmin(const QString& file, const QString& arguments)
{
    return runElevated(file, arguments);
}
