// SPDX-License-Identifier: GPL-3.0-or-later
#include "Report.h"

#include <set>
#include <stdexcept>
#include <utility>

namespace standin {
namespace {

[[noreturn]] void reject(const std::string& reason)
{
    throw std::runtime_error(reason);
}

Json recordIn(const std::string& body)
{
    const std::string prefix = "data=";
    if (body.compare(0, prefix.size(), prefix) != 0)
        reject("the body does not start with data=");
    const auto payload = percentDecoded(std::string_view(body).substr(prefix.size()));
    if (!payload)
        reject("the data are not percent-encoded");
    Json data = Json::parse(*payload, nullptr, false);
    if (data.is_discarded())
        reject("the data are not JSON");
    if (!data.is_array() || data.size() != 1 || !data[0].is_object())
        reject("the data are not an array of one object");
    return data[0];
}

void checkFields(bool isActivity, const Json& record)
{
    std::set<std::string> missing{"email", "past", "task_id", "team_id", "version"};
    std::set<std::string> possible;
    if (isActivity)
        missing.insert("active");
    else
        possible = {"file", "fileName"};
    for (const auto& [name, content] : record.items()) {
        if (missing.erase(name) == 0 && possible.count(name) == 0)
            reject("unknown field " + name);
        if (!content.is_string())
            reject("not a string: " + name);
    }
    if (!missing.empty())
        reject("no field " + *missing.begin());
}

} // namespace

Report Report::parsed(Kind kind, const std::string& body)
{
    Report report;
    report.record = recordIn(body);
    checkFields(kind == Kind::Activity, report.record);

    const auto past = number(text(report.record, "past"));
    // The age that the client computes is a difference of 32-bit times.
    constexpr long long longest = 0xffffffffLL;
    if (!past || *past < -longest || *past > longest)
        reject("past is not a number of seconds");
    report.past = *past;

    if (kind == Kind::Activity) {
        const auto active = number(text(report.record, "active"));
        if (!active || *active < 0 || *active > 10)
            reject("active is not a number from 0 to 10");
    }

    auto picture = base64Decoded(text(report.record, "file"));
    if (!picture)
        reject("file is not base64");
    report.picture = std::move(*picture);
    report.record.erase("file");
    return report;
}

} // namespace standin
