// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "notifications/NotificationType.h"

#include <QDialog>
#include <QImage>
#include <QPointer>
#include <QTimer>

#include <memory>

class AbstractMainForm;

namespace Ui {
class NotificationForm;
}

/// One notice: a small window in the lower right corner of the screen that never takes the focus
/// by being shown. It closes by a click, some types also by time, and the one of a newer version
/// by its two buttons instead.
class NotificationForm : public QDialog {
    Q_OBJECT

public:
    /// Type, message and task id are those of NotificationManager::show(). The strip stands
    /// below the notices while it is visible; not owned, null when there is none.
    NotificationForm(const QString& message, int type, const QString& taskId,
                     AbstractMainForm* mainForm, QWidget* parent = nullptr);
    ~NotificationForm() override;

    int type() const { return m_notice.type; }
    /// What it was made of; enough to make it again.
    const Notice& notice() const { return m_notice; }
    /// The place last given by placeInSlot(), counted from 0 at the bottom.
    int slot() const { return m_slot; }
    /// Whether the notice is fading; it is gone soon.
    bool isClosing() const { return m_closing; }

    /// From now on the notice stands above this one; null as for the constructor.
    void setMainForm(AbstractMainForm* mainForm);
    void placeInSlot(int slot);
    /// Whether the available area of the screen is high enough for a whole notice in this place.
    bool fitsInSlot(int slot) const;
    /// Fades and then emits notificationClosed(); where there is nothing to fade into, at once.
    /// Once under way, further calls do nothing.
    void fadeOut();

signals:
    /// The notice has faded and can be deleted.
    void notificationClosed();

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;

private slots:
    void onPbLateClicked();
    void onPbUpdateClicked();

private:
    QPoint placeOf(int slot) const;
    void standBeside(QWindow* modal);
    void centreText();

    std::unique_ptr<Ui::NotificationForm> m_ui;
    const Notice m_notice;
    QTimer m_timer;
    QPointer<AbstractMainForm> m_mainForm;
    bool m_closing = false;
    int m_slot = 0;
    const QImage m_background;
    QImage m_stretchedBackground; ///< paintPanel()'s
};
