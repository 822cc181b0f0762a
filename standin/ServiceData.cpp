// SPDX-License-Identifier: GPL-3.0-or-later
#include "ServiceData.h"

#include <algorithm>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "DemoData.h"

namespace standin {
namespace {

bool isList(const Json& object, const char* key)
{
    const auto found = object.find(key);
    return found != object.end() && found->is_array()
        && std::all_of(found->begin(), found->end(),
                       [](const Json& entry) { return entry.is_object(); });
}

/// Throws std::exception with the reason when the text is not usable as a whole.
Json parsed(const std::string& content)
{
    Json data = Json::parse(content);
    if (!data.is_object())
        throw std::runtime_error("not a JSON object");
    for (const char* key : {"accounts", "teams"}) {
        if (!isList(data, key))
            throw std::runtime_error(std::string("\"") + key + "\" is not an array of objects");
    }
    for (const Json& team : data["teams"]) {
        if (team.contains("tasks") && !isList(team, "tasks"))
            throw std::runtime_error("\"tasks\" is not an array of objects");
    }
    if (data.contains("details") && !data["details"].is_object())
        throw std::runtime_error("\"details\" is not an object");
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
    if (m_file.empty()) {
        m_data = parsed(demoData);
        return;
    }
    std::ifstream stream(m_file, std::ios::binary);
    m_content.assign(std::istreambuf_iterator<char>(stream), {});
    if (!stream)
        throw std::runtime_error(m_file + ": cannot be read");
    try {
        m_data = parsed(m_content);
    } catch (const std::exception& error) {
        throw std::runtime_error(m_file + ": " + error.what());
    }
}

bool ServiceData::accepts(const std::string& login, const std::string& password)
{
    const std::lock_guard lock(m_mutex);
    refresh();
    const Json& accounts = m_data["accounts"];
    return std::any_of(accounts.begin(), accounts.end(), [&](const Json& account) {
        return !login.empty() && text(account, "login") == login
            && text(account, "password") == password;
    });
}

bool ServiceData::knows(const std::string& login)
{
    const std::lock_guard lock(m_mutex);
    refresh();
    const Json& accounts = m_data["accounts"];
    return std::any_of(accounts.begin(), accounts.end(), [&](const Json& account) {
        return !login.empty() && text(account, "login") == login;
    });
}

Json ServiceData::teams(const std::string& login)
{
    const std::lock_guard lock(m_mutex);
    refresh();
    Json visible;
    for (const Json& account : m_data["accounts"]) {
        if (!login.empty() && text(account, "login") == login && account.contains("teams"))
            visible = account["teams"];
    }
    Json result = Json::array();
    for (Json team : m_data["teams"]) {
        const std::string id = text(team, "id");
        const bool isVisible = visible.is_null()
            || std::any_of(visible.begin(), visible.end(),
                           [&id](const Json& entry) { return text(entry) == id; });
        if (!isVisible)
            continue;
        if (team.contains("tasks")) {
            for (Json& task : team["tasks"])
                settleTimes(Json(task), task);
        }
        result.push_back(std::move(team));
    }
    return result;
}

std::optional<Json> ServiceData::details(const std::string& taskId)
{
    const std::lock_guard lock(m_mutex);
    refresh();
    const Json* known = task(taskId);
    const bool hasDetails = m_data.contains("details") && m_data["details"].contains(taskId);
    if (!known && !hasDetails)
        return std::nullopt;
    Json result;
    if (hasDetails)
        result = m_data["details"][taskId];
    else
        result = {{"id", text(*known, "id")}, {"title", text(*known, "title")}};
    if (!result.is_object())
        return result;
    if (known && !result.contains("deadline"))
        result["deadline"] = text(*known, "deadline");
    settleTimes(known ? *known : result, result);
    return result;
}

std::optional<Json> ServiceData::dayTotals()
{
    const std::lock_guard lock(m_mutex);
    refresh();
    if (!m_data.contains("today"))
        return std::nullopt;
    return m_data["today"];
}

Json ServiceData::version()
{
    const std::lock_guard lock(m_mutex);
    refresh();
    if (!m_data.contains("version"))
        return Json::array();
    const Json& version = m_data["version"];
    return version.is_string() ? Json::array({{{"version", version}}}) : version;
}

bool ServiceData::moveDeadline(const std::string& taskId, const std::string& deadline)
{
    const std::lock_guard lock(m_mutex);
    refresh();
    const Json* known = task(taskId);
    if (!known)
        return false;
    m_movedDeadlines[taskId] = {text(*known, "deadline"), deadline};
    return true;
}

void ServiceData::reset()
{
    const std::lock_guard lock(m_mutex);
    m_movedDeadlines.clear();
}

void ServiceData::refresh()
{
    if (m_file.empty())
        return;
    std::ifstream stream(m_file, std::ios::binary);
    std::string content{std::istreambuf_iterator<char>(stream), {}};
    if (!stream) {
        if (!m_missing)
            std::cerr << m_file << ": cannot be read, the last good content stays" << std::endl;
        m_missing = true;
        return;
    }
    m_missing = false;
    // Compared by content: an edit that keeps size and time of the file counts too.
    if (content == m_content)
        return;
    m_content = std::move(content);
    try {
        m_data = parsed(m_content);
    } catch (const std::exception& error) {
        std::cerr << m_file << ": " << error.what() << ", the last good content stays" << std::endl;
    }
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
