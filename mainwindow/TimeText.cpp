// SPDX-License-Identifier: GPL-3.0-or-later
#include "mainwindow/TimeText.h"

QString overdueText(const QDateTime& deadline, const QDateTime& now)
{
    constexpr int secondsPerDay = 24 * 60 * 60;
    qint64 days = deadline.daysTo(now);
    const int untilTimeOfDay = now.time().secsTo(deadline.time());
    int rest = -untilTimeOfDay;
    if (untilTimeOfDay > 0) {
        --days;
        rest = secondsPerDay - untilTimeOfDay;
    }

    QString text;
    if (days > 0)
        text += QStringLiteral("%1д. ").arg(days);
    const QTime time = QTime(0, 0).addSecs(rest);
    if (time.hour() > 0)
        text += QStringLiteral("%1ч. ").arg(time.hour());
    // The blank stands before this word only; see docs/decisions.md.
    if (time.minute() > 0)
        text += QStringLiteral("%1 мин.").arg(time.minute());
    return text;
}

QString durationText(const QTime& duration)
{
    const QString minutes = duration.toString(QStringLiteral("m")) + QStringLiteral("мин");
    if (duration < QTime(1, 0))
        return minutes;
    return duration.toString(QStringLiteral("h")) + QStringLiteral("ч. ") + minutes;
}
