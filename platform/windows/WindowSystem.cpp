// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/WindowSystem.h"

#include <algorithm>
#include <vector>

#include <windows.h>

namespace platform {

namespace {

HWND handleOf(WId window)
{
    return reinterpret_cast<HWND>(window);
}

BOOL CALLBACK collectWindow(HWND window, LPARAM userData)
{
    if (IsWindowVisible(window) && GetWindowTextLengthW(window) > 0)
        reinterpret_cast<QList<WId>*>(userData)->append(reinterpret_cast<WId>(window));
    return TRUE;
}

} // namespace

QList<WId> desktopWindows()
{
    QList<WId> windows;
    EnumWindows(collectWindow, reinterpret_cast<LPARAM>(&windows));
    // The system begins with the topmost.
    std::reverse(windows.begin(), windows.end());
    return windows;
}

WId activeDesktopWindow()
{
    return reinterpret_cast<WId>(GetForegroundWindow());
}

QString desktopWindowTitle(WId window)
{
    const int length = GetWindowTextLengthW(handleOf(window));
    std::vector<wchar_t> title(static_cast<std::size_t>(length) + 1);
    const int copied =
        GetWindowTextW(handleOf(window), title.data(), static_cast<int>(title.size()));
    return QString::fromWCharArray(title.data(), copied);
}

QRect desktopWindowGeometry(WId window)
{
    RECT rect;
    if (!GetWindowRect(handleOf(window), &rect))
        return QRect();
    return QRect(QPoint(rect.left, rect.top), QPoint(rect.right - 1, rect.bottom - 1));
}

bool mixesTranslucentWindows()
{
    return true;
}

void cutWindow(WId, const QRegion&) { }

} // namespace platform
