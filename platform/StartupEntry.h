// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace platform {

/// What the system starts at the user's logon under this name: the path of a program, or an empty
/// text when there is no such entry.
QString startupEntry(const QString& name);

/// Makes the system start this program at the user's logon, replacing an entry of the same name.
/// A failure is silent: the entry is then what it was. Once the program is removed, the entry
/// starts nothing.
void setStartupEntry(const QString& name, const QString& programPath);

/// Takes the entry away; harmless when there is none.
void removeStartupEntry(const QString& name);

} // namespace platform
