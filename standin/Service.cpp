// SPDX-License-Identifier: GPL-3.0-or-later
#include "Service.h"

#include <algorithm>
#include <cctype>
#include <iostream>
#include <stdexcept>
#include <utility>

#include <regex.h>

#include "Connections.h"
#include "Pages.h"

namespace standin {
namespace {

// The client compares with this text byte by byte.
const char* const wrongCredentials = R"({"status":-1,"err_msg":"Invalid email|pswd|client"})";

const char* const plainText = "text/plain; charset=utf-8";
const char* const htmlText = "text/html; charset=utf-8";

std::string said(const char* status, const std::string& message)
{
    return compact({{"status", status}, {"message", message}});
}

std::string queryOf(const httplib::Request& request)
{
    const size_t mark = request.target.find('?');
    return mark == std::string::npos ? std::string() : request.target.substr(mark + 1);
}

std::string lowerCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

bool serves(const char* pattern, const std::string& path)
{
    regex_t expression;
    if (regcomp(&expression, ("^(" + std::string(pattern) + ")$").c_str(), REG_EXTENDED) != 0)
        return false;
    const bool isMatch = regexec(&expression, path.c_str(), 0, nullptr, 0) == 0;
    regfree(&expression);
    return isMatch;
}

/// False when the client went away before all of it came.
bool readBody(const httplib::Request& request, const httplib::ContentReader* reader,
              std::string& body)
{
    // A request that tells no length and is not chunked has no body; the library would read on
    // until the connection ends.
    if (!reader
        || (!request.has_header("Content-Length") && !request.has_header("Transfer-Encoding")))
        return true;
    return (*reader)([&body](const char* data, size_t length) {
        body.append(data, length);
        return true;
    });
}

} // namespace

const Service::Endpoint Service::endpoints[] = {
    {"GET", "/api_teams", &Service::signIn, false},
    {"GET", "/api_teams_tasks", &Service::teams, false},
    {"GET", "/api_get_task", &Service::details, false},
    {"GET", "/api_get_active", &Service::dayTotals, false},
    {"POST", "/api_task_deadline_request", &Service::deadlineRequest, false},
    {"POST", "/api_active2", &Service::activity, false},
    {"POST", "/api_screenshot", &Service::screenshot, false},
    {"GET", R"(/monitor/tpmc\.version)", &Service::version, false},
    {"GET", "/|/monitor/?", &Service::overview, false},
    {"GET", "/task", &Service::task, false},
    {"GET", R"(/picture/[0-9a-z-]+\.jpg)", &Service::picture, false},
    {"POST", "/standin/fail", &Service::fail, true},
    {"POST", "/standin/reset", &Service::reset, true},
    {"GET", "/standin/state", &Service::state, true},
};

Service::Service(ServiceData& data, Store& store, Faults& faults, bool quiet)
    : m_data(data)
    , m_store(store)
    , m_faults(faults)
    , m_quiet(quiet)
{
}

std::string Service::orders()
{
    return "Orders, by a request to it:\n\n"
           "  POST /standin/fail?path=P&mode=M[&count=N][&ms=T]\n"
           "                fail the requests to a path, N of them or all; \"ok\" ends it\n"
           "  POST /standin/reset\n"
           "                forget faults, moved deadlines, requests and all that was kept\n"
           "  GET /standin/state\n"
           "                requests by path, confirmed records, faults, the folder\n\n"
           "Modes:\n\n"
        + Fault::explanation();
}

void Service::addTo(httplib::Server& server)
{
    server.set_pre_routing_handler([](const httplib::Request& request, httplib::Response&) {
        Connections::remember(request);
        return httplib::Server::HandlerResponse::Unhandled;
    });
    for (const Endpoint& endpoint : endpoints) {
        const auto answer = endpoint.isOrder ? &Service::obey : &Service::serve;
        const Handler handler = endpoint.handler;
        // With a content reader also for posted forms: read by the library itself, those are
        // limited to 8 KiB, and a connection could not be dropped before the body is read.
        if (endpoint.method == std::string("POST")) {
            server.Post(endpoint.pattern,
                        [=](const httplib::Request& request, httplib::Response& response,
                            const httplib::ContentReader& reader) {
                            (this->*answer)(request, response, &reader, handler);
                        });
        } else {
            server.Get(endpoint.pattern,
                       [=](const httplib::Request& request, httplib::Response& response) {
                           (this->*answer)(request, response, nullptr, handler);
                       });
        }
    }
    const std::string anything = ".*";
    const auto refused = [this](const httplib::Request& request, httplib::Response& response) {
        refuse(request, response, nullptr);
    };
    const auto refusedWithBody =
        [this](const httplib::Request& request, httplib::Response& response,
               const httplib::ContentReader& reader) { refuse(request, response, &reader); };
    server.Get(anything, refused).Options(anything, refused);
    server.Post(anything, refusedWithBody).Put(anything, refusedWithBody);
    server.Patch(anything, refusedWithBody).Delete(anything, refusedWithBody);
}

Service::Call Service::callOf(const httplib::Request& request)
{
    const std::string query = queryOf(request);
    return {request.method, request.path, query, queryParameters(query), {}};
}

void Service::serve(const httplib::Request& request, httplib::Response& response,
                    const httplib::ContentReader* reader, Handler handler)
{
    using Mode = Fault::Mode;
    Call call = callOf(request);
    const std::optional<Fault> fault = m_faults.take(call.path);
    const std::string faultName = fault ? Fault::name(fault->mode) : std::string();
    const auto isFault = [&fault](Mode mode) { return fault && fault->mode == mode; };

    if (isFault(Mode::DropBefore)) {
        log(request, call, call.path, faultName);
        return Connections::drop(request);
    }
    if (!readBody(request, reader, call.body))
        return Connections::drop(request);
    log(request, call, call.path, faultName);

    if (isFault(Mode::DropAfter))
        return Connections::drop(request);
    if (isFault(Mode::Delay) && !m_faults.delay(fault->time))
        return Connections::drop(request);
    const auto clientHasGone = [&request] { return Connections::isClosedByClient(request); };
    if (isFault(Mode::Hang) && !m_faults.hang(call.path, *fault, clientHasGone))
        return Connections::drop(request);
    if (isFault(Mode::Status500)) {
        response.status = 500;
        return response.set_content("Internal Server Error", plainText);
    }
    if (isFault(Mode::Endless)) {
        return response.set_chunked_content_provider(
            plainText, [](size_t, httplib::DataSink& sink) {
                static const std::string piece(65536, ' ');
                return sink.write(piece.data(), piece.size());
            });
    }
    if (const auto own = fault ? fault->answer() : std::nullopt)
        return response.set_content(*own, plainText);

    const Answer answer = (this->*handler)(call);
    if (isFault(Mode::DropKept))
        return Connections::drop(request);
    if (isFault(Mode::ResetKept))
        return Connections::reset(request);
    response.status = answer.status;
    response.set_content(answer.body, answer.type);
}

void Service::obey(const httplib::Request& request, httplib::Response& response,
                   const httplib::ContentReader* reader, Handler handler)
{
    Call call = callOf(request);
    if (!readBody(request, reader, call.body))
        return Connections::drop(request);
    const Answer answer = (this->*handler)(call);
    response.status = answer.status;
    response.set_content(answer.body, answer.type);
}

void Service::refuse(const httplib::Request& request, httplib::Response& response,
                     const httplib::ContentReader* reader)
{
    Call call = callOf(request);
    if (!readBody(request, reader, call.body))
        return Connections::drop(request);
    const bool isKnown =
        std::any_of(std::begin(endpoints), std::end(endpoints),
                    [&call](const Endpoint& e) { return serves(e.pattern, call.path); });
    const std::string reason = isKnown ? "wrong method" : "unknown path";
    log(request, call, call.method + " " + call.path, reason);
    response.status = isKnown ? 405 : 404;
    response.set_content(reason, plainText);
}

void Service::log(const httplib::Request& request, const Call& call, const std::string& name,
                  const std::string& fault)
{
    const std::string now = dateTime(std::time(nullptr));
    Json headers = Json::object();
    for (const auto& [name, content] : request.headers) {
        // The library adds these itself.
        if (name != "REMOTE_ADDR" && name != "REMOTE_PORT" && name != "LOCAL_ADDR"
            && name != "LOCAL_PORT")
            headers[lowerCase(name)] = content;
    }
    m_store.logRequest(name,
                       {{"time", now},
                        {"method", call.method},
                        {"path", call.path},
                        {"query", call.query},
                        {"headers", headers},
                        {"body", call.body},
                        {"fault", fault}});
    if (!m_quiet) {
        const std::string remark = fault.empty() ? std::string() : " (" + fault + ")";
        std::cout << now + " " + call.method + " " + call.path + remark + "\n" << std::flush;
    }
}

bool Service::accepts(const Call& call)
{
    return m_data.accepts(value(call.parameters, "login"), value(call.parameters, "password"));
}

Service::Answer Service::signIn(const Call& call)
{
    if (!accepts(call))
        return {wrongCredentials};
    Json names = Json::array();
    for (const Json& team : m_data.teams(value(call.parameters, "login")))
        names.push_back({{"id", text(team, "id")}, {"name", text(team, "name")}});
    return {compact(names)};
}

Service::Answer Service::teams(const Call& call)
{
    if (!accepts(call))
        return {wrongCredentials};
    return {compact(m_data.teams(value(call.parameters, "login")))};
}

Service::Answer Service::details(const Call& call)
{
    if (!accepts(call))
        return {wrongCredentials};
    const auto details = m_data.details(value(call.parameters, "task_id"));
    // Not "error": that word at the start of a body keeps the client from showing the message.
    if (!details)
        return {said("fail", "Задача не найдена")};
    return {compact({{"status", "ok"}, {"message", *details}})};
}

Service::Answer Service::dayTotals(const Call& call)
{
    if (!accepts(call))
        return {wrongCredentials};
    if (const auto totals = m_data.dayTotals())
        return {compact(*totals)};
    const DayTotals totals =
        m_store.today(value(call.parameters, "login"), value(call.parameters, "task_id"));
    return {compact({{"today_active", totals.active},
                     {"today_total", totals.total},
                     {"today_task", totals.task}})};
}

Service::Answer Service::deadlineRequest(const Call& call)
{
    if (!accepts(call))
        return {wrongCredentials};
    const std::string date = value(call.parameters, "dl_date");
    const bool hasTime = call.parameters.count("dl_time") > 0;
    // Without a time the whole day counts.
    const std::string time = hasTime ? value(call.parameters, "dl_time") : "23:59";
    if (!isDate(date) || !isTime(time))
        return {said("fail", "Неверный срок")};
    if (call.parameters.count("message") == 0)
        return {said("fail", "Нет сообщения")};
    const std::string taskId = value(call.parameters, "task_id");
    if (!m_data.moveDeadline(taskId, date + " " + time + ":00"))
        return {said("fail", "Задача не найдена")};

    Record record;
    record.kind = "deadline";
    record.received = record.time = std::time(nullptr);
    record.content = {
        {"email", value(call.parameters, "login")}, {"task_id", taskId}, {"dl_date", date}};
    if (hasTime)
        record.content["dl_time"] = time;
    record.content["message"] = value(call.parameters, "message");
    m_store.keep(std::move(record), {});
    return {R"({"status":"ok"})"};
}

Service::Answer Service::activity(const Call& call)
{
    return confirmed(Report::Kind::Activity, call, {R"({"status":"ok"})"});
}

Service::Answer Service::screenshot(const Call& call)
{
    return confirmed(Report::Kind::Screenshot, call, {"ok", plainText});
}

Service::Answer Service::confirmed(Report::Kind kind, const Call& call, Answer confirmation)
{
    Report report;
    try {
        report = Report::parsed(kind, call.body);
    } catch (const std::runtime_error& error) {
        return {said("error", error.what())};
    }
    if (!m_data.knows(report.email))
        return {wrongCredentials};
    Record record;
    record.kind = kind == Report::Kind::Activity ? "activity" : "screenshot";
    record.received = std::time(nullptr);
    record.time = record.received - static_cast<std::time_t>(report.past);
    record.content = std::move(report.record);
    m_store.keep(std::move(record), report.picture);
    return confirmation;
}

Service::Answer Service::version(const Call&)
{
    return {compact(m_data.version())};
}

Service::Answer Service::overview(const Call&)
{
    return {Pages::overview(m_data.teams({}), m_store.records()), htmlText};
}

Service::Answer Service::task(const Call& call)
{
    const std::string id = value(call.parameters, "id");
    const auto details = m_data.details(id);
    if (!details)
        return {Pages::unknownTask(id), htmlText, 404};
    return {Pages::task(id, *details, m_data.teams({}), m_store.records()), htmlText};
}

Service::Answer Service::picture(const Call& call)
{
    const auto picture = m_store.picture(call.path.substr(call.path.rfind('/') + 1));
    if (!picture)
        return {"Not Found", plainText, 404};
    return {*picture, "image/jpeg"};
}

Service::Answer Service::fail(const Call& call)
{
    const std::string path = value(call.parameters, "path");
    const bool isServed =
        std::any_of(std::begin(endpoints), std::end(endpoints), [&path](const Endpoint& endpoint) {
            return !endpoint.isOrder && serves(endpoint.pattern, path);
        });
    if (!isServed)
        return {said("error", "no such path: " + path), plainText, 400};
    const std::string modeName = value(call.parameters, "mode");
    if (modeName == "ok") {
        m_faults.clear(path);
        return {R"({"status":"ok"})"};
    }
    const auto mode = Fault::modeNamed(modeName);
    const auto count = number(value(call.parameters, "count"));
    const auto time = number(value(call.parameters, "ms"));
    const bool countIsWrong = call.parameters.count("count") > 0 && (!count || *count < 1);
    const bool timeIsWrong = call.parameters.count("ms") > 0 && (!time || *time < 0);
    if (!mode || countIsWrong || timeIsWrong)
        return {said("error", "mode, count or ms is wrong"), plainText, 400};

    constexpr std::chrono::milliseconds usualDelay = std::chrono::seconds(2);
    constexpr std::chrono::milliseconds longestHang = std::chrono::minutes(10);
    Fault fault{*mode, {}, *mode == Fault::Mode::Hang ? longestHang : usualDelay, call.body};
    if (count)
        fault.remaining = static_cast<int>(*count);
    if (time)
        fault.time = std::chrono::milliseconds(*time);
    m_faults.set(path, std::move(fault));
    return {R"({"status":"ok"})"};
}

Service::Answer Service::reset(const Call&)
{
    m_faults.clearAll();
    m_data.reset();
    m_store.clear();
    return {R"({"status":"ok"})"};
}

Service::Answer Service::state(const Call&)
{
    Json requests = Json::object();
    for (const auto& [path, count] : m_store.requestCounts())
        requests[path] = count;
    Json records = Json::array();
    for (const Record& record : m_store.records())
        records.push_back(record.toJson());
    return {indented({{"store", m_store.folder().string()},
                      {"requests", requests},
                      {"faults", m_faults.toJson()},
                      {"records", records}})};
}

} // namespace standin
