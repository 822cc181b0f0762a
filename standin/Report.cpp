// SPDX-License-Identifier: GPL-3.0-or-later
#include "Report.h"

#include <algorithm>
#include <stdexcept>
#include <utility>
#include <vector>

namespace standin {
namespace {

struct Field {
    const char* name;
    bool isRequired;
};

const std::vector<Field>& fields(Report::Kind kind)
{
    static const std::vector<Field> activity{{"active", true},  {"email", true},
                                             {"past", true},    {"task_id", true},
                                             {"team_id", true}, {"version", true}};
    static const std::vector<Field> screenshot{
        {"email", true},   {"file", false},   {"fileName", false}, {"past", true},
        {"task_id", true}, {"team_id", true}, {"version", true}};
    return kind == Report::Kind::Activity ? activity : screenshot;
}

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

void checkFields(Report::Kind kind, const Json& record)
{
    const std::vector<Field>& known = fields(kind);
    for (const Field& field : known) {
        if (field.isRequired && !record.contains(field.name))
            reject(std::string("no field ") + field.name);
    }
    for (const auto& [name, content] : record.items()) {
        const bool isKnown =
            std::any_of(known.begin(), known.end(),
                        [&name = name](const Field& field) { return name == field.name; });
        if (!isKnown)
            reject("unknown field " + name);
        if (!content.is_string())
            reject("not a string: " + name);
    }
}

} // namespace

Report Report::parsed(Kind kind, const std::string& body)
{
    Report report;
    report.record = recordIn(body);
    checkFields(kind, report.record);

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
