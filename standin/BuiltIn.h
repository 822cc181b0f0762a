// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace standin {

// Files that are built in, so that the program runs by itself.

/// The text of demo.json.
extern const char* const demoData;

/// The text of pages.css.
extern const char* const styleSheet;

} // namespace standin
