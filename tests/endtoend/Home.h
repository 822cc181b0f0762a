// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QVariant>

#include <functional>

/// How long a condition may take to come true on a machine that has other things to do.
constexpr int patience = 60000;

/// Waits, with the event loop running, and says whether it came true.
bool waitUntil(const std::function<bool()>& isTrue);

/// Empty when the file cannot be read.
QByteArray content(const QString& file);

/// A user's home directory with the program's files in it, and the clock that programs started
/// there have.
class Home {
public:
    /// The clock starts on a morning and runs so many times faster than the real one.
    explicit Home(int speed = 1);
    ~Home();

    QString path() const { return m_directory.path(); }
    /// A file of the program's data directory.
    QString file(const char* name) const;
    /// A file of the user demo@example.com.
    QString userFile(const char* name) const;

    /// A key of one of the ini files; not valid when there is none.
    static QVariant value(const QString& file, const char* key);
    static void setValue(const QString& file, const char* key, const QVariant& value);
    static void write(const QString& file, const QByteArray& content);

    /// A shell script that programs started there find under this name.
    void addProgram(const char* name, const QByteArray& script) const;

    /// The user demo@example.com has signed in and chosen this task earlier.
    void signIn(const char* teamId, const char* taskId, bool isMonitoring);

    QByteArray log() const { return content(file("log.log")); }
    int logged(const QByteArray& text) const { return log().count(text); }
    /// Until the text stands there so many times.
    bool waitForLog(const QByteArray& text, int count = 1) const;

    /// The names of the reports that wait.
    QStringList reports() const;

    /// What makes libfaketime go on with the clock of this home.
    QString fakeTime() const;

private:
    QTemporaryDir m_directory;
    const int m_speed;
    QElapsedTimer m_timer;
};
