// SPDX-License-Identifier: GPL-3.0-or-later
#include "Faults.h"

#include <random>
#include <utility>

namespace standin {
namespace {

constexpr std::pair<Fault::Mode, const char*> modeNames[] = {
    {Fault::Mode::Refuse, "refuse"},
    {Fault::Mode::Delay, "delay"},
    {Fault::Mode::Hang, "hang"},
    {Fault::Mode::DropBefore, "drop-before"},
    {Fault::Mode::DropAfter, "drop-after"},
    {Fault::Mode::DropKept, "drop-kept"},
    {Fault::Mode::Garbage, "garbage"},
    {Fault::Mode::Html, "html"},
    {Fault::Mode::Database, "database"},
    {Fault::Mode::Status500, "status500"},
    {Fault::Mode::Answer, "answer"},
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
    for (const auto& [mode, modeName] : modeNames) {
        if (name == modeName)
            return mode;
    }
    return std::nullopt;
}

std::string Fault::name(Mode mode)
{
    for (const auto& [known, modeName] : modeNames) {
        if (known == mode)
            return modeName;
    }
    return {};
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
    m_changed.notify_all();
}

void Faults::clear(const std::string& path)
{
    const std::lock_guard lock(m_mutex);
    ++m_orders[path];
    m_faults.erase(path);
    m_changed.notify_all();
}

void Faults::clearAll()
{
    const std::lock_guard lock(m_mutex);
    m_faults.clear();
    for (auto& [path, order] : m_orders)
        ++order;
    m_changed.notify_all();
}

std::optional<Fault> Faults::take(const std::string& path)
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_faults.find(path);
    if (found == m_faults.end())
        return std::nullopt;
    const Fault fault = found->second;
    if (found->second.remaining && --*found->second.remaining <= 0)
        m_faults.erase(found);
    return fault;
}

void Faults::delay(std::chrono::milliseconds time)
{
    std::unique_lock lock(m_mutex);
    m_changed.wait_for(lock, time, [this] { return m_stopped; });
}

bool Faults::hang(const std::string& path, const Fault& fault,
                  const std::function<bool()>& clientHasGone)
{
    constexpr std::chrono::milliseconds step(50);
    const auto end = std::chrono::steady_clock::now() + fault.time;
    std::unique_lock lock(m_mutex);
    const auto isOver = [&] { return m_stopped || m_orders[path] != fault.order; };
    while (!m_changed.wait_for(lock, step, isOver)) {
        if (std::chrono::steady_clock::now() >= end || clientHasGone())
            return false;
    }
    return !m_stopped;
}

void Faults::stop()
{
    const std::lock_guard lock(m_mutex);
    m_stopped = true;
    m_changed.notify_all();
}

Json Faults::toJson() const
{
    const std::lock_guard lock(m_mutex);
    Json result = Json::object();
    for (const auto& [path, fault] : m_faults) {
        result[path] = {{"mode", Fault::name(fault.mode)}};
        if (fault.remaining)
            result[path]["remaining"] = *fault.remaining;
    }
    return result;
}

} // namespace standin
