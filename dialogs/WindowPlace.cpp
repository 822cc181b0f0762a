// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/WindowPlace.h"

#include <QApplication>
#include <QEvent>
#include <QScreen>
#include <QScrollArea>
#include <QStyle>
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

/// The frame that the window manager is going to put around the window.
QSize frameSize(const QWidget* window)
{
    if (window->windowFlags().testFlag(Qt::FramelessWindowHint))
        return {0, 0};
    if (window->isVisible())
        return window->frameSize() - window->size();
    const QStyle* const style = window->style();
    const int border = style->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, window);
    return {2 * border,
            2 * border + style->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, window)};
}

/// Moves the children of the window below its head into contents that scroll, which are as large as
/// the whole window within its edge, and which let its panel through.
QScrollArea* moveIntoScrollArea(QWidget* window, const QRect& inside)
{
    const auto children = window->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    const auto area = new QScrollArea(window);
    area->setFrameShape(QFrame::NoFrame);
    const auto contents = new QWidget(area);
    contents->setObjectName(QStringLiteral("wContents"));
    contents->resize(inside.size());
    area->setWidget(contents);
    for (QWidget* const opaque : {contents, area->viewport()})
        opaque->setAutoFillBackground(false);
    for (QWidget* const child : children) {
        const QRect place = child->geometry();
        if (place.bottom() < inside.top())
            continue;
        child->setParent(contents);
        child->move(place.topLeft() - inside.topLeft());
    }
    area->show();
    return area;
}

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

void makeScrollable(QWidget* window, const QMargins& edge,
                    const std::function<void(const QSize&)>& resize)
{
    placeInArea(window, [window, edge, resize, whole = window->rect()] {
        const QSize room = availableArea().size() - frameSize(window);
        QSize size = whole.size().boundedTo(room);
        auto area = window->findChild<QScrollArea*>(QString(), Qt::FindDirectChildrenOnly);
        if (!area && size != whole.size())
            area = moveIntoScrollArea(window, whole.marginsRemoved(edge));
        if (area) {
            // The bar of one direction takes of the room in the other.
            const int bar = window->style()->pixelMetric(QStyle::PM_ScrollBarExtent);
            if (size.height() < whole.height())
                size.setWidth(std::min(whole.width() + bar, room.width()));
            if (size.width() < whole.width())
                size.setHeight(std::min(whole.height() + bar, room.height()));
            area->setGeometry(QRect(QPoint(), size).marginsRemoved(edge));
        }
        resize(size);
    });
}
