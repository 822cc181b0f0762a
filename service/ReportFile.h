// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QTemporaryFile>
#include <QVariant>

#include <memory>

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

/// What is posted of a report without a version: "api-url", "timestamp" and "body", with the
/// seconds since the report was written added to the body's "past".
QVariantMap rebuildLegacyReport(const QVariantMap& report, const QDateTime& now);

/// The same for a report with a version. When its body names a picture, the picture is read and
/// put into the body; one that can't be read is logged and left out.
QVariantMap rebuildReport(const QVariantMap& report, const QDateTime& now);

/// The form data of a post: an array that holds the body alone, percent-encoded.
QByteArray payload(const QVariant& body);

/// Writes a file that appears in the directory only when all of it is on disk. The file is
/// closed and stays when the object goes. Null when it could not be written.
std::unique_ptr<QTemporaryFile> write(const QString& directory, const QByteArray& content,
                                      const QDateTime& now);

/// Removes what a process that was killed while it wrote may have left.
void removeUnfinished(const QString& directory);

/// The name of the report that goes out first, which is the first by name, case ignored; empty
/// when none waits. Reports of the beginning of a month thus go before older ones of the end of
/// the month before, which "past" makes harmless.
QString first(const QString& directory);

} // namespace ReportFile
