// SPDX-License-Identifier: GPL-3.0-or-later
#include "Faults.h"

#include <algorithm>
#include <random>
#include <thread>

namespace standin {
namespace {

struct Known {
    const char* name;
    Fault::Mode mode;
    const char* meaning;
    const char* body = "";
};

constexpr Known knownFaults[] = {
    {"refuse", Fault::Mode::Body, "the service's \"no\" as a body",
     R"({"status":-1,"err_msg":"Refused"})"},
    {"delay", Fault::Mode::Delay, "the right answer, late by ms (default 2000)"},
    {"hang", Fault::Mode::Hang, "no answer until told otherwise, at most for ms (600000)"},
    {"drop-before", Fault::Mode::DropBefore, "the connection ends before the body is read"},
    {"drop-after", Fault::Mode::DropAfter, "it ends after reading; nothing is kept"},
    {"drop-kept", Fault::Mode::DropKept, "it ends after reading and keeping"},
    {"reset-kept", Fault::Mode::ResetKept, "it is reset after reading and keeping"},
    {"garbage", Fault::Mode::Body, "bytes that mean nothing"},
    {"html", Fault::Mode::Body, "a page in the place of data",
     "\t<!DOCTYPE html>\n<html><body>Not the page you are looking for</body></html>\n"},
    // "Не могу соединится с базой данных" in Windows-1251, with the service's own spelling.
    {"database", Fault::Mode::Body, "the words for a database out of reach",
     "\xcd\xe5 \xec\xee\xe3\xf3 \xf1\xee\xe5\xe4\xe8\xed\xe8\xf2\xf1\xff \xf1 "
     "\xe1\xe0\xe7\xee\xe9 \xe4\xe0\xed\xed\xfb\xf5"},
    {"status500", Fault::Mode::Status500, "an HTTP error"},
    {"endless", Fault::Mode::Endless, "a body without an end"},
    {"answer", Fault::Mode::Body, "the body of the order"},
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

std::optional<Fault> Fault::named(const std::string& name, const std::string& body)
{
    for (const Known& known : knownFaults) {
        if (name != known.name)
            continue;
        const std::chrono::seconds usual(known.mode == Mode::Hang ? 600 : 2);
        Fault fault{name, known.mode, known.body, usual, {}};
        if (name == "answer")
            fault.body = body;
        if (name == "garbage")
            fault.body = garbage();
        return fault;
    }
    return std::nullopt;
}

std::string Fault::explanation()
{
    std::string result;
    for (const Known& known : knownFaults) {
        std::string name = known.name;
        name.resize(14, ' ');
        result += "  " + name + known.meaning + "\n";
    }
    return result;
}

void Faults::set(const std::string& path, const Fault& fault)
{
    const std::lock_guard lock(m_mutex);
    m_faults.insert_or_assign(path, fault).first->second.order = ++m_orders[path];
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
