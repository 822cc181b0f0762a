// SPDX-License-Identifier: GPL-3.0-or-later
#include "Faults.h"

#include <algorithm>
#include <random>
#include <thread>
#include <utility>

namespace standin {
namespace {

struct ModeText {
    Fault::Mode mode;
    const char* name;
    const char* meaning;
};

constexpr ModeText modeTexts[] = {
    {Fault::Mode::Refuse, "refuse", "the service's \"no\" as a body"},
    {Fault::Mode::Delay, "delay", "the right answer, late by ms (default 2000)"},
    {Fault::Mode::Hang, "hang", "no answer until told otherwise, at most for ms (600000)"},
    {Fault::Mode::DropBefore, "drop-before", "the connection ends before the body is read"},
    {Fault::Mode::DropAfter, "drop-after", "it ends after reading; nothing is kept"},
    {Fault::Mode::DropKept, "drop-kept", "it ends after reading and keeping"},
    {Fault::Mode::ResetKept, "reset-kept", "it is reset after reading and keeping"},
    {Fault::Mode::Garbage, "garbage", "bytes that mean nothing"},
    {Fault::Mode::Html, "html", "a page in the place of data"},
    {Fault::Mode::Database, "database", "the words for a database out of reach"},
    {Fault::Mode::Status500, "status500", "an HTTP error"},
    {Fault::Mode::Endless, "endless", "a body without an end"},
    {Fault::Mode::Answer, "answer", "the body of the order"},
};

std::string garbage()
{
    std::random_device random;
    std::string result(200, '\xff');
    for (size_t i = 1; i < result.size(); ++i)
        result[i] = static_cast<char>(random());
    return result;
}

} // namespace

std::optional<Fault::Mode> Fault::modeNamed(const std::string& name)
{
    for (const ModeText& text : modeTexts) {
        if (name == text.name)
            return text.mode;
    }
    return std::nullopt;
}

std::string Fault::explanation()
{
    std::string result;
    for (const ModeText& text : modeTexts) {
        std::string name = text.name;
        name.resize(14, ' ');
        result += "  " + name + text.meaning + "\n";
    }
    return result;
}

std::optional<std::string> Fault::answer() const
{
    switch (mode) {
    case Mode::Refuse:
        return R"({"status":-1,"err_msg":"Refused"})";
    case Mode::Garbage:
        return garbage();
    case Mode::Html:
        return "\t<!DOCTYPE html>\n<html><body>Not the page you are looking for</body></html>\n";
    case Mode::Database:
        // "Не могу соединится с базой данных" in Windows-1251, with the service's own spelling.
        return "\xcd\xe5 \xec\xee\xe3\xf3 \xf1\xee\xe5\xe4\xe8\xed\xe8\xf2\xf1\xff \xf1 "
               "\xe1\xe0\xe7\xee\xe9 \xe4\xe0\xed\xed\xfb\xf5";
    case Mode::Answer:
        return body;
    default:
        return std::nullopt;
    }
}

void Faults::set(const std::string& path, Fault fault)
{
    const std::lock_guard lock(m_mutex);
    fault.order = ++m_orders[path];
    m_faults.insert_or_assign(path, std::move(fault));
}

void Faults::clear(const std::string& path)
{
    const std::lock_guard lock(m_mutex);
    ++m_orders[path];
    m_faults.erase(path);
}

void Faults::clearAll()
{
    const std::lock_guard lock(m_mutex);
    m_faults.clear();
    ++m_clearings;
}

std::optional<Fault> Faults::take(const std::string& path)
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_faults.find(path);
    if (found == m_faults.end())
        return std::nullopt;
    Fault fault = found->second;
    fault.clearings = m_clearings;
    if (found->second.remaining && --*found->second.remaining <= 0)
        m_faults.erase(found);
    return fault;
}

bool Faults::wait(const std::string& path, const Fault& fault,
                  const std::function<bool()>& clientHasGone)
{
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::milliseconds step(10);
    const bool isHanging = fault.mode == Fault::Mode::Hang;
    const Clock::time_point end = Clock::now() + fault.time;
    std::unique_lock lock(m_mutex);
    while (m_clearings == fault.clearings) {
        if (isHanging && m_orders[path] != fault.order)
            return true;
        const Clock::time_point now = Clock::now();
        if (now >= end)
            return !isHanging;
        if (isHanging && clientHasGone())
            return false;
        lock.unlock();
        std::this_thread::sleep_until(std::min(end, now + step));
        lock.lock();
    }
    return false;
}

Json Faults::toJson() const
{
    const std::lock_guard lock(m_mutex);
    Json result = Json::object();
    for (const auto& [path, fault] : m_faults) {
        result[path] = {{"mode", fault.name}};
        if (fault.remaining)
            result[path]["remaining"] = *fault.remaining;
    }
    return result;
}

} // namespace standin
