// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "service/ResultCode.h"
#include "session/Records.h"

#include <QByteArray>
#include <QNetworkReply>
#include <QTime>

#include <optional>

/// What the service's answers mean, from bytes to values. Nothing here keeps anything or asks for
/// more; a refusal is named in the log.
namespace ServiceReply {

/// With what the service refused, as TessaPort::error() tells it, or nothing when the body is
/// usable. The tests are on raw bytes and know only a few refusals; a page of HTML that
/// begins in another way, for instance, counts as usable.
std::optional<ResultCode> refusal(const QByteArray& body);

/// ConnectionError, SiteUnavailable or OtherNetworkError for an exchange that failed.
ResultCode resultCode(QNetworkReply::NetworkError error);

struct TeamWithTasks {
    Team team;
    QList<Task> tasks; ///< in the order of the service, the row of unassigned time last
};

/// Teams without an id are left out, tasks included. What is no list gives an empty one.
QList<TeamWithTasks> teamsAndTasks(const QByteArray& body);

/// An answer with a status: `message` holds what was asked for, or the reason of a refusal.
struct Answer {
    bool ok = false;
    QVariant message;
};
Answer answer(const QByteArray& body);

/// The details in the message of an answer; a default record when it is no object.
TaskInfo taskInfo(const QVariant& message);

/// What is booked for today, as times from midnight that wrap at 24 hours. What is missing or
/// unreadable is midnight.
struct DayTotals {
    QTime active;
    QTime total;
    QTime task;
};
DayTotals dayTotals(const QByteArray& body);

} // namespace ServiceReply
