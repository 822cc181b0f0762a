// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <ctime>
#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "Encoding.h"

namespace standin {

/// What the service knows: accounts, teams with tasks, details, day totals, version. It comes from
/// one JSON file that is looked at on every question, so that editing the file is a change at the
/// service; an edit that is broken is told on standard error and the last good content stays.
///
///     {
///       "version": "1.1.0" or the array of the version file,
///       "accounts": [ {"login", "password", and, to see only some: "teams": [team id...]} ],
///       "teams": [ as /api_teams_tasks answers ],
///       "details": { task id: "message" of /api_get_task },
///       "today": { as /api_get_active answers; left out: what was confirmed today is counted }
///     }
///
/// Values are served as they stand, in the file's order. Only a "deadline" or "last_comment" like
/// "+2h", "-3d" or "+45m" becomes the time that far from the start of the program.
/// All functions may be called from any thread.
class ServiceData {
public:
    /// Without a file, the demo data that is built in. Throws std::runtime_error when the file
    /// cannot be used.
    explicit ServiceData(std::string file);

    bool accepts(const std::string& login, const std::string& password);
    bool knows(const std::string& login);

    /// The teams that this login sees; all of them when it is empty.
    Json teams(const std::string& login);
    /// Nothing for an unknown task. A task without details has those that its team's list tells.
    std::optional<Json> details(const std::string& taskId);
    std::optional<Json> dayTotals();
    Json version();

    /// Holds until the file itself tells another deadline for the task. False for an unknown task.
    bool moveDeadline(const std::string& taskId, const std::string& deadline);
    /// Forgets the moved deadlines.
    void reset();

private:
    struct MovedDeadline {
        std::string from;
        std::string to;
    };

    void refresh();
    const Json* task(const std::string& taskId) const;
    /// Puts the times in the list entry or the details of a task as they are at present.
    void settleTimes(const Json& task, Json& record) const;

    std::mutex m_mutex;
    const std::string m_file;
    const std::time_t m_start;
    std::string m_content;
    bool m_missing = false;
    Json m_data;
    std::map<std::string, MovedDeadline> m_movedDeadlines;
};

} // namespace standin
