// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <stdexcept>

namespace standin {
namespace {

namespace fs = std::filesystem;

const char* const requestLog = "requests.jsonl";

/// Without its suffix; sorted by name, records are in order.
std::string fileName(const Json& record)
{
    char number[16];
    std::snprintf(number, sizeof number, "%06d", record.value("n", 0));
    return std::string(number) + "-" + text(record, "kind");
}

/// Nothing for a file that is none of this store's records.
std::optional<Json> recordIn(const fs::path& file)
{
    if (file.extension() != ".json")
        return std::nullopt;
    Json record = Json::parse(contentOf(file), nullptr, false);
    if (!record.is_object() || !record.contains("record") || !record["record"].is_object()
        || !record.contains("n") || !record["n"].is_number() || file.stem() != fileName(record))
        return std::nullopt;
    return record;
}

} // namespace

bool isMinuteOfToday(const Json& record)
{
    const size_t dayLength = std::string("yyyy-MM-dd").size();
    return text(record, "kind") == "activity"
        && text(record, "time").substr(0, dayLength)
        == dateTime(std::time(nullptr)).substr(0, dayLength);
}

bool hasInput(const Json& record)
{
    return number(text(record["record"], "active")).value_or(0) > 0;
}

Store::Store(const fs::path& folder)
    : m_folder(fs::absolute(folder))
{
    fs::create_directories(m_folder);
    if (!std::ofstream(m_folder / requestLog, std::ios::app))
        throw std::runtime_error(m_folder.string() + ": cannot be written");
    for (const fs::directory_entry& entry : fs::directory_iterator(m_folder)) {
        if (auto record = recordIn(entry.path()))
            m_records.push_back(std::move(*record));
    }
    std::sort(m_records.begin(), m_records.end(),
              [](const Json& a, const Json& b) { return a["n"] < b["n"]; });
}

void Store::logRequest(const std::string& name, const Json& request)
{
    ++m_requestCounts[name];
    std::ofstream(m_folder / requestLog, std::ios::app | std::ios::binary)
        << compact(request) + "\n";
}

void Store::keep(const std::string& kind, std::time_t age, const Json& content,
                 const std::string& picture)
{
    const std::time_t now = std::time(nullptr);
    Json record{{"n", m_records.empty() ? 1 : m_records.back().value("n", 0) + 1},
                {"kind", kind},
                {"received", dateTime(now)},
                {"time", dateTime(now - age)},
                {"record", content}};
    const std::string name = fileName(record);
    if (!picture.empty()) {
        record["picture"] = name + ".jpg";
        write(name + ".jpg", picture);
    }
    write(name + ".json", indented(record) + "\n");
    m_records.push_back(std::move(record));
}

std::optional<std::string> Store::picture(const std::string& name) const
{
    for (const Json& record : m_records) {
        if (!name.empty() && text(record, "picture") == name)
            return contentOf(m_folder / name);
    }
    return std::nullopt;
}

void Store::clear()
{
    for (const Json& record : m_records) {
        for (const char* suffix : {".json", ".jpg"})
            fs::remove(m_folder / (fileName(record) + suffix));
    }
    m_records.clear();
    m_requestCounts.clear();
    std::ofstream(m_folder / requestLog, std::ios::trunc);
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
