// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "Encoding.h"
#include "Store.h"

namespace standin {

/// The web pages: HTML in Russian, complete in itself, everything foreign escaped.
namespace Pages {

/// What has arrived, newest first. The page reloads itself.
std::string overview(const Json& teams, const Records& records);

/// One task and what was booked on it.
std::string task(const std::string& id, const Json& details, const Json& teams,
                 const Records& records);

std::string unknownTask(const std::string& id);

} // namespace Pages
} // namespace standin
