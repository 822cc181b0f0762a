// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "session/Records.h"
#include "session/SessionOwner.h"
#include "session/TaskLists.h"

#include <QDate>
#include <QHash>
#include <QTime>
#include <QVariant>

#include <memory>
#include <set>

class IniFile;
struct TaskChange;

/// All that is remembered of the signed-in user: credentials, the chosen team and task, the day's
/// counters, and the cached teams, tasks and details. It lives in memory and is mirrored into ini
/// files of the data directory. Nothing here reports a failure: what can't be read is a default.
///
/// The day's counters are times used as durations from 00:00:00; they wrap at 24 hours. The
/// counted pair (work time, active time) moves by whole minutes and is saved; the shown pair runs
/// ahead of it by the second and is pulled back to it.
class SessionOwner::Session : public QObject {
    Q_OBJECT

public:
    /// The owner gives the data directory and has to outlive the session.
    explicit Session(SessionOwner* owner, QObject* parent = nullptr);
    ~Session() override;

    QString login() const { return m_login; }
    void setLogin(const QString& login) { m_login = login; }
    QString password() const { return m_password; }
    void setPassword(const QString& password) { m_password = password; }
    bool logged() const { return m_logged; }
    void setLogged(bool logged) { m_logged = logged; }
    bool active() const { return m_active; }
    void setActive(bool active) { m_active = active; }
    bool isOnline() const { return m_isOnline; }
    void setIsOnline(bool isOnline) { m_isOnline = isOnline; }
    QDate worktimeDate() const { return m_worktimeDate; }
    void setWorktimeDate(const QDate& date) { m_worktimeDate = date; }
    QString teamID() const { return m_teamID; }
    void setTeamID(const QString& teamID) { m_teamID = teamID; }
    /// Empty: no task chosen.
    QString taskID() const { return m_taskID; }
    /// Emits taskChanged when the value is a new one.
    void setTaskID(const QString& taskID);

    // --- Files

    /// Loads the user who was signed in last, if there is one.
    void loadLastSession();
    /// Opens the user's files and takes over what they hold; makes the user's directories. An
    /// empty password is replaced by the stored one. Has to follow construction or reset().
    void load(const QString& login, const QString& password);
    /// Brings the files up to date; a file whose content would not change is not written.
    void save();
    /// Back to a signed-out state. Until the next load() there are no files of a user, and save()
    /// may not be called.
    void reset();

    // --- Teams, tasks and details

    QList<Team> teams() const { return m_teams; }
    /// A default team when there is none of this id.
    Team team(const QString& id) const;
    /// In the order of the service; empty for an unknown team.
    QList<Task> tasks(const QString& teamId) const;
    /// A default task when there is none.
    Task task(const QString& teamId, const QString& taskId) const;
    /// Each task of any team once; of several with one id, the first by team id.
    QList<Task> allTasks() const;
    /// The tasks of the team that rule out work on its others, in list order.
    QList<Task> blockingTasks(const QString& teamId) const;
    /// Takes over a team's new list: says what changed by notices and signals, then stores it.
    /// Before the first save of this user's tasks nothing changed, and no notice is shown; the list
    /// of the last known team then brings that save.
    void setTasks(const QList<Task>& newTasks, const QString& teamId);
    /// Takes over the new list of teams: says what changed by notices, then stores it. Before the
    /// first save of this user's teams no notice is shown.
    void setTeams(const QList<Team>& newTeams);
    /// Takes the task out of every team's list.
    void removeTask(const Task& task);
    /// Gives the same task in all other teams the deadline that it has here.
    void copyDeadlineToOtherTeams(const QString& teamId, const Task& task);
    void setTaskInfo(const QString& id, const TaskInfo& info);
    /// The details of a task. When there are none an empty record is stored under the id, and so
    /// written to the file; see docs/decisions.md.
    TaskInfo taskInfo(const QString& id);

    // --- Time

    /// On a later date than that of the counters, sets them all to zero and that date to today's,
    /// with no signal; whether it did. Whatever is of today has to be told after this.
    bool beginDay();
    /// One second of a running monitor: one second more on the shown counters, however long ago the
    /// last one was, or the beginning of the day.
    void tick();
    /// One minute more of work time; saves.
    void addWorkMinute();
    /// One minute more of active time, for the chosen task too. It follows addWorkMinute(), whose
    /// save came before: it is on disk only with the next one.
    void addActiveMinute();
    void syncDisplayActivetime();
    void syncDisplayWorktime();
    /// The counted and the shown work time; no signal.
    void setTodayWorktime(const QTime& time);
    /// The counted active time; the shown one stays. It also moves the shown *work* time there if
    /// their minutes differ, and tells that, so that setTodayWorktime() has to follow.
    void setTodayActivetime(const QTime& time);
    void setTaskActiveTime(const QString& taskId, const QTime& time);
    /// 00:00:00 for a task that has no entry.
    QTime todayActiveTime(const QString& taskId) const;
    QTime displayWorktime() const { return m_displayWorktime; }
    QTime displayActivetime() const { return m_displayActivetime; }
    QTime todayActivetime() const { return m_todayActivetime; }
    /// The chosen task's deadline, invalid when the task is unknown; now for the row of time that
    /// is booked on no real task.
    QDateTime taskDeadline() const;
    /// Seconds since the chosen task's deadline; negative while it is ahead. Also 0 when there is
    /// no deadline, which only taskDeadline() can tell.
    qint64 overdueSeconds() const;

signals:
    void teamsUpdated();
    void tasksUpdated(QString teamId);
    /// A counter changed.
    void timeUpdated();
    /// The task is gone from the service.
    void taskClosed(QString taskId);
    void taskChanged(QString taskId);
    /// The chosen task has a new deadline.
    void overdueTimeChanged();

private:
    QString userPath(const QString& name) const;
    void makeUserDirectories() const;
    void loadSessionFile(bool withPassword);
    void loadCounters();
    void saveSessionFile();
    void saveTeams();
    void saveTasks();
    void saveTaskInfos();
    void clearCounters();
    void tell(const QString& teamId, const TaskChange& change);

    SessionOwner* const m_owner;
    QString m_teamID;
    QString m_taskID;
    QString m_login;
    QString m_password;
    bool m_active = false;
    bool m_logged = false;
    bool m_isOnline = true;
    QDate m_worktimeDate;
    QTime m_todayWorktime{0, 0};
    QTime m_displayWorktime{0, 0};
    QTime m_todayActivetime{0, 0};
    QTime m_displayActivetime{0, 0};
    QDateTime m_resetTime; ///< of the last reset(); nothing reads it
    std::unique_ptr<IniFile> m_configSettings;
    std::unique_ptr<IniFile> m_sessionSettings;
    std::unique_ptr<IniFile> m_teamsSettings;
    std::unique_ptr<IniFile> m_tasksSettings;
    std::unique_ptr<IniFile> m_taskInfoSettings;
    TaskLists m_tasks;
    QHash<QString, TaskInfo> m_taskInfos;
    QList<Team> m_teams;
    QVariantMap m_task2activeTimeMap;
    // The keys of tasks.ini and taskInfo.ini whose values are newer than the file's.
    std::set<QString> m_unsavedTasks;
    std::set<QString> m_unsavedTaskInfos;
};

using Session = SessionOwner::Session;
