// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/HotKeys.h"

#include "XcbPointer.h"
#include "platform/KeyTable.h"

#include <QVector>
#include <QX11Info>

#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>

#include <algorithm>
#include <memory>

namespace platform {

namespace {

struct KeySymbolsDeleter {
    void operator()(xcb_key_symbols_t* symbols) const { xcb_key_symbols_free(symbols); }
};
using KeySymbols = std::unique_ptr<xcb_key_symbols_t, KeySymbolsDeleter>;

/// What is grabbed of the X server for a combination.
struct Grab {
    NativeKeys keys;
    xcb_keycode_t keycode = 0;
    /// The modifiers of the combination alone and with each mix of the locks, which the server
    /// takes for different combinations.
    QVector<quint16> modifiers;
};

constexpr quint32 combinationModifiers =
    XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | XCB_MOD_MASK_4;

QVector<Grab>& grabs()
{
    static QVector<Grab> registered;
    return registered;
}

/// 0 when the keyboard has no such key.
xcb_keycode_t keycodeOf(xcb_key_symbols_t* symbols, xcb_keysym_t keysym)
{
    const XcbPointer<xcb_keycode_t> keycodes(xcb_key_symbols_get_keycode(symbols, keysym));
    return keycodes ? keycodes.get()[0] : xcb_keycode_t(XCB_NO_SYMBOL);
}

/// The modifier bit that the Num Lock key switches on this keyboard; 0 when none does.
quint16 numLockModifier(xcb_connection_t* connection, xcb_key_symbols_t* symbols)
{
    constexpr xcb_keysym_t numLockKeysym = 0xff7f;
    const xcb_keycode_t numLock = keycodeOf(symbols, numLockKeysym);
    const XcbPointer<xcb_get_modifier_mapping_reply_t> mapping(
        xcb_get_modifier_mapping_reply(connection, xcb_get_modifier_mapping(connection), nullptr));
    if (!mapping || numLock == XCB_NO_SYMBOL)
        return 0;

    const xcb_keycode_t* const keycodes = xcb_get_modifier_mapping_keycodes(mapping.get());
    const int perModifier = mapping->keycodes_per_modifier;
    for (int i = 0; i < 8 * perModifier; ++i) {
        if (keycodes[i] == numLock)
            return quint16(1u << (i / perModifier));
    }
    return 0;
}

void release(xcb_connection_t* connection, const Grab& grab)
{
    for (const quint16 modifiers : grab.modifiers)
        xcb_ungrab_key(connection, grab.keycode, QX11Info::appRootWindow(), modifiers);
    xcb_flush(connection);
}

/// True when the server granted all of it; else none of it is held.
bool take(xcb_connection_t* connection, const Grab& grab)
{
    QVector<xcb_void_cookie_t> cookies;
    for (const quint16 modifiers : grab.modifiers) {
        cookies.append(xcb_grab_key_checked(connection, 0, QX11Info::appRootWindow(), modifiers,
                                            grab.keycode, XCB_GRAB_MODE_ASYNC,
                                            XCB_GRAB_MODE_ASYNC));
    }
    bool granted = true;
    for (const xcb_void_cookie_t cookie : cookies) {
        const XcbPointer<xcb_generic_error_t> error(xcb_request_check(connection, cookie));
        granted = granted && !error;
    }
    if (!granted)
        release(connection, grab);
    return granted;
}

} // namespace

quint32 nativeKeyCode(Qt::Key key)
{
    return keyCodes(key).keysym;
}

quint32 nativeModifiers(Qt::KeyboardModifiers modifiers)
{
    quint32 native = 0;
    if (modifiers & Qt::ShiftModifier)
        native |= XCB_MOD_MASK_SHIFT;
    if (modifiers & Qt::ControlModifier)
        native |= XCB_MOD_MASK_CONTROL;
    if (modifiers & Qt::AltModifier)
        native |= XCB_MOD_MASK_1;
    if (modifiers & Qt::MetaModifier)
        native |= XCB_MOD_MASK_4;
    return native;
}

bool registerHotKey(NativeKeys keys)
{
    // Without a keysym the grab would be one of every key there is.
    xcb_connection_t* const connection = QX11Info::connection();
    if (!connection || keys.first == XCB_NO_SYMBOL)
        return false;

    const auto isSame = [keys](const Grab& grab) { return grab.keys == keys; };
    if (std::any_of(grabs().cbegin(), grabs().cend(), isSame))
        return false;

    const KeySymbols symbols(xcb_key_symbols_alloc(connection));
    if (!symbols)
        return false;
    Grab grab;
    grab.keys = keys;
    grab.keycode = keycodeOf(symbols.get(), keys.first);
    if (grab.keycode == XCB_NO_SYMBOL)
        return false;

    const quint16 modifiers = quint16(keys.second);
    const quint16 numLock = numLockModifier(connection, symbols.get());
    grab.modifiers = {modifiers, quint16(modifiers | XCB_MOD_MASK_LOCK)};
    if (numLock != 0) {
        grab.modifiers.append(quint16(modifiers | numLock));
        grab.modifiers.append(quint16(modifiers | numLock | XCB_MOD_MASK_LOCK));
    }
    if (!take(connection, grab))
        return false;
    grabs().append(grab);
    return true;
}

bool unregisterHotKey(NativeKeys keys)
{
    const auto isSame = [keys](const Grab& grab) { return grab.keys == keys; };
    const auto grab = std::find_if(grabs().begin(), grabs().end(), isSame);
    xcb_connection_t* const connection = QX11Info::connection();
    if (grab == grabs().end() || !connection)
        return false;
    release(connection, *grab);
    grabs().erase(grab);
    return true;
}

std::optional<NativeKeys> hotKeyPress(const QByteArray& eventType, void* message)
{
    if (eventType != "xcb_generic_event_t")
        return std::nullopt;
    const auto* const event = static_cast<const xcb_generic_event_t*>(message);
    // The uppermost bit only says whether another client sent the event.
    if ((event->response_type & 0x7f) != XCB_KEY_PRESS)
        return std::nullopt;

    const auto* const press = static_cast<const xcb_key_press_event_t*>(message);
    const quint32 modifiers = press->state & combinationModifiers;
    const auto isPressed = [press, modifiers](const Grab& grab) {
        return grab.keycode == press->detail && grab.keys.second == modifiers;
    };
    const auto grab = std::find_if(grabs().cbegin(), grabs().cend(), isPressed);
    // A key typed into a window of this program comes with that window, not with the root.
    if (grab == grabs().cend() || press->event != QX11Info::appRootWindow())
        return std::nullopt;
    return grab->keys;
}

} // namespace platform
