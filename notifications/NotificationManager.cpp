// SPDX-License-Identifier: GPL-3.0-or-later
#include "notifications/NotificationManager.h"

#include "dialogs/WindowPlace.h"
#include "mainwindow/AbstractMainForm.h"
#include "notifications/NotificationForm.h"

#include <QApplication>

#include <algorithm>
#include <utility>

namespace {

/// The notice as it waits; its window is hidden and deleted later.
Notice withoutWindow(NotificationForm* form)
{
    form->hide();
    form->deleteLater();
    return form->notice();
}

} // namespace

NotificationManager::NotificationManager()
{
    // The manager outlives the application object, and no window may.
    qAddPostRoutine([] { instance()->closeAll(); });
    whenAreaChanges(this, [this] { placeAnew(); });
}

NotificationManager::~NotificationManager() = default;

NotificationManager* NotificationManager::instance()
{
    static NotificationManager manager;
    return &manager;
}

void NotificationManager::setMainForm(AbstractMainForm* mainForm)
{
    if (m_mainForm)
        m_mainForm->removeEventFilter(this);
    m_mainForm = mainForm;
    if (m_mainForm)
        m_mainForm->installEventFilter(this);
    for (NotificationForm* form : qAsConst(m_shownForms))
        form->setMainForm(mainForm);
    placeAnew();
}

void NotificationManager::show(const QString& message, int type, const QString& taskId)
{
    if (type == UpdateAvailable)
        removeUpdateNotices();
    const Notice notice{message, type, taskId};
    if (!hasRoom()) {
        m_pendingNotices.append(notice);
        return;
    }
    showForm(notice);
    QApplication::beep();
}

void NotificationManager::showPlain(const QString& message)
{
    show(message, PlainNotification, QString());
}

bool NotificationManager::hasNotifications() const
{
    return !m_shownForms.isEmpty() || !m_pendingNotices.isEmpty();
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
    for (auto form = firstToHide; form != m_shownForms.end(); ++form)
        m_pendingNotices.append(withoutWindow(*form));
    m_shownForms.erase(firstToHide, m_shownForms.end());
}

void NotificationManager::showPending()
{
    while (!m_pendingNotices.isEmpty() && hasRoom())
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
    if (!m_pendingNotices.isEmpty() && hasRoom())
        showFirstPending();
    if (m_shownForms.isEmpty())
        updateAttention();
    form->deleteLater();
}

void NotificationManager::removeUpdateNotices()
{
    // The waiting ones first, since a removal brings one that waits.
    m_pendingNotices.erase(
        std::remove_if(m_pendingNotices.begin(), m_pendingNotices.end(),
                       [](const Notice& notice) { return notice.type == UpdateAvailable; }),
        m_pendingNotices.end());
    const QList<NotificationForm*> shown = m_shownForms;
    for (NotificationForm* form : shown) {
        if (form->type() == UpdateAvailable)
            remove(form);
    }
}

bool NotificationManager::hasRoom() const
{
    return m_shownForms.isEmpty() || m_shownForms.constFirst()->fitsInSlot(m_shownForms.size());
}

void NotificationManager::showForm(const Notice& notice)
{
    auto* form =
        new NotificationForm(notice.message, notice.type, notice.taskId, m_mainForm.data());
    connect(form, &NotificationForm::notificationClosed, this, &NotificationManager::hideForm);
    form->placeInSlot(m_shownForms.size());
    form->show();
    m_shownForms.append(form);
    updateAttention();
}

void NotificationManager::showFirstPending()
{
    showForm(m_pendingNotices.takeFirst());
}

bool NotificationManager::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::Show || event->type() == QEvent::Hide)
        placeAnew();
    return QObject::eventFilter(object, event);
}

void NotificationManager::placeAnew()
{
    if (m_shownForms.isEmpty())
        return;
    for (int i = 0; i < m_shownForms.size(); ++i)
        m_shownForms[i]->placeInSlot(i);
    // The strip or a panel of the desktop took room, or gave it back.
    while (m_shownForms.size() > 1 && !m_shownForms.constLast()->isClosing()
           && !m_shownForms.constLast()->fitsInSlot(m_shownForms.size() - 1))
        m_pendingNotices.prepend(withoutWindow(m_shownForms.takeLast()));
    showPending();
}

void NotificationManager::updateAttention()
{
    if (m_mainForm)
        m_mainForm->updateAttention();
}
