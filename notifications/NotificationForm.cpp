// SPDX-License-Identifier: GPL-3.0-or-later
#include "notifications/NotificationForm.h"
#include "ui_NotificationForm.h"

#include "dialogs/WindowPlace.h"
#include "mainwindow/AbstractMainForm.h"
#include "platform/WindowSystem.h"
#include "res/Resources.h"
#include "service/ServiceAddress.h"
#include "update/ElevatedStart.h"
#include "update/UpdateState.h"

#include <QDebug>
#include <QGraphicsOpacityEffect>
#include <QMouseEvent>
#include <QPainter>
#include <QPropertyAnimation>
#include <QTextFrame>
#include <QWindow>

#include <algorithm>
#include <cmath>

NotificationForm::NotificationForm(const QString& message, int type, const QString& taskId,
                                   AbstractMainForm* mainForm, QWidget* parent)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::NotificationForm>())
    , m_notice{message, type, taskId}
    , m_mainForm(mainForm)
    , m_background(panelImage(QStringLiteral(":/images/bg_notifications_withLogo.png")))
{
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_TranslucentBackground);
    // With the bits of a dialog these make a tool window. A true pop-up would grab keyboard and
    // mouse on X11, and close at the next click elsewhere.
    setWindowFlags((windowFlags() & Qt::Dialog) | Qt::Popup | Qt::FramelessWindowHint
                   | Qt::WindowStaysOnTopHint);
    m_ui->setupUi(this);
    setFixedSize(m_background.size() / m_background.devicePixelRatio());

    // The background is light whatever the colours of the system are.
    QPalette palette = m_ui->leMessage->palette();
    palette.setColor(QPalette::Text, QColor(0x2B, 0x2B, 0x2B));
    m_ui->leMessage->setPalette(palette);
    QTextOption option = m_ui->leMessage->document()->defaultTextOption();
    option.setAlignment(Qt::AlignHCenter);
    m_ui->leMessage->document()->setDefaultTextOption(option);
    const QString text = notificationText(message, type);
    m_ui->leMessage->setPlainText(text);
    setAccessibleName(text);

    m_timer.setInterval(5000);
    connect(&m_timer, &QTimer::timeout, this, &NotificationForm::onPbLateClicked);
    connect(m_ui->pbLate, &QPushButton::clicked, this, &NotificationForm::onPbLateClicked);
    connect(m_ui->pbUpdate, &QPushButton::clicked, this, &NotificationForm::onPbUpdateClicked);
    // Esc, or the window manager.
    connect(this, &QDialog::rejected, this, &NotificationForm::fadeOut);

    m_ui->pbUpdate->setObjectName(QStringLiteral("pbTessaport"));
    m_ui->pbLate->setObjectName(QStringLiteral("pbTessaport"));
    if (type == UpdateAvailable) {
        m_ui->leMessage->setGeometry(10, 20, 161, 40);
    } else {
        m_ui->pbUpdate->hide();
        m_ui->pbLate->hide();
        installEventFilter(this);
    }
}

NotificationForm::~NotificationForm() = default;

QPoint NotificationForm::placeOf(int slot) const
{
    const QRect available = availableArea();
    const int mainFormHeight = m_mainForm && m_mainForm->isVisible() ? m_mainForm->height() : 0;
    return {available.right() - width(),
            available.bottom() - (slot + 1) * height() - mainFormHeight};
}

void NotificationForm::setMainForm(AbstractMainForm* mainForm)
{
    m_mainForm = mainForm;
}

void NotificationForm::placeInSlot(int slot)
{
    m_slot = slot;
    move(placeOf(slot));
}

bool NotificationForm::fitsInSlot(int slot) const
{
    return placeOf(slot).y() >= availableArea().top();
}

void NotificationForm::fadeOut()
{
    if (m_closing)
        return;
    m_closing = true;
    if (!platform::mixesTranslucentWindows()) {
        // It would fade to black.
        hide();
        emit notificationClosed();
        return;
    }
    auto* effect = new QGraphicsOpacityEffect(this);
    effect->setOpacity(1.0);
    setGraphicsEffect(effect);
    auto* animation = new QPropertyAnimation(effect, "opacity", this);
    animation->setStartValue(effect->opacity());
    animation->setEndValue(0.0);
    animation->setDuration(300);
    animation->setEasingCurve(QEasingCurve::OutQuad);
    connect(animation, &QPropertyAnimation::finished, this, &NotificationForm::notificationClosed);
    animation->start(QAbstractAnimation::DeleteWhenStopped);
}

void NotificationForm::onPbLateClicked()
{
    fadeOut();
}

void NotificationForm::onPbUpdateClicked()
{
    if (m_closing)
        return;
    const QVariantList updateInfo = UpdateState::instance()->updateInfo();
    if (updateInfo.isEmpty()) {
        qDebug() << "Error! There is no update info" << updateInfo;
        return;
    }
    // A single entry names the version and nothing that the update program could install.
    if (updateInfo.size() == 1)
        ServiceAddress::openMonitorPage();
    else
        runElevated(updateProgram, QString());
    fadeOut();
}

bool NotificationForm::event(QEvent* event)
{
    if (event->type() == QEvent::WindowBlocked)
        standBeside(QGuiApplication::modalWindow());
    return QDialog::event(event);
}

void NotificationForm::standBeside(QWindow* modal)
{
    // A modal window takes the clicks of all but those that belong to it. The keyboard stays with
    // whoever types there.
    QWindow* const window = windowHandle();
    window->setTransientParent(modal);
    const auto leaveKeyboard = [window](bool leave) {
        window->setFlag(Qt::WindowDoesNotAcceptFocus, leave);
    };
    leaveKeyboard(true);
    connect(modal, &QWindow::visibleChanged, window, leaveKeyboard);
}

void NotificationForm::paintEvent(QPaintEvent* event)
{
    // The strip and the available area come and go without a word to this one.
    placeInSlot(m_slot);
    QDialog::paintEvent(event);
    QPainter painter(this);
    paintPanel(painter, m_background, m_stretchedBackground);
}

void NotificationForm::showEvent(QShowEvent* event)
{
    centreText();
    if (closesByItself(type()))
        m_timer.start();
    QDialog::showEvent(event);
}

void NotificationForm::hideEvent(QHideEvent* event)
{
    if (closesByItself(type()))
        m_timer.stop();
    QDialog::hideEvent(event);
}

void NotificationForm::centreText()
{
    QTextFrame* const frame = m_ui->leMessage->document()->rootFrame();
    QTextFrameFormat format = frame->frameFormat();
    format.setTopMargin(0);
    format.setBottomMargin(0);
    frame->setFrameFormat(format);
    const qreal spare = m_ui->leMessage->height() - m_ui->leMessage->document()->size().height();
    format.setTopMargin(std::max(0.0, std::floor(spare / 2)));
    frame->setFrameFormat(format);
}

bool NotificationForm::eventFilter(QObject* object, QEvent* event)
{
    if (object == this && event->type() == QEvent::MouseButtonPress) {
        const auto* click = static_cast<QMouseEvent*>(event);
        if (!m_closing && leadsToTask(type()) && click->button() == Qt::LeftButton
            && !m_notice.taskId.isEmpty())
            ServiceAddress::openTaskPage(m_notice.taskId);
        fadeOut();
    }
    return QDialog::eventFilter(object, event);
}
