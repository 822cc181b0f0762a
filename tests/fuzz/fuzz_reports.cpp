// SPDX-License-Identifier: GPL-3.0-or-later
#include "Fuzz.h"
#include "service/JsonCodec.h"
#include "service/ReportFile.h"

#include <QDateTime>

/// The content of a waiting report, up to what is posted of it.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QDateTime now({2024, 5, 14}, {9, 0});
    const QVariantMap report =
        JsonCodec::parse(QString::fromUtf8(reinterpret_cast<const char*>(data), int(size))).toMap();
    const QVariantMap rebuilt = ReportFile::hasVersion(report)
        ? ReportFile::rebuildReport(report, now)
        : ReportFile::rebuildLegacyReport(report, now);
    const QVariantMap body = rebuilt.value(QStringLiteral("body")).toMap();
    require(!body.value(QStringLiteral("past")).toString().isEmpty());
    const QByteArray payload = ReportFile::payload(body);
    require(payload.startsWith("data=%5B%7B") && payload.endsWith("%7D%5D"));
    return 0;
}
