// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/HotKeys.h"

#include "platform/KeyTable.h"

#include <windows.h>

namespace platform {

namespace {

// The exclusive-or of the two values, so that different combinations can meet on one id; see
// docs/decisions.md.
int hotKeyId(NativeKeys keys)
{
    return static_cast<int>(keys.second ^ keys.first);
}

} // namespace

quint32 nativeKeyCode(Qt::Key key)
{
    return keyCodes(key).virtualKey;
}

quint32 nativeModifiers(Qt::KeyboardModifiers modifiers)
{
    quint32 native = 0;
    if (modifiers.testFlag(Qt::ShiftModifier))
        native |= MOD_SHIFT;
    if (modifiers.testFlag(Qt::ControlModifier))
        native |= MOD_CONTROL;
    if (modifiers.testFlag(Qt::AltModifier))
        native |= MOD_ALT;
    if (modifiers.testFlag(Qt::MetaModifier))
        native |= MOD_WIN;
    return native;
}

bool registerHotKey(NativeKeys keys)
{
    return RegisterHotKey(nullptr, hotKeyId(keys), keys.second, keys.first) != FALSE;
}

bool unregisterHotKey(NativeKeys keys)
{
    return UnregisterHotKey(nullptr, hotKeyId(keys)) != FALSE;
}

std::optional<NativeKeys> hotKeyPress(const QByteArray&, void* message)
{
    const MSG* const event = static_cast<const MSG*>(message);
    if (event->message != WM_HOTKEY)
        return std::nullopt;
    return NativeKeys(HIWORD(event->lParam), LOWORD(event->lParam));
}

} // namespace platform
