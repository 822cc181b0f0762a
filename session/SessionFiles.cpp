// SPDX-License-Identifier: GPL-3.0-or-later
#include "session/Session.h"

#include "session/IniFile.h"

#include <QDir>

#include <utility>

namespace {

QString lastLoginKey()
{
    return QStringLiteral("lastLogin");
}

// What is stored under the key, or, if that is nothing of this type, an empty value, which the next
// save writes.
template <typename Type>
Type stored(const IniFile& file, const QString& key, std::set<QString>& unsaved)
{
    const QVariant value = file.value(key);
    if (value.userType() != qMetaTypeId<Type>())
        unsaved.insert(key);
    return value.value<Type>();
}

} // namespace

void Session::loadLastSession()
{
    const QString lastLogin = m_configSettings->value(lastLoginKey()).toString();
    if (!lastLogin.isEmpty())
        load(lastLogin, QString());
}

void Session::load(const QString& login, const QString& password)
{
    m_login = login;
    if (!password.isEmpty())
        m_password = password;
    makeUserDirectories();

    m_sessionSettings = std::make_unique<IniFile>(userPath(QStringLiteral("session.ini")));
    if (m_sessionSettings->isOnDisk())
        loadSessionFile(password.isEmpty());

    m_teamsSettings = std::make_unique<IniFile>(userPath(QStringLiteral("teams.ini")));
    const QStringList teamIds = m_teamsSettings->keys();
    for (const QString& id : teamIds)
        m_teams.append({id, m_teamsSettings->value(id).toString()});

    m_tasksSettings = std::make_unique<IniFile>(userPath(QStringLiteral("tasks.ini")));
    const QStringList taskTeamIds = m_tasksSettings->keys();
    for (const QString& id : taskTeamIds)
        m_tasks.setTasks(id, stored<QList<Task>>(*m_tasksSettings, id, m_unsavedTasks));

    m_taskInfoSettings = std::make_unique<IniFile>(userPath(QStringLiteral("taskInfo.ini")));
    const QStringList taskIds = m_taskInfoSettings->keys();
    for (const QString& id : taskIds)
        m_taskInfos.insert(id, stored<TaskInfo>(*m_taskInfoSettings, id, m_unsavedTaskInfos));

    m_owner->removeOldData();
}

void Session::loadSessionFile(bool withPassword)
{
    const IniFile& file = *m_sessionSettings;
    if (withPassword)
        m_password = file.value(QStringLiteral("password")).toString();
    m_logged = file.value(QStringLiteral("logged"), false).toBool();
    m_active = file.value(QStringLiteral("active"), false).toBool();
    m_teamID = file.value(QStringLiteral("teamID")).toString();
    m_taskID = file.value(QStringLiteral("taskID")).toString();
    m_isOnline = file.value(QStringLiteral("isOnline"), true).toBool();
    m_worktimeDate = QDate::fromString(file.value(QStringLiteral("worktimeDate")).toString());

    const QDate today = QDate::currentDate();
    if (m_worktimeDate == today) {
        loadCounters();
        emit timeUpdated();
    } else {
        m_worktimeDate = today;
    }
}

void Session::loadCounters()
{
    const auto readTime = [this](const QString& key, QTime& counted, QTime& shown) {
        const QTime time = QTime::fromString(m_sessionSettings->value(key).toString());
        if (time.isValid())
            counted = shown = QTime(time.hour(), time.minute());
    };
    readTime(QStringLiteral("todayWorktime"), m_todayWorktime, m_displayWorktime);
    readTime(QStringLiteral("todayActivetime"), m_todayActivetime, m_displayActivetime);
    m_task2activeTimeMap = m_sessionSettings->value(QStringLiteral("task2activeTimeMap")).toMap();
}

