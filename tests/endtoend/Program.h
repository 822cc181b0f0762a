// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Desktop.h"
#include "Home.h"
#include "support/BoundProcess.h"

#include <optional>

/// The unmodified program, run in somebody's home. What waits, waits until something is seen on
/// screen or on disk; false means that it has not been seen.
class Program {
public:
    /// The home outlives the program.
    explicit Program(const Home& home);
    /// Kills it if it still runs. In a test that fails, tells what it wrote last and saves a
    /// picture of the desktop.
    ~Program();

    /// For the next start; without a value the variable goes.
    void setVariable(const char* name, const char* value = nullptr);
    void start(const QStringList& arguments = {});
    /// Asks it to end, as the system does.
    void terminate() { m_process.terminate(); }
    bool isRunning() const { return m_process.state() != QProcess::NotRunning; }
    /// At once, whatever it is doing.
    void kill();
    /// The exit code once it has ended by itself; -1 when it does not end or crashes.
    int waitForExit();
    /// What it has written to its standard output.
    QByteArray output() const { return content(outputFile()); }

    std::optional<DesktopWindow> window(const QString& title) const;
    bool waitFor(const QString& title) const;
    bool waitForGone(const QString& title) const;
    /// Until keys go to it.
    bool waitForActive(const QString& title) const;
    /// Waits for the window, and clicks at a place in it as soon as it stands still.
    bool click(const QString& title, const QPoint& place) const;
    /// Clicks there, and waits for a part of the desktop, as seen from the window, to change.
    bool clickToChange(const QString& title, const QPoint& place, const QRect& part) const;
    /// What a part of the desktop, as seen from the window, looks like; null without the window.
    QImage picture(const QString& title, const QRect& part) const;

    /// Until so many of its notices are on screen.
    bool waitForNotices(int count) const;

    /// Opens the task picker from the strip, and waits until the service has filled it anew.
    bool openTaskPicker() const;
    /// Opens the menu of the strip, and presses these keys.
    bool chooseFromMenu(const char* keys) const;

private:
    QVector<DesktopWindow> windows() const;
    QString outputFile() const { return m_home.path() + QStringLiteral("/output.txt"); }
    QString errorFile() const { return m_home.path() + QStringLiteral("/errors.txt"); }
    void tellOfFailure() const;

    const Home& m_home;
    BoundProcess m_process;
};
