// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/AutoScrollLineEdit.h"

#include <QScrollBar>

AutoScrollLineEdit::AutoScrollLineEdit(QWidget* parent)
    : QTextEdit(parent)
{
    connect(&m_borderTimer, &QTimer::timeout, this, &AutoScrollLineEdit::border_timer_timeout);
    m_borderTimer.setInterval(1000);
    connect(&m_timer, &QTimer::timeout, this, &AutoScrollLineEdit::timer_timeout);
    m_timer.setInterval(50);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setStyleSheet(QStringLiteral("QTextEdit {background-color:transparent;}"));
    setFrameShape(QFrame::NoFrame);
    m_timer.start();
    setReadOnly(true);
    setTextInteractionFlags(Qt::NoTextInteraction);
}

void AutoScrollLineEdit::timer_timeout()
{
    QScrollBar* const bar = verticalScrollBar();
    if (bar->value() == 0 || bar->value() == bar->maximum()) {
        m_timer.stop();
        m_borderTimer.start();
        return;
    }
    bar->setValue(bar->value() + (m_forward ? 1 : -1));
}

void AutoScrollLineEdit::border_timer_timeout()
{
    // The first step off the end is made here, so that the next tick sees no end any more.
    QScrollBar* const bar = verticalScrollBar();
    if (bar->value() == 0) {
        bar->setValue(bar->value() + 1);
        m_forward = true;
    } else if (bar->value() == bar->maximum()) {
        bar->setValue(bar->value() - 1);
        m_forward = false;
    }
    m_borderTimer.stop();
    m_timer.start();
}
