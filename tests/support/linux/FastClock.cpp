// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/FastClock.h"

#include <QCoreApplication>

#include <ctime>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

long nanosecondsAhead = 0;
/// What the two clocks that Qt asks for showed when passTime() began, which lets none of its own
/// time count.
long frozen[2];
bool isFrozen = false;

long systemTime(clockid_t clock)
{
    timespec time = {};
    syscall(SYS_clock_gettime, clock, &time);
    return time.tv_sec * 1000000000 + time.tv_nsec;
}

} // namespace

// What Qt asks for the time, in place of the system's own. Only the main thread's runs ahead: that
// of the test library would call an hour too long for a test.

extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept
{
    if (gettid() != getpid() || (clock != CLOCK_REALTIME && clock != CLOCK_MONOTONIC))
        return int(syscall(SYS_clock_gettime, clock, time));
    const long nanoseconds = (isFrozen ? frozen[clock] : systemTime(clock)) + nanosecondsAhead;
    *time = {nanoseconds / 1000000000, nanoseconds % 1000000000};
    return 0;
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
    for (const clockid_t clock : {CLOCK_REALTIME, CLOCK_MONOTONIC})
        frozen[clock] = systemTime(clock);
    isFrozen = true;
    for (int passed = 0; passed < milliseconds; passed += step) {
        nanosecondsAhead += step * 1000000L;
        QCoreApplication::processEvents();
    }
    nanosecondsAhead -= systemTime(CLOCK_MONOTONIC) - frozen[CLOCK_MONOTONIC];
    isFrozen = false;
}
