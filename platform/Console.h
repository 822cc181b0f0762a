// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace platform {

/// Writes a text in UTF-8 to standard output. On Windows, where a program with windows has none
/// unless somebody redirects it, to the console that the program was started from; without one the
/// text goes nowhere.
void writeToConsole(const QString& text);

} // namespace platform
