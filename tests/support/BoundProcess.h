// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProcess>

#include <csignal>
#include <sys/prctl.h>

/// A process that ends with the test program, also when that is killed.
class BoundProcess : public QProcess {
protected:
    void setupChildProcess() override { prctl(PR_SET_PDEATHSIG, SIGKILL); }
};
