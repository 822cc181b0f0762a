// SPDX-License-Identifier: GPL-3.0-or-later
#include "Pages.h"

#include <algorithm>
#include <ctime>
#include <iterator>
#include <map>
#include <utility>

namespace standin::Pages {
namespace {

const char* const styleSheet = R"css(
body { margin: 0; font: 15px/1.45 "PT Sans", "Segoe UI", sans-serif; color: #4a4a4a; background: #efede6; }
header { background: linear-gradient(#7a868f, #646f78); color: #fff; padding: 18px 0; border-bottom: 3px solid #e3b85a; }
header h1 { margin: 0; font-size: 22px; }
header p { margin: 2px 0 0; }
header a { color: #f6da8e; }
.page { max-width: 1000px; margin: 0 auto; padding: 0 24px; }
main.page { padding-top: 24px; }
section { background: #fbfaf7; border: 1px solid #d2cec2; border-radius: 6px; padding: 18px 24px; margin-bottom: 20px; overflow-wrap: anywhere; }
h2 { margin: 0 0 12px; font-size: 17px; color: #646464; }
h3 { margin: 16px 0 4px; font-size: 15px; }
table { border-collapse: collapse; width: 100%; }
th { text-align: left; font-weight: normal; color: #6b6860; border-bottom: 1px solid #d2cec2; }
th, td { padding: 6px 16px 6px 0; vertical-align: top; }
tr + tr td { border-top: 1px solid #e1ddd1; }
td.time { white-space: nowrap; font-variant-numeric: tabular-nums; width: 1%; }
td.note { width: 160px; }
.slots { display: inline-flex; gap: 2px; vertical-align: middle; margin-right: 8px; }
.slots i { width: 10px; height: 16px; border-radius: 2px; background: #dee2e4; }
.slots i.on { background: #5c9f58; }
.pictures { display: flex; flex-wrap: wrap; gap: 14px; }
.pictures a { color: #6b6860; font-size: 13px; text-decoration: none; }
.pictures img { display: block; width: 296px; border-radius: 4px; border: 1px solid #d2cec2; }
.totals { display: flex; gap: 40px; }
.totals b { display: block; font-size: 26px; color: #4a8a46; }
.mark { border-radius: 4px; padding: 0 6px; font-size: 13px; border: 1px solid #e3b85a; background: #fef7e4; color: #735a24; }
.mark.blocking { border-color: #bc4038; background: #fff; color: #bc4038; }
.text { white-space: pre-wrap; margin: 0 0 8px; }
.none, .note { color: #6b6860; }
a { color: #856829; }
)css";

using TaskNames = std::map<std::string, std::string>;

std::string page(const std::string& title, const std::string& remark, bool reloads,
                 const std::string& content)
{
    return "<!DOCTYPE html>\n<html lang=\"ru\"><head><meta charset=\"utf-8\">"
           "<meta name=\"viewport\" content=\"width=device-width\">"
        + std::string(reloads ? "<meta http-equiv=\"refresh\" content=\"5\">" : "") + "<title>"
        + htmlEscaped(title) + "</title><style>" + styleSheet
        + "</style></head><body><header><div class=\"page\"><h1>" + htmlEscaped(title) + "</h1><p>"
        + remark + "</p></div></header><main class=\"page\">" + content + "</main></body></html>\n";
}

std::string section(const std::string& title, const std::string& content)
{
    return "<section><h2>" + htmlEscaped(title) + "</h2>" + content + "</section>\n";
}

std::string none(const char* remark)
{
    return std::string("<p class=\"none\">") + remark + "</p>";
}

std::string hours(int minutes)
{
    const std::string rest = std::to_string(minutes % 60);
    return std::to_string(minutes / 60) + ":" + (rest.size() < 2 ? "0" : "") + rest;
}

std::string urlEncoded(const std::string& text)
{
    const char* const digits = "0123456789ABCDEF";
    std::string result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        result += {'%', digits[byte >> 4], digits[byte & 15]};
    }
    return result;
}

TaskNames taskNames(const Json& teams)
{
    // The client's own row for time without a task, in every team.
    TaskNames names{{"0", "Прочие непоставленные задачи"}};
    for (const Json& team : teams) {
        for (const Json& task : team.value("tasks", Json::array()))
            names[text(task, "id")] = text(task, "title");
    }
    return names;
}

std::string taskLink(const std::string& id, const TaskNames& names)
{
    const auto found = names.find(id);
    const std::string name = htmlEscaped(found == names.end() ? "Задача " + id : found->second);
    if (id == "0" || found == names.end())
        return name;
    return "<a href=\"/task?id=" + urlEncoded(id) + "\">" + name + "</a>";
}

std::string slots(const std::string& active)
{
    const auto count = number(active).value_or(0);
    std::string cells;
    for (int i = 0; i < 10; ++i)
        cells += i < count ? "<i class=\"on\"></i>" : "<i></i>";
    return "<span class=\"slots\">" + cells + "</span>" + htmlEscaped(active) + " из 10";
}

std::string minutes(const std::vector<Record>& records, const TaskNames& names)
{
    std::string rows;
    for (auto record = records.rbegin(); record != records.rend(); ++record) {
        if (record->kind != "activity")
            continue;
        const bool isLate = record->received - record->time >= 60;
        rows += "<tr><td class=\"time\">" + dateTime(record->time)
            + (isLate ? " <span class=\"mark\">с опозданием</span>" : "") + "</td><td>"
            + slots(text(record->content, "active")) + "</td><td>"
            + taskLink(text(record->content, "task_id"), names) + "</td><td>"
            + htmlEscaped(text(record->content, "email")) + "</td></tr>\n";
    }
    if (rows.empty())
        return none("Отчётов пока нет. Первый придёт через минуту после запуска монитора.");
    return "<table><tr><th>Время</th><th>Активность</th><th>Задача</th><th>Участник</th></tr>\n"
        + rows + "</table>";
}

std::string pictures(const std::vector<Record>& records)
{
    std::string result;
    for (auto record = records.rbegin(); record != records.rend(); ++record) {
        if (record->kind != "screenshot")
            continue;
        if (record->picture.empty()) {
            result += "<span class=\"none\">" + dateTime(record->time) + ", без снимка</span>";
            continue;
        }
        const std::string address = "/picture/" + htmlEscaped(record->picture);
        result += "<a href=\"" + address + "\"><img loading=\"lazy\" alt=\"\" src=\"" + address
            + "\">" + dateTime(record->time) + "</a>\n";
    }
    if (result.empty())
        return none("Снимков пока нет.");
    return "<div class=\"pictures\">" + result + "</div>";
}

std::string deadlineRequests(const std::vector<Record>& records, const TaskNames& names)
{
    std::string rows;
    for (auto record = records.rbegin(); record != records.rend(); ++record) {
        if (record->kind != "deadline")
            continue;
        rows += "<tr><td class=\"time\">" + dateTime(record->time) + "</td><td>"
            + taskLink(text(record->content, "task_id"), names) + "</td><td>"
            + htmlEscaped(text(record->content, "dl_date") + " " + text(record->content, "dl_time"))
            + "</td><td>" + htmlEscaped(text(record->content, "message")) + "</td></tr>\n";
    }
    if (rows.empty())
        return {};
    return section("Просьбы о продлении",
                   "<table><tr><th>Время</th><th>Задача</th><th>Новый срок</th><th>Причина</th>"
                   "</tr>\n"
                       + rows + "</table>");
}

std::string totals(const std::vector<Record>& records)
{
    const std::string day = dateTime(std::time(nullptr)).substr(0, 10);
    int total = 0;
    int active = 0;
    for (const Record& record : records) {
        if (record.kind != "activity" || dateTime(record.time).substr(0, 10) != day)
            continue;
        ++total;
        if (number(text(record.content, "active")).value_or(0) > 0)
            ++active;
    }
    return "<div class=\"totals\"><span><b>" + hours(total) + "</b>рабочее время</span><span><b>"
        + hours(active) + "</b>активное время</span></div>";
}

std::string taskTable(const Json& teams)
{
    std::string result;
    for (const Json& team : teams) {
        std::string rows;
        for (const Json& task : team.value("tasks", Json::array())) {
            const std::string id = text(task, "id");
            const std::string block = text(task, "block");
            const bool isBlocking = !block.empty() && block != "0";
            const bool isUrgent = number(text(task, "importance")).value_or(0) > 0;
            rows += "<tr><td><a href=\"/task?id=" + urlEncoded(id) + "\">"
                + htmlEscaped(text(task, "title")) + "</a>"
                + (isUrgent ? " <span class=\"mark\">важная</span>" : "")
                + (isBlocking ? " <span class=\"mark blocking\">блокирующая</span>" : "")
                + "</td><td class=\"time\">" + htmlEscaped(text(task, "deadline")) + "</td></tr>\n";
        }
        result += "<h3>" + htmlEscaped(text(team, "name")) + "</h3>"
            + (rows.empty() ? none("Задач нет.") : "<table>" + rows + "</table>");
    }
    return result.empty() ? none("Команд нет.") : result;
}

std::string paragraph(const char* name, const std::string& content)
{
    if (content.empty())
        return {};
    return std::string("<tr><td class=\"note\">") + name + "</td><td>" + htmlEscaped(content)
        + "</td></tr>";
}

std::string attachments(const Json& details)
{
    std::string rows;
    for (const Json& file : details.value("files", Json::array())) {
        rows += "<tr><td>" + htmlEscaped(text(file, "filename_orig")) + "</td><td class=\"time\">"
            + htmlEscaped(text(file, "size")) + " байт</td></tr>";
    }
    return rows.empty() ? rows : section("Вложения", "<table>" + rows + "</table>");
}

std::string copywriting(const Json& details)
{
    std::string result;
    for (const Json& entry : details.value("texts", Json::array())) {
        std::string words;
        for (const Json& word : entry.value("keywords", Json::array())) {
            words += (words.empty() ? "" : ", ") + text(word, "keyword") + " ("
                + text(word, "count") + " + " + text(word, "count2") + ")";
        }
        result += "<h3>" + htmlEscaped(text(entry, "title")) + "</h3><table>"
            + paragraph("Задание", text(entry, "task")) + paragraph("Текст", text(entry, "text"))
            + paragraph("Не меньше знаков", text(entry, "min_count"))
            + paragraph("Страница", text(entry, "page")) + paragraph("Ключевые слова", words)
            + "</table>";
    }
    return result.empty() ? result : section("Тексты", result);
}

} // namespace

std::string overview(const Json& teams, const std::vector<Record>& records)
{
    const TaskNames names = taskNames(teams);
    return page("TessaPort: что получила служба",
                "Пробная служба на этой машине. Страница обновляется сама.", true,
                section("Сегодня", totals(records)) + section("Минуты", minutes(records, names))
                    + section("Снимки экрана", pictures(records)) + deadlineRequests(records, names)
                    + section("Команды и задачи", taskTable(teams)));
}

std::string task(const std::string& id, const Json& details, const Json& teams,
                 const std::vector<Record>& records)
{
    const Json known = details.is_object() ? details : Json::object();
    std::vector<Record> ofTask;
    std::copy_if(records.begin(), records.end(), std::back_inserter(ofTask),
                 [&id](const Record& record) { return text(record.content, "task_id") == id; });
    const TaskNames names = taskNames(teams);
    const std::string facts = "<p class=\"text\">" + htmlEscaped(text(known, "text"))
        + "</p><table>" + paragraph("Номер", id) + paragraph("Срок", text(known, "deadline"))
        + paragraph("Исполнитель", text(known, "executor_name"))
        + paragraph("Постановщик", text(known, "creator_name"))
        + paragraph("Проверяющий", text(known, "auditor_name")) + "</table>";
    return page(text(known, "title"), "<a href=\"/monitor/\">Все отчёты</a>", true,
                section("Задача", facts) + attachments(known) + copywriting(known)
                    + section("Минуты", minutes(ofTask, names))
                    + section("Снимки экрана", pictures(ofTask)) + deadlineRequests(ofTask, names));
}

std::string unknownTask(const std::string& id)
{
    return page("Задача не найдена", "<a href=\"/monitor/\">Все отчёты</a>", false,
                section("Номер", "<p>" + htmlEscaped(id) + "</p>"));
}

} // namespace standin::Pages
