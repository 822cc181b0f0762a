// SPDX-License-Identifier: GPL-3.0-or-later
#include "capture/DesktopGrab.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPixmap>
#include <QScreen>

namespace {

// Display scaling divides the size of a monitor but leaves its place in the desktop as it is.
QRect pixelGeometry(const QScreen& screen)
{
    const QRect geometry = screen.geometry();
    return {geometry.topLeft(), geometry.size() * screen.devicePixelRatio()};
}

} // namespace

QImage grabDesktop()
{
    const QList<QScreen*> screens = QGuiApplication::screens();
    QRect desktop;
    for (const QScreen* screen : screens)
        desktop |= pixelGeometry(*screen);
    if (desktop.isEmpty())
        return QImage();

    QImage image(desktop.size(), QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    bool hasPicture = false;
    for (QScreen* screen : screens) {
        QPixmap grab = screen->grabWindow(0);
        if (grab.isNull())
            continue;
        grab.setDevicePixelRatio(1.0);
        painter.drawPixmap(pixelGeometry(*screen).topLeft() - desktop.topLeft(), grab);
        hasPicture = true;
    }
    painter.end();
    return hasPicture ? image : QImage();
}
