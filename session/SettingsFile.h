// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// To be called before QSettings reads an ini file. Qt trusts what it reads there: one byte more or
/// less, and a value that claims to be a list of billions, or a polygon, ends the program. A file
/// with such a value is renamed to NAME.damaged, in the place of an earlier one, and logged.
void putAsideIfHarmful(const QString& path);
