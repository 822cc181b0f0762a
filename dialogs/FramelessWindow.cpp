// SPDX-License-Identifier: GPL-3.0-or-later
#include "FramelessWindow.h"

#include "dialogs/WindowPlace.h"

#include <QAbstractButton>
#include <QMouseEvent>

void dragWindow(QWidget* window, QPoint& lastMousePos, QEvent* event)
{
    if (event->type() == QEvent::MouseMove) {
        const auto mouseEvent = static_cast<QMouseEvent*>(event);
        if (mouseEvent->buttons() & Qt::LeftButton) {
            window->move(window->pos() + mouseEvent->globalPos() - lastMousePos);
            lastMousePos = mouseEvent->globalPos();
            event->accept();
        }
    } else if (event->type() == QEvent::MouseButtonPress) {
        lastMousePos = static_cast<QMouseEvent*>(event)->globalPos();
        event->accept();
    }
}

void keepMouseWithButtons(QWidget* window)
{
    const auto buttons = window->findChildren<QAbstractButton*>();
    for (QAbstractButton* const button : buttons)
        button->setAttribute(Qt::WA_NoMousePropagation);
}

void centreOnScreen(QWidget* window)
{
    const QPoint centre = availableArea().center();
    window->move(int(centre.x() - 0.5 * window->width()), int(centre.y() - 0.5 * window->height()));
}
