// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

#include <xcb/xcb.h>

namespace platform {

/// The server's number for a name; XCB_ATOM_NONE when nobody has given it one.
xcb_atom_t xcbAtom(xcb_connection_t* connection, const QByteArray& name);

/// The raw content of a window's property, cut at 256 KiB; empty when it has none of that type.
QByteArray xcbProperty(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t name,
                       xcb_atom_t type = XCB_GET_PROPERTY_TYPE_ANY);

} // namespace platform
