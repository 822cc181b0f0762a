// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/StandIn.h"
#include "support/Files.h"

#include "support/StandInProcess.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QRegularExpression>
#include <QSaveFile>
#include <QTimer>
#include <QUrlQuery>
#include <QtDebug>

#include <functional>

namespace {

constexpr int startTimeout = 30000;
constexpr int requestTimeout = 10000;

void runEventLoop(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

bool waitUntil(const std::function<bool()>& isTrue)
{
    const QDeadlineTimer deadline(requestTimeout);
    while (!isTrue()) {
        if (deadline.hasExpired())
            return false;
        runEventLoop(20);
    }
    return true;
}

} // namespace

QJsonObject SeenRequest::record() const
{
    const QByteArray json = QByteArray::fromPercentEncoding(body.mid(int(qstrlen("data="))));
    return QJsonDocument::fromJson(json).array().at(0).toObject();
}

StandIn::StandIn()
{
    setData(demoData());
    start();
}

StandIn::~StandIn()
{
    stop();
}

QJsonObject StandIn::demoData()
{
    return QJsonDocument::fromJson(contentOf(QStringLiteral(STANDIN_DEMO_DATA))).object();
}

bool StandIn::isRunning() const
{
    return m_process && m_process->isRunning();
}

QString StandIn::url() const
{
    return QStringLiteral("https://localhost:%1").arg(m_port);
}

QString StandIn::storeDir() const
{
    return m_directory.filePath(QStringLiteral("store"));
}

QString StandIn::dataFile() const
{
    return m_directory.filePath(QStringLiteral("data.json"));
}

void StandIn::setData(const QJsonObject& data)
{
    QSaveFile file(dataFile());
    if (!file.open(QIODevice::WriteOnly) || file.write(QJsonDocument(data).toJson()) < 0
        || !file.commit()) {
        qWarning() << "The stand-in's data cannot be written:" << file.errorString();
    }
}

void StandIn::fail(const QString& path, const QString& mode, int count, int milliseconds,
                   const QByteArray& body)
{
    QUrlQuery query;
    query.addQueryItem(QStringLiteral("path"), path);
    query.addQueryItem(QStringLiteral("mode"), mode);
    if (count >= 0)
        query.addQueryItem(QStringLiteral("count"), QString::number(count));
    if (milliseconds > 0)
        query.addQueryItem(QStringLiteral("ms"), QString::number(milliseconds));
    control("POST", QStringLiteral("/standin/fail?") + query.toString(QUrl::FullyEncoded), body);
}

void StandIn::succeed(const QString& path)
{
    fail(path, QStringLiteral("ok"));
}

void StandIn::reset()
{
    control("POST", QStringLiteral("/standin/reset"));
}

QVector<SeenRequest> StandIn::requests(const QString& path) const
{
    QVector<SeenRequest> result;
    const QString logName = QDir(storeDir()).filePath(QStringLiteral("requests.jsonl"));
    const QList<QByteArray> lines = contentOf(logName).split('\n');
    for (const QByteArray& line : lines) {
        const QJsonObject seen = QJsonDocument::fromJson(line).object();
        if (seen.isEmpty() || (!path.isEmpty() && seen[QLatin1String("path")].toString() != path))
            continue;
        SeenRequest request;
        request.method = seen[QLatin1String("method")].toString();
        request.path = seen[QLatin1String("path")].toString();
        request.query = seen[QLatin1String("query")].toString();
        request.body = seen[QLatin1String("body")].toString().toUtf8();
        request.fault = seen[QLatin1String("fault")].toString();
        const QJsonObject headers = seen[QLatin1String("headers")].toObject();
        for (auto header = headers.begin(); header != headers.end(); ++header)
            request.headers.insert(header.key(), header.value().toString());
        result.append(request);
    }
    return result;
}

QJsonArray StandIn::confirmedRecords() const
{
    QJsonArray result;
    const QDir store(storeDir());
    const QStringList names = store.entryList({QStringLiteral("*.json")}, QDir::Files, QDir::Name);
    for (const QString& name : names)
        result.append(QJsonDocument::fromJson(contentOf(store.filePath(name))).object());
    return result;
}

bool StandIn::waitForRequests(const QString& path, int count) const
{
    return waitUntil([&] { return requests(path).size() >= count; });
}

bool StandIn::waitForRecords(int count) const
{
    return waitUntil([&] { return confirmedRecords().size() >= count; });
}

void StandIn::stop()
{
    if (!isRunning())
        return;
    if (!m_process->stop(startTimeout))
        qWarning() << "The stand-in does not stop";
}

bool StandIn::start()
{
    m_process = StandInProcess::start({QStringLiteral("--quiet"), QStringLiteral("--port"),
                                       QString::number(m_port), QStringLiteral("--data"),
                                       dataFile(), QStringLiteral("--store"), storeDir()},
                                      m_directory.path());
    const QByteArray line = m_process->firstLine(startTimeout);
    static const QRegularExpression address(QStringLiteral("https://localhost:(\\d+)"));
    const QRegularExpressionMatch match = address.match(QString::fromUtf8(line));
    if (!match.hasMatch()) {
        qWarning() << "The stand-in does not start:" << line;
        return false;
    }
    m_port = match.captured(1).toInt();
    return true;
}

QByteArray StandIn::control(const QByteArray& verb, const QString& pathAndQuery,
                            const QByteArray& body) const
{
    QNetworkAccessManager manager;
    QNetworkRequest request(QUrl(url() + pathAndQuery));
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("text/plain"));
    const std::unique_ptr<QNetworkReply> reply(manager.sendCustomRequest(request, verb, body));
    reply->ignoreSslErrors();
    QEventLoop loop;
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(startTimeout, &loop, &QEventLoop::quit);
    loop.exec();
    if (!reply->isFinished() || reply->error() != QNetworkReply::NoError)
        qWarning() << "The stand-in does not obey:" << pathAndQuery << reply->errorString();
    return reply->readAll();
}
