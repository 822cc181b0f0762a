// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ReportFile.h"

#include "platform/DiskFlush.h"
#include "service/JsonCodec.h"

#include <QDebug>
#include <QDirIterator>
#include <QRandomGenerator>
#include <QUrl>

namespace ReportFile {

namespace {

constexpr QLatin1String timestampFormat("dd-MM-yyyy-hh-mm-ss");
constexpr QLatin1String apiUrlKey("api-url");
constexpr QLatin1String bodyKey("body");
constexpr QLatin1String timestampKey("timestamp");
constexpr QLatin1String versionKey("version");

// The arithmetic is that of unsigned 32-bit seconds, in which a time that can't be read is the
// largest number.
quint32 seconds(const QDateTime& moment)
{
    return moment.isValid() ? quint32(moment.toSecsSinceEpoch()) : quint32(-1);
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

QVariantMap rebuilt(const QVariantMap& report, const QDateTime& now)
{
    const QString written = report.value(timestampKey).toString();
    const auto age =
        qint32(seconds(now) - seconds(QDateTime::fromString(written, timestampFormat)));
    QVariantMap body = report.value(bodyKey).toMap();
    QVariant& past = body[QStringLiteral("past")];
    past = QString::number(past.toLongLong() + age);
    if (report.contains(versionKey))
        attachPicture(body);
    return {{apiUrlKey, report.value(apiUrlKey)},
            {timestampKey, report.value(timestampKey)},
            {bodyKey, body}};
}

QByteArray payload(const QVariant& body)
{
    const QByteArray json = JsonCodec::serialize(QVariantList{body});
    return "data=" + json.toPercentEncoding();
}

std::unique_ptr<QTemporaryFile> write(const QString& directory, const QByteArray& content,
                                      const QDateTime& now)
{
    auto file = std::make_unique<QTemporaryFile>(directory + QStringLiteral("/unfinished.XXXXXX"));
    file->setAutoRemove(false);
    const bool written = file->open() && file->write(content) == content.size() && file->flush()
        && platform::flushToDisk(*file);
    bool named = false;
    // The random part keeps two reports of one second apart; the loop is for the odd case in
    // which they draw the same.
    for (int attempt = 0; written && !named && attempt < 100; ++attempt) {
        const quint32 suffix = QRandomGenerator::global()->generate();
        named = file->rename(QStringLiteral("%1/json%2.%3")
                                 .arg(directory, timestamp(now))
                                 .arg(suffix, 7, 36, QLatin1Char('0')));
    }
    if (!named) {
        qWarning() << "Error! Report can't be written: " << file->errorString();
        file->remove();
        return nullptr;
    }
    file->close();
    platform::flushDirectoryToDisk(directory);
    return file;
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
