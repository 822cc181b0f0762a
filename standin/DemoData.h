// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace standin {

/// The text of demo.json, built in so that the program runs without a file.
extern const char* const demoData;

} // namespace standin
