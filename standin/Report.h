// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "Encoding.h"

namespace standin {

/// A report as the client sends it, taken apart and found to be in order.
struct Report {
    enum class Kind { Activity, Screenshot };

    Json record; ///< as sent, in the order sent; without the encoded picture
    long long past = 0; ///< seconds that passed between the minute and the sending
    std::string picture; ///< the bytes; empty when the client could not read its picture

    /// From the body of a request: "data=" and a percent-encoded JSON array of one object with
    /// exactly the fields of its kind, all of them strings. Throws std::runtime_error that tells
    /// what is wrong.
    static Report parsed(Kind kind, const std::string& body);
};

} // namespace standin
