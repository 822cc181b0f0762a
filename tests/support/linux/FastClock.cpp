// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/FastClock.h"

#include <QCoreApplication>

#include <ctime>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

long millisecondsAhead = 0;

} // namespace

// What Qt asks for the time, in place of the system's own. Only the main thread's runs ahead: that
// of the test library would call an hour too long for a test.

extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept
{
    const long result = syscall(SYS_clock_gettime, clock, time);
    if (gettid() != getpid())
        return int(result);
    const long nanoseconds = time->tv_nsec + millisecondsAhead % 1000 * 1000000;
    time->tv_sec += millisecondsAhead / 1000 + nanoseconds / 1000000000;
    time->tv_nsec = nanoseconds % 1000000000;
    return int(result);
}

extern "C" int gettimeofday(timeval* time, void*) noexcept
{
    timespec now = {};
    const int result = clock_gettime(CLOCK_REALTIME, &now);
    *time = {now.tv_sec, now.tv_nsec / 1000};
    return result;
}

void passTime(int milliseconds, int step)
{
    for (int passed = 0; passed < milliseconds; passed += step) {
        millisecondsAhead += step;
        QCoreApplication::processEvents();
    }
}
