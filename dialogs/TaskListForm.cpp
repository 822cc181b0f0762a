// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/TaskListForm.h"

#include "dialogs/ElidedLabel.h"
#include "dialogs/PlainToolTip.h"
#include "dialogs/RowList.h"
#include "dialogs/TaskDescriptionForm.h"
#include "dialogs/WindowPlace.h"
#include "mainwindow/AbstractMainForm.h"
#include "res/Resources.h"
#include "service/TessaPort.h"
#include "ui_TaskListForm.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QPushButton>
#include <QSignalBlocker>

#include <algorithm>

namespace {

constexpr char taskIdProperty[] = "task_id";

// The picture named hovered is the one at rest and the one without a suffix is the hovered one; see
// docs/decisions.md.
QString targetButtonStyle()
{
    return QStringLiteral(
        "QPushButton{color:#646464}"
        "QPushButton{border-image: "
        "url(:/images/res/images/task_list_dialog/task_target_button_hovered.png);}"
        "QPushButton:hover:!pressed:!checked{border-image: "
        "url(:/images/res/images/task_list_dialog/task_target_button.png);}"
        "QPushButton:checked{border-image: "
        "url(:/images/res/images/task_list_dialog/task_target_button_pressed.png);}"
        "QPushButton:pressed{border-image: "
        "url(:/images/res/images/task_list_dialog/task_target_button_pressed.png);}");
}

} // namespace

TaskListForm::TaskListForm(TessaPort* service, AbstractMainForm* mainForm, QWidget* parent)
    : AbstractTessaportForm(parent)
    , m_service(service)
    , m_ui(std::make_unique<Ui::TaskListForm>())
    , m_mainForm(mainForm)
{
    // A modal window would lock the strip, whose second press has to close it.
    setModal(false);
    m_ui->setupUi(this);
    setObjectName(QStringLiteral("TaskListForm"));
    m_ui->lbIcon->setPixmap(picture(QStringLiteral(":/images/pbComment.png")));
    setBackground(QStringLiteral(":/images/res/images/big_fon.png"));
    setMovable(false);
    placeInArea(this, [this, tallest = height()] {
        const QRect area = availableArea();
        const int room = area.height() - 1 - m_mainForm->height();
        setHeight(std::min(tallest, room), {m_ui->listWidget});
        move(area.right() - width(), area.bottom() - (height() + m_mainForm->height()));
    });

    const Session* session = service->session();
    connect(service, &TessaPort::teamChanged, this, &TaskListForm::onCurrentTeamChanged);
    connect(session, &Session::teamsUpdated, this, &TaskListForm::updateTeamCombobox);
    connect(mainForm, &AbstractMainForm::showAll, this, &TaskListForm::showAll);
    connect(mainForm, &AbstractMainForm::hideAll, this, &TaskListForm::hideAll);
    connect(qApp, &QApplication::focusChanged, this, &TaskListForm::scrollToFocus);
    // Esc closes what the button in the corner closes.
    connect(this, &TaskListForm::rejected, this, &TaskListForm::on_pbHide_clicked);
    m_currentTeamId = m_sessionTeamId = session->teamID();
    updateTeamCombobox();
}

TaskListForm::~TaskListForm()
{
    // A row loses the focus when it is deleted, after the fields of this class.
    disconnect(qApp, nullptr, this, nullptr);
}

void TaskListForm::bringUpToDate()
{
    const Session* const session = m_service->session();
    if (m_sessionTeamId != session->teamID() || session->team(m_currentTeamId).id.isEmpty())
        m_currentTeamId = m_sessionTeamId = session->teamID();
    if (session->team(m_currentTeamId).id.isEmpty() && !session->teams().isEmpty())
        m_currentTeamId = session->teams().first().id;
    {
        // What a change of the index builds is built below.
        const QSignalBlocker blocker(m_ui->cbTeam);
        updateTeamCombobox();
    }
    fillList(m_currentTeamId);
    m_firstFill = false;
}

void TaskListForm::on_pbHide_clicked()
{
    hide();
    for (const auto& entry : m_descriptions)
        entry.second->hide();
}

void TaskListForm::showAll()
{
    if (m_hiddenByHideAll) {
        show();
        m_hiddenByHideAll = false;
    }
}

void TaskListForm::hideAll()
{
    if (isVisible()) {
        hide();
        m_hiddenByHideAll = true;
    }
}

