// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/WindowShapes.h"

#include "platform/WindowSystem.h"

#include <QBitmap>
#include <QEvent>
#include <QWidget>

#include <algorithm>

namespace {

// The pixels that are as good as opaque, as the window paints itself now. The half transparent ones
// at its corners would be dark dots.
QRegion panelShape(QWidget* window)
{
    constexpr int opaque = 0xE0;
    QImage image = window->grab().toImage().convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y) {
        const auto line = reinterpret_cast<QRgb*>(image.scanLine(y));
        std::replace_if(
            line, line + image.width(), [](QRgb pixel) { return qAlpha(pixel) < opaque; }, 0);
    }
    return QRegion(QBitmap::fromImage(image.createAlphaMask()));
}

} // namespace

WindowShapes::WindowShapes(QObject* parent)
    : QObject(parent)
{
}

bool WindowShapes::eventFilter(QObject* object, QEvent* event)
{
    if ((event->type() != QEvent::Show && event->type() != QEvent::Resize)
        || !object->isWidgetType())
        return false;
    const auto widget = static_cast<QWidget*>(object);
    if (!widget->isVisible() || !widget->isWindow()
        || !widget->testAttribute(Qt::WA_TranslucentBackground))
        return false;
    // The icon in the tray, past the window manager: the tray stands behind it, and its picture
    // changes.
    if (widget->windowFlags().testFlag(Qt::BypassWindowManagerHint))
        return false;
    platform::cutWindow(widget->winId(),
                        platform::mixesTranslucentWindows() ? QRegion() : panelShape(widget));
    return false;
}
