// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <ctime>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

namespace standin {

/// Keeps the order of keys, so that what the data file says is served as it stands there.
using Json = nlohmann::ordered_json;
using Parameters = std::map<std::string, std::string>;

/// Nothing when a "%" is not followed by two hexadecimal digits. A "+" stands for itself: the
/// client writes a blank as "%20" and leaves a plus alone.
std::optional<std::string> percentDecoded(std::string_view text);

/// As percentDecoded(), but nothing as well when a character stands unescaped that a full
/// percent-encoding escapes: all but letters, digits and "-._~".
std::optional<std::string> strictlyPercentDecoded(std::string_view text);

/// The parameters of a URL query. A malformed one is left out; of two with one name the first
/// counts.
Parameters queryParameters(std::string_view query);

/// The value of a parameter, empty when it is not there.
std::string value(const Parameters& parameters, const std::string& name);

/// Nothing when the text is not standard base64 in one line, padded.
std::optional<std::string> base64Decoded(std::string_view text);

/// Nothing when the text is not a whole decimal number that fits.
std::optional<long long> number(std::string_view text);

/// A string as it is, a number as its digits; empty for anything else.
std::string text(const Json& value);

/// The text under a key of an object, empty when it is not there.
std::string text(const Json& object, const char* key);

/// Bytes that are not UTF-8 are replaced, so that any input can be written down.
std::string compact(const Json& value);
std::string indented(const Json& value);

/// Safe as HTML text and as a quoted attribute.
std::string htmlEscaped(std::string_view text);

/// Local time as "yyyy-MM-dd HH:mm:ss".
std::string dateTime(std::time_t time);

/// Whether the text is a day of the calendar as "yyyy-MM-dd".
bool isDate(const std::string& text);

/// Whether the text is a time of day as "HH:mm".
bool isTime(const std::string& text);

} // namespace standin
