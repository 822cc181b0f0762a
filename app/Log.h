// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFile>
#include <QTextStream>

/// The log: every message of the program becomes a line of a plain text file, for people who read
/// it afterwards, a line on standard output, and one of the handler that was there before, which
/// writes to standard error. Who deletes the file closes it; else it stays open to the end of the
/// process.
extern QFile logFile;
extern QTextStream logStream;
extern QtMessageHandler previousMessageHandler;

/// A larger log is deleted when the program starts.
constexpr qint64 largestLog = 104857600; // 100 MiB

/// Names and opens the file, for appending; a larger one than largestLog goes first. Only its user
/// can read it. When it can't be opened the lines go where else they go.
void openLog(const QString& path);

/// The handler to be installed. Messages of level info are dropped.
void logMessageHandler(QtMsgType type, const QMessageLogContext& context, const QString& message);
