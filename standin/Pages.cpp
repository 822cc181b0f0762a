// SPDX-License-Identifier: GPL-3.0-or-later
#include "Pages.h"

#include <algorithm>
#include <initializer_list>
#include <iterator>
#include <map>

#include "BuiltIn.h"

namespace standin::Pages {
namespace {

const std::string linkToAll = "<a href=\"/monitor/\">Все отчёты</a>";

std::string page(const std::string& title, const std::string& remark, const std::string& content)
{
    return "<!DOCTYPE html>\n<html lang=\"ru\"><head><meta charset=\"utf-8\">"
           "<meta name=\"viewport\" content=\"width=device-width\">"
           "<meta http-equiv=\"refresh\" content=\"5\"><title>"
        + htmlEscaped(title) + "</title><style>" + styleSheet
        + "</style></head><body><header><div class=\"page\"><h1>" + htmlEscaped(title) + "</h1><p>"
        + remark + "</p></div></header><main class=\"page\">" + content + "</main></body></html>\n";
}

/// Nothing without content.
std::string section(const std::string& title, const std::string& content)
{
    if (content.empty())
        return {};
    return "<section><h2>" + title + "</h2>" + content + "</section>\n";
}

/// The remark in the place of content that is not there.
std::string orNone(const std::string& content, const std::string& remark)
{
    return content.empty() ? "<p class=\"none\">" + remark + "</p>" : content;
}

std::string row(std::initializer_list<std::string> cells, const std::string& cell = "td")
{
    std::string result = "<tr>";
    for (const std::string& content : cells)
        result += "<" + cell + ">" + content + "</" + cell + ">";
    return result + "</tr>\n";
}

/// Nothing without rows. The style sheet knows the kinds.
std::string table(const std::string& head, const std::string& rows, const char* kind)
{
    if (rows.empty())
        return {};
    return std::string("<table class=\"") + kind + "\">" + head + rows + "</table>";
}

std::string field(const Json& object, const char* key)
{
    return htmlEscaped(text(object, key));
}

std::string mark(bool isMarked, const std::string& name, const std::string& kind = {})
{
    return isMarked ? " <span class=\"mark " + kind + "\">" + name + "</span>" : std::string();
}

/// A row of a task's properties; nothing for an empty one.
std::string fact(const char* name, const std::string& content)
{
    return content.empty() ? std::string() : row({name, htmlEscaped(content)});
}

std::string hours(int minutes)
{
    const std::string rest = std::to_string(minutes % 60);
    return std::to_string(minutes / 60) + ":" + (rest.size() < 2 ? "0" : "") + rest;
}

Json listIn(const Json& object, const char* key)
{
    return object.value(key, Json::array());
}

/// Task id to link.
using TaskLinks = std::map<std::string, std::string>;

std::string taskLink(const std::string& id, const std::string& name)
{
    return "<a href=\"/task?id=" + percentEncoded(id) + "\">" + htmlEscaped(name) + "</a>";
}

TaskLinks taskLinks(const Json& teams)
{
    TaskLinks links;
    for (const Json& team : teams) {
        for (const Json& task : listIn(team, "tasks"))
            links[text(task, "id")] = taskLink(text(task, "id"), text(task, "title"));
    }
    // The client's own row for time without a task, in every team.
    links["0"] = "Прочие непоставленные задачи";
    return links;
}

/// Where a record belongs.
std::string taskOf(const Json& record, const TaskLinks& links)
{
    const auto found = links.find(text(record["record"], "task_id"));
    return found == links.end() ? "Задача " + field(record["record"], "task_id") : found->second;
}

/// What the function makes of all records of a kind, newest first.
template <typename Function>
std::string ofEach(const Records& records, const char* kind, Function function)
{
    std::string result;
    for (auto record = records.rbegin(); record != records.rend(); ++record) {
        if (text(*record, "kind") == kind)
            result += function(*record, (*record)["record"]);
    }
    return result;
}

std::string slots(const Json& minute)
{
    const auto count = number(text(minute, "active")).value_or(0);
    std::string cells;
    for (int i = 0; i < 10; ++i)
        cells += i < count ? "<i class=\"on\"></i>" : "<i></i>";
    return "<span class=\"slots\">" + cells + "</span>" + field(minute, "active") + " из 10";
}

std::string totals(const Records& records)
{
    int total = 0;
    int active = 0;
    for (const Json& record : records) {
        total += isMinuteOfToday(record) ? 1 : 0;
        active += isMinuteOfToday(record) && hasInput(record) ? 1 : 0;
    }
    return "<div class=\"totals\"><span><b>" + hours(total) + "</b>рабочее время</span><span><b>"
        + hours(active) + "</b>активное время</span></div>";
}

/// The sections with all that came.
std::string received(const Records& records, const TaskLinks& links)
{
    const std::string minutes =
        ofEach(records, "activity", [&links](const Json& record, const Json& minute) {
            const std::time_t age =
                parsedDateTime(text(record, "received")) - parsedDateTime(text(record, "time"));
            return row({field(record, "time") + mark(age >= 60, "с опозданием"), slots(minute),
                        taskOf(record, links), field(minute, "email")});
        });
    const std::string pictures = ofEach(records, "screenshot", [](const Json& record, const Json&) {
        const std::string moment = field(record, "time");
        if (!record.contains("picture"))
            return "<span class=\"none\">" + moment + ", без снимка</span>";
        const std::string address = "/picture/" + field(record, "picture");
        return "<a href=\"" + address + "\"><img loading=\"lazy\" alt=\"\" src=\"" + address + "\">"
            + moment + "</a>\n";
    });
    const std::string requests =
        ofEach(records, "deadline", [&links](const Json& record, const Json& request) {
            return row({field(record, "time"), taskOf(record, links),
                        field(request, "dl_date") + " " + field(request, "dl_time"),
                        field(request, "message")});
        });
    return section("Минуты",
                   orNone(table(row({"Время", "Активность", "Задача", "Участник"}, "th"), minutes,
                                "moments"),
                          "Отчётов пока нет. Первый придёт через минуту после запуска монитора."))
        + section("Снимки экрана",
                  "<div class=\"pictures\">" + orNone(pictures, "Снимков пока нет.") + "</div>")
        + section(
               "Просьбы о продлении",
               table(row({"Время", "Задача", "Новый срок", "Причина"}, "th"), requests, "moments"));
}

std::string teamTables(const Json& teams)
{
    std::string result;
    for (const Json& team : teams) {
        std::string rows;
        for (const Json& task : listIn(team, "tasks")) {
            const std::string block = text(task, "block");
            rows += row({taskLink(text(task, "id"), text(task, "title"))
                             + mark(number(text(task, "importance")).value_or(0) > 0, "важная")
                             + mark(!block.empty() && block != "0", "блокирующая", "blocking"),
                         field(task, "deadline")});
        }
        result +=
            "<h3>" + field(team, "name") + "</h3>" + orNone(table({}, rows, "names"), "Задач нет.");
    }
    return orNone(result, "Команд нет.");
}

std::string attachments(const Json& details)
{
    std::string rows;
    for (const Json& file : listIn(details, "files"))
        rows += row({field(file, "filename_orig"), field(file, "size") + " байт"});
    return table({}, rows, "names");
}

std::string textTasks(const Json& details)
{
    std::string result;
    for (const Json& entry : listIn(details, "texts")) {
        std::string words;
        for (const Json& word : listIn(entry, "keywords")) {
            words += (words.empty() ? "" : ", ") + text(word, "keyword") + " ("
                + text(word, "count") + " + " + text(word, "count2") + ")";
        }
        result += "<h3>" + field(entry, "title") + "</h3>"
            + table({},
                    fact("Задание", text(entry, "task")) + fact("Текст", text(entry, "text"))
                        + fact("Не меньше знаков", text(entry, "min_count"))
                        + fact("Страница", text(entry, "page")) + fact("Ключевые слова", words),
                    "facts");
    }
    return result;
}

} // namespace

std::string overview(const Json& teams, const Records& records)
{
    return page("TessaPort: что получила служба",
                "Пробная служба на этой машине. Страница обновляется сама.",
                section("Сегодня", totals(records)) + received(records, taskLinks(teams))
                    + section("Команды и задачи", teamTables(teams)));
}

std::string task(const std::string& id, const Json& details, const Json& teams,
                 const Records& records)
{
    const Json known = details.is_object() ? details : Json::object();
    Records ofTask;
    std::copy_if(records.begin(), records.end(), std::back_inserter(ofTask),
                 [&id](const Json& record) { return text(record["record"], "task_id") == id; });
    const std::string facts = table({},
                                    fact("Номер", id) + fact("Срок", text(known, "deadline"))
                                        + fact("Исполнитель", text(known, "executor_name"))
                                        + fact("Постановщик", text(known, "creator_name"))
                                        + fact("Проверяющий", text(known, "auditor_name")),
                                    "facts");
    return page(text(known, "title"), linkToAll,
                section("Задача", "<p class=\"text\">" + field(known, "text") + "</p>" + facts)
                    + section("Вложения", attachments(known)) + section("Тексты", textTasks(known))
                    + received(ofTask, taskLinks(teams)));
}

std::string unknownTask(const std::string& id)
{
    return page("Задача не найдена", linkToAll, section("Номер", "<p>" + htmlEscaped(id) + "</p>"));
}

} // namespace standin::Pages