void Session::save()
{
    // The whole directory may have been removed by a second start with "--clean".
    if (!m_owner->dataDir().exists()) {
        m_owner->enterDataDirectory();
        if (m_sessionSettings)
            makeUserDirectories();
    }
    m_configSettings->takeOverChanges();
    m_configSettings->setValue(lastLoginKey(), m_login);
    m_configSettings->write();
    if (m_sessionSettings && !m_login.isEmpty())
        saveSessionFile();
    if (m_teamsSettings)
        saveTeams();
    if (m_tasksSettings)
        saveTasks();
    if (m_taskInfoSettings)
        saveTaskInfos();
}

void Session::saveSessionFile()
{
    const std::pair<QString, QVariant> values[] = {
        {QStringLiteral("password"), m_password},
        {QStringLiteral("logged"), m_logged},
        {QStringLiteral("active"), m_active},
        {QStringLiteral("teamID"), m_teamID},
        {QStringLiteral("taskID"), m_taskID},
        {QStringLiteral("isOnline"), m_isOnline},
        {QStringLiteral("worktimeDate"), m_worktimeDate.toString()},
        {QStringLiteral("todayWorktime"), m_todayWorktime.toString()},
        {QStringLiteral("todayActivetime"), m_todayActivetime.toString()},
        {QStringLiteral("task2activeTimeMap"), m_task2activeTimeMap},
    };
    m_sessionSettings->takeOverChanges();
    for (const auto& [key, value] : values)
        m_sessionSettings->setValue(key, value);
    m_sessionSettings->write();
}

void Session::saveTeams()
{
    QMap<QString, QString> names;
    for (const Team& team : qAsConst(m_teams))
        names.insert(team.id, team.name);

    m_teamsSettings->takeOverChanges();
    QMap<QString, QString> storedNames;
    const QStringList storedIds = m_teamsSettings->keys();
    for (const QString& id : storedIds)
        storedNames.insert(id, m_teamsSettings->value(id).toString());

    if (names != storedNames) {
        m_teamsSettings->clear();
        for (const Team& team : qAsConst(m_teams))
            m_teamsSettings->setValue(team.id, team.name);
    }
    m_teamsSettings->write();
}

// What is cached can be thousands of records, so that the two files that hold them go by what was
// changed here, and not by a look at everything.

void Session::saveTasks()
{
    if (m_tasksSettings->takeOverChanges()) {
        for (const QString& id : m_tasks.teamIds())
            m_unsavedTasks.insert(id);
    }
    for (const QString& id : m_unsavedTasks)
        m_tasksSettings->setValue(id, QVariant::fromValue(m_tasks.tasks(id)));
    m_unsavedTasks.clear();
    m_tasksSettings->write();
}

void Session::saveTaskInfos()
{
    if (m_taskInfoSettings->takeOverChanges()) {
        for (auto id = m_taskInfos.keyBegin(); id != m_taskInfos.keyEnd(); ++id)
            m_unsavedTaskInfos.insert(*id);
    }
    for (const QString& id : m_unsavedTaskInfos)
        m_taskInfoSettings->setValue(id, QVariant::fromValue(m_taskInfos.value(id)));
    m_unsavedTaskInfos.clear();
    m_taskInfoSettings->write();
}

void Session::reset()
{
    m_login.clear();
    m_password.clear();
    m_teamID.clear();
    m_taskID.clear();
    m_active = false;
    m_logged = false;
    // Unlike in a new session; see docs/decisions.md.
    m_isOnline = false;
    m_worktimeDate = QDate::currentDate();
    clearCounters();
    m_resetTime = QDateTime::currentDateTime();
    m_taskInfos.clear();
    m_tasks.clear();
    m_teams.clear();
    m_unsavedTasks.clear();
    m_unsavedTaskInfos.clear();
    m_sessionSettings.reset();
    m_teamsSettings.reset();
    m_tasksSettings.reset();
    m_taskInfoSettings.reset();
}

QString Session::userPath(const QString& name) const
{
    return m_owner->dataDir().path() + QLatin1Char('/') + m_login + QLatin1Char('/') + name;
}

void Session::makeUserDirectories() const
{
    const QDir directory = m_owner->dataDir();
    directory.mkdir(m_login);
    directory.mkdir(m_login + QStringLiteral("/activity"));
}
