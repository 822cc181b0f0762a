// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

/// To be called before QSettings reads an ini file. Qt trusts what it reads there: one byte more or
/// less, and a value that claims to be a list of billions, or a polygon, ends the program. Each
/// value that would do that, or that is not whole, becomes a meaningless text in the file and is
/// logged; not a byte of the others is touched. Gives the keys of these values.
QStringList disarmDamagedValues(const QString& path);

/// Removes what a process that was killed a minute or more ago, while it wrote an ini file of this
/// directory, left of the new content. It may hold a password.
void removeUnfinishedSettings(const QString& directory);
