// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/WindowShapes.h"

#include "platform/WindowSystem.h"

#include <QBitmap>
#include <QEvent>
#include <QWidget>

namespace {

// The pixels that are more opaque than not, as the window paints itself now.
QBitmap panelShape(QWidget* window)
{
    const QImage image = window->grab().toImage().scaled(window->size());
    return QBitmap::fromImage(image.createAlphaMask(Qt::ThresholdDither));
}

} // namespace

WindowShapes::WindowShapes(QObject* parent)
    : QObject(parent)
{
}

bool WindowShapes::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() != QEvent::Show || !object->isWidgetType())
        return false;
    const auto widget = static_cast<QWidget*>(object);
    if (!widget->isWindow() || !widget->testAttribute(Qt::WA_TranslucentBackground))
        return false;
    if (platform::mixesTranslucentWindows())
        widget->clearMask();
    else
        widget->setMask(panelShape(widget));
    return false;
}
