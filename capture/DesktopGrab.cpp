// SPDX-License-Identifier: GPL-3.0-or-later
#include "capture/DesktopGrab.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPixmap>
#include <QScreen>

#include <utility>

QImage assembledDesktop(const QVector<MonitorPicture>& monitors)
{
    if (monitors.size() == 1)
        return monitors.first().picture;
    QRect desktop;
    for (const MonitorPicture& monitor : monitors)
        desktop |= QRect(monitor.place, monitor.picture.size());
    if (desktop.isEmpty())
        return QImage();

    QImage image(desktop.size(), QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    for (const MonitorPicture& monitor : monitors)
        painter.drawImage(monitor.place - desktop.topLeft(), monitor.picture);
    return image;
}

QImage grabDesktop()
{
    QVector<MonitorPicture> monitors;
    const QList<QScreen*> screens = QGuiApplication::screens();
    for (QScreen* screen : screens) {
        QImage picture = screen->grabWindow(0).toImage();
        if (picture.isNull())
            continue;
        // Display scaling divides the size of a monitor, roundly, but leaves its place in the
        // desktop as it is.
        picture.setDevicePixelRatio(1.0);
        monitors.append({screen->geometry().topLeft(), std::move(picture)});
    }
    return assembledDesktop(monitors);
}
