// SPDX-License-Identifier: GPL-3.0-or-later
#include "Service.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

#include <fnmatch.h>

#include "Pages.h"

namespace standin {

const char* const plainText = "text/plain; charset=utf-8";
const char* const htmlText = "text/html; charset=utf-8";

namespace {

const char* const done = R"({"status":"ok"})";
// The client compares with this text byte by byte.
const char* const wrongCredentials = R"({"status":-1,"err_msg":"Invalid email|pswd|client"})";

std::string said(const char* status, const std::string& message)
{
    return compact({{"status", status}, {"message", message}});
}

} // namespace

const Service::Endpoint Service::endpoints[] = {
    {"GET", "/api_teams", &Service::signIn, Endpoint::ForAccount},
    {"GET", "/api_teams_tasks", &Service::teams, Endpoint::ForAccount},
    {"GET", "/api_get_task", &Service::details, Endpoint::ForAccount},
    {"GET", "/api_get_active", &Service::dayTotals, Endpoint::ForAccount},
    {"POST", "/api_task_deadline_request", &Service::deadlineRequest, Endpoint::ForAccount},
    {"POST", "/api_active2", &Service::activity, Endpoint::Open},
    {"POST", "/api_screenshot", &Service::screenshot, Endpoint::Open},
    {"GET", "/monitor/tpmc.version", &Service::version, Endpoint::Open},
    {"GET", "/", &Service::overview, Endpoint::Open},
    {"GET", "/monitor", &Service::overview, Endpoint::Open},
    {"GET", "/monitor/", &Service::overview, Endpoint::Open},
    {"GET", "/task", &Service::task, Endpoint::Open},
    {"GET", "/picture/?*.jpg", &Service::picture, Endpoint::Open},
    {"POST", "/standin/fail", &Service::fail, Endpoint::Order},
    {"POST", "/standin/reset", &Service::reset, Endpoint::Order},
    {"GET", "/standin/state", &Service::state, Endpoint::Order},
};

Service::Service(ServiceData& data, Store& store, Faults& faults)
    : m_data(data)
    , m_store(store)
    , m_faults(faults)
{
}

const Service::Endpoint* Service::endpoint(const std::string& path)
{
    const auto found =
        std::find_if(std::begin(endpoints), std::end(endpoints), [&path](const Endpoint& endpoint) {
            return fnmatch(endpoint.path, path.c_str(), FNM_PATHNAME) == 0;
        });
    return found == std::end(endpoints) ? nullptr : found;
}

Answer Service::answer(const Endpoint& endpoint, const Call& call)
{
    m_data.refresh();
    if (endpoint.kind == Endpoint::ForAccount
        && !m_data.accepts(call.value("login"), call.value("password")))
        return {wrongCredentials};
    return (this->*endpoint.answer)(call);
}

// --- Calls of the client

Answer Service::signIn(const Call& call)
{
    Json names = Json::array();
    for (const Json& team : m_data.teams(call.value("login")))
        names.push_back({{"id", text(team, "id")}, {"name", text(team, "name")}});
    return {compact(names)};
}

Answer Service::teams(const Call& call)
{
    return {compact(m_data.teams(call.value("login")))};
}

Answer Service::details(const Call& call)
{
    const auto details = m_data.details(call.value("task_id"));
    // Not "error": that word at the start of a body keeps the client from showing the message.
    if (!details)
        return {said("fail", "Задача не найдена")};
    return {compact({{"status", "ok"}, {"message", *details}})};
}

Answer Service::dayTotals(const Call& call)
{
    if (const auto totals = m_data.dayTotals())
        return {compact(*totals)};
    const std::string id = call.value("task_id");
    int total = 0;
    int active = 0;
    int task = 0;
    for (const Json& record : m_store.records()) {
        const Json& minute = record["record"];
        if (!isMinuteOfToday(record) || text(minute, "email") != call.value("login"))
            continue;
        ++total;
        active += hasInput(record) ? 1 : 0;
        task += text(minute, "task_id") == id || text(minute, "team_id") == id ? 1 : 0;
    }
    return {compact({{"today_active", active}, {"today_total", total}, {"today_task", task}})};
}

Answer Service::deadlineRequest(const Call& call)
{
    const std::string date = call.value("dl_date");
    // Without a time the whole day counts.
    const std::string time = call.has("dl_time") ? call.value("dl_time") : "23:59";
    if (!isWrittenAs("%Y-%m-%d", date) || !isWrittenAs("%H:%M", time))
        return {said("fail", "Неверный срок")};
    if (!call.has("message"))
        return {said("fail", "Нет сообщения")};
    if (!m_data.moveDeadline(call.value("task_id"), date + " " + time + ":00"))
        return {said("fail", "Задача не найдена")};

    Json content;
    content["email"] = call.value("login");
    for (const char* name : {"task_id", "dl_date", "dl_time", "message"}) {
        if (call.has(name))
            content[name] = call.value(name);
    }
    m_store.keep("deadline", 0, content);
    return {done};
}

Answer Service::activity(const Call& call)
{
    return confirmed(Report::Kind::Activity, call, {done});
}

Answer Service::screenshot(const Call& call)
{
    return confirmed(Report::Kind::Screenshot, call, {"ok", plainText});
}

Answer Service::confirmed(Report::Kind kind, const Call& call, Answer confirmation)
{
    Report report;
    try {
        report = Report::parsed(kind, call.body);
    } catch (const std::runtime_error& error) {
        return {said("error", error.what())};
    }
    if (!m_data.knows(text(report.record, "email")))
        return {wrongCredentials};
    m_store.keep(kind == Report::Kind::Activity ? "activity" : "screenshot",
                 static_cast<std::time_t>(report.past), report.record, report.picture);
    return confirmation;
}

Answer Service::version(const Call&)
{
    return {compact(m_data.version())};
}

// --- Pages

Answer Service::overview(const Call&)
{
    return {Pages::overview(m_data.teams({}), m_store.records()), htmlText};
}

Answer Service::task(const Call& call)
{
    const std::string id = call.value("id");
    const auto details = m_data.details(id);
    if (!details)
        return {Pages::unknownTask(id), htmlText, 404};
    return {Pages::task(id, *details, m_data.teams({}), m_store.records()), htmlText};
}

Answer Service::picture(const Call& call)
{
    const std::string& path = call.request.path;
    const auto picture = m_store.picture(path.substr(path.rfind('/') + 1));
    if (!picture)
        return {"Not Found", plainText, 404};
    return {*picture, "image/jpeg"};
}

// --- Orders

std::string Service::orders()
{
    return R"(Orders, by a request to it:

  POST /standin/fail?path=P&mode=M[&count=N][&ms=T]
                fail the requests to a path, N of them or all; "ok" ends it
  POST /standin/reset
                forget faults, moved deadlines, requests and all that was kept
  GET /standin/state
                requests by path, confirmed records, faults, the folder

Modes:

)" + Fault::explanation();
}

