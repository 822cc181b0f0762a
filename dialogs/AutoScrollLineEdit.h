// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTextEdit>
#include <QTimer>

/// A read-only text of several lines that slides down to its end, rests, slides back up, rests,
/// and so on for as long as it lives. A text from the service goes in by setPlainText().
class AutoScrollLineEdit : public QTextEdit {
    Q_OBJECT

public:
    explicit AutoScrollLineEdit(QWidget* parent = nullptr);

private slots:
    virtual void timer_timeout();
    virtual void border_timer_timeout();

private:
    QTimer m_borderTimer; ///< the rest at either end
    QTimer m_timer; ///< the tick of the slide
    bool m_forward = true; ///< moving down
};
