// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "mainwindow/AbstractMainForm.h"
#include "notifications/NotificationForm.h"
#include "notifications/NotificationManager.h"

#include <QApplication>
#include <QTextEdit>

#include <algorithm>

/// A main window that counts the calls for its attention marks.
class CountingMainForm : public AbstractMainForm {
public:
    TessaPort* service() const override { return nullptr; }
    QIcon taskIcon(const Task&) const override { return {}; }
    void updateAttention() override { ++attentionUpdates; }

    int attentionUpdates = 0;
};

/// The notices on screen, the lowest one first.
inline QList<NotificationForm*> shownNotices()
{
    QList<NotificationForm*> notices;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        auto* notice = qobject_cast<NotificationForm*>(widget);
        if (notice && notice->isVisible())
            notices.append(notice);
    }
    std::sort(notices.begin(), notices.end(), [](NotificationForm* one, NotificationForm* other) {
        return one->slot() < other->slot();
    });
    return notices;
}

inline QTextEdit* messageOf(const NotificationForm* notice)
{
    return notice->findChild<QTextEdit*>(QStringLiteral("leMessage"));
}

inline QStringList shownTexts()
{
    QStringList texts;
    for (const NotificationForm* notice : shownNotices())
        texts.append(messageOf(notice)->toPlainText());
    return texts;
}

/// Deletes the notices on screen and those that wait.
inline void removeAllNotices()
{
    NotificationManager::instance()->showPending();
    NotificationManager::instance()->closeAll();
}
