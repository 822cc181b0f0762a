// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/WindowPlace.h"

#include <QEvent>
#include <QWidget>

namespace {

class PlaceKeeper : public QObject {
public:
    explicit PlaceKeeper(QWidget* window)
        : QObject(window)
        , m_window(window)
    {
        window->installEventFilter(this);
    }

    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Show && !event->spontaneous()) {
            m_place = m_window->pos();
            m_isSettling = true;
        } else if (event->type() == QEvent::WindowActivate) {
            m_isSettling = false;
        } else if (event->type() == QEvent::Move && m_isSettling) {
            keepPlace(event->spontaneous());
        }
        return false;
    }

private:
    void keepPlace(bool isMovedBySystem)
    {
        if (!isMovedBySystem) {
            m_place = m_window->pos();
            return;
        }
        // Asked for the same place again, the window manager tells the true one. Only once, so
        // that one with a will of its own gets it.
        m_isSettling = false;
        m_window->move(m_place);
    }

    QWidget* const m_window;
    QPoint m_place;
    bool m_isSettling = false;
};

} // namespace

void keepPlaceWhenShown(QWidget* window)
{
    new PlaceKeeper(window);
}
