// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/DisplayScale.h"

#include "XcbPointer.h"
#include "XcbProperty.h"

#include <memory>

namespace {

/// What the daemon of the desktop's settings has to say; empty when none runs.
QByteArray settings(xcb_connection_t* connection, int screen)
{
    const xcb_atom_t selection =
        platform::xcbAtom(connection, "_XSETTINGS_S" + QByteArray::number(screen));
    const platform::XcbPointer<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        connection, xcb_get_selection_owner(connection, selection), nullptr));
    if (!reply || reply->owner == XCB_WINDOW_NONE)
        return {};
    return platform::xcbProperty(connection, reply->owner,
                                 platform::xcbAtom(connection, "_XSETTINGS_SETTINGS"));
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
    return xcbProperty(connection.get(), root, XCB_ATOM_RESOURCE_MANAGER).contains("Xft.dpi:\t")
        || settings(connection.get(), screen).contains("Xft/DPI");
}
