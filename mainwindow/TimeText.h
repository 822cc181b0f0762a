// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QString>

/// How long ago the deadline was, in days, hours and minutes, leaving out what is zero; empty
/// within the first minute. The deadline has to be in the past.
QString overdueText(const QDateTime& deadline, const QDateTime& now);

/// A duration below 24 hours in minutes, or in hours and minutes from one hour on.
QString durationText(const QTime& duration);
