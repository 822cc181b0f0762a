// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Log.h"

#include <QDateTime>

#include <iostream>

QFile logFile;
QTextStream logStream(&logFile);
QtMessageHandler previousMessageHandler = nullptr;

namespace {

QString timestamp()
{
    return QDateTime::currentDateTime().toTimeSpec(Qt::UTC).toString(Qt::ISODate);
}

} // namespace

void openLog(const QString& path)
{
    logFile.setFileName(path);
    if (logFile.size() > largestLog)
        logFile.remove();
    logFile.open(QIODevice::Append);
    // The addresses of requests have the password in them.
    logFile.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
}

void logMessageHandler(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (type > QtFatalMsg)
        return;
    // A stream with nowhere to write, or one that failed once, would keep every line in memory.
    if (logFile.isOpen()) {
        logStream.resetStatus();
        logStream << "Message(" << int(type) << ") at " << timestamp() << ": " << message
                  << Qt::endl;
        logStream.flush();
    }

    // In this order; see docs/decisions.md.
    std::cout << "Message(" << QByteArray::number(type).constData() << ") at "
              << timestamp().toUtf8().constData() << ": " << message.toUtf8().constData() << "\n\r";

    if (previousMessageHandler)
        previousMessageHandler(type, QMessageLogContext(), message);
}
