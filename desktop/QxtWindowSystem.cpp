// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/QxtWindowSystem.h"

#include "platform/WindowSystem.h"

#include <algorithm>

namespace {

template <typename Predicate> WId uppermostWindow(Predicate predicate)
{
    const WindowList windows = QxtWindowSystem::windows();
    const auto found = std::find_if(windows.crbegin(), windows.crend(), predicate);
    return found == windows.crend() ? 0 : *found;
}

} // namespace

WindowList QxtWindowSystem::windows()
{
    return platform::desktopWindows();
}

WId QxtWindowSystem::activeWindow()
{
    return platform::activeDesktopWindow();
}

WId QxtWindowSystem::findWindow(const QString& title)
{
    return uppermostWindow([&title](WId window) { return windowTitle(window) == title; });
}

WId QxtWindowSystem::windowAt(const QPoint& pos)
{
    return uppermostWindow([pos](WId window) { return windowGeometry(window).contains(pos); });
}

QString QxtWindowSystem::windowTitle(WId window)
{
    return platform::desktopWindowTitle(window);
}

QStringList QxtWindowSystem::windowTitles()
{
    QStringList titles;
    const WindowList all = windows();
    for (const WId window : all)
        titles.append(windowTitle(window));
    return titles;
}

QRect QxtWindowSystem::windowGeometry(WId window)
{
    return platform::desktopWindowGeometry(window);
}
