// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <QIcon>

struct Task;
class TessaPort;

/// What the other windows and the notices need of the main window, besides its place on screen.
class AbstractMainForm : public QDialog {
    Q_OBJECT

public:
    using QDialog::QDialog;

    /// The service client; not owned by the window.
    virtual TessaPort* service() const = 0;
    /// The picture that tells a blocking task from an urgent and an ordinary one.
    virtual QIcon taskIcon(const Task& task) const = 0;
    /// Has to be called when there are notices where there were none, or the other way round.
    virtual void updateAttention() = 0;

signals:
    /// All windows of the program have to hide.
    void hideAll();
    /// The windows that hideAll() hid have to come back.
    void showAll();
};
