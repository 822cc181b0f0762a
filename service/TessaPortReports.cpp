// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/TessaPort.h"

#include "notifications/NotificationManager.h"
#include "service/JsonCodec.h"
#include "service/ReportFile.h"
#include "service/ServiceAddress.h"
#include "session/SettingsFile.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QDebug>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QTimer>

namespace {

const QLatin1String activityPath("/api_active2");
const QLatin1String screenshotPath("/api_screenshot");

QVariantMap record(const Session& session)
{
    return {{QStringLiteral("email"), session.login()},
            {QStringLiteral("past"), QString::number(0)},
            {QStringLiteral("task_id"), session.taskID()},
            {QStringLiteral("team_id"), session.teamID()},
            {QStringLiteral("version"), QCoreApplication::applicationVersion()}};
}

/// Empty for text that is no JSON object.
QVariantMap jsonObject(const QByteArray& text)
{
    return JsonCodec::parseUtf8(text).toMap();
}

/// Empty for a report that names none.
QString pictureOf(const QVariantMap& report)
{
    return report.value(QStringLiteral("body"))
        .toMap()
        .value(QStringLiteral("fileName"))
        .toString();
}

} // namespace

void TessaPort::removePicture(const QVariantMap& report)
{
    const QString picture = pictureOf(report);
    if (!picture.isEmpty())
        m_waitingReports.remove(picture);
}

QString TessaPort::activityDir() const
{
    // Without a user it is still inside of the data directory.
    return dataDir().filePath(session()->login()) + QStringLiteral("/activity");
}

void TessaPort::removeUnfinished()
{
    ReportFile::removeUnfinished(activityDir());
    removeUnfinishedSettings(dataDir().path());
    removeUnfinishedSettings(dataDir().filePath(session()->login()));
}

// --- New records

void TessaPort::sendActivity(int active)
{
    QVariantMap body = record(*session());
    body.insert(QStringLiteral("active"), QString::number(active));
    qDebug() << "Activity data prepared " << ServiceAddress::url(activityPath)
             << QVariant(body.values()).toStringList();
    sendReport(activityPath, body);
}

void TessaPort::sendScreenshot(const QImage& image)
{
    QVariantMap body = record(*session());
    QBuffer jpeg;
    jpeg.open(QIODevice::WriteOnly);
    if (!image.save(&jpeg, "JPG", -1)) {
        qDebug("Error! Can't convert to JPG format!");
        NotificationManager::instance()->showPlain(QStringLiteral(
            "При отправке снимка экрана произошла ошибка. Обратитесь в техподдержку"));
        return;
    }
    const QString picture = picturePath();
    if (ReportFile::writePicture(picture, jpeg.data()))
        jpeg.buffer().clear(); // It is large, and read again when it goes out.
    body.insert(QStringLiteral("fileName"), picture);
    qDebug("Screenshot prepared");
    sendReport(screenshotPath, body, jpeg.data());
}

// Two pictures of one second share a name. But a clock that is set back, as at the end of summer
// time, comes to a second again in which there was one that may still wait.
QString TessaPort::picturePath()
{
    const QString name =
        dataDir().absoluteFilePath(activityDir() + QStringLiteral("/screenshot")
                                   + ReportFile::timestamp(QDateTime::currentDateTime()));
    const bool isSameSecond = m_sinceLastPicture.isValid() && !m_sinceLastPicture.hasExpired(1000);
    if (isSameSecond && m_lastPicture.startsWith(name))
        return m_lastPicture;
    m_lastPicture = name + QStringLiteral(".jpg");
    for (int i = 2; QFile::exists(m_lastPicture); ++i)
        m_lastPicture = QStringLiteral("%1.%2.jpg").arg(name).arg(i);
    m_sinceLastPicture.start();
    return m_lastPicture;
}

void TessaPort::sendReport(const QString& path, const QVariantMap& body, const QByteArray& picture)
{
    m_waitingReports.retryRemovals();
    const QString apiUrl = QUrl(ServiceAddress::url(path)).toString();
    if (picture.isEmpty()) {
        if (std::unique_ptr<QFile> file = writeReportFile(apiUrl, body)) {
            sendReportFile(std::move(file));
            return;
        }
    }
    const QDateTime now = QDateTime::currentDateTime();
    const QVariantMap report = ReportFile::report(apiUrl, body, now);
    QNetworkReply* const reply =
        postReport(ReportFile::rebuildReport(report, now, picture), QString());
    m_unwrittenReports.insert(reply, {activityDir(), report, picture});
}

std::unique_ptr<QFile> TessaPort::writeReportFile(const QVariant& apiUrl, const QVariant& body)
{
    const QString path = ReportFile::write(
        activityDir(), ReportFile::report(apiUrl, body, QDateTime::currentDateTime()));
    return path.isEmpty() ? nullptr : std::make_unique<QFile>(path);
}

// --- Posting

