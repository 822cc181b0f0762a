// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/HotKeys.h"

#include "XcbPointer.h"
#include "platform/KeyTable.h"

#include <QVector>
#include <QX11Info>

#include <xcb/xcb.h>
#include <xkbcommon/xkbcommon-x11.h>

#include <algorithm>
#include <memory>

namespace platform {

namespace {

struct KeymapDeleter {
    void operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }
};
using Keymap = std::unique_ptr<xkb_keymap, KeymapDeleter>;

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

/// The keyboard as it is set now; null when the server can't tell.
Keymap currentKeymap(xcb_connection_t* connection)
{
    struct ContextDeleter {
        void operator()(xkb_context* context) const { xkb_context_unref(context); }
    };
    const std::unique_ptr<xkb_context, ContextDeleter> context(
        xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    const int keyboard = xkb_x11_get_core_keyboard_device_id(connection);
    if (!context || keyboard < 0)
        return nullptr;
    return Keymap(xkb_x11_keymap_new_from_device(context.get(), connection, keyboard,
                                                 XKB_KEYMAP_COMPILE_NO_FLAGS));
}

/// Whether the key gives one of the symbols in this group of the keyboard, at this level of it.
bool gives(xkb_keymap* keymap, xkb_keycode_t key, xkb_layout_index_t group, xkb_level_index_t level,
           xkb_keysym_t keysym)
{
    // A key with fewer groups would answer for another one, and which one is its own affair.
    if (group >= xkb_keymap_num_layouts_for_key(keymap, key))
        return false;
    const xkb_keysym_t* symbols = nullptr;
    const int count = xkb_keymap_key_get_syms_by_level(keymap, key, group, level, &symbols);
    return std::any_of(symbols, symbols + count, [keysym](xkb_keysym_t symbol) {
        return symbol == keysym || symbol == xkb_keysym_to_lower(keysym);
    });
}

/// Where a letter is on a Latin keyboard, for a keyboard that has none; 0 for what is no letter.
xkb_keycode_t latinPlace(xkb_keymap* keymap, xkb_keysym_t keysym)
{
    // By rows, as the keys are called in the X keyboard extension.
    const QPair<const char*, QByteArray> rows[] = {
        {"AD", QByteArrayLiteral("QWERTYUIOP")},
        {"AC", QByteArrayLiteral("ASDFGHJKL")},
        {"AB", QByteArrayLiteral("ZXCVBNM")},
    };
    for (const auto& [row, letters] : rows) {
        const int place = keysym <= 'Z' ? letters.indexOf(char(keysym)) : -1;
        if (place < 0)
            continue;
        const QByteArray name = row + QByteArray::number(place + 1).rightJustified(2, '0');
        const xkb_keycode_t key = xkb_keymap_key_by_name(keymap, name.constData());
        return key == XKB_KEYCODE_INVALID ? 0 : key;
    }
    return 0;
}

/// The key whose symbol this is in the first group that has it: with several layouts the one that
/// somebody put first. 0 when the keyboard has no such key.
xcb_keycode_t keycodeOf(xkb_keymap* keymap, xkb_keysym_t keysym)
{
    constexpr xkb_level_index_t mostLevels = 8;
    const xkb_keycode_t first = xkb_keymap_min_keycode(keymap);
    const xkb_keycode_t last = std::min<xkb_keycode_t>(xkb_keymap_max_keycode(keymap), 255);
    for (xkb_layout_index_t group = 0; group < xkb_keymap_num_layouts(keymap); ++group) {
        for (xkb_level_index_t level = 0; level < mostLevels; ++level) {
            for (xkb_keycode_t key = first; key <= last; ++key) {
                if (gives(keymap, key, group, level, keysym))
                    return xcb_keycode_t(key);
            }
        }
    }
    return xcb_keycode_t(latinPlace(keymap, keysym));
}

/// The modifier bit that the Num Lock key switches on this keyboard; 0 when none does.
quint16 numLockModifier(xcb_connection_t* connection, xkb_keymap* keymap)
{
    const xcb_keycode_t numLock = keycodeOf(keymap, XKB_KEY_Num_Lock);
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

    const Keymap keymap = currentKeymap(connection);
    if (!keymap)
        return false;
    Grab grab;
    grab.keys = keys;
    grab.keycode = keycodeOf(keymap.get(), keys.first);
    if (grab.keycode == XCB_NO_SYMBOL)
        return false;
    // The server would grant one program the same grab twice, and two combinations may end on it.
    const auto isSame = [&grab](const Grab& held) {
        return held.keycode == grab.keycode && held.keys.second == grab.keys.second;
    };
    if (std::any_of(grabs().cbegin(), grabs().cend(), isSame))
        return false;

    const quint16 modifiers = quint16(keys.second);
    const quint16 numLock = numLockModifier(connection, keymap.get());
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
