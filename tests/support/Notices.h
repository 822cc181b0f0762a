// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "notifications/NotificationForm.h"

#include <QApplication>

#include <algorithm>

/// The notices on screen, from the lowest up: each as its type, a blank and its text, and behind an
/// arrow the id of the task that a click leads to, if there is one.
inline QStringList shownNotices()
{
    QList<const NotificationForm*> forms;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (const QWidget* window : windows) {
        const auto* form = qobject_cast<const NotificationForm*>(window);
        if (form && form->isVisible())
            forms.append(form);
    }
    std::sort(forms.begin(), forms.end(),
              [](const auto* one, const auto* other) { return one->y() > other->y(); });
    QStringList texts;
    for (const NotificationForm* form : qAsConst(forms)) {
        const QString taskId = form->notice().taskId;
        texts.append(QStringLiteral("%1 %2").arg(form->type()).arg(form->accessibleName())
                     + (taskId.isEmpty() ? QString() : QStringLiteral(" -> ") + taskId));
    }
    return texts;
}
