// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "notifications/NotificationType.h"

#include <QList>
#include <QObject>
#include <QPointer>

class AbstractMainForm;
class NotificationForm;

/// The stack of notices in the lower right corner of the screen. What does not fit waits until
/// there is room, and gets its window only then: hundreds may come at once. The windows that are
/// left at the end go with the application object.
class NotificationManager : public QObject {
    Q_OBJECT

public:
    static NotificationManager* instance();
    ~NotificationManager() override;

    /// The window above which the notices stand, also those that are there already, and whose
    /// attention marks follow them. Not owned; null when there is none.
    void setMainForm(AbstractMainForm* mainForm);

    /// Shows a notice, or keeps it waiting when the screen is full. The type is a
    /// NotificationType; the message is for most types a title. A click on the notice leads to
    /// the task of this id; empty: nowhere. A notice of an update takes the place of an earlier
    /// one, shown or waiting.
    void show(const QString& message, int type, const QString& taskId);
    /// The same for a notice that is its message, and that leads nowhere.
    void showPlain(const QString& message);

    /// Whether any notice is on screen or waiting.
    bool hasNotifications() const;
    /// Hides the notices on screen, or brings the waiting ones when there are none.
    void toggle();
    void hideShown();
    /// Shows the waiting ones, as many as there is room for; the others come as soon as one goes.
    void showPending();
    void raiseAll();
    /// Deletes the notices on screen.
    void closeAll();

    /// Follows the strip, as it comes and goes.
    bool eventFilter(QObject* object, QEvent* event) override;

private slots:
    void hideForm();

private:
    NotificationManager();

    bool hasRoom() const;
    void showForm(const Notice& notice);
    void showFirstPending();
    void remove(NotificationForm* form);
    void removeUpdateNotices();
    void placeAnew();
    void updateAttention();

    QPointer<AbstractMainForm> m_mainForm;
    QList<NotificationForm*> m_shownForms; ///< owned; the first one stands lowest
    QList<Notice> m_pendingNotices; ///< the oldest one first
};
