// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ReportFile.h"

#include "platform/DiskFiles.h"
#include "service/JsonCodec.h"
#include "session/DataDirectory.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QLocale>
#include <QRandomGenerator>
#include <QSet>
#include <QUrl>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <limits>
#include <optional>

namespace ReportFile {

namespace {

const QLatin1String timestampFormat("dd-MM-yyyy-hh-mm-ss");
const QLatin1String apiUrlKey("api-url");
const QLatin1String bodyKey("body");
const QLatin1String timestampKey("timestamp");
const QLatin1String versionKey("version");
const QLatin1String unfinishedPrefix("unfinished.");
const char picturePrefix[] = "screenshot";

// The arithmetic is that of unsigned 32-bit seconds, in which a time that can't be read or is not
// in their range is the largest number.
quint32 seconds(const QDateTime& moment)
{
    const qint64 seconds = moment.isValid() ? moment.toSecsSinceEpoch() : -1;
    constexpr quint32 largest = std::numeric_limits<quint32>::max();
    return seconds >= 0 && seconds <= largest ? quint32(seconds) : largest;
}

void attachPicture(QVariantMap& body, QByteArray picture)
{
    const auto path = body.constFind(QStringLiteral("fileName"));
    if (path == body.constEnd())
        return;
    if (picture.isEmpty()) {
        QFile file(path->toString());
        if (!file.open(QIODevice::ReadOnly)) {
            qWarning() << "Error! Screenshot can't be opened: " << file.fileName();
            return;
        }
        picture = file.readAll();
    }
    body.insert(QStringLiteral("file"), picture);
}

/// Two characters of base64, percent-encoded, by the twelve bits that they stand for: up to six
/// bytes, the first one lowest, and their number in the highest byte.
std::array<quint64, 4096> encodedPairs()
{
    std::array<quint64, 4096> pairs;
    for (uint bits = 0; bits < pairs.size(); ++bits) {
        const char bytes[] = {char(bits >> 4), char(bits << 4), 0};
        QByteArray text = QByteArray(bytes, sizeof bytes).toBase64().left(2).toPercentEncoding();
        const quint64 size = quint64(text.size()) << 56;
        pairs[bits] = qFromLittleEndian<quint64>(text.append(8, '\0').constData()) | size;
    }
    return pairs;
}

/// A picture is the one large thing that is sent: its base64 is percent-encoded as it is made.
void appendPicture(QByteArray& form, const QByteArray& picture)
{
    static const std::array<quint64, 4096> pairs = encodedPairs();
    constexpr int stepSize = 6;
    constexpr int blockSize = 512 * stepSize;
    constexpr int largestBlock = 4 * blockSize + int(sizeof(quint64));
    // Compressed bytes give all characters equally often, and two of the 64 become three.
    form.reserve(form.size() + picture.size() / 2 * 3 + largestBlock);

    const char* const bytes = picture.constData();
    // A step looks at two bytes more.
    const int stepsSize = std::max(picture.size() - 2, 0) / stepSize * stepSize;
    for (int done = 0; done < stepsSize;) {
        const int size = form.size();
        form.resize(size + largestBlock);
        char* end = form.data() + size;
        for (const int blockEnd = std::min(done + blockSize, stepsSize); done < blockEnd;
             done += stepSize) {
            const auto bits = qFromBigEndian<quint64>(bytes + done);
            for (int shift = 52; shift >= 16; shift -= 12) {
                const quint64 pair = pairs[bits >> shift & 0xfff];
                // All eight bytes at once; what is too much is covered by the next ones.
                qToLittleEndian(pair, end);
                end += pair >> 56;
            }
        }
        form.resize(int(end - form.constData()));
    }
    form += picture.mid(stepsSize).toBase64().toPercentEncoding();
}

/// It may have been removed since the user signed in.
void makeDirectory(const QString& directory)
{
    QDir().mkpath(directory);
}

/// The file names of the pictures that waiting reports name; nothing when one can't be read. What
/// is searched is the text as it is, so that a damaged report keeps its picture, too.
std::optional<QSet<QByteArray>> namedPictures(const QString& directory)
{
    QSet<QByteArray> names;
    const QByteArray ending = ".jpg";
    const QFileInfoList reports =
        QDir(directory).entryInfoList({QStringLiteral("json*")}, QDir::Files, QDir::Unsorted);
    for (const QFileInfo& report : reports) {
        QFile file(report.filePath());
        if (!file.open(QIODevice::ReadOnly))
            return std::nullopt;
        const QByteArray content = file.readAll();
        if (file.error() != QFileDevice::NoError)
            return std::nullopt;
        // All that may be one: ids, too, can end like that.
        for (int from = 0, end = 0; (end = content.indexOf(ending, from)) >= 0;
             from = end + ending.size()) {
            const QByteArray before = content.mid(from, end - from);
            const int begin = before.lastIndexOf(picturePrefix);
            if (begin >= 0)
                names.insert(before.mid(begin) + ending);
        }
    }
    return names;
}

} // namespace

// In the digits of all desktops: a file may be read under another language than it was written.
QString timestamp(const QDateTime& moment)
{
    return QLocale::c().toString(moment, timestampFormat);
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

QVariantMap rebuildReport(const QVariantMap& report, const QDateTime& now,
                          const QByteArray& picture)
{
    QVariantMap rebuilt = rebuildLegacyReport(report, now);
    QVariantMap body = rebuilt.value(bodyKey).toMap();
    attachPicture(body, picture);
    rebuilt[bodyKey] = body;
    return rebuilt;
}

bool hasVersion(const QVariantMap& report)
{
    return report.contains(versionKey);
}

QByteArray payload(const QVariant& body)
{
    QByteArray form = "data=%5B%7B";
    const QVariantMap entries = body.toMap();
    for (auto entry = entries.cbegin(); entry != entries.cend(); ++entry) {
        if (entry != entries.cbegin())
            form += "%2C";
        if (entry.value().userType() == QMetaType::QByteArray) {
            form += (JsonCodec::serialize(entry.key()) + ":\"").toPercentEncoding();
            appendPicture(form, entry.value().toByteArray());
            form += "%22";
        } else {
            // Without the braces.
            const QByteArray object = JsonCodec::serialize(QVariantMap{{entry.key(), *entry}});
            form += object.mid(1, object.size() - 2).toPercentEncoding();
        }
    }
    form += "%7D%5D";
    return form;
}

QString write(const QString& directory, const QVariantMap& report)
{
    // The random part keeps two reports of one second apart; another is drawn in the odd case in
    // which they draw the same.
    const auto path = [&directory](const QString& prefix) {
        const QString suffix = QString::number(QRandomGenerator::global()->generate(), 36);
        return directory + QLatin1Char('/') + prefix + suffix;
    };
    const QString prefix = QStringLiteral("json%1.").arg(report.value(timestampKey).toString());
    const QString unfinished = path(unfinishedPrefix);
    makeDirectory(directory);
    platform::FileOutcome outcome = platform::writeToDisk(unfinished, JsonCodec::serialize(report));
    if (outcome.succeeded()) {
        QString finished;
        do {
            finished = path(prefix);
            outcome = platform::renameToFreeName(unfinished, finished);
        } while (outcome.isNameTaken);
        if (outcome.succeeded()) {
            platform::flushDirectoryToDisk(directory);
            return finished;
        }
        QFile::remove(unfinished);
    }
    qWarning() << "Error! Report can't be written: " << outcome.failure;
    return {};
}

bool writePicture(const QString& path, const QByteArray& jpeg)
{
    makeDirectory(QFileInfo(path).path());
    const platform::FileOutcome outcome = platform::writeToDisk(path, jpeg);
    if (!outcome.succeeded())
        qWarning() << "Error! Screenshot can't be written: " << outcome.failure;
    return outcome.succeeded();
}

void removeUnfinished(const QString& directory)
{
    const QFileInfoList unfinished = leftovers(directory, {unfinishedPrefix + QLatin1Char('*')});
    for (const QFileInfo& file : unfinished)
        QFile::remove(file.filePath());

    const QFileInfoList pictures =
        leftovers(directory, {QLatin1String(picturePrefix) + QLatin1String("*.jpg")});
    if (pictures.isEmpty())
        return;
    const std::optional<QSet<QByteArray>> named = namedPictures(directory);
    for (const QFileInfo& picture : pictures) {
        if (named && !named->contains(picture.fileName().toUtf8()))
            QFile::remove(picture.filePath());
    }
}

} // namespace ReportFile