void TessaPort::sendReportFile(std::unique_ptr<QFile> file)
{
    if (!file->open(QIODevice::ReadOnly))
        return;
    const QByteArray content = file->readAll();
    // What can't be read today is not broken.
    if (file->error() != QFileDevice::NoError)
        return;
    file->close();
    const QVariantMap report = jsonObject(content);
    if (report.value(QStringLiteral("api-url")).toString().isEmpty()) {
        qDebug() << "Error!  Invalid activity file! " << content;
        removeReportFile(std::move(file));
        return;
    }
    const QDateTime now = QDateTime::currentDateTime();
    postReport(ReportFile::hasVersion(report) ? ReportFile::rebuildReport(report, now)
                                              : ReportFile::rebuildLegacyReport(report, now),
               file->fileName());
}

QNetworkReply* TessaPort::postReport(const QVariantMap& report, const QString& fileName)
{
    const QUrl url = report.value(QStringLiteral("api-url")).toUrl();
    const QVariantMap body = report.value(QStringLiteral("body")).toMap();
    qDebug() << url.toString();
    for (auto entry = body.cbegin(); entry != body.cend(); ++entry) {
        // The picture itself stays out of the log.
        if (entry.key() != QLatin1String("file"))
            qDebug() << entry.key() << ": " << entry.value().toString();
        if (entry.key() == QLatin1String("fileName") && entry.value().toString().isEmpty()) {
            qDebug("Error! Screenshot is missed!");
            NotificationManager::instance()->showPlain(
                QStringLiteral("Сделать снимок экрана не удалось. Свяжитесь с техподдержкой."));
        }
    }

    if (m_manager.networkAccessible() == QNetworkAccessManager::NotAccessible) {
        qDebug("Network is not accessbile! Try to fix it.");
        m_manager.setNetworkAccessible(QNetworkAccessManager::Accessible);
    }

    ++m_pendingReports;
    QNetworkReply* const reply = post(Report, url, ReportFile::payload(body));
    reply->setProperty("activityFile", fileName);
    return reply;
}

// --- Answers

void TessaPort::handleReportReply(QNetworkReply* reply)
{
    const QByteArray data = reply->readAll();
    const bool isConfirmed = confirms(*reply, data);
    const UnwrittenReport unwritten = m_unwrittenReports.take(reply);
    if (!isConfirmed) {
        qDebug() << reply->request().url().toString();
        qDebug() << "Activity not sended " << data;
        keepUnwritten(unwritten);
    } else if (unwritten.report.isEmpty()) {
        removeReportFile(std::make_unique<QFile>(reply->property("activityFile").toString()));
    } else {
        removePicture(unwritten.report);
    }
    reportAnswered(isConfirmed);
}

bool TessaPort::confirms(const QNetworkReply& reply, const QByteArray& data)
{
    if (!checkReply(data))
        return false;
    const bool isActivity = reply.url().toString().contains(ServiceAddress::host() + activityPath);
    if (!isActivity) {
        const bool isConfirmed = data == "ok";
        if (isConfirmed)
            qDebug() << "ver 1.0 activity sended " << data;
        return isConfirmed;
    }
    const QString status = jsonObject(data).value(QStringLiteral("status")).toString();
    const bool isConfirmed = status == QLatin1String("ok");
    if (isConfirmed)
        qDebug() << "Activity sended " << status;
    return isConfirmed;
}

void TessaPort::keepUnwritten(const UnwrittenReport& unwritten)
{
    if (unwritten.report.isEmpty())
        return;
    const QString picture = pictureOf(unwritten.report);
    const bool hasPicture =
        unwritten.picture.isEmpty() || ReportFile::writePicture(picture, unwritten.picture);
    if (hasPicture && !ReportFile::write(unwritten.directory, unwritten.report).isEmpty())
        return;
    removePicture(unwritten.report);
    qWarning() << "Error! Report is lost, neither on disk nor confirmed: "
               << JsonCodec::serialize(unwritten.report);
}

void TessaPort::removeReportFile(std::unique_ptr<QFile> file)
{
    if (file->open(QIODevice::ReadOnly)) {
        removePicture(jsonObject(file->readAll()));
        file->close();
    }
    m_waitingReports.remove(file->fileName());
}

void TessaPort::reportAnswered(bool isConfirmed)
{
    --m_pendingReports;
    if (isConfirmed)
        sendNextReportFile();
    else
        m_waitingReports.startAnew();
}

void TessaPort::sendNextReportFile()
{
    if (m_pendingReports > 0)
        return;
    const QString path = m_waitingReports.next(activityDir());
    if (path.isEmpty())
        return;
    qDebug() << "file prepared:" << QFileInfo(path).fileName();
    sendReportFile(std::make_unique<QFile>(path));
    // Nothing has gone out that would bring the next one. Not at once: a folder may be full of such
    // files.
    if (m_pendingReports == 0)
        QTimer::singleShot(0, this, &TessaPort::sendNextReportFile);
}
