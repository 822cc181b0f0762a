// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/TaskForm.h"

#include "FramelessWindow.h"
#include "dialogs/PlainToolTip.h"
#include "mainwindow/AbstractMainForm.h"
#include "res/Resources.h"
#include "service/TessaPort.h"
#include "ui_TaskForm.h"

#include <QSignalBlocker>

namespace {

QString itemText(const Task& task)
{
    if (!task.deadline.isValid())
        return task.title;
    return task.title + QStringLiteral(" | Истекает: ")
        + task.deadline.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

void addItem(QComboBox* box, const QIcon& icon, const QString& text, const QString& id)
{
    box->addItem(icon, text, id);
    box->setItemData(box->count() - 1, plainToolTip(text), Qt::ToolTipRole);
}

/// Makes the item with this id the current one and says whether there is one.
bool selectItem(QComboBox* box, const QString& id)
{
    const int index = box->findData(id);
    if (index < 0)
        return false;
    box->setCurrentIndex(index);
    box->setToolTip(box->itemData(index, Qt::ToolTipRole).toString());
    return true;
}

} // namespace

TaskForm::TaskForm(AbstractMainForm* mainForm, QWidget* parent)
    : AbstractTessaportForm(parent)
    , m_ui(std::make_unique<Ui::TaskForm>())
    , m_mainForm(mainForm)
{
    m_ui->setupUi(this);
    setObjectName(QStringLiteral("TaskForm"));
    // After the connections by name, which it would break; the style sheet goes by this name.
    m_ui->pbOk->setObjectName(QStringLiteral("pbTessaport"));
    m_ui->pbCancel->setObjectName(QStringLiteral("pbTessaport"));
    setBackground(QStringLiteral(":/images/main.png"));
    setWindowModality(Qt::WindowModal);
    centreOnScreen(this);

    TessaPort* const service = m_mainForm->service();
    connect(service, &TessaPort::error, this, &TaskForm::error);
    connect(service->session(), &Session::teamsUpdated, this, &TaskForm::refreshed);
    connect(service->session(), &Session::tasksUpdated, this, &TaskForm::refreshed);
    connect(service->session(), &Session::taskClosed, this, &TaskForm::closeTask);
    reload();
    m_ui->cbTeam->setFocus(Qt::OtherFocusReason);
}

TaskForm::~TaskForm() = default;

QString TaskForm::selectedTeamId() const
{
    return m_ui->cbTeam->currentData().toString();
}

QString TaskForm::selectedTaskId() const
{
    return m_ui->cbTask->currentData().toString();
}

void TaskForm::reload()
{
    TessaPort* const service = m_mainForm->service();
    m_teamId = service->session()->teamID();
    m_taskId = service->session()->taskID();
    if (!service->session()->isOnline()) {
        refreshed();
        return;
    }
    m_ui->lbLoading->setText(QStringLiteral("Загрузка..."));
    m_ui->cbTask->setEnabled(false);
    m_ui->cbTeam->setEnabled(false);
    service->requestTeamsAndTasks();
}

void TaskForm::refreshed()
{
    const QSignalBlocker blocker(m_ui->cbTeam);
    m_ui->lbLoading->clear();
    m_ui->cbTeam->clear();
    const QList<Team> teams = m_mainForm->service()->session()->teams();
    for (const Team& team : teams)
        addItem(m_ui->cbTeam, QIcon(), team.name, team.id);
    m_ui->cbTask->setEnabled(true);
    m_ui->cbTeam->setEnabled(true);
    const int index = selectItem(m_ui->cbTeam, m_teamId) ? m_ui->cbTeam->currentIndex() : 0;
    m_ui->cbTeam->setFocus(Qt::OtherFocusReason);
    on_cbTeam_currentIndexChanged(index);
}

void TaskForm::on_cbTeam_currentIndexChanged(int index)
{
    const QSignalBlocker blocker(m_ui->cbTask);
    m_ui->cbTask->clear();
    m_teamId = m_ui->cbTeam->itemData(index).toString();

    const Session* const session = m_mainForm->service()->session();
    QList<Task> tasks = session->blockingTasks(m_teamId);
    if (tasks.isEmpty())
        tasks = session->tasks(m_teamId);
    for (const Task& task : qAsConst(tasks))
        addItem(m_ui->cbTask, m_mainForm->taskIcon(task), itemText(task), task.id);
    if (!selectItem(m_ui->cbTask, m_taskId))
        m_ui->cbTask->setCurrentIndex(0);
}

void TaskForm::on_cbTask_currentIndexChanged(int index)
{
    m_taskId = m_ui->cbTask->itemData(index).toString();
}

void TaskForm::error(int)
{
    // Cleared again by the refill with the cached lists; see docs/decisions.md.
    m_ui->lbLoading->setText(QStringLiteral("Нет соединения"));
    refreshed();
}

void TaskForm::closeTask(QString)
{
    refreshed();
}

void TaskForm::paintEvent(QPaintEvent* event)
{
    // See docs/decisions.md.
    AbstractTessaportForm::paintEvent(event);
}
