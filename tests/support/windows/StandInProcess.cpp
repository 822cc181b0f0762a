// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/StandInProcess.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QThread>

#include <functional>

namespace {

constexpr int pollInterval = 20;

/// The stand-in is a program of the Linux machine under this Wine. Wine can start such a one but
/// neither connects to it nor ends it, so that a script does, and the two of us agree by files: it
/// runs as long as one is there, and says by another that it does. The script in turn is started
/// by a program of Wine's: in the process that starts a native program, Wine closes a handle that
/// is not its own, which here was that of the event loop.
class NativeProcess : public StandInProcess {
public:
    NativeProcess(const QStringList& arguments, const QString& folder)
        : m_folder(folder)
    {
        QFile keep(m_folder.filePath(QStringLiteral("keep")));
        const bool created = keep.open(QIODevice::WriteOnly);
        QFile::remove(output());
        if (created) {
            QProcess::startDetached(QStringLiteral("start"),
                                    QStringList{QStringLiteral("/unix"),
                                                QStringLiteral(STANDIN_LAUNCHER), folder,
                                                QStringLiteral(STANDIN_EXECUTABLE)}
                                        << arguments);
        }
    }
    ~NativeProcess() override { QFile::remove(m_folder.filePath(QStringLiteral("keep"))); }

    bool isRunning() const override { return m_folder.exists(QStringLiteral("running")); }

    QByteArray firstLine(int milliseconds) override
    {
        QByteArray line;
        waitUntil(
            [&] {
                QFile file(output());
                if (file.open(QIODevice::ReadOnly))
                    line = file.readLine();
                return line.endsWith('\n');
            },
            milliseconds);
        return line;
    }

    bool stop(int milliseconds) override
    {
        QFile::remove(m_folder.filePath(QStringLiteral("keep")));
        return waitUntil([&] { return !isRunning(); }, milliseconds);
    }

private:
    QString output() const { return m_folder.filePath(QStringLiteral("output")); }

    static bool waitUntil(const std::function<bool()>& isTrue, int milliseconds)
    {
        const QDeadlineTimer deadline(milliseconds);
        while (!isTrue()) {
            if (deadline.hasExpired())
                return false;
            QThread::msleep(pollInterval);
        }
        return true;
    }

    QDir m_folder;
};

} // namespace

std::unique_ptr<StandInProcess> StandInProcess::start(const QStringList& arguments,
                                                      const QString& folder)
{
    return std::make_unique<NativeProcess>(arguments, folder);
}
