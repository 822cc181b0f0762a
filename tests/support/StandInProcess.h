// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QStringList>

#include <memory>

/// The stand-in as a process of its own, which ends at the latest with the test program.
class StandInProcess {
public:
    /// Starts it; the folder is the test's, for whatever the process needs beside its own files.
    static std::unique_ptr<StandInProcess> start(const QStringList& arguments,
                                                 const QString& folder);
    virtual ~StandInProcess() = default;

    virtual bool isRunning() const = 0;
    /// The first line that it says, with its end; without one when none came in time.
    virtual QByteArray firstLine(int milliseconds) = 0;
    /// False when it is still there after the time.
    virtual bool stop(int milliseconds) = 0;
};
