// SPDX-License-Identifier: GPL-3.0-or-later
#include "Home.h"

#include <QDateTime>
#include <QDeadlineTimer>
#include <QDir>
#include <QSettings>
#include <QSharedMemory>
#include <QTest>
#include <QtDebug>

bool waitUntil(const std::function<bool()>& isTrue)
{
    const QDeadlineTimer deadline(patience);
    while (!isTrue()) {
        if (deadline.hasExpired())
            return false;
        QTest::qWait(40);
    }
    return true;
}

QByteArray content(const QString& file)
{
    QFile input(file);
    return input.open(QIODevice::ReadOnly) ? input.readAll() : QByteArray();
}

Home::Home(int speed)
    // Not named after the test, since what opens a browser does not find it in a path with blanks.
    : m_directory(QDir::tempPath() + QStringLiteral("/home-XXXXXX"))
    , m_speed(speed)
{
    m_timer.start();
}

Home::~Home()
{
    // The lock that a killed program leaves behind goes by the number of a file, and the file of
    // the next home may well get the same one.
    const QDir directory(path());
    const QStringList names = directory.entryList({QStringLiteral("qipc_sharedmemory_*")});
    for (const QString& name : names) {
        QSharedMemory lock;
        lock.setNativeKey(directory.filePath(name));
        lock.attach();
    }
}

QString Home::file(const char* name) const
{
    return m_directory.filePath(QStringLiteral(".tessaport/") + QString::fromLatin1(name));
}

QString Home::userFile(const char* name) const
{
    return file("demo@example.com/") + QString::fromLatin1(name);
}

QVariant Home::value(const QString& file, const char* key)
{
    return QSettings(file, QSettings::IniFormat).value(QString::fromLatin1(key));
}

void Home::setValue(const QString& file, const char* key, const QVariant& value)
{
    QSettings(file, QSettings::IniFormat).setValue(QString::fromLatin1(key), value);
}

void Home::write(const QString& file, const QByteArray& content)
{
    QDir().mkpath(QFileInfo(file).path());
    QFile output(file);
    if (!output.open(QIODevice::WriteOnly) || output.write(content) != content.size())
        qWarning() << "Cannot write" << file << output.errorString();
}

void Home::addProgram(const char* name, const QByteArray& script) const
{
    const QString file = m_directory.filePath(QString::fromLatin1(name));
    write(file, "#!/bin/sh\n" + script + '\n');
    QFile::setPermissions(file, QFile::ReadOwner | QFile::ExeOwner);
}

void Home::signIn(const char* teamId, const char* taskId, bool isMonitoring)
{
    setValue(file("config.ini"), "lastLogin", QStringLiteral("demo@example.com"));
    const QString session = userFile("session.ini");
    setValue(session, "password", QStringLiteral("demo"));
    setValue(session, "logged", true);
    setValue(session, "active", isMonitoring);
    setValue(session, "teamID", QString::fromLatin1(teamId));
    setValue(session, "taskID", QString::fromLatin1(taskId));
}

bool Home::waitForLog(const QByteArray& text, int count) const
{
    return waitUntil([&] { return logged(text) >= count; });
}

QStringList Home::reports() const
{
    return QDir(userFile("activity")).entryList({QStringLiteral("json*")}, QDir::Files);
}

QString Home::fakeTime() const
{
    const QDateTime start({2024, 5, 14}, {9, 0});
    return start.addMSecs(m_timer.elapsed() * m_speed)
               .toString(QStringLiteral("'@'yyyy-MM-dd hh:mm:ss"))
        + QStringLiteral(" x%1").arg(m_speed);
}
