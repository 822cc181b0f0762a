// SPDX-License-Identifier: GPL-3.0-or-later
#include "mainwindow/MainForm.h"

#include "desktop/AutoRun.h"
#include "dialogs/AboutForm.h"
#include "dialogs/TaskForm.h"
#include "dialogs/TitleText.h"
#include "dialogs/WindowPlace.h"
#include "mainwindow/TimeText.h"
#include "notifications/NotificationManager.h"
#include "res/Resources.h"
#include "service/TessaPort.h"
#include "ui_MainForm.h"

#include <QCursor>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QToolTip>
#include <QWindowStateChangeEvent>

namespace {

QString buttonStyle(const QString& normal, const QString& hovered, const QString& pressed)
{
    return QStringLiteral("QPushButton{background-image: url(%1);}"
                          "QPushButton:hover:!pressed{background-image: url(%2);}"
                          "QPushButton:pressed{background-image: url(%3);}")
        .arg(normal, hovered, pressed);
}

/// Set anew, a sheet styles its widget anew, also when it is the same one.
void setSheet(QWidget* widget, const QString& sheet)
{
    if (widget->styleSheet() != sheet)
        widget->setStyleSheet(sheet);
}

/// What is set here once a second is the same text for a minute or for hours.
void setToolTipOnce(QWidget* widget, const QString& toolTip)
{
    if (widget->toolTip() != toolTip)
        widget->setToolTip(toolTip);
}

/// Shows a window that is hidden or minimised.
void bringBack(QWidget* window)
{
    window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
    window->show();
}

} // namespace

// --- Set-up

void MainForm::setupWindow()
{
    m_ui->setupUi(this);
    m_ui->label->setPixmap(picture(QStringLiteral(":/images/logo.png")));
    setAttribute(Qt::WA_TranslucentBackground);
    // Those who look at it work in another window.
    setAttribute(Qt::WA_AlwaysShowToolTips);
    m_mainImage = panelImage(QStringLiteral(":/images/main.png"));
    setWindowFlags((windowFlags() & Qt::Dialog) | Qt::FramelessWindowHint | Qt::WindowSystemMenuHint
                   | Qt::WindowStaysOnTopHint);
    // In this order: the corner has the last word when the first monitor becomes another.
    keepPlaceWhenShown(this);
    placeInArea(this, [this] {
        const QRect area = availableArea();
        move(area.right() - width(), area.bottom() - height());
    });
    // Else the first button would have the focus, and show it, before anybody has touched a key.
    setFocusPolicy(Qt::ClickFocus);
    setFocus();

    m_lbTask = std::make_unique<TitleText>(true, this);
    m_lbTask->setObjectName(QStringLiteral("lbTask"));
    m_lbTask->setGeometry(34, 33, 171, 13);
    QWidget* const watched[] = {m_lbTask.get(), m_ui->lbComment, m_ui->lbActivity, m_ui->lbClock,
                                m_ui->pbPlay};
    for (QWidget* widget : watched)
        widget->installEventFilter(this);

    m_ui->pbTimeExtend->setStyleSheet(
        buttonStyle(QStringLiteral(":/icons/res/icons/pbTimeExtend_NoActive_normal.png"),
                    QStringLiteral(":/icons/res/icons/pbTimeExtend_NoActive_Hovered.png"),
                    QStringLiteral(":/icons/res/icons/pbTimeExtend_NoActive_Pressed.png")));
}

void MainForm::setupTray()
{
    m_trayIcon = new QSystemTrayIcon(this);
    setupTrayMenu();
    updateTrayIcon();
    m_trayIcon->setVisible(true);
    connect(m_trayIcon, &QSystemTrayIcon::activated, this, &MainForm::trayActivated);
}

void MainForm::setupTrayMenu()
{
    m_menu = new QMenu(m_ui->pbMenu);
    m_menu->addAction(m_ui->actionStartStop);
    m_menu->addAction(m_ui->actionToggleVisible);
    m_menu->addAction(m_ui->actionChangeAccount);
    m_menu->addAction(m_ui->actionAutostart);
    m_menu->addSeparator();
    m_menu->addAction(m_ui->actionAbout);
    m_menu->addSeparator();
    m_menu->addAction(m_ui->actionExit);

    auto* autoRun = new AutoRun(this);
    m_ui->actionAutostart->setCheckable(true);
    m_ui->actionAutostart->setChecked(autoRun->isEnabled());
    connect(m_ui->actionAutostart, &QAction::toggled, autoRun, &AutoRun::enable);

    m_ui->pbMenu->setMenu(m_menu);
    // The menu has the mouse, and the button does not hear that it has gone elsewhere.
    connect(m_menu, &QMenu::aboutToHide, this, [this] {
        QPushButton* const button = m_ui->pbMenu;
        if (!button->rect().contains(button->mapFromGlobal(QCursor::pos()))) {
            QEvent leave(QEvent::Leave);
            QCoreApplication::sendEvent(button, &leave);
        }
    });
    m_trayIcon->setContextMenu(m_menu);
}

