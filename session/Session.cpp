// SPDX-License-Identifier: GPL-3.0-or-later
#include "session/Session.h"

#include "session/IniFile.h"

#include <QDebug>

Session::Session(SessionOwner* owner, QObject* parent)
    : QObject(parent)
    , m_owner(owner)
    , m_configSettings(
          std::make_unique<IniFile>(owner->dataDir().filePath(QStringLiteral("config.ini"))))
{
}

Session::~Session() = default;

void Session::setTaskID(const QString& taskID)
{
    if (m_taskID == taskID)
        return;
    m_taskID = taskID;
    emit taskChanged(taskID);
}

bool Session::beginDay()
{
    const QDate today = QDate::currentDate();
    if (today <= m_worktimeDate)
        return false;
    m_worktimeDate = today;
    clearCounters();
    return true;
}

void Session::tick()
{
    if (!beginDay()) {
        m_displayWorktime = m_displayWorktime.addSecs(1);
        m_displayActivetime = m_displayActivetime.addSecs(1);
    }
    emit timeUpdated();
}

void Session::addWorkMinute()
{
    m_todayWorktime = m_todayWorktime.addSecs(60);
    save();
}

void Session::addActiveMinute()
{
    m_todayActivetime = m_todayActivetime.addSecs(60);
    // The day's total, and not the task's own sum; see docs/decisions.md.
    m_task2activeTimeMap[m_taskID] = m_todayActivetime;
}

void Session::syncDisplayActivetime()
{
    m_displayActivetime = m_todayActivetime;
    emit timeUpdated();
}

void Session::syncDisplayWorktime()
{
    m_displayWorktime = m_todayWorktime;
    emit timeUpdated();
}

void Session::setTodayWorktime(const QTime& time)
{
    m_todayWorktime = time;
    m_displayWorktime = time;
}

void Session::setTodayActivetime(const QTime& time)
{
    m_todayActivetime = time;
    // It is the shown work time that is compared and pulled: setTodayWorktime() follows and sets it
    // anyway.
    if (m_displayWorktime.minute() == m_todayActivetime.minute())
        return;
    m_displayWorktime = m_todayActivetime;
    emit timeUpdated();
}

void Session::setTaskActiveTime(const QString& taskId, const QTime& time)
{
    m_task2activeTimeMap[taskId] = time;
}

QTime Session::todayActiveTime(const QString& taskId) const
{
    qDebug() << "Session.cpp todayActiveTime";
    const QTime time = m_task2activeTimeMap.value(taskId).toTime();
    return time.isValid() ? time : QTime(0, 0);
}

QDateTime Session::taskDeadline() const
{
    if (m_taskID == unassignedTaskId)
        return QDateTime::currentDateTime();
    return task(m_teamID, m_taskID).deadline;
}

qint64 Session::overdueSeconds() const
{
    return taskDeadline().secsTo(QDateTime::currentDateTime());
}

void Session::clearCounters()
{
    m_todayWorktime = m_displayWorktime = QTime(0, 0);
    m_todayActivetime = m_displayActivetime = QTime(0, 0);
    m_task2activeTimeMap.clear();
}
