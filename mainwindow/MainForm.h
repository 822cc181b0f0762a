// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "mainwindow/AbstractMainForm.h"

#include <QDate>
#include <QDateTime>
#include <QElapsedTimer>
#include <QImage>
#include <QSystemTrayIcon>
#include <QTimer>

#include <memory>

class AboutForm;
class QMenu;
class ScrollText;
class TaskForm;
class TaskListForm;
namespace Ui {
class MainForm;
}

/// The strip in the corner of the desktop, the tray icon, and the clock of the program: it owns
/// the timers that drive everything that happens by itself, and it is the state machine of the
/// monitor.
///
/// Time is accounted in whole minutes. Ten slots of six seconds make one minute and one report;
/// a minute with input in any of its slots is a whole active minute. Whether the monitor runs is
/// Session::active(), which outlives the program.
class MainForm : public AbstractMainForm {
    Q_OBJECT

public:
    /// Starts the timers, and the monitor if it ran when the session was saved. The service
    /// client is not owned and has to outlive the window.
    MainForm(TessaPort* service, QWidget* parent);
    ~MainForm() override;

    TessaPort* service() const override { return m_tessaPort; }
    QIcon taskIcon(const Task& task) const override;
    void updateAttention() override;

signals:
    /// Declared for listeners of the window; the service client's signal of this name is the one
    /// that comes.
    void teamChanged(QString teamId);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;

private slots:
    void showActivityMessage();
    void checkNeedCloseToUpdate();
    void updateOnlineState(QString message);
    void onTaskChange();
    void updateForNewLogin();
    void updateComments();
    /// Ends a slot and, with the tenth, the minute. When forced, the minute ends at once and
    /// counts whole, and a picture goes with its report; nothing in the program forces it.
    void sendActivity(bool forceSend = false);
    void setHasActivity();
    void clock();
    void checkUpdate();
    void trayActivated(QSystemTrayIcon::ActivationReason reason);
    void on_actionExit_triggered();
    void on_actionToggleVisible_triggered();
    void on_pbMinimize_clicked();
    void on_actionStartStop_triggered();
    void on_pbPlay_toggled(bool checked);
    void startTracking();
    void stopTracking();
    void on_pbNotice_clicked();
    void on_pbTimeExtend_clicked();
    void on_pbTask_clicked();
    void on_actionChangeAccount_triggered();
    void on_actionAbout_triggered();
    void onTaskFormAccepted();
    void updateTimerLbl();
    void closeTask(QString task_id);
    void hideAllHandler();
    void showAllHandler();
    void updateOverdueTime();
    void onStartTimerShortcut_activated();
    void onStopTimerShortcut_activated();
    void onTaskUpdated(QString teamId);
    void syncTime();
    void screenshotTimeout();
    void onRequestDeadlineAccepted();

private:
    void setupWindow();
    void setupTimers();
    void setupConnections();
    void setupTray();
    void setupTrayMenu();
    void updateTrayIcon();
    void updatePlayButton();
    void updateNoticeButton();
    void toggleClockMode();
    void toggleTaskList();
    bool isUpdateProcessRunning() const;
    /// Shows the button as pressed or not, without starting or stopping anything.
    void showPlayState(bool isRunning);
    /// The answer to a sign-in may come when its window has been closed and the monitor started
    /// again: the minute under way is not the new user's.
    void endEarlierUsersMinute();
    /// Sends a picture of the desktop if one is due or forced.
    void takeScreenshot(bool force);

    // Tracking
    QTimer m_activityTimer;
    QTimer m_checkUpdateTimer;
    QTimer m_closeForUpdateTimer;
    QTimer m_commentsTimer;
    QTimer m_clockTimer;
    QTimer m_activityMessageTimer;
    QTimer m_syncTimer;
    QTimer m_screenshotTimer;
    bool m_hasActivity = false; ///< input was seen in the slot under way
    int m_sampleCount = 0; ///< slots finished in the minute under way
    int m_activeSamples = 0; ///< of those, slots with input
    QDateTime m_lastReportTime; ///< nothing reads it
    bool m_screenshotPending = true; ///< the next report takes a picture
    TessaPort* const m_tessaPort;

    // Display
    std::unique_ptr<Ui::MainForm> m_ui;
    QImage m_mainImage;
    QImage m_stretchedImage; ///< paintPanel()'s
    QMenu* m_menu = nullptr;
    QSystemTrayIcon* m_trayIcon = nullptr;
    QString m_trayPicture; ///< what the tray shows
    QElapsedTimer m_sinceTrayClick; ///< not valid without a click that may become a double click
    std::unique_ptr<ScrollText> m_lbTask;
    std::unique_ptr<TaskForm> m_taskForm;
    std::unique_ptr<AboutForm> m_aboutForm;
    TaskListForm* m_taskListForm = nullptr;
    bool m_showActiveTime = false; ///< the clock shows active time instead of work time
    // One of each, shared by all rows of a list.
    const QIcon m_blockingIcon{QStringLiteral(":/images/pbTaskBlocked.png")};
    const QIcon m_urgentIcon{QStringLiteral(":/images/pbTaskUrgentGrey.png")};
    const QIcon m_ordinaryIcon{QStringLiteral(":/images/pbTask.png")};
};
