// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dialogs/AbstractTessaportForm.h"

class AbstractMainForm;

namespace Ui {
class TaskForm;
}

/// The dialog in which the user picks the team and the task that time is counted for. Made once
/// and kept; it follows the session also while it is hidden. The pick counts when accepted()
/// comes: the dialog itself changes nothing in the session.
class TaskForm : public AbstractTessaportForm {
    Q_OBJECT

public:
    /// The main window is not owned; its service is asked and listened to.
    explicit TaskForm(AbstractMainForm* mainForm, QWidget* parent = nullptr);
    ~TaskForm() override;

    /// The picked team; empty when there is none.
    QString selectedTeamId() const;
    /// The picked task; empty when there is none.
    QString selectedTaskId() const;
    /// Goes back to the session's team and task. Asks the service for new lists and waits for
    /// them, or takes the cached ones at once while the service can't be reached.
    void reload();

protected:
    void paintEvent(QPaintEvent* event) override;

private slots:
    void on_cbTask_currentIndexChanged(int index);
    void on_cbTeam_currentIndexChanged(int index);
    void refreshed();
    void error(int);
    void closeTask(QString);

private:
    std::unique_ptr<Ui::TaskForm> m_ui;
    AbstractMainForm* const m_mainForm;
    QString m_teamId;
    QString m_taskId;
};
