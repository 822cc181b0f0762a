// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <ctime>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Encoding.h"

namespace standin {

/// Confirmed records, as their files have them: "n", from 1 in the order of confirmation; "kind":
/// "activity", "screenshot" or "deadline"; "received"; "time", the moment it tells of, which is
/// earlier for a late one; "record", as the client sent it but for the picture; and, where there is
/// one, "picture", the name of a file in the store.
using Records = std::vector<Json>;

/// Whether the record is a minute of the present day.
bool isMinuteOfToday(const Json& record);
/// Whether there was input in it.
bool hasInput(const Json& record);

/// The folder with what the service has received. Each confirmed record is a readable JSON file
/// with a picture beside it where there is one, and each request a line of requests.jsonl. What the
/// folder holds at the start is taken up.
class Store {
public:
    /// Makes the folder. Throws std::runtime_error when it cannot be used.
    explicit Store(const std::filesystem::path& folder);

    const std::filesystem::path& folder() const { return m_folder; }

    /// Appends a line and counts it under the name; it is in the file when this returns.
    void logRequest(const std::string& name, const Json& request);
    /// Name to number of requests since the start.
    const std::map<std::string, int>& requestCounts() const { return m_requestCounts; }

    /// Keeps a record of something so many seconds ago. It appears whole or, with
    /// std::runtime_error, not at all.
    void keep(const std::string& kind, std::time_t age, const Json& content,
              const std::string& picture = {});
    const Records& records() const { return m_records; }

    /// The bytes of a kept picture; nothing for a name that no record has.
    std::optional<std::string> picture(const std::string& name) const;

    /// Removes everything kept and starts counting anew.
    void clear();

private:
    void write(const std::string& name, const std::string& content) const;

    const std::filesystem::path m_folder;
    Records m_records;
    std::map<std::string, int> m_requestCounts;
};

} // namespace standin
