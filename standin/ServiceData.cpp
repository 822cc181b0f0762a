// SPDX-License-Identifier: GPL-3.0-or-later
#include "ServiceData.h"

#include <algorithm>
#include <iostream>
#include <stdexcept>
#include <utility>

#include "BuiltIn.h"

namespace standin {
namespace {

bool isList(const Json& object, const char* key)
{
    const auto found = object.find(key);
    return found != object.end() && found->is_array()
        && std::all_of(found->begin(), found->end(),
                       [](const Json& entry) { return entry.is_object(); });
}

/// Throws std::exception with the reason when the content is not usable as a whole.
Json parsed(const std::string& content)
{
    const auto require = [](bool isTrue, const std::string& what) {
        if (!isTrue)
            throw std::runtime_error(what);
    };
    Json data = Json::parse(content);
    require(data.is_object(), "not a JSON object");
    for (const char* key : {"accounts", "teams"})
        require(isList(data, key), std::string("\"") + key + "\" is not an array of objects");
    for (const Json& team : data["teams"])
        require(!team.contains("tasks") || isList(team, "tasks"),
                "\"tasks\" is not an array of objects");
    require(!data.contains("details") || data["details"].is_object(),
            "\"details\" is not an object");
    return data;
}

/// A text like "+2h" as seconds; nothing for any other.
std::optional<long> offset(const std::string& text)
{
    if (text.size() < 3 || (text[0] != '+' && text[0] != '-'))
        return std::nullopt;
    const auto count = number(std::string_view(text).substr(1, text.size() - 2));
    if (!count || *count < 0 || *count > 100000)
        return std::nullopt;
    constexpr std::pair<char, long> units[] = {{'m', 60}, {'h', 3600}, {'d', 24 * 3600}};
    for (const auto& [letter, seconds] : units) {
        if (text.back() == letter)
            return static_cast<long>(*count) * (text[0] == '-' ? -seconds : seconds);
    }
    return std::nullopt;
}

} // namespace

ServiceData::ServiceData(std::string file)
    : m_file(std::move(file))
    , m_start(std::time(nullptr))
{
    if (m_file.empty())
        m_data = parsed(demoData);
    else
        takeOver(contentOf(m_file));
}

void ServiceData::takeOver(std::string content)
{
    m_content = std::move(content);
    try {
        m_data = parsed(m_content);
    } catch (const std::exception& error) {
        throw std::runtime_error(m_file + ": " + error.what());
    }
}

std::string ServiceData::explanation()
{
    return R"(The data, of which standin/demo.json is an example:

  accounts      array of {"login", "password"}, and "teams" with the ids of those
                that it sees, if not all
  teams         as /api_teams_tasks answers
  details       for the id of a task the "message" of /api_get_task
  today         as /api_get_active answers; without it, what came today is counted
  version       a text, or the array of /monitor/tpmc.version

  A "deadline" or "last_comment" like "+2h", "-3d" or "+45m" is the time that far
  from the start of this program.

)";
}

void ServiceData::refresh()
{
    if (m_file.empty())
        return;
    std::string problem;
    try {
        std::string content = contentOf(m_file);
        // Compared by content: an edit that keeps size and time of the file counts too.
        if (content != m_content)
            takeOver(std::move(content));
    } catch (const std::exception& error) {
        problem = error.what();
    }
    if (!problem.empty() && problem != m_problem)
        std::cerr << problem << ", the last good content stays" << std::endl;
    m_problem = problem;
}

const Json* ServiceData::account(const std::string& login) const
{
    for (const Json& account : m_data["accounts"]) {
        if (!login.empty() && text(account, "login") == login)
            return &account;
    }
    return nullptr;
}

bool ServiceData::accepts(const std::string& login, const std::string& password) const
{
    const Json* const known = account(login);
    return known && text(*known, "password") == password;
}

Json ServiceData::teams(const std::string& login) const
{
    const Json* const known = account(login);
    const Json visible = known ? known->value("teams", Json()) : Json();
    const auto isVisible = [&visible](const Json& team) {
        return visible.is_null()
            || std::any_of(visible.begin(), visible.end(),
                           [&team](const Json& id) { return text(id) == text(team, "id"); });
    };
    Json result = Json::array();
    for (Json team : m_data["teams"]) {
        if (!isVisible(team))
            continue;
        if (team.contains("tasks")) {
            for (Json& task : team["tasks"])
                settleTimes(Json(task), task);
        }
        result.push_back(std::move(team));
    }
    return result;
}

std::optional<Json> ServiceData::details(const std::string& taskId) const
{
    const Json* const known = task(taskId);
    const Json details = m_data.value("details", Json::object());
    if (!known && !details.contains(taskId))
        return std::nullopt;
    Json result;
    if (details.contains(taskId))
        result = details[taskId];
    else
        result = {{"id", text(*known, "id")}, {"title", text(*known, "title")}};
    if (!result.is_object())
        return result;
    if (known && !result.contains("deadline"))
        result["deadline"] = text(*known, "deadline");
    settleTimes(known ? *known : result, result);
    return result;
}

std::optional<Json> ServiceData::dayTotals() const
{
    if (!m_data.contains("today"))
        return std::nullopt;
    return m_data["today"];
}

Json ServiceData::version() const
{
    const Json version = m_data.value("version", Json::array());
    return version.is_string() ? Json::array({{{"version", version}}}) : version;
}

bool ServiceData::moveDeadline(const std::string& taskId, const std::string& deadline)
{
    const Json* known = task(taskId);
    if (!known)
        return false;
    m_movedDeadlines[taskId] = {text(*known, "deadline"), deadline};
    return true;
}

const Json* ServiceData::task(const std::string& taskId) const
{
    for (const Json& team : m_data["teams"]) {
        const auto tasks = team.find("tasks");
        if (tasks == team.end())
            continue;
        for (const Json& task : *tasks) {
            if (text(task, "id") == taskId)
                return &task;
        }
    }
    return nullptr;
}

void ServiceData::settleTimes(const Json& task, Json& record) const
{
    const auto moved = m_movedDeadlines.find(text(task, "id"));
    if (moved != m_movedDeadlines.end() && text(task, "deadline") == moved->second.from)
        record["deadline"] = moved->second.to;
    for (const char* key : {"deadline", "last_comment"}) {
        if (const auto seconds = offset(text(record, key)))
            record[key] = dateTime(m_start + *seconds);
    }
}

} // namespace standin
