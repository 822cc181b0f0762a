// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QVariant>

/// The file in which a record waits until the service has confirmed it: one JSON object with the
/// address to post to ("api-url"), the record ("body"), the time of writing ("timestamp") and the
/// version of this format ("version"; files of earlier programs have none).
namespace ReportFile {

/// Date and time as they stand in file names and in "timestamp", local time.
QString timestamp(const QDateTime& moment);

/// A report that is about to be written.
QVariantMap report(const QVariant& apiUrl, const QVariant& body, const QDateTime& now);

/// Whether a report says in which format it is.
bool hasVersion(const QVariantMap& report);

/// What is posted of a report: "api-url", "timestamp" and "body", with the seconds since the report
/// was written added to the body's "past". For one without a version, from an earlier program,
/// whose picture is in the body already, that is all.
QVariantMap rebuildLegacyReport(const QVariantMap& report, const QDateTime& now);

/// The same for a report with a version, as every new one is. When its body names a picture, the
/// picture is put into the body as "file", a QByteArray: these bytes, or, when there are none,
/// those of the file; one that can't be read is logged and left out.
QVariantMap rebuildReport(const QVariantMap& report, const QDateTime& now,
                          const QByteArray& picture = {});

/// The form data of a post: an array that holds the body alone, percent-encoded. A QByteArray in
/// the body, which only a picture is, is its base64.
QByteArray payload(const QVariant& body);

/// Writes a report into a file that appears in the directory only when all of it is on disk. The
/// path of that file; empty, and the reason in the log, when it could not be written.
QString write(const QString& directory, const QVariantMap& report);

/// Writes a picture to this path. False, and the reason in the log, when it could not be written.
bool writePicture(const QString& path, const QByteArray& jpeg);

/// Removes what a process that was killed may have left a minute or more ago: unfinished reports,
/// and pictures that no waiting report names.
void removeUnfinished(const QString& directory);

} // namespace ReportFile
