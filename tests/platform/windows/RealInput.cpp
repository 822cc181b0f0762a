// SPDX-License-Identifier: GPL-3.0-or-later
#include "RealInput.h"

#include "platform/HotKeys.h"

#include <QHash>
#include <QVector>

#include <windows.h>

void RealInput::movePointer()
{
    static int step = 7;
    step = -step;
    mouse_event(MOUSEEVENTF_MOVE, DWORD(step), 0, 0, 0);
}

void RealInput::pressKeys(const QKeySequence& combination)
{
    const int key = combination[0] & ~int(Qt::KeyboardModifierMask);
    const QHash<int, quint32> locks{{Qt::Key_CapsLock, VK_CAPITAL}, {Qt::Key_NumLock, VK_NUMLOCK}};
    QVector<quint32> keys{locks.value(key, platform::nativeKeyCode(Qt::Key(key)))};
    if (combination[0] & Qt::ControlModifier)
        keys.prepend(VK_CONTROL);
    if (combination[0] & Qt::AltModifier)
        keys.prepend(VK_MENU);
    if (combination[0] & Qt::ShiftModifier)
        keys.prepend(VK_SHIFT);
    if (combination[0] & Qt::MetaModifier)
        keys.prepend(VK_LWIN);
    for (int i = 0; i < keys.size(); ++i)
        keybd_event(BYTE(keys[i]), 0, 0, 0);
    for (int i = keys.size() - 1; i >= 0; --i)
        keybd_event(BYTE(keys[i]), 0, KEYEVENTF_KEYUP, 0);
}
