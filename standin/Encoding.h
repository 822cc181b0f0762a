// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <ctime>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

namespace standin {

/// Keeps the order of keys, so that what the data file says is served as it stands there.
using Json = nlohmann::ordered_json;

/// Throws std::runtime_error when the file cannot be read.
std::string contentOf(const std::filesystem::path& file);

/// Nothing unless everything but letters, digits and "-._~" is percent-encoded.
std::optional<std::string> percentDecoded(std::string_view text);

/// With everything percent-encoded.
std::string percentEncoded(std::string_view text);

/// Nothing when the text is not standard base64 in one line, padded.
std::optional<std::string> base64Decoded(const std::string& text);

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
/// The other way round.
std::time_t parsedDateTime(const std::string& text);

/// Whether the text is a day or a time of day that strftime() writes so.
bool isWrittenAs(const char* format, const std::string& text);

} // namespace standin
