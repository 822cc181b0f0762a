// SPDX-License-Identifier: GPL-3.0-or-later
#include "mainwindow/MainForm.h"

#include "capture/UserActivityWatcher.h"
#include "dialogs/AboutForm.h"
#include "dialogs/CalendarForm.h"
#include "dialogs/LoginForm.h"
#include "dialogs/ScrollText.h"
#include "dialogs/TaskForm.h"
#include "dialogs/TaskListForm.h"
#include "notifications/NotificationManager.h"
#include "service/TessaPort.h"
#include "ui_MainForm.h"

#include <QCoreApplication>
#include <QDebug>
#include <QShortcut>

MainForm::MainForm(TessaPort* service, QWidget* parent)
    : AbstractMainForm(parent)
    , m_tessaPort(service)
    , m_ui(std::make_unique<Ui::MainForm>())
{
    setupWindow();
    setupTimers();
    setupConnections();
    setupTray();
    connect(UserActivityWatcher::instance(), &UserActivityWatcher::wasActivity, this,
            &MainForm::setHasActivity);
    updateNoticeButton();
    updatePlayButton();
    updateTimerLbl();
    updateOverdueTime();

    m_tessaPort->requestVersion();
    m_taskListForm = new TaskListForm(m_tessaPort, this, this);
    m_taskForm = std::make_unique<TaskForm>(this, nullptr);
    connect(m_taskForm.get(), &TaskForm::accepted, this, &MainForm::onTaskFormAccepted);
    // Open, it still offers the tasks of the earlier user, which the new one must not report on.
    connect(m_tessaPort, &TessaPort::loginOk, m_taskForm.get(), [this] {
        if (m_taskForm->isVisible())
            m_taskForm->reload();
    });
    m_aboutForm = std::make_unique<AboutForm>(m_tessaPort, nullptr);
    NotificationManager::instance()->setMainForm(this);
    onTaskChange();
    if (m_tessaPort->session()->taskID().isEmpty())
        NotificationManager::instance()->showPlain(
            QStringLiteral("Выберите задачу для начала работы."));

    auto* escape = new QShortcut(QKeySequence(QStringLiteral("Esc")), this);
    escape->setContext(Qt::WindowShortcut);
    connect(escape, &QShortcut::activated, this, &MainForm::hideAll);
}

MainForm::~MainForm()
{
    NotificationManager::instance()->closeAll();
    NotificationManager::instance()->setMainForm(nullptr);
}

void MainForm::setupTimers()
{
    const struct {
        QTimer& timer;
        int interval;
        void (MainForm::*slot)();
    } rows[] = {
        {m_checkUpdateTimer, 3600000, &MainForm::checkUpdate},
        {m_closeForUpdateTimer, 1000, &MainForm::checkNeedCloseToUpdate},
        {m_commentsTimer, 60000, &MainForm::updateComments},
        {m_clockTimer, 1000, &MainForm::clock},
        {m_activityMessageTimer, 1800000, &MainForm::showActivityMessage},
        {m_syncTimer, 1740000, &MainForm::syncTime},
        {m_screenshotTimer, 300000, &MainForm::screenshotTimeout},
    };
    for (const auto& row : rows) {
        row.timer.setInterval(row.interval);
        connect(&row.timer, &QTimer::timeout, this, row.slot);
    }
    m_activityTimer.setInterval(6000);
    connect(&m_activityTimer, &QTimer::timeout, this, [this] { sendActivity(); });
    // The timers that measure: a coarse timer of some systems is a little late each time, which
    // adds up over a day.
    m_activityTimer.setTimerType(Qt::PreciseTimer);
    m_clockTimer.setTimerType(Qt::PreciseTimer);

    m_checkUpdateTimer.start();
    m_closeForUpdateTimer.start();
    m_commentsTimer.start();
    m_syncTimer.start();
    syncTime();
}

void MainForm::setupConnections()
{
    connect(m_tessaPort, &TessaPort::loginOk, this, &MainForm::endEarlierUsersMinute);
    connect(m_tessaPort, &TessaPort::loginOk, this, &MainForm::updateForNewLogin);
    // The clock is to show the new user's day, which may have no counters to tell of.
    connect(m_tessaPort, &TessaPort::loginOk, this, &MainForm::updateTimerLbl);
    connect(m_tessaPort, &TessaPort::onlineChanged, this, &MainForm::updateOnlineState);
    // What the session tells of them is a step on the way.
    connect(m_tessaPort, &TessaPort::timesUpdated, this, &MainForm::updateTimerLbl);
    const Session* session = m_tessaPort->session();
    connect(session, &Session::taskChanged, this, &MainForm::onTaskChange);
    connect(session, &Session::timeUpdated, this, &MainForm::updateTimerLbl);
    connect(session, &Session::taskClosed, this, &MainForm::closeTask);
    connect(session, &Session::overdueTimeChanged, this, &MainForm::updateOverdueTime);
    connect(session, &Session::tasksUpdated, this, &MainForm::onTaskUpdated);
    connect(this, &MainForm::hideAll, this, &MainForm::hideAllHandler);
    connect(this, &MainForm::showAll, this, &MainForm::showAllHandler);
}

void MainForm::on_actionExit_triggered()
{
    qDebug("MainForm on_actExit_activated");
    accept();
    QCoreApplication::quit();
}

// --- The other windows

void MainForm::on_actionChangeAccount_triggered()
{
    LoginForm loginForm(m_tessaPort, nullptr);
    m_ui->pbPlay->setChecked(false);
    loginForm.exec();
}

void MainForm::on_pbTask_clicked()
{
    m_taskForm->show();
    m_taskForm->activateWindow();
    m_taskForm->reload();
}

void MainForm::onTaskFormAccepted()
{
    m_tessaPort->setCurrentTask(m_taskForm->selectedTeamId(), m_taskForm->selectedTaskId());
}

void MainForm::toggleTaskList()
{
    if (m_taskListForm->isVisible()) {
        m_taskListForm->on_pbHide_clicked();
        return;
    }
    m_taskListForm->bringUpToDate();
    m_taskListForm->show();
    NotificationManager::instance()->raiseAll();
}

void MainForm::on_pbTimeExtend_clicked()
{
    const Session* session = m_tessaPort->session();
    if (session->taskID() == unassignedTaskId || session->teamID() == teamWithoutDeadlines) {
        NotificationManager::instance()->showPlain(
            QStringLiteral("Для данной задачи невозможно выполнить перенос дедлайна."));
        return;
    }
    // A form that is cancelled stays, hidden, as long as this window does.
    auto* calendarForm = new CalendarForm(nullptr);
    connect(this, &QObject::destroyed, calendarForm, [calendarForm] { delete calendarForm; });
    connect(calendarForm, &CalendarForm::accepted, this, &MainForm::onRequestDeadlineAccepted);
    calendarForm->exec();
}

void MainForm::onRequestDeadlineAccepted()
{
    auto* calendarForm = qobject_cast<CalendarForm*>(sender());
    if (!calendarForm)
        return;
    const QTime time = calendarForm->selectedTime();
    const QString reason = calendarForm->getReason();
    const QDate date = calendarForm->selectedDate();
    m_tessaPort->requestDeadline(date, reason, time);
    calendarForm->deleteLater();
}
