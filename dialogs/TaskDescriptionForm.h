// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dialogs/AbstractTessaportForm.h"
#include "session/Records.h"

#include <QString>

#include <memory>

class ScrollText;
class TessaPort;

namespace Ui {
class TaskDescriptionForm;
}

/// The window beside the task list that shows all that is known of one task: deadline, people,
/// attachments and description on one page, its writing assignments on another. It is used beside
/// the other windows: it is not modal and can't be dragged. Shown or hidden, it follows what the
/// service tells of its task.
class TaskDescriptionForm : public AbstractTessaportForm {
    Q_OBJECT

public:
    /// Shows the details that are cached, or dots. The service is not owned and has to outlive the
    /// form; the form opens left of the list.
    TaskDescriptionForm(const QString& taskId, TessaPort* service, const QWidget* listForm,
                        QWidget* parent = nullptr);
    ~TaskDescriptionForm() override;

    /// A number of bytes in the largest unit that leaves at least 1, from B to TB.
    static QString size_human(float num);

public slots:
    /// Shows the details if they are those of this form's task.
    void updateTask(const TaskInfo& taskInfo);
    void on_pbHide_clicked();
    void on_pbCopyrightTasks_clicked();
    void on_pbMainInfo_clicked();
    /// Shows the form again if hideAll() has hidden it.
    void showAll();
    void hideAll();
    /// Asks the service for the details, or, offline, shows the cached ones.
    void requestUpdateTask(const QString& id);

private slots:
    void on_cbTexts_currentIndexChanged(int index);

private:
    void updateAttachments(const QList<Attachment>& files);
    void updateTextTasksCombobox(const TaskInfo& taskInfo);
    void updateTaskText(const TextTask& textTask);
    void updateKeywords(const QList<Keyword>& keywords);

    std::unique_ptr<Ui::TaskDescriptionForm> m_ui;
    bool m_hiddenByHideAll = false;
    TessaPort* const m_service;
    const QString m_taskId;
    ScrollText* m_titleText = nullptr;
};
