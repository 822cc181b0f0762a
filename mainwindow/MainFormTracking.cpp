// SPDX-License-Identifier: GPL-3.0-or-later
#include "mainwindow/MainForm.h"

#include "capture/DesktopGrab.h"
#include "dialogs/PlainToolTip.h"
#include "dialogs/ScrollText.h"
#include "mainwindow/TimeText.h"
#include "notifications/NotificationManager.h"
#include "platform/Processes.h"
#include "service/TessaPort.h"
#include "ui_MainForm.h"
#include "update/ElevatedStart.h"
#include "update/UpdateState.h"

#include <QSignalBlocker>

namespace {

constexpr int slotsPerMinute = 10;

} // namespace

// --- The minute

void MainForm::setHasActivity()
{
    m_hasActivity = true;
}

void MainForm::sendActivity(bool forceSend)
{
    ++m_sampleCount;
    if (m_hasActivity) {
        ++m_activeSamples;
        m_hasActivity = false;
    }
    if (m_sampleCount != slotsPerMinute && !forceSend)
        return;
    Session* session = m_tessaPort->session();
    session->addWorkMinute();
    if (m_activeSamples > 0)
        session->addActiveMinute();
    else
        session->syncDisplayActivetime();
    m_tessaPort->sendActivity(m_activeSamples);
    m_sampleCount = 0;
    m_activeSamples = 0;
    m_lastReportTime = QDateTime::currentDateTime();
    takeScreenshot(forceSend);
}

void MainForm::takeScreenshot(bool force)
{
    if (!m_screenshotPending && !force)
        return;
    m_screenshotPending = false;
    m_screenshotTimer.start();
    m_tessaPort->sendScreenshot(grabDesktop());
}

void MainForm::screenshotTimeout()
{
    m_screenshotPending = true;
    m_screenshotTimer.stop();
}

void MainForm::clock()
{
    m_tessaPort->session()->tick();
    updateOverdueTime();
}

// --- Start and stop

void MainForm::startTracking()
{
    m_hasActivity = false;
    m_sampleCount = 0;
    m_activeSamples = 0;
    qDebug("Monitor started");
    m_tessaPort->session()->setActive(true);
    m_activityTimer.start();
    m_clockTimer.start();
    if (!m_screenshotTimer.isActive() && !m_screenshotPending)
        m_screenshotTimer.start();
    m_activityMessageTimer.start();
    m_ui->actionStartStop->setText(QStringLiteral("Стоп"));
    updateTrayIcon();
    updatePlayButton();
    showPlayState(true);
}

void MainForm::stopTracking()
{
    qDebug("Monitor stopped");
    m_tessaPort->session()->setActive(false);
    m_activityTimer.stop();
    m_clockTimer.stop();
    m_screenshotTimer.stop();
    m_activityMessageTimer.stop();
    m_tessaPort->session()->syncDisplayActivetime();
    m_tessaPort->session()->syncDisplayWorktime();
    m_ui->actionStartStop->setText(QStringLiteral("Старт"));
    updateTrayIcon();
    updatePlayButton();
    showPlayState(false);
}

void MainForm::showPlayState(bool isRunning)
{
    const QSignalBlocker blocker(m_ui->pbPlay);
    m_ui->pbPlay->setChecked(isRunning);
}

void MainForm::on_pbPlay_toggled(bool checked)
{
    qDebug("MainForm on_pbPlay_toggled");
    if (checked)
        startTracking();
    else
        stopTracking();
}

void MainForm::on_actionStartStop_triggered()
{
    qDebug("MainForm on_actionStartStop_triggered");
    m_ui->pbPlay->setChecked(!m_ui->pbPlay->isChecked());
}

void MainForm::onStartTimerShortcut_activated()
{
    const Session* session = m_tessaPort->session();
    if (!session->active() && !session->taskID().isEmpty())
        startTracking();
}

void MainForm::onStopTimerShortcut_activated()
{
    if (m_tessaPort->session()->active())
        stopTracking();
}

// --- The chosen task

void MainForm::onTaskChange()
{
    Session* session = m_tessaPort->session();
    QString taskId = session->taskID();
    const Task task = session->task(session->teamID(), taskId);
    const QList<Task> blocking = session->blockingTasks(session->teamID());
    if (!blocking.isEmpty() && !blocking.contains(task)) {
        session->setTaskID(QString());
        taskId.clear();
    }

    if (taskId.isEmpty()) {
        m_ui->pbPlay->setChecked(false);
        // A session that was saved as running, and for which no button has been pressed yet.
        if (session->active())
            stopTracking();
        m_ui->pbPlay->setCheckable(false);
        m_lbTask->setText(QStringLiteral("Выбрать задачу"));
        m_ui->pbTask->setIcon(taskIcon(Task()));
        updateOverdueTime();
    } else {
        if (m_lbTask->text() != task.title)
            m_lbTask->setText(task.title);
        m_ui->pbTask->setIcon(taskIcon(task));
        updateOverdueTime();
        if (!m_ui->pbPlay->isCheckable())
            m_ui->pbPlay->setCheckable(true);
        // After a restart this is what resumes the monitor.
        m_ui->pbPlay->setChecked(session->active());
    }
    m_lbTask->setToolTip(plainToolTip(m_lbTask->text()));
    updatePlayButton();
}

void MainForm::onTaskUpdated(QString teamId)
{
    if (teamId == m_tessaPort->session()->teamID())
        onTaskChange();
}

void MainForm::endEarlierUsersMinute()
{
    if (!m_activityTimer.isActive())
        return;
    const bool wasRunning = m_tessaPort->session()->active();
    stopTracking();
    m_tessaPort->session()->setActive(wasRunning);
}

void MainForm::updateForNewLogin()
{
    onTaskChange();
}

void MainForm::closeTask(QString task_id)
{
    Session* session = m_tessaPort->session();
    if (task_id != session->taskID())
        return;
    const bool wasRunning = session->active();
    session->setTaskID(QString());
    if (!wasRunning)
        return;
    session->setActive(false);
    NotificationManager::instance()->showPlain(QStringLiteral("Запись активности остановлена!"));
}

// --- What happens by itself

void MainForm::updateComments()
{
    // The tray that it was hidden in may have ended since.
    if (!isVisible() && !QSystemTrayIcon::isSystemTrayAvailable())
        showMinimized();
    m_tessaPort->requestTeamsAndTasks();
}

void MainForm::checkUpdate()
{
    m_tessaPort->requestVersion();
}

// The team's id, although the request calls it the task's; see docs/decisions.md.
void MainForm::syncTime()
{
    m_tessaPort->requestActive(m_tessaPort->session()->teamID());
}

void MainForm::checkNeedCloseToUpdate()
{
    if (!UpdateState::instance()->forceUpdate())
        return;
    if (isUpdateProcessRunning())
        on_actionExit_triggered();
    else
        UpdateState::instance()->setForceUpdate(false);
}

bool MainForm::isUpdateProcessRunning() const
{
    return platform::isProcessRunning(updateProgram);
}

void MainForm::showActivityMessage()
{
    const Session* session = m_tessaPort->session();
    const QString text = QStringLiteral("Вы работаете по задаче \"")
        + session->task(session->teamID(), session->taskID()).title
        + QStringLiteral("\" в команде \"") + session->team(session->teamID()).name
        + QStringLiteral("\". Активное время за сегодня ")
        + durationText(session->todayActivetime()) + QStringLiteral(". Активное время по задаче ")
        + durationText(session->todayActiveTime(session->taskID())) + QStringLiteral(".");
    NotificationManager::instance()->showPlain(text);
}
