// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QApplication>

/// The application object, with display scaling, the program's own fonts and Qt's texts in Russian,
/// whatever the desktop is set to.
class Application : public QApplication {
    Q_OBJECT

public:
    /// As with QApplication, the arguments have to outlive the object.
    Application(int& argc, char** argv);

    /// Not owned; null until it is set.
    void setMainForm(QWidget* mainForm) { m_mainForm = mainForm; }
    /// Brings the main window to the front; does nothing while there is none.
    void showMainForm();

private:
    QWidget* m_mainForm = nullptr;
};
