// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

#include <memory>

class TessaPort;

namespace Ui {
class AboutForm;
}

/// Tells the program's version, when it was built, and whether there is a newer one. It is an
/// ordinary window and not modal. While it exists, each version check of the program updates it.
class AboutForm : public QDialog {
    Q_OBJECT

public:
    /// The service is not owned and has to outlive the form.
    explicit AboutForm(TessaPort* service, QWidget* parent = nullptr);
    ~AboutForm() override;

    /// Starts a version check. If that fails the form goes on saying that it runs.
    void refresh();

private slots:
    void updateAvailable(bool isAvailable);

private:
    std::unique_ptr<Ui::AboutForm> m_ui;
    TessaPort* const m_service;
};
