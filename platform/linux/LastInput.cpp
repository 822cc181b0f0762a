// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/LastInput.h"

#include "XcbPointer.h"
#include "platform/InputTick.h"

#include <QDebug>
#include <QElapsedTimer>
#include <QX11Info>

#include <xcb/sync.h>

#include <memory>
#include <optional>

namespace platform {

namespace {

struct Counters {
    xcb_sync_counter_t serverTime = XCB_NONE;
    xcb_sync_counter_t idleTime = XCB_NONE;

    bool complete() const { return serverTime != XCB_NONE && idleTime != XCB_NONE; }
};

QLatin1String counterName(const xcb_sync_systemcounter_t* counter)
{
    // xcb_sync_systemcounter_name() counts from the end of the struct, which the compiler has
    // padded by two bytes that aren't in the protocol.
    const auto* lengthField = reinterpret_cast<const char*>(&counter->name_len);
    return QLatin1String(lengthField + sizeof(counter->name_len), counter->name_len);
}

Counters findCounters(xcb_connection_t* connection)
{
    // The server refuses every other request of the extension before this one.
    const XcbPointer<xcb_sync_initialize_reply_t> initialized(xcb_sync_initialize_reply(
        connection, xcb_sync_initialize(connection, XCB_SYNC_MAJOR_VERSION, XCB_SYNC_MINOR_VERSION),
        nullptr));
    if (!initialized)
        return {};

    const XcbPointer<xcb_sync_list_system_counters_reply_t> list(
        xcb_sync_list_system_counters_reply(connection, xcb_sync_list_system_counters(connection),
                                            nullptr));
    if (!list)
        return {};

    Counters counters;
    for (auto it = xcb_sync_list_system_counters_counters_iterator(list.get()); it.rem > 0;
         xcb_sync_systemcounter_next(&it)) {
        const QLatin1String name = counterName(it.data);
        if (name == QLatin1String("SERVERTIME"))
            counters.serverTime = it.data->counter;
        else if (name == QLatin1String("IDLETIME"))
            counters.idleTime = it.data->counter;
    }
    return counters;
}

struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};

/// Null where the program runs without an X server, or the server takes no more clients. One of
/// its own: Qt has a thread that reads its connection, which every answer to a poll would wake.
xcb_connection_t* ownConnection()
{
    static const std::unique_ptr<xcb_connection_t, Disconnect> connection(
        QX11Info::connection() ? xcb_connect(nullptr, nullptr) : nullptr);
    const bool works = connection && xcb_connection_has_error(connection.get()) == 0;
    return works ? connection.get() : nullptr;
}

Counters openCounters()
{
    xcb_connection_t* const connection = ownConnection();
    if (!connection)
        return {};
    const xcb_query_extension_reply_t* const extension =
        xcb_get_extension_data(connection, &xcb_sync_id);
    if (!extension || !extension->present)
        return {};
    return findCounters(connection);
}

using CounterReply = XcbPointer<xcb_sync_query_counter_reply_t>;

/// This program's clock minus the server's idle time, or nothing when the server doesn't answer.
std::optional<quint32> queryOwnTick(const Counters& counters)
{
    xcb_connection_t* const connection = ownConnection();
    if (!connection)
        return std::nullopt;
    static QElapsedTimer clock;
    if (!clock.isValid())
        clock.start();
    const auto now = quint32(clock.elapsed());
    const auto idleTimeCookie = xcb_sync_query_counter(connection, counters.idleTime);
    const CounterReply idleTime(xcb_sync_query_counter_reply(connection, idleTimeCookie, nullptr));
    if (!idleTime)
        return std::nullopt;
    return now - idleTime->counter_value.lo;
}

/// The server's clock minus its idle time, or nothing when the server doesn't answer.
std::optional<quint32> queryTick(const Counters& counters)
{
    xcb_connection_t* const connection = ownConnection();
    if (!connection)
        return std::nullopt;

    // The clock first: whatever passes between the two readings then makes the tick too early,
    // never too late.
    const auto serverTimeCookie = xcb_sync_query_counter(connection, counters.serverTime);
    const auto idleTimeCookie = xcb_sync_query_counter(connection, counters.idleTime);
    const CounterReply serverTime(
        xcb_sync_query_counter_reply(connection, serverTimeCookie, nullptr));
    const CounterReply idleTime(xcb_sync_query_counter_reply(connection, idleTimeCookie, nullptr));
    if (!serverTime || !idleTime)
        return std::nullopt;

    // The server's clock has 32 bits and wraps after 49.7 days, and so do these.
    return serverTime->counter_value.lo - idleTime->counter_value.lo;
}

} // namespace

quint32 lastInputTick()
{
    static const Counters counters = openCounters();
    static InputTick tick;
    static InputTick ownTick;
    static bool warned = false;

    const std::optional<quint32> ownReading =
        counters.complete() ? queryOwnTick(counters) : std::nullopt;
    // As long as the server's idle time grows with this program's clock, nobody has touched
    // anything. That clock may drift from the server's, so that it only says when to look closer;
    // but one answer wakes the program once, where two wake it twice.
    if (ownReading && !ownTick.update(*ownReading))
        return tick.value();
    const std::optional<quint32> reading = ownReading ? queryTick(counters) : std::nullopt;
    if (reading) {
        tick.update(*reading);
    } else if (!warned) {
        qWarning("LastInput: the display can't tell of input; nobody will seem active");
        warned = true;
    }
    return tick.value();
}

bool removeInputHook()
{
    return false;
}

} // namespace platform
