// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/WindowSystem.h"

#include "XcbPointer.h"
#include "XcbProperty.h"

#include <QVector>
#include <QX11Info>

#include <xcb/shape.h>

#include <cstring>

namespace platform {

namespace {

QVector<quint32> numbers(WId window, const QByteArray& name, xcb_atom_t type)
{
    xcb_connection_t* const connection = QX11Info::connection();
    const QByteArray content =
        xcbProperty(connection, xcb_window_t(window), xcbAtom(connection, name), type);
    QVector<quint32> values(content.size() / int(sizeof(quint32)));
    std::memcpy(values.data(), content.constData(), size_t(values.size()) * sizeof(quint32));
    return values;
}

} // namespace

QList<WId> desktopWindows()
{
    QList<WId> windows;
    if (!QX11Info::connection())
        return windows;
    const QVector<quint32> stacked = numbers(
        QX11Info::appRootWindow(), QByteArrayLiteral("_NET_CLIENT_LIST_STACKING"), XCB_ATOM_WINDOW);
    for (const quint32 window : stacked)
        windows.append(window);
    return windows;
}

WId activeDesktopWindow()
{
    if (!QX11Info::connection())
        return 0;
    return numbers(QX11Info::appRootWindow(), QByteArrayLiteral("_NET_ACTIVE_WINDOW"),
                   XCB_ATOM_WINDOW)
        .value(0);
}

QString desktopWindowTitle(WId window)
{
    xcb_connection_t* const connection = QX11Info::connection();
    if (!connection)
        return {};
    const auto id = xcb_window_t(window);
    const QByteArray title =
        xcbProperty(connection, id, xcbAtom(connection, QByteArrayLiteral("_NET_WM_NAME")),
                    xcbAtom(connection, QByteArrayLiteral("UTF8_STRING")));
    if (!title.isEmpty())
        return QString::fromUtf8(title);
    return QString::fromLatin1(xcbProperty(connection, id, XCB_ATOM_WM_NAME, XCB_ATOM_STRING));
}

QRect desktopWindowGeometry(WId window)
{
    xcb_connection_t* const connection = QX11Info::connection();
    if (!connection)
        return {};
    const auto id = xcb_window_t(window);
    const auto sizeCookie = xcb_get_geometry(connection, id);
    const auto placeCookie =
        xcb_translate_coordinates(connection, id, QX11Info::appRootWindow(), 0, 0);
    const XcbPointer<xcb_get_geometry_reply_t> size(
        xcb_get_geometry_reply(connection, sizeCookie, nullptr));
    const XcbPointer<xcb_translate_coordinates_reply_t> place(
        xcb_translate_coordinates_reply(connection, placeCookie, nullptr));
    if (!size || !place)
        return {};

    const QRect content(place->dst_x, place->dst_y, size->width, size->height);
    // Left, right, top, bottom; absent where nobody draws a frame.
    const QVector<quint32> frame =
        numbers(window, QByteArrayLiteral("_NET_FRAME_EXTENTS"), XCB_ATOM_CARDINAL);
    if (frame.size() != 4)
        return content;
    return content.adjusted(-int(frame[0]), -int(frame[2]), int(frame[1]), int(frame[3]));
}

bool mixesTranslucentWindows()
{
    return !QX11Info::isPlatformX11() || QX11Info::isCompositingManagerRunning();
}

void cutWindow(WId window, const QRegion& pixels)
{
    xcb_connection_t* const connection = QX11Info::connection();
    if (!connection)
        return;
    const auto id = xcb_window_t(window);
    if (pixels.isEmpty()) {
        xcb_shape_mask(connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, id, 0, 0, XCB_NONE);
        return;
    }
    QVector<xcb_rectangle_t> rectangles;
    for (const QRect& part : pixels)
        rectangles.append(
            {qint16(part.x()), qint16(part.y()), quint16(part.width()), quint16(part.height())});
    xcb_shape_rectangles(connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING,
                         XCB_CLIP_ORDERING_UNSORTED, id, 0, 0, quint32(rectangles.size()),
                         rectangles.constData());
}

} // namespace platform
