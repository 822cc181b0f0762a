// SPDX-License-Identifier: GPL-3.0-or-later
#include "Encoding.h"

#include <algorithm>
#include <cctype>
#include <charconv>

namespace standin {
namespace {

int hexadecimal(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return -1;
}

bool isUnreserved(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-'
        || c == '.' || c == '_' || c == '~';
}

int base64Value(char c)
{
    if (c >= 'A' && c <= 'Z')
        return c - 'A';
    if (c >= 'a' && c <= 'z')
        return c - 'a' + 26;
    if (c >= '0' && c <= '9')
        return c - '0' + 52;
    if (c == '+')
        return 62;
    return c == '/' ? 63 : -1;
}

bool matchesDigits(std::string_view text, std::string_view pattern)
{
    return std::equal(text.begin(), text.end(), pattern.begin(), pattern.end(),
                      [](char c, char p) { return p == '0' ? c >= '0' && c <= '9' : c == p; });
}

} // namespace

std::optional<std::string> percentDecoded(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            result += text[i];
            continue;
        }
        const int high = i + 2 < text.size() ? hexadecimal(text[i + 1]) : -1;
        const int low = i + 2 < text.size() ? hexadecimal(text[i + 2]) : -1;
        if (high < 0 || low < 0)
            return std::nullopt;
        result += static_cast<char>(high * 16 + low);
        i += 2;
    }
    return result;
}

std::optional<std::string> strictlyPercentDecoded(std::string_view text)
{
    if (!std::all_of(text.begin(), text.end(), [](char c) { return c == '%' || isUnreserved(c); }))
        return std::nullopt;
    return percentDecoded(text);
}

Parameters queryParameters(std::string_view query)
{
    Parameters result;
    while (!query.empty()) {
        const std::string_view item = query.substr(0, query.find('&'));
        query.remove_prefix(std::min(query.size(), item.size() + 1));
        const size_t equals = std::min(item.find('='), item.size());
        const auto name = percentDecoded(item.substr(0, equals));
        const auto value = percentDecoded(item.substr(std::min(item.size(), equals + 1)));
        if (name && value && !name->empty())
            result.emplace(*name, *value);
    }
    return result;
}

std::string value(const Parameters& parameters, const std::string& name)
{
    const auto found = parameters.find(name);
    return found == parameters.end() ? std::string() : found->second;
}

std::optional<std::string> base64Decoded(std::string_view text)
{
    if (text.size() % 4 != 0)
        return std::nullopt;
    size_t padding = 0;
    while (padding < 2 && !text.empty() && text.back() == '=') {
        text.remove_suffix(1);
        ++padding;
    }
    std::string result;
    result.reserve(text.size() * 3 / 4);
    unsigned bits = 0;
    int count = 0;
    for (const char c : text) {
        const int value = base64Value(c);
        if (value < 0)
            return std::nullopt;
        bits = bits << 6 | static_cast<unsigned>(value);
        count += 6;
        if (count >= 8) {
            count -= 8;
            result += static_cast<char>(bits >> count & 0xff);
        }
    }
    return result;
}

std::optional<long long> number(std::string_view text)
{
    long long result = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), result);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return result;
}

std::string text(const Json& value)
{
    if (value.is_string())
        return value.get<std::string>();
    return value.is_number() ? value.dump() : std::string();
}

std::string text(const Json& object, const char* key)
{
    const auto found = object.find(key);
    return found == object.end() ? std::string() : text(*found);
}

std::string compact(const Json& value)
{
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string indented(const Json& value)
{
    return value.dump(2, ' ', false, Json::error_handler_t::replace);
}

std::string htmlEscaped(std::string_view text)
{
    std::string result;
    for (const char c : text) {
        switch (c) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        case '\'':
            result += "&#39;";
            break;
        default:
            result += c;
        }
    }
    return result;
}

std::string dateTime(std::time_t time)
{
    std::tm local{};
    localtime_r(&time, &local);
    char buffer[64];
    return std::string(buffer, std::strftime(buffer, sizeof buffer, "%Y-%m-%d %H:%M:%S", &local));
}

bool isDate(const std::string& text)
{
    if (!matchesDigits(text, "0000-00-00"))
        return false;
    std::tm day{};
    day.tm_year = std::stoi(text.substr(0, 4)) - 1900;
    day.tm_mon = std::stoi(text.substr(5, 2)) - 1;
    day.tm_mday = std::stoi(text.substr(8, 2));
    const std::tm asked = day;
    return timegm(&day) != -1 && day.tm_mon == asked.tm_mon && day.tm_mday == asked.tm_mday;
}

bool isTime(const std::string& text)
{
    return matchesDigits(text, "00:00") && text < "24:00" && text[3] < '6';
}

} // namespace standin
