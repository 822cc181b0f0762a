// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/DisplayScale.h"

#include "XcbPointer.h"

#include <QByteArray>

#include <xcb/xcb.h>

#include <memory>

namespace {

/// The raw content of a window's property, of whatever type; empty when it has none.
QByteArray property(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t name)
{
    constexpr quint32 longest = 64 * 1024;
    const platform::XcbPointer<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection,
        xcb_get_property(connection, 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, longest),
        nullptr));
    if (!reply)
        return {};
    return QByteArray(static_cast<const char*>(xcb_get_property_value(reply.get())),
                      xcb_get_property_value_length(reply.get()));
}

xcb_atom_t atom(xcb_connection_t* connection, const QByteArray& name)
{
    const platform::XcbPointer<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 0, quint16(name.size()), name.constData()),
        nullptr));
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

/// What the daemon of the desktop's settings has to say; empty when none runs.
QByteArray settings(xcb_connection_t* connection, int screen)
{
    const xcb_atom_t selection = atom(connection, "_XSETTINGS_S" + QByteArray::number(screen));
    const platform::XcbPointer<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        connection, xcb_get_selection_owner(connection, selection), nullptr));
    if (!reply || reply->owner == XCB_WINDOW_NONE)
        return {};
    return property(connection, reply->owner, atom(connection, "_XSETTINGS_SETTINGS"));
}

} // namespace

bool platform::desktopTellsScale()
{
    int screen = 0;
    const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection(
        xcb_connect(nullptr, &screen), &xcb_disconnect);
    if (xcb_connection_has_error(connection.get()))
        return false;
    // As in Qt, which reads no other form, and the resources of the first screen.
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection.get())).data->root;
    return property(connection.get(), root, XCB_ATOM_RESOURCE_MANAGER).contains("Xft.dpi:\t")
        || settings(connection.get(), screen).contains("Xft/DPI");
}
