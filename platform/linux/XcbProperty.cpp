// SPDX-License-Identifier: GPL-3.0-or-later
#include "XcbProperty.h"

#include "XcbPointer.h"

namespace platform {

xcb_atom_t xcbAtom(xcb_connection_t* connection, const QByteArray& name)
{
    const XcbPointer<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 1, quint16(name.size()), name.constData()),
        nullptr));
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

QByteArray xcbProperty(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t name,
                       xcb_atom_t type)
{
    constexpr quint32 longest = 64 * 1024; // in units of four bytes
    const XcbPointer<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection, xcb_get_property(connection, 0, window, name, type, 0, longest), nullptr));
    if (!reply)
        return {};
    return QByteArray(static_cast<const char*>(xcb_get_property_value(reply.get())),
                      xcb_get_property_value_length(reply.get()));
}

} // namespace platform
