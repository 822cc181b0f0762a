// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace standin {
namespace {

namespace fs = std::filesystem;

const char* const requestLog = "requests.jsonl";
const char* const recordSuffix = ".json";
const char* const pictureSuffix = ".jpg";

/// Without its suffix; sorted by name, records are in order.
std::string fileName(const Record& record)
{
    char number[16];
    std::snprintf(number, sizeof number, "%06d", record.number);
    return std::string(number) + "-" + record.kind;
}

std::string contentOf(const fs::path& path)
{
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::time_t parsedDateTime(const std::string& text)
{
    std::tm local{};
    strptime(text.c_str(), "%Y-%m-%d %H:%M:%S", &local);
    local.tm_isdst = -1;
    return std::mktime(&local);
}

/// Nothing for a file that is none of this store's records.
std::optional<Record> recordIn(const fs::path& path)
{
    const Json json = Json::parse(contentOf(path), nullptr, false);
    if (!json.is_object() || !json.contains("record") || !json["record"].is_object())
        return std::nullopt;
    Record record;
    record.number = static_cast<int>(number(text(json, "n")).value_or(0));
    record.kind = text(json, "kind");
    record.received = parsedDateTime(text(json, "received"));
    record.time = parsedDateTime(text(json, "time"));
    record.picture = text(json, "picture");
    record.content = json["record"];
    if (record.number < 1 || path.stem() != fileName(record))
        return std::nullopt;
    return record;
}

} // namespace

Json Record::toJson() const
{
    Json result{{"n", number},
                {"kind", kind},
                {"received", dateTime(received)},
                {"time", dateTime(time)},
                {"record", content}};
    if (!picture.empty())
        result["picture"] = picture;
    return result;
}

Store::Store(const fs::path& folder)
    : m_folder(fs::absolute(folder))
{
    fs::create_directories(m_folder);
    if (!std::ofstream(m_folder / requestLog, std::ios::app))
        throw std::runtime_error(m_folder.string() + ": cannot be written");
    load();
}

void Store::logRequest(const std::string& name, const Json& request)
{
    const std::lock_guard lock(m_mutex);
    ++m_requestCounts[name];
    std::ofstream(m_folder / requestLog, std::ios::app | std::ios::binary)
        << compact(request) + "\n";
}

std::map<std::string, int> Store::requestCounts() const
{
    const std::lock_guard lock(m_mutex);
    return m_requestCounts;
}

Record Store::keep(Record record, const std::string& picture)
{
    const std::lock_guard lock(m_mutex);
    record.number = m_records.empty() ? 1 : m_records.back().number + 1;
    if (!picture.empty()) {
        record.picture = fileName(record) + pictureSuffix;
        write(record.picture, picture);
    }
    write(fileName(record) + recordSuffix, indented(record.toJson()) + "\n");
    m_records.push_back(record);
    return record;
}

std::vector<Record> Store::records() const
{
    const std::lock_guard lock(m_mutex);
    return m_records;
}

DayTotals Store::today(const std::string& email, const std::string& id) const
{
    const std::string day = dateTime(std::time(nullptr)).substr(0, 10);
    const std::lock_guard lock(m_mutex);
    DayTotals totals;
    for (const Record& record : m_records) {
        if (record.kind != "activity" || text(record.content, "email") != email
            || dateTime(record.time).substr(0, 10) != day) {
            continue;
        }
        ++totals.total;
        if (number(text(record.content, "active")).value_or(0) > 0)
            ++totals.active;
        if (text(record.content, "task_id") == id || text(record.content, "team_id") == id)
            ++totals.task;
    }
    return totals;
}

std::optional<std::string> Store::picture(const std::string& name) const
{
    const std::lock_guard lock(m_mutex);
    const bool isKept = !name.empty()
        && std::any_of(m_records.begin(), m_records.end(),
                       [&name](const Record& record) { return record.picture == name; });
    if (!isKept)
        return std::nullopt;
    return contentOf(m_folder / name);
}

void Store::clear()
{
    const std::lock_guard lock(m_mutex);
    for (const Record& record : m_records) {
        fs::remove(m_folder / (fileName(record) + recordSuffix));
        if (!record.picture.empty())
            fs::remove(m_folder / record.picture);
    }
    m_records.clear();
    m_requestCounts.clear();
    std::ofstream(m_folder / requestLog, std::ios::trunc);
}

void Store::load()
{
    for (const fs::directory_entry& entry : fs::directory_iterator(m_folder)) {
        if (entry.path().extension() != recordSuffix)
            continue;
        if (auto record = recordIn(entry.path()))
            m_records.push_back(std::move(*record));
    }
    std::sort(m_records.begin(), m_records.end(),
              [](const Record& a, const Record& b) { return a.number < b.number; });
}

void Store::write(const std::string& name, const std::string& content) const
{
    // Under another name first: who watches the folder never sees half a file.
    const fs::path unfinished = m_folder / (name + ".part");
    std::ofstream stream(unfinished, std::ios::binary);
    stream << content;
    stream.close();
    if (!stream)
        throw std::runtime_error(unfinished.string() + ": cannot be written");
    fs::rename(unfinished, m_folder / name);
}

} // namespace standin
