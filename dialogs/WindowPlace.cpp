// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/WindowPlace.h"

#include <QApplication>
#include <QEvent>
#include <QScreen>
#include <QWidget>
#include <QWindow>

#include <algorithm>

namespace {

/// The rectangle moved into the area as far as it has to be; what is larger begins where the area
/// does.
QRect movedInto(const QRect& area, QRect rect)
{
    rect.moveRight(std::min(rect.right(), area.right()));
    rect.moveBottom(std::min(rect.bottom(), area.bottom()));
    rect.moveLeft(std::max(rect.left(), area.left()));
    rect.moveTop(std::max(rect.top(), area.top()));
    return rect;
}

class PlaceKeeper : public QObject {
public:
    explicit PlaceKeeper(QWidget* window)
        : QObject(window)
        , m_window(window)
    {
        window->installEventFilter(this);
        whenAreaChanges(this, [this] { keepInside(); });
    }

    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Show && !event->spontaneous()) {
            // A window manager would take the size down to a multiple of the scale factor.
            m_window->setFixedSize(m_window->size());
            keepInside();
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
    void keepInside()
    {
        // One that was never moved is placed by the window system.
        if (!m_window->testAttribute(Qt::WA_Moved))
            return;
        const QWindow* const handle = m_window->windowHandle();
        const QRect area =
            handle && handle->screen() ? handle->screen()->availableGeometry() : availableArea();
        m_window->move(movedInto(area, m_window->geometry()).topLeft());
    }

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

QRect availableArea()
{
    const QScreen* const screen = QGuiApplication::primaryScreen();
    return screen ? screen->availableGeometry() : QRect();
}

void whenAreaChanges(QObject* context, const std::function<void()>& function)
{
    const auto watch = [context, function](const QScreen* screen) {
        QObject::connect(screen, &QScreen::availableGeometryChanged, context, function,
                         Qt::QueuedConnection);
    };
    const QList<QScreen*> screens = QGuiApplication::screens();
    std::for_each(screens.cbegin(), screens.cend(), watch);
    QObject::connect(qApp, &QGuiApplication::screenAdded, context, watch);
    for (const auto change : {&QGuiApplication::screenAdded, &QGuiApplication::screenRemoved,
                              &QGuiApplication::primaryScreenChanged})
        QObject::connect(qApp, change, context, function, Qt::QueuedConnection);
}

void keepPlaceWhenShown(QWidget* window)
{
    new PlaceKeeper(window);
}

void placeInArea(QWidget* window, const std::function<void()>& place)
{
    place();
    whenAreaChanges(window, place);
}
