// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QPoint>
#include <QVector>

/// What one monitor shows.
struct MonitorPicture {
    QPoint place; ///< of its corner on the desktop, in pixels; may be negative
    QImage picture;
};

/// The monitors in their places, each pixel as it is; what no monitor shows is black. The picture
/// itself, and no copy, of a single monitor; a null image when there is none.
QImage assembledDesktop(const QVector<MonitorPicture>& monitors);

/// A picture of the whole desktop as it is now, all monitors at their own pixels and in their
/// places. A null image when the system gives no picture.
QImage grabDesktop();
