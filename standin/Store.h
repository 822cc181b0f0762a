// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <ctime>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "Encoding.h"

namespace standin {

/// A confirmed record.
struct Record {
    int number = 0; ///< from 1, in the order of confirmation
    std::string kind; ///< "activity", "screenshot" or "deadline"
    std::time_t received = 0;
    std::time_t time = 0; ///< the moment it tells of: earlier than received for a late one
    std::string picture; ///< name of a file in the store; empty without one
    Json content; ///< as the client sent it, without the picture

    Json toJson() const;
};

/// Time booked on one day, in minutes.
struct DayTotals {
    int total = 0;
    int active = 0;
    int task = 0;
};

/// The folder with what the service has received. Each confirmed record is a readable JSON file
/// with a picture beside it where there is one, and each request a line of requests.jsonl. What the
/// folder holds at the start is taken up. All functions may be called from any thread.
class Store {
public:
    /// Makes the folder. Throws std::runtime_error when it cannot be used.
    explicit Store(const std::filesystem::path& folder);

    const std::filesystem::path& folder() const { return m_folder; }

    /// Appends a line and counts it under the name; it is in the file when this returns.
    void logRequest(const std::string& name, const Json& request);
    /// Name to number of requests since the start.
    std::map<std::string, int> requestCounts() const;

    /// Numbers the record, writes it down and returns it. It appears whole or, with
    /// std::runtime_error, not at all.
    Record keep(Record record, const std::string& picture);
    std::vector<Record> records() const;

    /// What this user has booked on the present day; of it as "task" what names the id as task or
    /// team.
    DayTotals today(const std::string& email, const std::string& id) const;

    /// The bytes of a kept picture; nothing for a name that no record has.
    std::optional<std::string> picture(const std::string& name) const;

    /// Removes everything kept and starts counting anew.
    void clear();

private:
    void load();
    void write(const std::string& name, const std::string& content) const;

    mutable std::mutex m_mutex;
    const std::filesystem::path m_folder;
    std::vector<Record> m_records;
    std::map<std::string, int> m_requestCounts;
};

} // namespace standin
