// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/StandInProcess.h"

#include <QDeadlineTimer>
#include <QProcess>

#include <csignal>
#include <sys/prctl.h>

namespace {

/// A process that ends with the test program, also when that is killed.
class BoundProcess : public QProcess {
protected:
    void setupChildProcess() override { prctl(PR_SET_PDEATHSIG, SIGKILL); }
};

class ChildProcess : public StandInProcess {
public:
    explicit ChildProcess(const QStringList& arguments)
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(QStringLiteral(STANDIN_EXECUTABLE), arguments);
    }

    bool isRunning() const override { return m_process.state() == QProcess::Running; }

    QByteArray firstLine(int milliseconds) override
    {
        const QDeadlineTimer deadline(milliseconds);
        QByteArray line;
        while (!line.contains('\n') && !deadline.hasExpired()
               && m_process.waitForReadyRead(int(deadline.remainingTime()))) {
            line += m_process.readAllStandardOutput();
        }
        return line;
    }

    bool stop(int milliseconds) override
    {
        m_process.terminate();
        return m_process.waitForFinished(milliseconds);
    }

private:
    BoundProcess m_process;
};

} // namespace

std::unique_ptr<StandInProcess> StandInProcess::start(const QStringList& arguments, const QString&)
{
    return std::make_unique<ChildProcess>(arguments);
}
