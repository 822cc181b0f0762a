// SPDX-License-Identifier: GPL-3.0-or-later
#include "Encoding.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include <openssl/evp.h>

namespace standin {
namespace {

constexpr char dateTimeFormat[] = "%Y-%m-%d %H:%M:%S";

bool isUnreserved(char c)
{
    return std::isalnum(static_cast<unsigned char>(c))
        || std::string_view("-._~").find(c) != std::string_view::npos;
}

std::string written(const char* format, const std::tm& time)
{
    char buffer[64];
    return std::string(buffer, std::strftime(buffer, sizeof buffer, format, &time));
}

} // namespace

std::string contentOf(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        throw std::runtime_error(file.string() + ": cannot be read");
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::optional<std::string> percentDecoded(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        if (isUnreserved(text[0])) {
            result += text[0];
            text.remove_prefix(1);
            continue;
        }
        if (text[0] != '%' || text.size() < 3)
            return std::nullopt;
        unsigned byte = 0;
        const char* const end = text.data() + 3;
        if (std::from_chars(text.data() + 1, end, byte, 16).ptr != end)
            return std::nullopt;
        result += static_cast<char>(byte);
        text.remove_prefix(3);
    }
    return result;
}

std::string percentEncoded(std::string_view text)
{
    constexpr char digits[] = "0123456789ABCDEF";
    std::string result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        result += {'%', digits[byte >> 4], digits[byte & 15]};
    }
    return result;
}

std::optional<std::string> base64Decoded(const std::string& text)
{
    const auto bytes = [](auto& of) { return reinterpret_cast<const unsigned char*>(of.data()); };
    const auto room = [](std::string& of) { return reinterpret_cast<unsigned char*>(of.data()); };
    std::string result(text.size() / 4 * 3, '\0');
    if (EVP_DecodeBlock(room(result), bytes(text), static_cast<int>(text.size())) < 0)
        return std::nullopt;
    // OpenSSL takes padding for zeros and passes over blanks around the text: hence the way back.
    const size_t padding = text.size() - (text.find_last_not_of('=') + 1);
    result.resize(result.size() - std::min<size_t>(padding, 2));
    std::string again(text.size() + 1, '\0');
    EVP_EncodeBlock(room(again), bytes(result), static_cast<int>(result.size()));
    again.pop_back();
    return again == text ? std::optional(result) : std::nullopt;
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
    constexpr std::string_view special = "&<>\"'";
    constexpr const char* escaped[] = {"&amp;", "&lt;", "&gt;", "&quot;", "&#39;"};
    std::string result;
    for (const char c : text) {
        const size_t place = special.find(c);
        if (place == std::string_view::npos)
            result += c;
        else
            result += escaped[place];
    }
    return result;
}

std::string dateTime(std::time_t time)
{
    std::tm local{};
    localtime_r(&time, &local);
    return written(dateTimeFormat, local);
}

std::time_t parsedDateTime(const std::string& text)
{
    std::tm local{};
    strptime(text.c_str(), dateTimeFormat, &local);
    local.tm_isdst = -1;
    return std::mktime(&local);
}

bool isWrittenAs(const char* format, const std::string& text)
{
    std::tm moment{};
    moment.tm_mday = 1;
    if (!strptime(text.c_str(), format, &moment))
        return false;
    // A day that a month does not have becomes another one.
    timegm(&moment);
    return written(format, moment) == text;
}

} // namespace standin
