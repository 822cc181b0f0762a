// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <QImage>
#include <QPoint>

#include <memory>

class TessaPort;

namespace Ui {
class LoginForm;
}

/// The sign-in dialog. It stays open, with what was typed, until the service accepts the
/// credentials, which ends it with QDialog::Accepted, or the user closes it. A refusal is told in
/// one line of the dialog, an exchange that failed is not. It can be dragged by its top.
class LoginForm : public QDialog {
    Q_OBJECT

public:
    /// Starts with the credentials of the current session. The service is not owned.
    explicit LoginForm(TessaPort* service, QWidget* parent = nullptr);
    ~LoginForm() override;

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private slots:
    void errorOccured(int error);
    void on_pbClose_clicked();
    void on_pbEnter_clicked();

private:
    std::unique_ptr<Ui::LoginForm> m_ui;
    QImage m_topImage;
    QImage m_paneImage;
    QPoint m_lastMousePos;
    TessaPort* const m_service;
};
