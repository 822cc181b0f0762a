// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <ctime>
#include <map>
#include <optional>
#include <string>

#include "Encoding.h"

namespace standin {

/// What the service knows: accounts, teams with tasks, details, day totals, version. It comes from
/// one JSON file. Its values are served as they stand there, in the file's order; only a "deadline"
/// or "last_comment" like "+2h" becomes the time that far from the start of the program.
class ServiceData {
public:
    /// Without a file, the demo data that is built in. Throws std::runtime_error when the file
    /// cannot be used.
    explicit ServiceData(std::string file);

    /// What is in the file, for the tester.
    static std::string explanation();

    /// Takes over what has been edited. An edit that is broken is told on standard error, and the
    /// last good content stays.
    void refresh();

    bool accepts(const std::string& login, const std::string& password) const;
    bool knows(const std::string& login) const { return account(login) != nullptr; }

    /// The teams that this login sees; all of them for an unknown one.
    Json teams(const std::string& login) const;
    /// Nothing for an unknown task. A task without details has those that its team's list tells.
    std::optional<Json> details(const std::string& taskId) const;
    std::optional<Json> dayTotals() const;
    Json version() const;

    /// Holds until the file itself tells another deadline for the task. False for an unknown task.
    bool moveDeadline(const std::string& taskId, const std::string& deadline);
    /// Forgets the moved deadlines.
    void reset() { m_movedDeadlines.clear(); }

private:
    struct MovedDeadline {
        std::string from;
        std::string to;
    };

    void takeOver(std::string content);
    /// Null for an unknown login, and for an empty one.
    const Json* account(const std::string& login) const;
    const Json* task(const std::string& taskId) const;
    /// Puts the times in the list entry or the details of a task as they are at present.
    void settleTimes(const Json& task, Json& record) const;

    const std::string m_file;
    const std::time_t m_start;
    std::string m_content;
    std::string m_problem; ///< what was told last; empty when the file is good
    Json m_data;
    std::map<std::string, MovedDeadline> m_movedDeadlines;
};

} // namespace standin