// --- Events of the window

void MainForm::paintEvent(QPaintEvent* event)
{
    AbstractMainForm::paintEvent(event);
    QPainter painter(this);
    painter.save();
    paintPanel(painter, m_mainImage, m_stretchedImage);
    painter.restore();
}

void MainForm::keyPressEvent(QKeyEvent* event)
{
    // Its effect comes from the shortcut; a dialog would close.
    if (event->key() != Qt::Key_Escape)
        AbstractMainForm::keyPressEvent(event);
}

bool MainForm::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::MouseButtonPress) {
        if (object == m_lbTask.get())
            on_pbTask_clicked();
        else if (object == m_ui->lbComment)
            toggleTaskList();
        else if (object == m_ui->lbActivity || object == m_ui->lbClock)
            toggleClockMode();
    } else if (event->type() == QEvent::MouseButtonDblClick && object == m_lbTask.get()) {
        // The second press has brought the keyboard back here from the picker that the first
        // opened.
        m_taskForm->activateWindow();
    } else if (event->type() == QEvent::ToolTip && object == m_ui->pbPlay) {
        // A tool tip of the button would have the button's sheet, which, without a task, has no
        // selector, and would be papered with the button's picture.
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), m_ui->pbPlay->toolTip(),
                           this, m_ui->pbPlay->geometry());
        return true;
    }
    return AbstractMainForm::eventFilter(object, event);
}

void MainForm::showEvent(QShowEvent* event)
{
    m_ui->actionToggleVisible->setText(QStringLiteral("Спрятать"));
    AbstractMainForm::showEvent(event);
}

void MainForm::hideEvent(QHideEvent* event)
{
    m_ui->actionToggleVisible->setText(QStringLiteral("Показать"));
    AbstractMainForm::hideEvent(event);
}

void MainForm::changeEvent(QEvent* event)
{
    AbstractMainForm::changeEvent(event);
    // Brought back by the desktop, it brings the other windows with it.
    if (event->type() == QEvent::WindowStateChange && !isMinimized()
        && static_cast<QWindowStateChangeEvent*>(event)->oldState() & Qt::WindowMinimized)
        emit showAll();
}

// --- What is shown

void MainForm::toggleClockMode()
{
    m_showActiveTime = !m_showActiveTime;
    m_ui->lbActivity->setText(m_showActiveTime ? QStringLiteral("Активного: ")
                                               : QStringLiteral("Сегодня: "));
    updateTimerLbl();
}

void MainForm::updateTimerLbl()
{
    const Session* session = m_tessaPort->session();
    const QTime time = m_showActiveTime ? session->displayActivetime() : session->displayWorktime();
    m_ui->lbClock->setText(time.toString(QStringLiteral("hh:mm:ss")));
}

void MainForm::updateOverdueTime()
{
    const Session* session = m_tessaPort->session();
    const QString taskId = session->taskID();
    const QDateTime deadline = session->taskDeadline();
    // The seconds from a deadline that is not there are none, and would read as just passed.
    const bool isOverdue = taskId != unassignedTaskId && !taskId.isEmpty() && deadline.isValid()
        && session->overdueSeconds() >= 0;
    m_ui->lbOverdue->setVisible(isOverdue);
    m_ui->lbOverdueTime->setVisible(isOverdue);
    if (!isOverdue)
        return;
    const QString toolTip = deadline.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    m_ui->lbOverdueTime->setText(overdueText(deadline, QDateTime::currentDateTime()));
    setToolTipOnce(m_ui->lbOverdueTime, toolTip);
    setToolTipOnce(m_ui->lbOverdue, toolTip);
}

