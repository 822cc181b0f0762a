// SPDX-License-Identifier: GPL-3.0-or-later
#include "notifications/NotificationManager.h"

#include "mainwindow/AbstractMainForm.h"
#include "notifications/NotificationForm.h"

#include <QApplication>

#include <algorithm>
#include <utility>

NotificationManager::NotificationManager()
{
    // The manager outlives the application object, and no window may.
    qAddPostRoutine([] {
        instance()->closeAll();
        qDeleteAll(std::exchange(instance()->m_pendingForms, {}));
    });
}

NotificationManager::~NotificationManager() = default;

NotificationManager* NotificationManager::instance()
{
    static NotificationManager manager;
    return &manager;
}

void NotificationManager::setMainForm(AbstractMainForm* mainForm)
{
    m_mainForm = mainForm;
}

void NotificationManager::show(const QString& message, int type, const QString& taskId)
{
    if (type == UpdateAvailable)
        removeUpdateNotices();

    auto* form = new NotificationForm(message, type, taskId, m_mainForm);
    connect(form, &NotificationForm::notificationClosed, this, &NotificationManager::hideForm);
    form->placeInSlot(m_shownForms.size());
    if (!form->fitsOnScreen()) {
        m_pendingForms.append(form);
        return;
    }
    form->show();
    m_shownForms.append(form);
    updateAttention();
    QApplication::beep();
}

void NotificationManager::showPlain(const QString& message)
{
    show(message, PlainNotification, QString());
}

bool NotificationManager::hasNotifications() const
{
    return !m_shownForms.isEmpty() || !m_pendingForms.isEmpty();
}

void NotificationManager::toggle()
{
    if (m_shownForms.isEmpty())
        showPending();
    else
        hideShown();
}

void NotificationManager::hideShown()
{
    const auto firstToHide =
        std::stable_partition(m_shownForms.begin(), m_shownForms.end(),
                              [](const NotificationForm* form) { return form->isClosing(); });
    for (auto form = firstToHide; form != m_shownForms.end(); ++form) {
        (*form)->hide();
        m_pendingForms.append(*form);
    }
    m_shownForms.erase(firstToHide, m_shownForms.end());
}

void NotificationManager::showPending()
{
    while (!m_pendingForms.isEmpty())
        showFirstPending();
}

void NotificationManager::raiseAll()
{
    for (NotificationForm* form : qAsConst(m_shownForms)) {
        form->repaint();
        form->activateWindow();
        form->raise();
    }
}

void NotificationManager::closeAll()
{
    qDeleteAll(std::exchange(m_shownForms, {}));
}

void NotificationManager::hideForm()
{
    remove(qobject_cast<NotificationForm*>(sender()));
}

void NotificationManager::remove(NotificationForm* form)
{
    const int index = m_shownForms.indexOf(form);
    if (index < 0)
        return;
    m_shownForms.removeAt(index);
    // By place in the list: a notice that faded while others were hidden may have left a gap.
    for (int i = index; i < m_shownForms.size(); ++i) {
        m_shownForms[i]->placeInSlot(i);
        m_shownForms[i]->repaint();
    }
    if (!m_pendingForms.isEmpty())
        showFirstPending();
    if (m_shownForms.isEmpty())
        updateAttention();
    form->deleteLater();
}

void NotificationManager::removeUpdateNotices()
{
    // From the start each time: a removal may bring one that waited.
    const auto isUpdateNotice = [](const NotificationForm* form) {
        return form->type() == UpdateAvailable;
    };
    for (;;) {
        const auto found = std::find_if(m_shownForms.cbegin(), m_shownForms.cend(), isUpdateNotice);
        if (found == m_shownForms.cend())
            return;
        remove(*found);
    }
}

void NotificationManager::showFirstPending()
{
    NotificationForm* form = m_pendingForms.takeFirst();
    form->placeInSlot(m_shownForms.size());
    form->show();
    m_shownForms.append(form);
    updateAttention();
}

void NotificationManager::updateAttention()
{
    if (m_mainForm)
        m_mainForm->updateAttention();
}
