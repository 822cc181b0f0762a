// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/LastInput.h"

#include <QDebug>
#include <QX11Info>

#include <xcb/sync.h>

#include <cstdlib>
#include <memory>
#include <optional>

namespace platform {

namespace {

struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};
template <typename Reply> using ReplyPointer = std::unique_ptr<Reply, FreeDeleter>;

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
    const ReplyPointer<xcb_sync_initialize_reply_t> initialized(xcb_sync_initialize_reply(
        connection, xcb_sync_initialize(connection, XCB_SYNC_MAJOR_VERSION, XCB_SYNC_MINOR_VERSION),
        nullptr));
    if (!initialized)
        return {};

    const ReplyPointer<xcb_sync_list_system_counters_reply_t> list(
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

Counters openCounters()
{
    xcb_connection_t* const connection = QX11Info::connection();
    if (!connection)
        return {};
    const xcb_query_extension_reply_t* const extension =
        xcb_get_extension_data(connection, &xcb_sync_id);
    if (!extension || !extension->present)
        return {};
    return findCounters(connection);
}

/// The server's clock minus its idle time, or nothing when the server doesn't answer.
std::optional<quint32> queryTick(const Counters& counters)
{
    xcb_connection_t* const connection = QX11Info::connection();
    if (!connection)
        return std::nullopt;

    // The clock first: whatever passes between the two readings then makes the tick too early,
    // never too late.
    const auto serverTimeCookie = xcb_sync_query_counter(connection, counters.serverTime);
    const auto idleTimeCookie = xcb_sync_query_counter(connection, counters.idleTime);
    const ReplyPointer<xcb_sync_query_counter_reply_t> serverTime(
        xcb_sync_query_counter_reply(connection, serverTimeCookie, nullptr));
    const ReplyPointer<xcb_sync_query_counter_reply_t> idleTime(
        xcb_sync_query_counter_reply(connection, idleTimeCookie, nullptr));
    if (!serverTime || !idleTime)
        return std::nullopt;

    // The server's clock has 32 bits and wraps after 49.7 days, and so do these.
    return serverTime->counter_value.lo - idleTime->counter_value.lo;
}

/// Whether the tick tells of an input after the known one, or is the known one read less exactly.
bool isLater(quint32 tick, quint32 known)
{
    // Readings of one and the same input differ by a few milliseconds on a busy machine. 50 is
    // well above that and below the interval at which anyone asks, so that no two inputs that
    // somebody could tell apart become one.
    constexpr quint32 jitter = 50;
    // A server that was held up between the two readings gives a tick that is too early by as
    // long. Anything farther back is no such reading but an input so much later that the clock
    // has come round.
    constexpr quint32 holdUp = 3600 * 1000;

    const quint32 ahead = tick - known;
    const quint32 behind = known - tick;
    return ahead > jitter && behind > holdUp;
}

} // namespace

quint32 lastInputTick()
{
    static const Counters counters = openCounters();
    static std::optional<quint32> known;
    static bool warned = false;

    const std::optional<quint32> tick = counters.complete() ? queryTick(counters) : std::nullopt;
    if (!tick) {
        if (!warned)
            qWarning("LastInput: the display can't tell of input; nobody will seem active");
        warned = true;
    } else if (!known || isLater(*tick, *known)) {
        known = tick;
    }
    return known.value_or(0);
}

bool removeInputHook()
{
    return false;
}

} // namespace platform
