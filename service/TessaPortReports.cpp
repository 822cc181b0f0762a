// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/TessaPort.h"

#include "notifications/NotificationManager.h"
#include "platform/DiskFlush.h"
#include "service/JsonCodec.h"
#include "service/ReportFile.h"
#include "service/ServiceAddress.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QDebug>
#include <QFile>
#include <QImage>
#include <QTemporaryFile>
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

} // namespace

QString TessaPort::activityDir() const
{
    return dataDir().filePath(session()->login() + QStringLiteral("/activity"));
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
    QFile picture(dataDir().absoluteFilePath(
        QStringLiteral("%1/screenshot%2.jpg")
            .arg(activityDir(), ReportFile::timestamp(QDateTime::currentDateTime()))));
    // A picture that could not be written is found missing when its report goes out.
    if (picture.open(QIODevice::WriteOnly)) {
        const bool isWhole = picture.write(jpeg.data()) == jpeg.size() && picture.flush();
        platform::flushToDisk(picture);
        picture.close();
        if (!isWhole)
            picture.remove();
    }
    body.insert(QStringLiteral("fileName"), picture.fileName());
    qDebug("Screenshot prepared");
    sendReport(screenshotPath, body);
}

void TessaPort::sendReport(const QString& path, const QVariantMap& body)
{
    const QString apiUrl = QUrl(ServiceAddress::url(path)).toString();
    if (std::unique_ptr<QTemporaryFile> file = writeReportFile(apiUrl, body)) {
        sendReportFile(std::move(file));
        return;
    }
    ++m_pendingReports;
    postReport(ReportFile::report(apiUrl, body, QDateTime::currentDateTime()), QString());
    // Nothing is left that would remove its picture.
    const QString picture = body.value(QStringLiteral("fileName")).toString();
    if (!picture.isEmpty())
        QFile::remove(picture);
}

std::unique_ptr<QTemporaryFile> TessaPort::writeReportFile(const QVariant& apiUrl,
                                                           const QVariant& body)
{
    const QDateTime now = QDateTime::currentDateTime();
    return ReportFile::write(activityDir(),
                             JsonCodec::serialize(ReportFile::report(apiUrl, body, now)), now);
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
    ++m_pendingReports;
    file->close();
    const QVariantMap report = jsonObject(content);
    if (report.value(QStringLiteral("api-url")).toString().isEmpty()) {
        qDebug() << "Error!  Invalid activity file! " << content;
        // Not at once: a folder full of such files would have each of them removed inside the
        // removal of the one before.
        QTimer::singleShot(0, this, [this, name = file->fileName()] {
            removeReportFile(std::make_unique<QFile>(name));
        });
        return;
    }
    postReport(report, file->fileName());
}

void TessaPort::postReport(const QVariantMap& report, const QString& fileName)
{
    const QDateTime now = QDateTime::currentDateTime();
    const QVariantMap rebuilt = ReportFile::hasVersion(report)
        ? ReportFile::rebuildReport(report, now)
        : ReportFile::rebuildLegacyReport(report, now);
    const QUrl url = rebuilt.value(QStringLiteral("api-url")).toUrl();
    const QVariantMap body = rebuilt.value(QStringLiteral("body")).toMap();
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

    post(Report, url, ReportFile::payload(body))->setProperty("activityFile", fileName);
}

// --- Answers

void TessaPort::handleReportReply(QNetworkReply* reply)
{
    const QByteArray data = reply->readAll();
    if (!checkReply(data)) {
        keepReport(reply, data);
        return;
    }
    const bool isActivity = reply->url().toString().contains(ServiceAddress::host() + activityPath);
    if (isActivity) {
        const QString status = jsonObject(data).value(QStringLiteral("status")).toString();
        if (status != QLatin1String("ok")) {
            keepReport(reply, data);
            return;
        }
        qDebug() << "Activity sended " << status;
    } else {
        if (data != "ok") {
            keepReport(reply, data);
            return;
        }
        qDebug() << "ver 1.0 activity sended " << data;
    }
    removeReportFile(std::make_unique<QFile>(reply->property("activityFile").toString()));
}

void TessaPort::keepReport(QNetworkReply* reply, const QByteArray& data)
{
    qDebug() << reply->request().url().toString();
    qDebug() << "Activity not sended " << data;
    --m_pendingReports;
}

void TessaPort::removeReportFile(std::unique_ptr<QFile> file)
{
    const bool isOnDisk = file->exists();
    if (isOnDisk && file->open(QIODevice::ReadOnly)) {
        const QVariantMap body = jsonObject(file->readAll()).value(QStringLiteral("body")).toMap();
        const auto picture = body.constFind(QStringLiteral("fileName"));
        if (picture != body.constEnd())
            QFile::remove(picture->toString());
        file->close();
    }
    --m_pendingReports;
    if (isOnDisk && !file->remove()) {
        // The next one to go out would be this one again, without end.
        qWarning() << "Error! Report can't be removed: " << file->fileName();
        return;
    }
    if (m_pendingReports == 0)
        sendNextReportFile();
}

void TessaPort::sendNextReportFile()
{
    const QString directory = activityDir();
    const QString name = ReportFile::first(directory);
    if (name.isEmpty())
        return;
    qDebug() << "file prepared:" << name;
    sendReportFile(std::make_unique<QFile>(directory + QLatin1Char('/') + name));
}
