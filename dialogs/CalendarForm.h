// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dialogs/AbstractTessaportForm.h"

#include <QDate>
#include <QString>
#include <QTime>

#include <memory>

namespace Ui {
class CalendarForm;
}

/// Asks the user for a later deadline of a task, and why. It sends nothing; whoever opened it reads
/// the answer when it is accepted. Any date and time can be chosen, past ones too.
class CalendarForm : public AbstractTessaportForm {
    Q_OBJECT

public:
    explicit CalendarForm(QWidget* parent = nullptr);
    ~CalendarForm() override;

    QDate selectedDate() const;
    QTime selectedTime() const;
    /// As typed, with the blanks around it.
    QString getReason() const;

public slots:
    /// Closes the dialog, unless the reason is blank: then a notice asks for it.
    void accept() override;

private:
    void setUpCalendar();

    std::unique_ptr<Ui::CalendarForm> m_ui;
};
