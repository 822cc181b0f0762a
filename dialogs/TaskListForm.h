// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dialogs/AbstractTessaportForm.h"
#include "session/Records.h"

#include <QList>
#include <QString>

#include <map>
#include <memory>

class AbstractMainForm;
class Row;
class TaskDescriptionForm;
class TessaPort;

namespace Ui {
class TaskListForm;
}

/// The window above the strip that lists the tasks of a team, each with a button for its
/// details. It is used beside the other windows: it is not modal and can't be dragged. The list
/// is built when another team is chosen, or when it is brought up to date, and stays as it is in
/// between.
class TaskListForm : public AbstractTessaportForm {
    Q_OBJECT

public:
    /// Neither the service nor the main window is owned; both have to outlive the form. The main
    /// window has to have its height, since the form stands on top of it.
    TaskListForm(TessaPort* service, AbstractMainForm* mainForm, QWidget* parent = nullptr);
    ~TaskListForm() override;

    /// Shows the teams and tasks that the session knows now: those of the team that was chosen here
    /// last, or, when that or the session's own has changed, of the session's own. For when the
    /// list is opened.
    void bringUpToDate();

public slots:
    /// Hides the list and all descriptions.
    void on_pbHide_clicked();
    /// Shows the list again if hideAll() has hidden it.
    void showAll();
    void hideAll();

private slots:
    void updateTeamCombobox();
    void on_cbTeam_currentIndexChanged(int index);
    void openTaskDescription();
    void onCurrentTeamChanged(const QString& teamId);

private:
    /// Keeps the button that has the keyboard focus in view.
    void scrollToFocus();
    int teamIndex(const QString& teamId) const;
    void fillList(const QString& teamId);
    Row* taskRow(const Task& task);
    TaskDescriptionForm* description(const QString& taskId);

    TessaPort* const m_service;
    std::unique_ptr<Ui::TaskListForm> m_ui;
    bool m_hiddenByHideAll = false;
    AbstractMainForm* const m_mainForm;
    /// By task id. Made on first use, kept whatever becomes of the list.
    std::map<QString, std::unique_ptr<TaskDescriptionForm>> m_descriptions;
    QString m_currentTeamId;
    QString m_sessionTeamId; ///< when the list last followed it
    QList<Task> m_shownTasks;
    bool m_firstFill = true;
};
