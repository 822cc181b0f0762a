// SPDX-License-Identifier: GPL-3.0-or-later
#include "RealInput.h"

#include "platform/KeyTable.h"

#include <QVector>

#include <windows.h>

namespace {

/// Down in the order given, up in the opposite.
void press(const QVector<WORD>& keys)
{
    QVector<INPUT> inputs;
    for (const WORD key : keys) {
        INPUT input = {};
        input.type = INPUT_KEYBOARD;
        input.ki.wVk = key;
        inputs.append(input);
    }
    for (int i = keys.size() - 1; i >= 0; --i) {
        INPUT input = inputs.at(i);
        input.ki.dwFlags = KEYEVENTF_KEYUP;
        inputs.append(input);
    }
    SendInput(UINT(inputs.size()), inputs.data(), sizeof(INPUT));
}

} // namespace

void RealInput::movePointer()
{
    static LONG step = 7;
    step = -step;
    INPUT input = {};
    input.type = INPUT_MOUSE;
    input.mi.dx = step;
    input.mi.dwFlags = MOUSEEVENTF_MOVE;
    SendInput(1, &input, sizeof input);
}

void RealInput::pressKeys(const QKeySequence& combination)
{
    const int keys = combination[0];
    QVector<WORD> pressed;
    if (keys & Qt::ControlModifier)
        pressed.append(VK_CONTROL);
    if (keys & Qt::AltModifier)
        pressed.append(VK_MENU);
    if (keys & Qt::ShiftModifier)
        pressed.append(VK_SHIFT);
    if (keys & Qt::MetaModifier)
        pressed.append(VK_LWIN);
    const auto key = Qt::Key(keys & ~int(Qt::KeyboardModifierMask));
    pressed.append(WORD(platform::keyCodes(key).virtualKey));
    press(pressed);
}

void RealInput::pressCapsLock()
{
    press({VK_CAPITAL});
}

void RealInput::pressNumLock()
{
    press({VK_NUMLOCK});
}
