// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "session/Records.h"

inline QDateTime at(int hour)
{
    return QDateTime(QDate(2025, 5, 12), QTime(hour, 0));
}

/// A task that is told apart from others by what is called on it; hours are those of one day.
struct Sample : Task {
    explicit Sample(const char* taskId, const char* taskTitle = "t")
    {
        id = QString::fromLatin1(taskId);
        title = QString::fromUtf8(taskTitle);
    }
    Sample& blocking(const char* mark = "1")
    {
        block = QString::fromLatin1(mark);
        return *this;
    }
    Sample& commented(int hour)
    {
        lastComment = at(hour);
        return *this;
    }
    Sample& due(int hour)
    {
        deadline = at(hour);
        return *this;
    }
};
