// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QPoint>
#include <QRect>
#include <QStringList>
#include <QtGui/qwindowdefs.h>

using WindowList = QList<WId>;

/// Looks at the windows of the whole desktop. Places and sizes are in the system's own pixels.
class Q_DECL_EXPORT QxtWindowSystem {
public:
    /// The windows of all programs, the lowest first; empty when the system can't tell.
    static WindowList windows();

    /// The window that has the user's attention; 0 when there is none.
    static WId activeWindow();

    /// The uppermost window with exactly this title; 0 when there is none.
    static WId findWindow(const QString& title);

    /// The uppermost window whose frame holds the point; 0 when there is none.
    static WId windowAt(const QPoint& pos);

    /// Empty for a window without a title, or that is gone.
    static QString windowTitle(WId window);

    /// In the order of windows().
    static QStringList windowTitles();

    /// The frame included; null for a window that is gone.
    static QRect windowGeometry(WId window);
};