void MainForm::updatePlayButton()
{
    const Session* session = m_tessaPort->session();
    if (session->taskID().isEmpty()) {
        setSheet(m_ui->pbPlay,
                 QStringLiteral("background-image: url(:/images/pbPlay_Disabled.png);"));
        return;
    }
    const QString picture =
        QStringLiteral(":/images/%1_%2")
            .arg(session->active() ? QStringLiteral("pbPause") : QStringLiteral("pbPlay"),
                 session->isOnline() ? QStringLiteral("Online") : QStringLiteral("Offline"));
    setSheet(m_ui->pbPlay,
             buttonStyle(picture + QStringLiteral(".png"), picture + QStringLiteral("_hovered.png"),
                         picture + QStringLiteral("_hovered_clicked.png")));
}

void MainForm::updateNoticeButton()
{
    // "Hoveredl" is the picture's own name.
    setSheet(m_ui->pbNotice,
             NotificationManager::instance()->hasNotifications()
                 ? buttonStyle(QStringLiteral(":/images/pbAttention_Active_normal.png"),
                               QStringLiteral(":/images/pbAttention_Active_Hovered.png"),
                               QStringLiteral(":/images/pbAttention_Active_clicked.png"))
                 : buttonStyle(QStringLiteral(":/images/pbAttention_NoActive_normal.png"),
                               QStringLiteral(":/images/pbAttention_NoActive_Hoveredl.png"),
                               QStringLiteral(":/images/pbAttention_NoActive_clicked.png")));
}

void MainForm::updateTrayIcon()
{
    const bool isRunning = m_tessaPort->session()->active();
    const bool hasAttention = NotificationManager::instance()->hasNotifications();
    QString icon;
    if (hasAttention)
        icon = isRunning ? QStringLiteral(":/icons/trayActive_attention.png")
                         : QStringLiteral(":/icons/trayNotactive_attention.png");
    else
        icon = isRunning ? QStringLiteral(":/icons/trayActive.png")
                         : QStringLiteral(":/icons/trayNotActive.png");
    if (icon == m_trayPicture)
        return;
    m_trayPicture = icon;
    m_trayIcon->setIcon(QIcon(icon));
}

void MainForm::updateAttention()
{
    updateTrayIcon();
    updateNoticeButton();
}

QIcon MainForm::taskIcon(const Task& task) const
{
    if (task.isBlocking())
        return m_blockingIcon;
    return task.importance > 0 ? m_urgentIcon : m_ordinaryIcon;
}

void MainForm::updateOnlineState(QString message)
{
    const bool isOnline = m_tessaPort->session()->isOnline();
    qDebug() << "Online state is " << isOnline;
    updatePlayButton();
    NotificationManager::instance()->showPlain(
        message
        + (isOnline ? QStringLiteral("Переход в онлайн-режим.")
                    : QStringLiteral("Переход в оффлайн-режим.")));
}

// --- Showing and hiding

void MainForm::trayActivated(QSystemTrayIcon::ActivationReason reason)
{
    // The two clicks of a double click come as one and as both.
    const bool isSecondHalf = reason == QSystemTrayIcon::DoubleClick && m_sinceTrayClick.isValid()
        && m_sinceTrayClick.elapsed() < 2 * QApplication::doubleClickInterval();
    m_sinceTrayClick.invalidate();
    if (isSecondHalf)
        return;
    if (reason == QSystemTrayIcon::Trigger)
        m_sinceTrayClick.start();
    if (reason == QSystemTrayIcon::DoubleClick || reason == QSystemTrayIcon::Trigger)
        on_actionToggleVisible_triggered();
}

void MainForm::on_actionToggleVisible_triggered()
{
    if (isVisible() && !isMinimized())
        emit hideAll();
    else
        emit showAll();
    NotificationManager::instance()->raiseAll();
}

void MainForm::hideAllHandler()
{
    qDebug("MainForm hideAllHandler");
    // Hidden, there would be no way back to it where there is no tray.
    if (QSystemTrayIcon::isSystemTrayAvailable())
        hide();
    else
        showMinimized();
}

void MainForm::showAllHandler()
{
    qDebug("MainForm showAllHandler");
    bringBack(this);
}

void MainForm::on_pbMinimize_clicked()
{
    qDebug("MainForm on_pbMinimize_clicked");
    emit hideAll();
}

void MainForm::on_pbNotice_clicked()
{
    NotificationManager::instance()->toggle();
}

void MainForm::on_actionAbout_triggered()
{
    m_aboutForm->refresh();
    bringBack(m_aboutForm.get());
    m_aboutForm->raise();
    m_aboutForm->activateWindow();
}
