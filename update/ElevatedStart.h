// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLatin1String>
#include <QString>

/// The program that replaces this one's files, looked for in the working directory.
extern const QLatin1String updateProgram;

/// Starts a program with elevated rights where the system knows such a thing. Returns a number
/// above 31 for success and 5 when the user said no. For any other failure it also logs a warning
/// and opens the page from which the program can be fetched by hand.
int runElevated(const QString& file, const QString& arguments);