void TaskListForm::updateTeamCombobox()
{
    {
        const QSignalBlocker blocker(m_ui->cbTeam);
        m_ui->cbTeam->clear();
        const QList<Team> teams = m_service->session()->teams();
        for (const Team& team : teams) {
            m_ui->cbTeam->addItem(QIcon(), team.name, team.id);
            m_ui->cbTeam->setItemData(m_ui->cbTeam->count() - 1, plainToolTip(team.name),
                                      Qt::ToolTipRole);
        }
    }

    const int index = teamIndex(m_currentTeamId);
    if (index < 0)
        return;
    // The first team is current already, so that its list is not built here: that is done when the
    // window is opened.
    m_ui->cbTeam->setCurrentIndex(index);
    m_ui->cbTeam->setToolTip(m_ui->cbTeam->itemData(index, Qt::ToolTipRole).toString());
}

void TaskListForm::on_cbTeam_currentIndexChanged(int index)
{
    const QString teamId = m_ui->cbTeam->itemData(index, Qt::UserRole).toString();
    if (teamId == m_currentTeamId && !m_firstFill)
        return;
    fillList(teamId);
    m_currentTeamId = teamId;
    m_firstFill = false;
}

void TaskListForm::openTaskDescription()
{
    const auto button = qobject_cast<QPushButton*>(sender());
    if (!button)
        return;
    const QString taskId = button->property(taskIdProperty).toString();
    TaskDescriptionForm* const form = description(taskId);
    for (const auto& entry : m_descriptions) {
        if (entry.second.get() != form)
            entry.second->hide();
    }
    if (form->isVisible()) {
        form->hide();
        return;
    }
    form->requestUpdateTask(taskId);
    form->show();
}

void TaskListForm::onCurrentTeamChanged(const QString& teamId)
{
    m_ui->cbTeam->setCurrentIndex(teamIndex(teamId));
}

void TaskListForm::scrollToFocus()
{
    const QWidget* const focus = QApplication::focusWidget();
    QWidget* const viewport = m_ui->listWidget->viewport();
    if (focus && viewport->isAncestorOf(focus)) {
        const QPoint place = focus->mapTo(viewport, focus->rect().center());
        m_ui->listWidget->scrollToItem(m_ui->listWidget->itemAt(place));
    }
}

int TaskListForm::teamIndex(const QString& teamId) const
{
    return m_ui->cbTeam->findData(teamId, Qt::UserRole, Qt::MatchExactly | Qt::MatchCaseSensitive);
}

void TaskListForm::fillList(const QString& teamId)
{
    const Session* const session = m_service->session();
    setWindowTitle(QStringLiteral("Задачи команды \"") + session->team(teamId).name
                   + QLatin1Char('"'));
    QList<Task> tasks = session->tasks(teamId);
    tasks.removeAll(unassignedTask());
    const bool isShown =
        std::equal(tasks.cbegin(), tasks.cend(), m_shownTasks.cbegin(), m_shownTasks.cend(),
                   [](const Task& task, const Task& other) { return task.hasSameContent(other); });
    // The place that the user has scrolled to stays.
    if (isShown)
        return;
    QVector<Row*> rows;
    for (const Task& task : qAsConst(tasks))
        rows << taskRow(task);
    setRows(m_ui->listWidget, 26, rows);
    m_shownTasks = tasks;
}

Row* TaskListForm::taskRow(const Task& task)
{
    // The separator also stands before a deadline that is not there; see docs/decisions.md.
    const QString deadline = QStringLiteral(" | Истекает: ")
        + task.deadline.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    const QString text = task.title + deadline;
    const auto row = new Row(m_ui->listWidget);

    const auto label = new ElidedLabel(row);
    label->setObjectName(QStringLiteral("lbTask"));
    label->setTextFormat(Qt::PlainText);
    label->setText(text);
    label->setKeptEnd(deadline.size());
    label->setToolTip(plainToolTip(text));
    label->setFixedSize(m_ui->listWidget->width() - 112, 16);

    const auto button = new RowButton(row);
    button->setStyleSheet(targetButtonStyle());
    button->setFixedSize(84, 24);
    button->setProperty(taskIdProperty, task.id);
    button->setFocusPolicy(Qt::TabFocus);
    button->setText(QStringLiteral("Цели задач"));
    button->setAccessibleDescription(text);
    connect(button, &QPushButton::clicked, this, &TaskListForm::openTaskDescription);

    const auto layout = new QHBoxLayout(row);
    layout->addWidget(label, 0, Qt::AlignLeft);
    layout->addWidget(button, 0, Qt::AlignRight);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->setContentsMargins(0, 0, 0, 0);
    return row;
}

TaskDescriptionForm* TaskListForm::description(const QString& taskId)
{
    std::unique_ptr<TaskDescriptionForm>& form = m_descriptions[taskId];
    if (!form) {
        form = std::make_unique<TaskDescriptionForm>(taskId, m_service, this);
        connect(m_mainForm, &AbstractMainForm::showAll, form.get(), &TaskDescriptionForm::showAll);
        connect(m_mainForm, &AbstractMainForm::hideAll, form.get(), &TaskDescriptionForm::hideAll);
    }
    return form.get();
}