Answer Service::fail(const Call& call)
{
    const std::string path = call.value("path");
    const Endpoint* const failed = endpoint(path);
    if (!failed || failed->kind == Endpoint::Order)
        return {said("error", "no such path: " + path), plainText, 400};
    if (call.value("mode") == "ok") {
        m_faults.clear(path);
        return {done};
    }
    auto fault = Fault::named(call.value("mode"), call.body);
    const auto count = number(call.value("count"));
    const auto time = number(call.value("ms"));
    if (!fault || (call.has("count") && count.value_or(0) < 1)
        || (call.has("ms") && time.value_or(-1) < 0))
        return {said("error", "mode, count or ms is wrong"), plainText, 400};
    if (count)
        fault->remaining = static_cast<int>(*count);
    if (time)
        fault->time = std::chrono::milliseconds(*time);
    m_faults.set(path, *fault);
    return {done};
}

Answer Service::reset(const Call&)
{
    m_faults.clearAll();
    m_data.reset();
    m_store.clear();
    return {done};
}

Answer Service::state(const Call&)
{
    return {indented({{"store", m_store.folder().string()},
                      {"requests", Json(m_store.requestCounts())},
                      {"faults", m_faults.toJson()},
                      {"records", Json(m_store.records())}})};
}

} // namespace standin
