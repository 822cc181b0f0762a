// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ReportFile.h"

#include "platform/DiskFlush.h"
#include "service/JsonCodec.h"

#include <QDebug>
#include <QDirIterator>
#include <QRandomGenerator>
#include <QUrl>

#include <limits>

namespace ReportFile {

namespace {

const QLatin1String timestampFormat("dd-MM-yyyy-hh-mm-ss");
const QLatin1String apiUrlKey("api-url");
const QLatin1String bodyKey("body");
const QLatin1String timestampKey("timestamp");
const QLatin1String versionKey("version");
const QLatin1String unfinishedPrefix("unfinished.");

// The arithmetic is that of unsigned 32-bit seconds, in which a time that can't be read or is not
// in their range is the largest number.
quint32 seconds(const QDateTime& moment)
{
    const qint64 seconds = moment.isValid() ? moment.toSecsSinceEpoch() : -1;
    constexpr quint32 largest = std::numeric_limits<quint32>::max();
    return seconds >= 0 && seconds <= largest ? quint32(seconds) : largest;
}

void attachPicture(QVariantMap& body)
{
    const auto path = body.constFind(QStringLiteral("fileName"));
    if (path == body.constEnd())
        return;
    QFile picture(path->toString());
    if (!picture.open(QIODevice::ReadOnly)) {
        qWarning() << "Error! Screenshot can't be opened: " << picture.fileName();
        return;
    }
    body.insert(QStringLiteral("file"), QString::fromLatin1(picture.readAll().toBase64()));
}

} // namespace

QString timestamp(const QDateTime& moment)
{
    return moment.toString(timestampFormat);
}

QVariantMap report(const QVariant& apiUrl, const QVariant& body, const QDateTime& now)
{
    return {{versionKey, QStringLiteral("0.1")},
            {apiUrlKey, apiUrl.toString()},
            {bodyKey, body},
            {timestampKey, timestamp(now)}};
}

QVariantMap rebuildLegacyReport(const QVariantMap& report, const QDateTime& now)
{
    const QString written = report.value(timestampKey).toString();
    const auto age =
        qint32(seconds(now) - seconds(QDateTime::fromString(written, timestampFormat)));
    QVariantMap body = report.value(bodyKey).toMap();
    QVariant& past = body[QStringLiteral("past")];
    past = QString::number(past.toLongLong() + age);
    return {{apiUrlKey, report.value(apiUrlKey)},
            {timestampKey, report.value(timestampKey)},
            {bodyKey, body}};
}

QVariantMap rebuildReport(const QVariantMap& report, const QDateTime& now)
{
    QVariantMap rebuilt = rebuildLegacyReport(report, now);
    QVariantMap body = rebuilt.value(bodyKey).toMap();
    attachPicture(body);
    rebuilt[bodyKey] = body;
    return rebuilt;
}

bool hasVersion(const QVariantMap& report)
{
    return report.contains(versionKey);
}

QByteArray payload(const QVariant& body)
{
    const QByteArray json = JsonCodec::serialize(QVariantList{body});
    return "data=" + json.toPercentEncoding();
}

std::unique_ptr<QTemporaryFile> write(const QString& directory, const QByteArray& content,
                                      const QDateTime& now)
{
    auto file = std::make_unique<QTemporaryFile>(directory + QLatin1Char('/') + unfinishedPrefix
                                                 + QLatin1String("XXXXXX"));
    file->setAutoRemove(false);
    const bool isWritten = file->open() && file->write(content) == content.size() && file->flush();
    // A disk that knows no such order is no reason to keep the report off it.
    if (isWritten && !platform::flushToDisk(*file))
        qWarning() << "Error! Report can't be flushed to the disk: " << file->errorString();

    bool isNamed = false;
    // The random part keeps two reports of one second apart; the loop is for the odd case in
    // which they draw the same.
    for (int attempt = 0; isWritten && !isNamed && attempt < 100; ++attempt) {
        const QString suffix = QString::number(QRandomGenerator::global()->generate(), 36);
        isNamed = file->rename(directory + QLatin1String("/json") + timestamp(now)
                               + QLatin1Char('.') + suffix);
    }
    if (!isNamed) {
        qWarning() << "Error! Report can't be written: " << file->errorString();
        if (file->exists())
            file->remove();
        return nullptr;
    }
    file->close();
    platform::flushDirectoryToDisk(directory);
    return file;
}

void removeUnfinished(const QString& directory)
{
    // A younger one may be another process's, which is at it right now.
    const QDateTime oldEnough = QDateTime::currentDateTime().addSecs(-60);
    const QFileInfoList files = QDir(directory).entryInfoList({unfinishedPrefix + QLatin1Char('*')},
                                                              QDir::Files, QDir::Unsorted);
    for (const QFileInfo& file : files) {
        if (file.lastModified() < oldEnough)
            QFile::remove(file.filePath());
    }
}

QString first(const QString& directory)
{
    QString firstName;
    QString firstKey;
    QDirIterator entries(directory, {QStringLiteral("json*")}, QDir::Files);
    while (entries.hasNext()) {
        entries.next();
        const QString key = entries.fileName().toLower();
        if (firstName.isEmpty() || key < firstKey) {
            firstName = entries.fileName();
            firstKey = key;
        }
    }
    return firstName;
}

} // namespace ReportFile
